#pragma once

#include <cmath>
#include <cstdlib>
#include <map>
#include <string>

#include "tests/support/rig.h"

// What the instruments of the demo must show, by the simulator's offsets alone.
namespace rig {

using simhost::OffsetSpace;

inline constexpr double kTurn16 = 360.0 / 65536;
inline constexpr double kTurn32 = 360.0 / 4294967296.0;

// What a device shows, by name; flags are numbers 0 and 1.
struct Picture : bench::StateSink {
    std::map<std::string, double> numbers;
    std::map<std::string, std::string> texts;
    void number(std::string_view name, double value) override { numbers[std::string(name)] = value; }
    void text(std::string_view name, std::string_view value) override { texts[std::string(name)] = value; }
    void flag(std::string_view name, bool value) override { numbers[std::string(name)] = value ? 1 : 0; }

    // A text reads as its number, blanks and dashes as -1.
    double value(const std::string& name) const {
        if (const auto found = numbers.find(name); found != numbers.end()) {
            return found->second;
        }
        const std::string& text = texts.at(name);
        return text.find_first_of("0123456789") == std::string::npos ? -1.0 : std::atof(text.c_str());
    }
};

enum class Scale { straight, round };  // round: 0 follows 360

// One value of an instrument of the demo, and what the simulator's offsets say about it.
struct Expectation {
    int id;
    const char* state;
    double tolerance;
    Scale scale;
    double (*expected)(const OffsetSpace& sim);
};

inline double bcd(std::uint16_t word) {
    return simhost::bcd_number(word);
}
inline double megahertz(std::uint16_t word) {
    return 100 + bcd(word) / 100;
}
inline double byte_value(std::uint8_t byte) {
    return byte > 127 ? byte - 255.0 : byte;
}
inline double heading(const OffsetSpace& sim) {
    return sim.read_i32(0x580) * kTurn32;
}
inline double inches(const OffsetSpace& sim) {
    return sim.read_u16(0x330) / 541.76;
}
// A bearing counts while its bit of the radio flags is set, else the needle is parked.
inline bool good(const OffsetSpace& sim, int bit) {
    return (sim.read_u16(0x3300) & (1 << bit)) != 0;
}
template <std::uint32_t kOffset>
double flag_at(const OffsetSpace& sim) {
    return sim.read_u32(kOffset) != 0 ? 1 : 0;
}
template <std::uint32_t kOffset>
double marker_at(const OffsetSpace& sim) {
    return sim.read_u16(kOffset) != 0 ? 1 : 0;
}
template <std::uint32_t kOffset>
double tuned_at(const OffsetSpace& sim) {
    return megahertz(sim.read_u16(kOffset));
}
template <std::uint32_t kOffset>
double kilohertz_at(const OffsetSpace& sim) {
    return bcd(sim.read_u16(kOffset));
}
template <std::uint32_t kOffset>
double word_at(const OffsetSpace& sim) {
    return sim.read_u16(kOffset);
}
template <std::uint32_t kOffset>
double needle_at(const OffsetSpace& sim) {
    return byte_value(sim.read_u8(kOffset)) / 127;
}
// Displays give one decimal below 100 and none above.
template <std::uint32_t kOffset>
double tenths_at(const OffsetSpace& sim) {
    const double value = sim.read_i16(kOffset) / 10.0;
    return value < 0 ? -1 : value > 99.9 ? std::nearbyint(value) : value;
}

inline const Expectation kExpectations[] = {
    {1, "altitude", 1, Scale::straight, [](const OffsetSpace& sim) { return sim.read_i32(0x3324) * 1.0; }},
    {1, "pressure", 0.011, Scale::straight, inches},
    {2, "altitude", 1, Scale::straight, [](const OffsetSpace& sim) { return sim.read_i32(0x3324) * 1.0; }},
    {2, "pressure", 1, Scale::straight, [](const OffsetSpace& sim) { return inches(sim) * 33.86; }},
    {3, "bank", 0.09, Scale::straight, [](const OffsetSpace& sim) { return -sim.read_i32(0x57C) * kTurn32; }},
    {3, "pitch", 0.04, Scale::straight, [](const OffsetSpace& sim) { return -sim.read_i32(0x578) * kTurn32; }},
    {4, "card", 0.09, Scale::round, heading},
    {4, "bug", 0.09, Scale::round, [](const OffsetSpace& sim) { return sim.read_u16(0x7CC) * kTurn16; }},
    {5, "loc", 0.005, Scale::straight, needle_at<0xC48>},
    {5, "slope", 0.005, Scale::straight, needle_at<0xC49>},
    {5, "toFrom", 0, Scale::straight, [](const OffsetSpace& sim) { return sim.read_u8(0xC4B) * 1.0; }},
    {5, "slopeValid", 0, Scale::straight, [](const OffsetSpace& sim) { return sim.read_u8(0xC4C) != 0 ? 1.0 : 0.0; }},
    {5, "course", 0.5, Scale::round, word_at<0xC4E>},
    {6, "loc", 0.005, Scale::straight, needle_at<0xC59>},
    {6, "toFrom", 0, Scale::straight, [](const OffsetSpace& sim) { return sim.read_u8(0xC5B) * 1.0; }},
    {6, "course", 0.5, Scale::round, word_at<0xC5E>},
    {7, "needle", 0.09, Scale::round, [](const OffsetSpace& sim) { return sim.read_i16(0xC6A) * kTurn16; }},
    {7, "card", 0.5, Scale::round, word_at<0xC6C>},
    {8, "card", 0.09, Scale::round, heading},
    {8, "needle1", 0.09, Scale::round, word_at<0xC56>},
    {8, "needle2", 0.09, Scale::round, word_at<0xC5C>},
    {8, "dme1", 0.06, Scale::straight, tenths_at<0x300>},
    {8, "dme2", 0.06, Scale::straight, tenths_at<0x306>},
    {9, "card", 0.09, Scale::round, [](const OffsetSpace& sim) { return sim.read_f64(0x2CC); }},
    {9, "parked1", 0, Scale::straight, [](const OffsetSpace& sim) { return good(sim, 1) ? 0.0 : 1.0; }},
    {9, "parked2", 0, Scale::straight, [](const OffsetSpace& sim) { return good(sim, 2) ? 0.0 : 1.0; }},
    {10, "hour", 0, Scale::straight, [](const OffsetSpace& sim) { return sim.read_u8(0x238) * 1.0; }},
    {11, "upper", 0.11, Scale::straight, [](const OffsetSpace& sim) { return sim.read_f64(0x2840); }},
    {12, "active", 0.02, Scale::straight, tuned_at<0x34E>},
    {12, "standby", 0.02, Scale::straight, tuned_at<0x311A>},
    {13, "active", 0.02, Scale::straight, tuned_at<0x350>},
    {13, "standby", 0.02, Scale::straight, tuned_at<0x311E>},
    {14, "active", 0.02, Scale::straight, kilohertz_at<0x34C>},
    {15, "comActive", 0.02, Scale::straight, tuned_at<0x3118>},
    {15, "comStandby", 0.02, Scale::straight, tuned_at<0x311C>},
    {15, "navActive", 0.02, Scale::straight, tuned_at<0x352>},
    {15, "navStandby", 0.02, Scale::straight, tuned_at<0x3120>},
    {16, "active", 0.02, Scale::straight, kilohertz_at<0x2D4>},
    {31, "code", 0, Scale::straight, kilohertz_at<0x354>},
    {31, "flightLevel", 0, Scale::straight,
     [](const OffsetSpace& sim) { return std::floor(sim.read_i32(0x3324) / 100.0); }},
    {32, "distance", 0.06, Scale::straight, tenths_at<0x300>},
    {32, "speed", 0.06, Scale::straight, tenths_at<0x302>},
    {33, "distance", 0.06, Scale::straight, tenths_at<0x300>},
    {33, "speed", 0.6, Scale::straight, tenths_at<0x302>},
    {34, "ap", 0, Scale::straight, flag_at<0x7BC>},
    {34, "hdg", 0, Scale::straight, flag_at<0x7C8>},
    {34, "rol", 0, Scale::straight, flag_at<0x7C0>},
    {34, "nav", 0, Scale::straight, flag_at<0x7C4>},
    {34, "apr", 0, Scale::straight, flag_at<0x800>},
    {34, "alt", 0, Scale::straight, flag_at<0x7D0>},
    {34, "verticalSpeed", 50, Scale::straight, [](const OffsetSpace& sim) { return sim.read_i16(0x7F2) * 1.0; }},
    {35, "outer", 0, Scale::straight, marker_at<0xBB0>},
    {35, "middle", 0, Scale::straight, marker_at<0xBAE>},
    {35, "inner", 0, Scale::straight, marker_at<0xBAC>},
    {36, "wheel", 3, Scale::straight, [](const OffsetSpace& sim) { return 512 + sim.read_i16(0xBC0) * 512.0 / 16383; }},
};

// The needles of the engine cluster on the gauge bus, and the functions and plates that its row in the demo names.
struct ClusterNeedle {
    const char* state;
    int function;
    int sequence_number;
    int plate;
};
inline constexpr ClusterNeedle kClusterNeedles[] = {
    {"fuelLeft", 46, 1, 5},        {"fuelRight", 46, 2, 6},   {"egt", 40, 1, 9},     {"fuelFlow", 41, 1, 4},
    {"oilTemperature", 42, 1, 17}, {"oilPressure", 43, 1, 8}, {"vacuum", 44, 1, 10}, {"ampere", 45, 1, 11},
};

// How far a device is from what is expected of it.
inline double deviation(const Expectation& row, const Picture& picture, const OffsetSpace& sim) {
    const double off = picture.value(row.state) - row.expected(sim);
    return std::abs(row.scale == Scale::round ? std::remainder(off, 360.0) : off);
}

}  // namespace rig
