#pragma once

#include <cstdint>

#include "simhost/world.h"

namespace simhost {

// The radio stack as its knobs are set. Frequencies are the simulator's own BCD words: COM and NAV 0x2345 is 123.45
// MHz; an ADF has a main word 0x0370 and an extended word 0x0105, which together are 1370.5 kHz.
struct Radios {
    std::uint16_t com1_active = 0x1835;
    std::uint16_t com1_standby = 0x2150;
    std::uint16_t com2_active = 0x2480;
    std::uint16_t com2_standby = 0x2290;
    std::uint16_t nav1_active = 0x1245;
    std::uint16_t nav1_standby = 0x1110;
    std::uint16_t nav2_active = 0x1580;
    std::uint16_t nav2_standby = 0x1245;
    std::uint16_t adf1_main = 0x0352;
    std::uint16_t adf1_extended = 0;
    std::uint16_t adf2_main = 0x0418;
    std::uint16_t adf2_extended = 0;
    std::uint16_t adf1_standby_main = 0x0418;
    std::uint16_t adf1_standby_extended = 0;
    double obs1_deg = 252;
    double obs2_deg = 90;
    double adf_card_deg = 0;
    std::uint16_t transponder = 0x7000;
    std::uint8_t transponder_standby = 1;  // 1 standby, 0 on
    std::uint8_t transponder_ident = 0;
    double ident_left_s = 0;
    std::uint8_t sound_selector = 0x80 | 0x10;
    std::uint16_t dme_selected = 1;

    // Bits of a client's swap request: 8 COM1, 4 COM2, 2 NAV1, 1 NAV2.
    void swap(std::uint8_t request);
    void step(double dt_s);
};

// What one NAV radio makes of its station.
struct NavReceiver {
    const Station* station = nullptr;
    bool localizer = false;
    bool glide_slope = false;
    bool has_dme = false;
    std::uint8_t to_from = 0;        // 0 no signal, 1 to, 2 from
    double needle = 0;               // -127 (fly left) .. 127 (fly right), moving like a needle
    double slope_needle = 0;         // -127 (fly up) .. 127 (fly down)
    double deviation_deg = 0;        // fly right is positive; not limited to the scale
    double slope_deviation_deg = 0;  // fly up is positive
    double radial_deg = 0;
    double relative_bearing_deg = 0;
    double signal = 0;  // 0..256

    double dme_nm = kNoDme;
    double dme_knots = 0;
    double dme_seconds = 0;

    static constexpr double kNoDme = -1.0;
    bool good() const { return station != nullptr; }
};

struct AdfReceiver {
    const Station* station = nullptr;
    double relative_bearing_deg = 0;  // -180..180, moving like a needle
    double signal = 0;
    bool good() const { return station != nullptr; }
};

// Where the receivers are.
struct AntennaState {
    Place place;
    double height_m = 0;
    double true_heading_deg = 0;
    double track_deg = 0;
    double ground_speed_mps = 0;
    bool powered = false;
};

// All receivers of the aircraft.
struct Navigation {
    NavReceiver nav1;
    NavReceiver nav2;
    AdfReceiver adf1;
    AdfReceiver adf2;
    Marker marker = Marker::none;

    void step(const Radios& radios, const AntennaState& antenna, double dt_s);
    // Good-signal and station flags of the radio status word.
    std::uint16_t radio_flags() const;
};

// The four BCD digits of a word as a number; a nibble above 9 counts as it is.
int bcd_number(std::uint16_t word);
// The number's last four digits as a BCD word.
std::uint16_t bcd_word(int number);

}  // namespace simhost
