#include <cmath>

#include "simhost/offset_map.h"
#include "simhost/units.h"

// Radios, receivers, autopilot, events and buttons.
namespace simhost {

namespace {

using A = Aircraft;
using K = OffsetKind;
using G = ClientGroup;

constexpr double kTurn16 = 65536.0 / 360.0;

double flag(bool on) {
    return on ? 1.0 : 0.0;
}
int whole(double value) {
    return static_cast<int>(std::clamp(std::round(value), -2147483647.0, 2147483647.0));
}

template <std::uint16_t Radios::*kWord>
double word(const A& a) {
    return static_cast<double>(a.radios.*kWord);
}
template <std::uint16_t Radios::*kWord>
void put_word(A& a, double value) {
    a.radios.*kWord = static_cast<std::uint16_t>(whole(std::clamp(value, 0.0, 65535.0)));
    a.hands.touch(G::radios);
}
template <std::uint8_t Radios::*kByte>
double byte(const A& a) {
    return static_cast<double>(a.radios.*kByte);
}
template <std::uint8_t Radios::*kByte>
void put_byte(A& a, double value) {
    a.radios.*kByte = static_cast<std::uint8_t>(whole(std::clamp(value, 0.0, 255.0)));
    a.hands.touch(G::radios);
}
template <double Radios::*kAngle>
double angle(const A& a) {
    return a.radios.*kAngle;
}
template <double Radios::*kAngle>
void put_angle(A& a, double value) {
    a.radios.*kAngle = wrap360(value);
    a.hands.touch(G::courses);
}
template <bool Autopilot::*kMode>
double mode(const A& a) {
    return flag(a.autopilot.*kMode);
}
template <bool Autopilot::*kMode>
void put_mode(A& a, double value) {
    a.autopilot.*kMode = value != 0;
    a.hands.touch(G::autopilot);
}
template <double Autopilot::*kValue>
double value_of(const A& a) {
    return a.autopilot.*kValue;
}
template <double Autopilot::*kValue>
void put_value(A& a, double value) {
    a.autopilot.*kValue = value;
    a.hands.touch(G::autopilot);
}

// A heading indicator writes its bug over and over, moved or not. Only the one that is turned while the autopilot
// follows it flies the aircraft.
void put_heading_bug(A& a, double value) {
    constexpr double kTurnedDeg = 0.3;
    const double bug_deg = wrap360(value);
    const bool turned =
        a.hands.holds(G::heading_bug) && std::abs(wrap180(bug_deg - a.autopilot.heading_bug_deg)) > kTurnedDeg;
    if (turned && a.autopilot.heading_hold) {
        a.hands.touch(G::autopilot);
    }
    a.hands.touch(G::heading_bug);
    a.autopilot.heading_bug_deg = bug_deg;
}
// A unit tells that its button is not pressed over and over; an ident that is on its way ends by itself.
void put_ident(A& a, double value) {
    if (value != 0) {
        a.radios.transponder_ident = 1;
        a.hands.touch(G::radios);
    }
}

double marker(const A& a, Marker marker) {
    return flag(a.navigation.marker == marker);
}
// Bearings that the interface gives in whole degrees below 360.
double whole_bearing(double bearing_deg) {
    return std::floor(wrap360(bearing_deg));
}

constexpr OffsetRow kRows[] = {
    {0x02D4, K::u16, 1, "adf2", "bcd", word<&Radios::adf2_main>, put_word<&Radios::adf2_main>},
    {0x02D6, K::u16, 1, "adf2_extended", "bcd", word<&Radios::adf2_extended>, put_word<&Radios::adf2_extended>},
    {0x02D8, K::i16, kTurn16, "adf2_bearing", "deg", [](const A& a) { return a.navigation.adf2.relative_bearing_deg; },
     nullptr},
    {0x0300, K::i16, 10, "dme1_distance", "nm", [](const A& a) { return a.navigation.nav1.dme_nm; }, nullptr},
    {0x0302, K::i16, 10, "dme1_speed", "kt", [](const A& a) { return a.navigation.nav1.dme_knots; }, nullptr},
    {0x0304, K::i16, 10, "dme1_time", "s", [](const A& a) { return a.navigation.nav1.dme_seconds; }, nullptr},
    {0x0306, K::i16, 10, "dme2_distance", "nm", [](const A& a) { return a.navigation.nav2.dme_nm; }, nullptr},
    {0x0308, K::i16, 10, "dme2_speed", "kt", [](const A& a) { return a.navigation.nav2.dme_knots; }, nullptr},
    {0x030A, K::i16, 10, "dme2_time", "s", [](const A& a) { return a.navigation.nav2.dme_seconds; }, nullptr},
    {0x034C, K::u16, 1, "adf1", "bcd", word<&Radios::adf1_main>, put_word<&Radios::adf1_main>},
    {0x034E, K::u16, 1, "com1", "bcd", word<&Radios::com1_active>, put_word<&Radios::com1_active>},
    {0x0350, K::u16, 1, "nav1", "bcd", word<&Radios::nav1_active>, put_word<&Radios::nav1_active>},
    {0x0352, K::u16, 1, "nav2", "bcd", word<&Radios::nav2_active>, put_word<&Radios::nav2_active>},
    {0x0354, K::u16, 1, "transponder", "bcd", word<&Radios::transponder>, put_word<&Radios::transponder>},
    {0x0356, K::u16, 1, "adf1_extended", "bcd", word<&Radios::adf1_extended>, put_word<&Radios::adf1_extended>},
    {0x0378, K::u16, 1, "dme_selected", "", word<&Radios::dme_selected>, put_word<&Radios::dme_selected>},

    {0x07BC, K::i32, 1, "ap_master", "", mode<&Autopilot::master>, put_mode<&Autopilot::master>},
    {0x07C0, K::i32, 1, "ap_wing_leveler", "", mode<&Autopilot::wing_leveler>, put_mode<&Autopilot::wing_leveler>},
    {0x07C4, K::i32, 1, "ap_nav", "", mode<&Autopilot::nav_hold>, put_mode<&Autopilot::nav_hold>},
    {0x07C8, K::i32, 1, "ap_heading", "", mode<&Autopilot::heading_hold>, put_mode<&Autopilot::heading_hold>},
    {0x07CC, K::u16, kTurn16, "heading_bug", "deg", value_of<&Autopilot::heading_bug_deg>,
     put_heading_bug},
    {0x07D0, K::i32, 1, "ap_altitude", "", mode<&Autopilot::altitude_hold>, put_mode<&Autopilot::altitude_hold>},
    {0x07D4, K::i32, 65536, "ap_altitude_value", "m", value_of<&Autopilot::altitude_m>, put_value<&Autopilot::altitude_m>},
    {0x07D8, K::i32, 1, "ap_attitude", "", mode<&Autopilot::attitude_hold>, put_mode<&Autopilot::attitude_hold>},
    {0x07E2, K::u16, 1, "ap_airspeed_value", "kt", value_of<&Autopilot::airspeed_knots>,
     put_value<&Autopilot::airspeed_knots>},
    {0x07EC, K::i32, 1, "ap_vertical_speed", "", mode<&Autopilot::vertical_speed_hold>,
     put_mode<&Autopilot::vertical_speed_hold>},
    // An autopilot unit proposes a climb whenever this is 0, which takes nothing out of the pilot's hands.
    {0x07F2, K::i16, 1, "ap_vertical_speed_value", "ft/min", value_of<&Autopilot::vertical_speed_fpm>,
     [](A& a, double v) { a.autopilot.vertical_speed_fpm = v; }},
    {0x07FC, K::i32, 1, "ap_glide_slope", "", mode<&Autopilot::glide_slope_hold>, put_mode<&Autopilot::glide_slope_hold>},
    {0x0800, K::i32, 1, "ap_approach", "", mode<&Autopilot::approach_hold>, put_mode<&Autopilot::approach_hold>},
    {0x0804, K::i32, 1, "ap_back_course", "", mode<&Autopilot::back_course_hold>, put_mode<&Autopilot::back_course_hold>},
    {0x0808, K::i32, 1, "ap_yaw_damper", "", mode<&Autopilot::yaw_damper>, put_mode<&Autopilot::yaw_damper>},
    {0x2EE0, K::i32, 1, "flight_director", "", mode<&Autopilot::flight_director>, put_mode<&Autopilot::flight_director>},
    {0x2EE8, K::f64, 1, "director_pitch", "deg", [](const A& a) { return a.autopilot.director_pitch_deg(); }, nullptr},
    {0x2EF0, K::f64, 1, "director_bank", "deg", [](const A& a) { return a.autopilot.director_bank_deg(); }, nullptr},

    {0x0BAC, K::u16, 1, "inner_marker", "", [](const A& a) { return marker(a, Marker::inner); }, nullptr},
    {0x0BAE, K::u16, 1, "middle_marker", "", [](const A& a) { return marker(a, Marker::middle); }, nullptr},
    {0x0BB0, K::u16, 1, "outer_marker", "", [](const A& a) { return marker(a, Marker::outer); }, nullptr},
    {0x0C48, K::i8, 1, "nav1_needle", "", [](const A& a) { return a.navigation.nav1.needle; }, nullptr},
    {0x0C49, K::i8, 1, "nav1_slope_needle", "", [](const A& a) { return a.navigation.nav1.slope_needle; }, nullptr},
    {0x0C4B, K::u8, 1, "nav1_to_from", "", [](const A& a) { return static_cast<double>(a.navigation.nav1.to_from); }, nullptr},
    {0x0C4C, K::u8, 1, "nav1_slope_signal", "", [](const A& a) { return flag(a.navigation.nav1.glide_slope); }, nullptr},
    {0x0C4E, K::u16, 1, "obs1", "deg", angle<&Radios::obs1_deg>, put_angle<&Radios::obs1_deg>},
    {0x0C50, K::u16, kTurn16, "nav1_radial", "deg", [](const A& a) { return a.navigation.nav1.radial_deg; }, nullptr},
    {0x0C52, K::i32, 1, "nav1_signal", "", [](const A& a) { return a.navigation.nav1.signal; }, nullptr},
    {0x0C56, K::u16, 1, "nav1_bearing", "deg",
     [](const A& a) { return whole_bearing(a.navigation.nav1.relative_bearing_deg); }, nullptr},
    {0x0C59, K::i8, 1, "nav2_needle", "", [](const A& a) { return a.navigation.nav2.needle; }, nullptr},
    {0x0C5B, K::u8, 1, "nav2_to_from", "", [](const A& a) { return static_cast<double>(a.navigation.nav2.to_from); }, nullptr},
    {0x0C5C, K::u16, 1, "nav2_bearing", "deg",
     [](const A& a) { return whole_bearing(a.navigation.nav2.relative_bearing_deg); }, nullptr},
    {0x0C5E, K::u16, 1, "obs2", "deg", angle<&Radios::obs2_deg>, put_angle<&Radios::obs2_deg>},
    {0x0C60, K::u16, kTurn16, "nav2_radial", "deg", [](const A& a) { return a.navigation.nav2.radial_deg; }, nullptr},
    {0x0C62, K::i32, 1, "nav2_signal", "", [](const A& a) { return a.navigation.nav2.signal; }, nullptr},
    {0x0C6A, K::i16, kTurn16, "adf1_bearing", "deg", [](const A& a) { return a.navigation.adf1.relative_bearing_deg; },
     nullptr},
    {0x0C6C, K::u16, 1, "adf_card", "deg", angle<&Radios::adf_card_deg>, put_angle<&Radios::adf_card_deg>},
    {0x0C6E, K::i8, 1, "nav2_slope_needle", "", [](const A& a) { return a.navigation.nav2.slope_needle; }, nullptr},
    {0x0C6F, K::u8, 1, "nav2_slope_signal", "", [](const A& a) { return flag(a.navigation.nav2.glide_slope); }, nullptr},
    {0x2AAC, K::f32, 1, "nav1_needle_fine", "", [](const A& a) { return a.navigation.nav1.needle; }, nullptr},
    {0x2AB0, K::f32, 1, "nav1_slope_needle_fine", "", [](const A& a) { return a.navigation.nav1.slope_needle; }, nullptr},
    {0x2AB4, K::f32, 1, "nav2_needle_fine", "", [](const A& a) { return a.navigation.nav2.needle; }, nullptr},
    {0x2AB8, K::f32, 1, "nav2_slope_needle_fine", "", [](const A& a) { return a.navigation.nav2.slope_needle; }, nullptr},

    // A control event goes off when its number is written; its parameter stands ready by then.
    {0x3110, K::i32, 1, "control_event", "", nullptr, [](A& a, double v) { a.take_control_event(whole(v)); }},
    {0x3114, K::i32, 1, "control_parameter", "", nullptr, [](A& a, double v) { a.control_parameter = whole(v); }},
    {0x3118, K::u16, 1, "com2", "bcd", word<&Radios::com2_active>, put_word<&Radios::com2_active>},
    {0x311A, K::u16, 1, "com1_standby", "bcd", word<&Radios::com1_standby>, put_word<&Radios::com1_standby>},
    {0x311C, K::u16, 1, "com2_standby", "bcd", word<&Radios::com2_standby>, put_word<&Radios::com2_standby>},
    {0x311E, K::u16, 1, "nav1_standby", "bcd", word<&Radios::nav1_standby>, put_word<&Radios::nav1_standby>},
    {0x3120, K::u16, 1, "nav2_standby", "bcd", word<&Radios::nav2_standby>, put_word<&Radios::nav2_standby>},
    {0x3122, K::u8, 1, "sound_selector", "bits", byte<&Radios::sound_selector>, put_byte<&Radios::sound_selector>},
    {0x3123, K::u8, 1, "radio_swap", "bits", nullptr,
     [](A& a, double v) {
         a.radios.swap(static_cast<std::uint8_t>(whole(v)));
         a.hands.touch(G::radios);
     }},
    {0x3300, K::u16, 1, "radio_flags", "bits", [](const A& a) { return static_cast<double>(a.navigation.radio_flags()); }, nullptr},
    {0x66C0, K::u16, 1, "adf1_standby", "bcd", word<&Radios::adf1_standby_main>, put_word<&Radios::adf1_standby_main>},
    {0x66C4, K::u16, 1, "adf1_standby_extended", "bcd", word<&Radios::adf1_standby_extended>,
     put_word<&Radios::adf1_standby_extended>},
    {0x7B91, K::u8, 1, "transponder_standby", "", byte<&Radios::transponder_standby>,
     put_byte<&Radios::transponder_standby>},
    {0x7B93, K::u8, 1, "transponder_ident", "", byte<&Radios::transponder_ident>, put_ident},
};

}  // namespace

std::span<const OffsetRow> radio_offset_rows() {
    return kRows;
}

}  // namespace simhost
