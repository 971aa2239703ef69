#include "simhost/weather.h"

#include <cmath>

#include "simhost/units.h"
#include "simhost/world.h"

namespace simhost {

namespace {

constexpr double kSeaLevelTemperatureC = 17.0;
constexpr double kLapseCPerM = 0.0065;
constexpr double kPressureExponent = 5.25588;
constexpr double kGasConstant = 287.053;
constexpr double kCalm = 0.04;  // some movement of the air is there on the calmest day

double standard_height_m(double pressure_mb, double base_mb) {
    return 288.15 / kLapseCPerM * (1.0 - std::pow(pressure_mb / base_mb, 1.0 / kPressureExponent));
}

double near_ground_factor(double height_m) {
    return std::clamp(0.35 + height_m / 90.0, 0.35, 1.0);
}

}  // namespace

double SeededNoise::next() {
    // splitmix64
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
    mixed ^= mixed >> 31;
    return static_cast<double>(mixed >> 11) / 4503599627370496.0 - 1.0;
}

void Weather::step(double turbulence, double dt_s) {
    time_s_ += dt_s;
    sea_level_pressure_mb_ = 1018.0 + 1.2 * std::sin(time_s_ * 2.0 * std::numbers::pi / 1700.0);
    turbulence_ = lag(turbulence_, std::max(turbulence, kCalm), 3.0, dt_s);
    // White noise through a first-order filter: gusts of the asked strength with a length of about a second and a half.
    const auto filter = [&](double& gust, double strength, double time_constant_s) {
        const double kick = strength * turbulence_ * std::sqrt(6.0 * dt_s / time_constant_s);
        gust += kick * noise_.next() - gust * dt_s / time_constant_s;
    };
    filter(gust_north_, 2.2, 1.6);
    filter(gust_east_, 2.2, 1.6);
    filter(gust_up_, 2.0, 1.1);
    filter(gust_roll_, 0.16, 0.6);
}

double Weather::temperature_c(double altitude_m) const {
    return kSeaLevelTemperatureC - kLapseCPerM * altitude_m;
}

double Weather::pressure_mb(double altitude_m) const {
    return sea_level_pressure_mb_ * std::pow(1.0 - kLapseCPerM * altitude_m / 288.15, kPressureExponent);
}

double Weather::density(double altitude_m) const {
    return pressure_mb(altitude_m) * 100.0 / (kGasConstant * (temperature_c(altitude_m) + 273.15));
}

double Weather::indicated_altitude_m(double altitude_m, double setting_mb) const {
    return standard_height_m(pressure_mb(altitude_m), std::clamp(setting_mb, 700.0, 1200.0));
}

double Weather::air_north_mps(double height_m) const {
    return (-kWindSpeedMps * std::cos(radians(kWindFromDeg)) + gust_north_) * near_ground_factor(height_m);
}

double Weather::air_east_mps(double height_m) const {
    return (-kWindSpeedMps * std::sin(radians(kWindFromDeg)) + gust_east_) * near_ground_factor(height_m);
}

double Weather::air_up_mps(double height_m) const {
    return gust_up_ * std::clamp(height_m / 60.0, 0.0, 1.0);
}

double Weather::air_roll_rate(double height_m) const {
    return gust_roll_ * std::clamp(height_m / 60.0, 0.0, 1.0);
}

}  // namespace simhost
