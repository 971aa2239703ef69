#pragma once

#include <cstdint>

namespace simhost {

// A stream of numbers that is the same on every machine for the same seed.
class SeededNoise {
  public:
    explicit SeededNoise(std::uint64_t seed) : state_(seed) {}
    // The next number, evenly spread over -1..1.
    double next();

  private:
    std::uint64_t state_;
};

// The air around the aircraft: standard atmosphere on a slowly moving sea-level pressure, a steady wind, and gusts.
// Heights are metres above sea level, velocities metres a second.
class Weather {
  public:
    explicit Weather(std::uint64_t seed) : noise_(seed) {}

    // Moves the gusts and the sea-level pressure on. `turbulence` 0..1 is wanted; it comes and goes over seconds.
    void step(double turbulence, double dt_s);

    double sea_level_pressure_mb() const { return sea_level_pressure_mb_; }
    double temperature_c(double altitude_m) const;
    double dew_point_c(double altitude_m) const { return temperature_c(altitude_m) - 6.0; }
    double pressure_mb(double altitude_m) const;
    double density(double altitude_m) const;  // kg/m3
    // The altitude that an altimeter set to `setting_mb` shows, metres.
    double indicated_altitude_m(double altitude_m, double setting_mb) const;

    double wind_from_deg() const { return kWindFromDeg; }  // true
    double wind_speed_mps() const { return kWindSpeedMps; }
    // Air motion over ground, steady wind and gusts together, fading towards the ground; `height_m` is above ground.
    double air_north_mps(double height_m) const;
    double air_east_mps(double height_m) const;
    double air_up_mps(double height_m) const;
    // Rolling of the air mass, radians a second.
    double air_roll_rate(double height_m) const;

  private:
    static constexpr double kWindFromDeg = 228.0;
    static constexpr double kWindSpeedMps = 3.4;

    SeededNoise noise_;
    double time_s_ = 0;
    double turbulence_ = 0;
    double gust_north_ = 0;
    double gust_east_ = 0;
    double gust_up_ = 0;
    double gust_roll_ = 0;
    double sea_level_pressure_mb_ = 1018.0;
};

}  // namespace simhost
