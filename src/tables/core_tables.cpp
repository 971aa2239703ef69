#include "tables/core_tables.h"

#include <cmath>

#include "support/rounding.h"

namespace tables {

namespace {

struct KnownGaugeType {
    std::int16_t code;
    const char* name;
};

// Rows 1..30 of the gauge type table, in row order (not in code order). Blanks at the ends belong to the names.
constexpr std::array<KnownGaugeType, 30> kKnownGaugeTypes = {{
    {1, "Small gauge; Single Needle "},
    {2, "Small gauge; Single Needle + Display "},
    {3, "Small/Large gauge; Dual Needle "},
    {4, "Large gauge, single needle "},
    {10, "Input/Output module"},
    {101, "Digital/Analogue Altimeter "},
    {103, "Attitude Indicator "},
    {104, "Boeing Clock "},
    {5, "Large gauge; Dual Needle Concentric "},
    {105, "Heading Indicator/Directional Gyro "},
    {6, "Small gauge; Dual Needle Concentric "},
    {110, "Generic Radio Module"},
    {111, "CTL30 Radio Module"},
    {112, "CTL30 Transponder"},
    {106, "VOR1 Indicator"},
    {107, "VOR2 Indicator"},
    {108, "ADF Indicator"},
    {109, "Cessna Clock"},
    {8, "Cessna Enginecluster"},
    {113, "DME Indicator"},
    {114, "737 Transponder"},
    {120, "Bendix/King COM/NAV radio"},
    {121, "Bendix/King ADF radio"},
    {122, "Bendix/King Transponder"},
    {123, "Bendix/King DME Ind."},
    {124, "Bendix/King Autopilot"},
    {125, "Bendix/King Audio Panel"},
    {130, "Radio Magnetic Indicator"},
    {140, "Motorized Trimwheel"},
    {7, "Tripple Needle Concentric Small"},
}};

constexpr std::array<const char*, kClassRows> kClasses = {"",          "Engines", "Surfaces", "Fuel",
                                                          "Autopilot", "Radios",  "Cockpit",  "Plane",
                                                          "Position",  "Cabin",   "Avionics", "External"};

}  // namespace

void SetConstants(CoreTables& tables) {
    for (std::size_t row = 0; row < kClasses.size(); ++row) {
        tables.classes[row] = kClasses[row];
    }
    for (std::size_t row = 0; row < kKnownGaugeTypes.size(); ++row) {
        tables.gauge_types[row + 1].GaugeTypeCode = kKnownGaugeTypes[row].code;
        tables.gauge_types[row + 1].GaugeTypeName = kKnownGaugeTypes[row].name;
    }
}

std::string gauge_type_name(const CoreTables& tables, int code) {
    for (std::size_t row = 1; row < tables.gauge_types.size(); ++row) {
        if (code != 0 && tables.gauge_types[row].GaugeTypeCode == code) {
            return tables.gauge_types[row].GaugeTypeName;
        }
    }
    return " Unknown ";
}

std::int32_t BitShift(std::int32_t value, int bits, ShiftDirection direction) {
    const double shifted = std::ldexp(static_cast<double>(value), direction == ShiftDirection::left ? bits : -bits);
    return support::round_to_i32(direction == ShiftDirection::left ? shifted : std::trunc(shifted));
}

void move_gauge_row(CoreTables& tables, int old_id, int new_id) {
    if (old_id == new_id) {
        return;
    }
    tables.gauges.at(static_cast<std::size_t>(new_id)) = tables.gauges.at(static_cast<std::size_t>(old_id));
    tables.gauges.at(static_cast<std::size_t>(old_id)) = GaugeRow{};
}

void derive_yoke_axes(YokeSettings& settings) {
    const auto derive = [](std::int16_t minimum, std::int16_t stored_maximum) {
        YokeAxis axis;
        axis.minimum = minimum;
        axis.maximum = stored_maximum < 500 ? std::int16_t{1023} : stored_maximum;
        // NOTE: both wrap at 16 bits. A nonsensical calibration must not keep the rest of a configuration from loading.
        axis.range = static_cast<std::int16_t>(axis.maximum - axis.minimum);
        axis.scale = 1024.0 / axis.range;
        axis.centre = static_cast<std::int16_t>(support::round_to_i32(axis.minimum + axis.range / 2.0));
        return axis;
    };
    const auto& stored = settings.YokeCalibration;
    settings.elevator_axis = derive(stored[kFirstAxisMinimum], stored[kFirstAxisMaximum]);
    settings.aileron_axis = derive(stored[kSecondAxisMinimum], stored[kSecondAxisMaximum]);
}

}  // namespace tables
