#pragma once

#include <cstdint>

#include "run/active_gauges.h"
#include "run/cluster_state.h"
#include "tables/core_tables.h"

namespace run {

// LightMode: where the gauges' lights come from.
inline constexpr int kLightsBySwitch = 0;  // the switches of LightMask
inline constexpr int kLightsAlwaysOn = 1;
inline constexpr int kLightsAlwaysOff = 2;

// Bits of LightMask and LightSwitches.
inline constexpr std::int16_t kInstrumentLightsSwitch = 32;
inline constexpr std::int16_t kNavLightsSwitch = 1;

// Works out the light bytes and LightChange from switches, dimmer and bus voltages (LightMode 0 only; nothing for the
// others). LightChange is not 0 afterwards when the gauges are to be told. `BrightnessByte` and `cluster` take the
// dimmer's level.
void update_lights(tables::CoreTables& tables, std::int16_t& BrightnessByte, ClusterState& cluster);

// The value of the light command for one gauge.
int light_value(const tables::CoreTables& tables, const ActiveGauge& gauge, std::int16_t BrightnessByte);

// Whether this tick has to tell the gauges their lights. LightMode 2 never does.
bool light_frames_due(const tables::CoreTables& tables);

}  // namespace run
