#pragma once

#include <array>
#include <cstdint>

#include "tables/yoke_settings.h"

namespace yoke {

inline constexpr int kProfilePoints = 11;

// The coordinates of the curve editor: airspeed from 800 (0) to 10800 (the maximum), force from 5500 (0 percent) down
// to 500 (100 percent).
inline constexpr int kCurveLeft = 800;
inline constexpr int kCurveRight = 10800;
inline constexpr int kCurveTop = 500;
inline constexpr int kCurveBottom = 5500;
inline constexpr std::size_t kMaximumAirspeedRow = 12;  // its X is the maximum airspeed in hundreds of knots
inline constexpr int kHighestMaximumAirspeed = 20;

// Percent of force over airspeed, as a yoke uses it: a line through eleven points.
struct ForceProfile {
    std::array<std::int16_t, kProfilePoints> ProfileAirspeed{};  // knots
    std::array<float, kProfilePoints> ProfileForce{};            // percent
};

// A curve of the editor in knots and percent. An airspeed that fits no 16-bit number counts as 0.
ForceProfile profile_of(const tables::ForceCurve& curve);

// The percentage at an airspeed in knots. Between two points less than two knots apart the lower one holds; beyond the
// last point its line is carried on.
float profile_force(const ForceProfile& profile, double airspeed);

}  // namespace yoke
