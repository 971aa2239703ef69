#pragma once

#include <cstdint>

namespace run {

// What the audio panel's branch remembers. Rebuilt with the active list.
struct AudioState {
    std::uint8_t MarkerLamps = 0;          // bits 0 to 2
    std::uint8_t SoundSelectorSeen = 255;  // 255 = none yet
};

// The trim switches of the yokes, bit 0 and bit 1 for the two directions. Set by the yoke panels; they outlive the
// active list.
struct TrimSwitches {
    std::uint8_t TrimMotorElevator = 0;
    std::uint8_t TrimMotorAilerons = 0;
};

}  // namespace run
