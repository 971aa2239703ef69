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

    // What the simulator has answered about its autopilot dates from before the unit was operated.
    bool answers_are_old = true;
    // The unit may have lost what it was sent: modes and vertical speed go again, changed or not.
    bool modes_lost = false;
    bool vertical_speed_lost = false;
};

}  // namespace run
