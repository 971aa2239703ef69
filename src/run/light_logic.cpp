#include "run/light_logic.h"

#include <cstdlib>

#include "bus/frames.h"
#include "support/rounding.h"

namespace run {

namespace {

constexpr float kLightsNeedVolts = 9.0F;
constexpr float kPowerNeedsVolts = 8.0F;
constexpr int kDimmerDeadband = 20;
constexpr double kDimmerUnitsPerLevel = 64.0;

std::int16_t powered_light_byte(const tables::CoreTables& tables) {
    return static_cast<std::int16_t>(tables.LightsOn != 0 ? bus::kLightPower | bus::kLightOn : bus::kLightPower);
}

void follow_switches(tables::CoreTables& tables) {
    const auto selected = static_cast<std::int16_t>(tables.LightSwitches & tables.LightMask);
    if (selected == tables.LightsOn) {
        tables.LightChange = 0;
        return;
    }
    tables.LightsOn = selected;
    tables.MainBusLightByte = bus::kLightPower;
    if (tables.MainBusVoltage > kLightsNeedVolts) {
        tables.MainBusLightByte = powered_light_byte(tables);
    }
    tables.LightChange = 1;
}

void follow_dimmer(tables::CoreTables& tables, std::int16_t& BrightnessByte, ClusterState& cluster) {
    if (std::abs(tables.MacroValue - tables.DimmerSeen) <= kDimmerDeadband) {
        return;
    }
    const std::int16_t level = support::round_to_i16(tables.MacroValue / kDimmerUnitsPerLevel);
    const std::int16_t level_seen = support::round_to_i16(tables.DimmerSeen / kDimmerUnitsPerLevel);
    tables.DimmerSeen = tables.MacroValue;
    if (level == level_seen) {
        return;
    }
    const int brightness = level & bus::kLightLevelMask;
    cluster.ClusterBrightness = static_cast<std::uint8_t>(brightness * 16);
    cluster.ClusterBrightnessFlag = 1;
    BrightnessByte = static_cast<std::int16_t>(brightness | bus::kLightApplyLevel);
    tables.LightChange = 1;
}

void follow_voltage(tables::CoreTables& tables, float voltage, float& voltage_seen, std::int16_t& light_byte) {
    if (voltage == voltage_seen) {
        return;
    }
    voltage_seen = voltage;
    const bool was_powered = (light_byte & bus::kLightPower) != 0;
    const bool is_powered = voltage >= kPowerNeedsVolts;
    if (was_powered != is_powered) {
        ++tables.LightChange;
    }
    light_byte = is_powered ? powered_light_byte(tables) : std::int16_t{0};
}

}  // namespace

void update_lights(tables::CoreTables& tables, std::int16_t& BrightnessByte, ClusterState& cluster) {
    if (tables.LightMode != kLightsBySwitch) {
        return;
    }
    follow_switches(tables);
    follow_dimmer(tables, BrightnessByte, cluster);
    follow_voltage(tables, tables.MainBusVoltage, tables.MainBusVoltageSeen, tables.MainBusLightByte);
    follow_voltage(tables, tables.AvionicsBusVoltage, tables.AvionicsBusVoltageSeen, tables.AvionicsLightByte);
}

int light_value(const tables::CoreTables& tables, const ActiveGauge& gauge, std::int16_t BrightnessByte) {
    int value = tables.MainBusLightByte;
    if (gauge.OnAvionicsBus != 0 && tables.LightMode != kLightsAlwaysOn && tables.AvionicsLightByte == 0) {
        value = 0;
    }
    return value | BrightnessByte;
}

bool light_frames_due(const tables::CoreTables& tables) {
    return tables.LightChange != 0 && (tables.LightMode == kLightsBySwitch || tables.LightMode == kLightsAlwaysOn);
}

}  // namespace run
