#pragma once

#include <array>
#include <cstdint>

#include "run/active_gauges.h"

namespace run {

inline constexpr float kUnsentNeedle = 127;        // a VOR needle memory at run start
inline constexpr std::uint8_t kUnsentFlag = 15;    // a VOR flag memory at run start
inline constexpr std::int16_t kUnsentCourse = -1;  // a course that no indicator can report

// What was last sent to and taken from the indicator of one VOR receiver. One set per receiver: the cockpit has one
// VOR1 and one VOR2.
struct VorMemory {
    float loc_needle = kUnsentNeedle;
    float slope_needle = kUnsentNeedle;
    std::uint8_t to_from = kUnsentFlag;
    std::uint8_t slope_flag = kUnsentFlag;
    std::int16_t course = kUnsentCourse;  // whole degrees
};

// What the navigation instruments remember beside their entries of the active list. Rebuilt with the list.
struct NavigationState {
    VorMemory vor1;
    VorMemory vor2;
    float gyro_drift = 0;  // degrees, last written
    std::int16_t RmiPortDme1 = kNoSimPort;
    std::int16_t RmiPortDme2 = kNoSimPort;
    float RmiDme1Seen = 0;
    float RmiDme2Seen = 0;
};

}  // namespace run
