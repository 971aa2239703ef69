#pragma once

#include <cstdint>
#include <optional>

namespace run {

inline constexpr std::int16_t kUnsentCourse = -1;  // a course that no indicator can report

// What was last sent to and taken from the indicators of one VOR receiver. One set per receiver: the cockpit has one
// VOR1 and one VOR2.
struct VorMemory {
    std::optional<float> loc_needle;  // nothing sent yet in this run
    std::optional<float> slope_needle;
    std::optional<std::uint8_t> to_from;
    std::optional<std::uint8_t> slope_flag;
    std::int16_t course = kUnsentCourse;  // whole degrees

    // The values of the frames that this tick brings to every indicator of the receiver. The first indicator of the
    // list finds out whether there is something new.
    int first_index = -1;
    std::optional<int> loc_frame;
    std::optional<int> slope_frame;
    std::optional<int> flag_frame;
};

// What the navigation instruments remember beside their entries of the active list. Rebuilt with the list.
struct NavigationState {
    VorMemory vor1;
    VorMemory vor2;
    float gyro_drift = 0;                         // degrees, last written
    std::optional<std::int16_t> first_rmi_flags;  // GaugePlate1 of the first radio-magnetic indicator of model 3
};

}  // namespace run
