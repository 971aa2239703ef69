#pragma once

#include <cstdint>

namespace run {

// What the run panel and the engine cluster share.
struct ClusterState {
    std::uint8_t ClusterLights = 0;           // 1 = lights on
    std::uint8_t ClusterPower = 0;            // 1 = the main bus has power
    std::uint8_t ClusterBrightness = 0;       // dimmer level * 16
    std::uint8_t ClusterBrightnessFlag = 0;   // 1 = the dimmer has moved
    std::int16_t ClusterRecalibrate = 0;      // 0 idle, 1 start, 2 end
    std::int16_t ClusterRecalibrateWait = 0;  // seconds
};

}  // namespace run
