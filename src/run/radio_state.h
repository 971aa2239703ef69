#pragma once

#include <cstdint>

namespace run {

// What radios and DME share. Rebuilt with the active list.
struct RadioState {
    // 1 = the DME owns the active frequency of NAV1, NAV2; the radio then leaves it alone.
    std::uint8_t NavHold1 = 0;
    std::uint8_t NavHold2 = 0;
    std::uint8_t DmeSelected = 0;  // the DME number now shown, 0 = none
    std::int32_t DmeFrequencySeen = 0;
};

}  // namespace run
