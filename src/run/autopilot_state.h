#pragma once

#include <cstdint>

namespace run {

// What the autopilot unit's branch remembers; the values themselves stand in SimCom. Rebuilt with the active list.
struct AutopilotState {
    std::uint8_t ApCommandSeen = 0;
    std::int16_t ApVerticalSpeedSeen = 0;  // ft/min
    std::uint8_t ApReportFlag = 0;         // not 0: the unit is being operated
    std::uint8_t ApAlertArmed = 0;
    std::int16_t ApTrimSeen = 0;
    std::int16_t ApTrimTicks = 0;
    std::int16_t ApTrimIndicator = 0;
};

}  // namespace run
