#include "yoke/force_profile.h"

#include <cmath>

#include "support/rounding.h"

namespace yoke {

namespace {

constexpr double kCurveWidth = kCurveRight - kCurveLeft;
constexpr double kCurveHeight = kCurveBottom - kCurveTop;
constexpr double kKnotsPerStep = 100;

std::int16_t knots(double value) {
    const double rounded = support::round_half_even(value);
    return rounded >= INT16_MIN && rounded <= INT16_MAX ? static_cast<std::int16_t>(rounded) : std::int16_t{0};
}

}  // namespace

ForceProfile profile_of(const tables::ForceCurve& curve) {
    ForceProfile profile;
    const double maximum_airspeed = static_cast<double>(curve[kMaximumAirspeedRow].airspeed) * kKnotsPerStep;
    for (std::size_t point = 0; point < profile.ProfileForce.size(); ++point) {
        const double x = curve[point].airspeed;
        const double y = curve[point].force;
        profile.ProfileAirspeed[point] = knots((x - kCurveLeft) / kCurveWidth * maximum_airspeed);
        profile.ProfileForce[point] = static_cast<float>((kCurveBottom - y) / kCurveHeight * 100);
    }
    return profile;
}

float profile_force(const ForceProfile& profile, double airspeed) {
    std::size_t upper = 1;
    while (upper + 1 < profile.ProfileAirspeed.size() && profile.ProfileAirspeed[upper] < airspeed) {
        ++upper;
    }
    const int span = profile.ProfileAirspeed[upper] - profile.ProfileAirspeed[upper - 1];
    const double share = span > 1 ? (airspeed - profile.ProfileAirspeed[upper - 1]) / span : 0;
    const double lower_force = profile.ProfileForce[upper - 1];
    return static_cast<float>(lower_force + (profile.ProfileForce[upper] - lower_force) * share);
}

}  // namespace yoke
