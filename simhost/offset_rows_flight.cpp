#include <cmath>

#include "simhost/offset_map.h"
#include "simhost/units.h"

// Position, attitude, speeds, forces, weather and time.
namespace simhost {

namespace {

using A = Aircraft;
using K = OffsetKind;

constexpr double kHalfTurn16 = 65536.0 / 360.0;       // a turn in 16 bits
constexpr double kHalfTurn32 = 4294967296.0 / 360.0;  // a turn in 32 bits
constexpr double kLatitudeUnits = 10001750.0 / 90.0;  // metres of the meridian
constexpr double kFeetPerMetre = 1.0 / kMetresPerFoot;
constexpr double kFpmPerMps = 1.0 / kMpsPerFpm;
constexpr double kKnotsPerMps = 1.0 / kMpsPerKnot;

double flag(bool on) {
    return on ? 1.0 : 0.0;
}
int whole(double value) {
    return static_cast<int>(std::clamp(std::round(value), -100000.0, 100000.0));
}

// Acceleration over ground along the aircraft's axes: what is felt less the weight, feet per second squared.
double sideways(const A& a) {
    const double weight =
        kGravity * std::sin(radians(a.airframe.bank_deg())) * std::cos(radians(a.airframe.pitch_deg()));
    return (a.airframe.lateral_acceleration() + weight) * kFeetPerMetre;
}
double upward(const A& a) {
    const double weight =
        kGravity * std::cos(radians(a.airframe.bank_deg())) * std::cos(radians(a.airframe.pitch_deg()));
    return (a.airframe.normal_acceleration() - weight) * kFeetPerMetre;
}
double forward(const A& a) {
    return (a.airframe.forward_acceleration() - kGravity * std::sin(radians(a.airframe.pitch_deg()))) * kFeetPerMetre;
}

void set_altimeter(A& a, double millibar) {
    a.instruments.altimeter_setting_mb = std::clamp(millibar, 800.0, 1100.0);
    a.hands.touch(ClientGroup::altimeter);
}
void set_drift(A& a, double drift_deg) {
    a.instruments.gyro_drift_deg = wrap180(drift_deg);
    a.hands.touch(ClientGroup::gyro);
}

constexpr OffsetRow kRows[] = {
    {0x0020, K::i32, 256, "ground_altitude", "m", [](const A&) { return kFieldElevationM; }, nullptr},
    {0x0238, K::u8, 1, "hour", "h", [](const A& a) { return static_cast<double>(a.clock.hour()); },
     [](A& a, double v) { a.clock.set_hour(whole(v)); }},
    {0x0239, K::u8, 1, "minute", "min", [](const A& a) { return static_cast<double>(a.clock.minute()); },
     [](A& a, double v) { a.clock.set_minute(whole(v)); }},
    {0x023A, K::u8, 1, "second", "s", [](const A& a) { return static_cast<double>(a.clock.second()); },
     [](A& a, double v) { a.clock.set_second(whole(v)); }},
    {0x023B, K::u8, 1, "zulu_hour", "h", [](const A& a) { return static_cast<double>(a.clock.zulu_hour()); }, nullptr},
    {0x023C, K::u8, 1, "zulu_minute", "min", [](const A& a) { return static_cast<double>(a.clock.zulu_minute()); }, nullptr},
    {0x023E, K::u16, 1, "day_of_year", "d", [](const A& a) { return static_cast<double>(a.clock.day_of_year()); },
     [](A& a, double v) { a.clock.set_day_of_year(whole(v)); }},
    {0x0240, K::u16, 1, "year", "a", [](const A& a) { return static_cast<double>(a.clock.year()); },
     [](A& a, double v) { a.clock.set_year(whole(v)); }},
    {0x0246, K::i16, 1, "minutes_behind_zulu", "min", [](const A&) { return static_cast<double>(kLocalMinutesBehindZulu); }, nullptr},
    {0x0262, K::u16, 1, "pause_control", "", nullptr, [](A& a, double v) { a.paused = v != 0; }},
    {0x0264, K::u16, 1, "paused", "", [](const A& a) { return flag(a.paused); }, nullptr},

    {0x02A0, K::i16, kHalfTurn16, "magnetic_variation", "deg", [](const A&) { return kMagneticVariationDeg; }, nullptr},
    {0x02B4, K::i32, 65536 * kMpsPerKnot, "ground_speed", "kt",
     [](const A& a) { return a.airframe.ground_speed_mps() * kKnotsPerMps; }, nullptr},
    {0x02B8, K::i32, 128, "true_airspeed", "kt",
     [](const A& a) { return a.airframe.true_airspeed_mps() * kKnotsPerMps; }, nullptr},
    {0x02BC, K::i32, 128, "indicated_airspeed", "kt", [](const A& a) { return a.indicated_airspeed_knots(); }, nullptr},
    {0x02C4, K::i32, 128, "barber_pole", "kt", [](const A&) { return kNeverExceedKnots; }, nullptr},
    {0x02C8, K::i32, 256 * kMpsPerFpm, "vertical_speed", "ft/min",
     [](const A& a) { return a.instruments.variometer_mps() * kFpmPerMps; }, nullptr},
    {0x02CC, K::f64, 1, "compass", "deg", [](const A& a) { return a.instruments.compass_deg(); }, nullptr},
    {0x030C, K::i32, 256 * kMpsPerFpm, "touchdown_vertical_speed", "ft/min",
     [](const A& a) { return a.airframe.touchdown_climb_mps() * kFpmPerMps; }, nullptr},
    {0x0330, K::u16, 16, "altimeter_setting", "mb", [](const A& a) { return a.instruments.altimeter_setting_mb; },
     set_altimeter},
    {0x0366, K::u16, 1, "on_ground", "", [](const A& a) { return flag(a.airframe.on_ground()); }, nullptr},
    {0x036C, K::u8, 1, "stall_warning", "", [](const A& a) { return flag(a.airframe.stall_warning()); }, nullptr},
    {0x036D, K::u8, 1, "overspeed", "", [](const A& a) { return flag(a.overspeed); }, nullptr},
    {0x036E, K::i8, 127, "ball", "", [](const A& a) { return a.instruments.ball(); }, nullptr},
    {0x037C, K::i16, 512.0 / 3.0, "turn_rate", "deg/s", [](const A& a) { return a.instruments.turn_rate_deg(); }, nullptr},

    {0x0560, K::fixed32_32, kLatitudeUnits, "latitude", "deg",
     [](const A& a) { return latitude_deg(a.airframe.place()); }, nullptr},
    {0x0568, K::fixed32_32, kHalfTurn32, "longitude", "deg",
     [](const A& a) { return longitude_deg(a.airframe.place()); }, nullptr},
    {0x0570, K::fixed32_32, kMetresPerFoot, "altitude", "ft",
     [](const A& a) { return a.airframe.altitude_m() * kFeetPerMetre; }, nullptr},
    {0x0578, K::i32, -kHalfTurn32, "pitch", "deg", [](const A& a) { return a.airframe.pitch_deg(); }, nullptr},
    {0x057C, K::i32, -kHalfTurn32, "bank", "deg", [](const A& a) { return a.airframe.bank_deg(); }, nullptr},
    {0x0580, K::i32, kHalfTurn32, "heading", "deg", [](const A& a) { return wrap180(a.airframe.heading_deg()); }, nullptr},
    {0x0842, K::i16, -60 * kMpsPerFpm, "vertical_speed_metric", "ft/min",
     [](const A& a) { return a.airframe.climb_mps() * kFpmPerMps; }, nullptr},
    {0x0B4C, K::i16, 1, "ground_altitude_whole", "m", [](const A&) { return kFieldElevationM; }, nullptr},
    {0x0C3E, K::i16, kHalfTurn16, "gyro_drift", "deg", [](const A& a) { return a.instruments.gyro_drift_deg; }, set_drift},

    {0x0E8A, K::u16, 100, "visibility", "mile", [](const A&) { return 25.0; }, nullptr},
    {0x0E8C, K::i16, 256, "outside_temperature", "C",
     [](const A& a) { return a.weather.temperature_c(a.airframe.altitude_m()); }, nullptr},
    {0x0E8E, K::i16, 256, "dew_point", "C",
     [](const A& a) { return a.weather.dew_point_c(a.airframe.altitude_m()); }, nullptr},
    {0x0E90, K::u16, 1, "wind_speed", "kt", [](const A& a) { return a.weather.wind_speed_mps() * kKnotsPerMps; }, nullptr},
    {0x0E92, K::u16, kHalfTurn16, "wind_direction", "deg", [](const A& a) { return a.weather.wind_from_deg(); }, nullptr},
    {0x0EC6, K::u16, 16, "sea_level_pressure", "mb",
     [](const A& a) { return a.weather.sea_level_pressure_mb(); }, nullptr},

    {0x11BA, K::i16, 625, "g_force", "g", [](const A& a) { return a.airframe.load_factor(); }, nullptr},
    {0x11BE, K::i16, kHalfTurn16, "angle_of_attack", "deg",
     [](const A& a) { return degrees(a.airframe.angle_of_attack()); }, nullptr},
    {0x11C6, K::i16, 20480, "mach", "", [](const A& a) { return a.airframe.true_airspeed_mps() / 338.0; }, nullptr},
    {0x2B00, K::f64, 1, "gyro_heading", "deg", [](const A& a) { return a.instruments.gyro_heading_deg(); }, nullptr},
    {0x2ED0, K::f64, 1, "incidence", "rad", [](const A& a) { return a.airframe.angle_of_attack(); }, nullptr},
    {0x2ED8, K::f64, 1, "sideslip", "rad", [](const A& a) { return a.airframe.sideslip(); }, nullptr},
    {0x3060, K::f64, 1, "sideways_acceleration", "ft/s2", sideways, nullptr},
    {0x3068, K::f64, 1, "upward_acceleration", "ft/s2", upward, nullptr},
    {0x3070, K::f64, 1, "forward_acceleration", "ft/s2", forward, nullptr},
    {0x3090, K::f64, 1, "forward_velocity", "ft/s",
     [](const A& a) { return a.airframe.forward_speed_mps() * kFeetPerMetre; }, nullptr},
    {0x30A8, K::f64, 1, "pitch_rate", "rad/s", [](const A& a) { return a.airframe.pitch_rate(); }, nullptr},
    {0x30B0, K::f64, 1, "roll_rate", "rad/s", [](const A& a) { return a.airframe.roll_rate(); }, nullptr},
    {0x30B8, K::f64, 1, "yaw_rate", "rad/s", [](const A& a) { return a.airframe.yaw_rate(); }, nullptr},
    {0x31E4, K::i32, 65536 * kMetresPerFoot, "radio_altitude", "ft",
     [](const A& a) { return std::max(0.0, a.airframe.height_m()) * kFeetPerMetre; }, nullptr},
    {0x3324, K::i32, 1, "indicated_altitude", "ft",
     [](const A& a) {
         return a.weather.indicated_altitude_m(a.airframe.altitude_m(), a.instruments.altimeter_setting_mb) *
                kFeetPerMetre;
     },
     nullptr},
};

}  // namespace

std::span<const OffsetRow> flight_offset_rows() {
    return kRows;
}

}  // namespace simhost
