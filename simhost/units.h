#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

namespace simhost {

inline constexpr double kMetresPerFoot = 0.3048;
inline constexpr double kMpsPerKnot = 1852.0 / 3600.0;
inline constexpr double kMpsPerFpm = kMetresPerFoot / 60.0;
inline constexpr double kMetresPerNm = 1852.0;
inline constexpr double kGravity = 9.80665;
inline constexpr double kMillibarPerInHg = 33.8639;

constexpr double radians(double angle_deg) {
    return angle_deg * std::numbers::pi / 180.0;
}
constexpr double degrees(double angle_rad) {
    return angle_rad * 180.0 / std::numbers::pi;
}

// An angle in degrees brought into 0 (included) .. 360 (excluded).
inline double wrap360(double angle_deg) {
    const double wrapped = std::fmod(angle_deg, 360.0);
    return wrapped < 0 ? std::fmod(wrapped + 360.0, 360.0) : wrapped;
}

// An angle in degrees brought into -180 (included) .. 180 (excluded).
inline double wrap180(double angle_deg) {
    return wrap360(angle_deg + 180.0) - 180.0;
}

// The value moved towards the target by at most `step`.
inline double approach(double value, double target, double step) {
    return value < target ? std::min(value + step, target) : std::max(value - step, target);
}

// The value after `dt_s` of a first-order lag towards the target.
inline double lag(double value, double target, double time_constant_s, double dt_s) {
    return value + (target - value) * (1.0 - std::exp(-dt_s / time_constant_s));
}

// The same for an angle in degrees, the short way round; the result lies in 0..360.
inline double lag_angle(double value_deg, double target_deg, double time_constant_s, double dt_s) {
    return wrap360(value_deg + lag(0.0, wrap180(target_deg - value_deg), time_constant_s, dt_s));
}

}  // namespace simhost
