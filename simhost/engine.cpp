#include "simhost/engine.h"

#include <cmath>

#include "simhost/units.h"

namespace simhost {

namespace {

constexpr double kPowerW = 165000.0;
constexpr double kStarterVolts = 14.0;
constexpr double kStarterRpm = 170.0;
constexpr double kCrankToFireS = 1.6;
constexpr double kHoseGalPerS = 0.8;

}  // namespace

bool FuelTanks::burn(double gallons) {
    const double left_share = left_gal <= 0 ? 0.0 : right_gal <= 0 ? 1.0 : 0.54;
    left_gal = std::max(0.0, left_gal - gallons * left_share);
    right_gal = std::max(0.0, right_gal - gallons * (1.0 - left_share));
    return left_gal > 0 || right_gal > 0;
}

void FuelTanks::refuel(double limit_gal, double dt_s) {
    left_gal = std::max(left_gal, std::min(limit_gal, left_gal + kHoseGalPerS * dt_s));
    right_gal = std::max(right_gal, std::min(limit_gal, right_gal + kHoseGalPerS * dt_s));
}

void Engine::turn(const Controls& controls, const EngineAir& air, double bus_volts, bool fuel, double dt_s) {
    cranking_ = controls.magnetos == Magnetos::start && bus_volts > kStarterVolts && rpm_ < 500.0;
    cranked_s_ = cranking_ ? cranked_s_ + dt_s : 0.0;
    const bool can_run = controls.magnetos != Magnetos::off && controls.mixture > 0.05 && fuel;
    if (!running_ && can_run && controls.mixture > 0.3 && cranked_s_ > kCrankToFireS) {
        running_ = true;
        running_s_ = 0;
    }
    running_ = running_ && can_run;
    running_s_ = running_ ? running_s_ + dt_s : 0.0;

    const double windmill = air.true_airspeed_mps > 30.0 ? 14.0 * air.true_airspeed_mps : 0.0;
    double wanted = cranking_ ? kStarterRpm : windmill;
    double time_constant_s = cranking_ ? 0.25 : 0.9;
    if (running_) {
        // In fine pitch the propeller lets the engine rev up to the governor's speed.
        const double fine =
            640.0 + 1950.0 * std::sqrt(std::clamp(controls.throttle, 0.0, 1.0)) + 10.0 * air.true_airspeed_mps;
        const double governor = 1800.0 + (kMaximumRpm - 1800.0) * std::clamp(controls.propeller, 0.0, 1.0);
        const double magneto_drop =
            controls.magnetos == Magnetos::both || controls.magnetos == Magnetos::start ? 0 : 90;
        wanted = std::min(fine, governor) - magneto_drop;
        time_constant_s = 0.6;
    }
    rpm_ = lag(rpm_, wanted, time_constant_s, dt_s);
    if (rpm_ < 0.5 && wanted == 0) {
        rpm_ = 0;
    }
}

void Engine::breathe(const Controls& controls, const EngineAir& air, double dt_s) {
    const double opening = std::pow(std::clamp(controls.throttle, 0.0, 1.0), 0.7);
    const double behind_throttle = 0.365 + 0.605 * opening;
    const double pumping = std::min(1.0, rpm_ / 650.0);
    const double manifold = air.pressure_in_hg * (1.0 - (1.0 - behind_throttle) * pumping);
    const double warm_air = controls.carburettor_heat ? 0.97 : 1.0;
    manifold_in_hg_ = lag(manifold_in_hg_, warm_air * manifold, 0.35, dt_s);

    const double charge = std::clamp((manifold_in_hg_ - 10.2) / 18.3, 0.0, 1.05);
    const double mixture = std::clamp(1.0 - 1.4 * std::max(0.0, 0.45 - controls.mixture), 0.0, 1.0);
    const double power = running_ ? charge * std::min(1.0, rpm_ / kMaximumRpm) * mixture : 0.0;
    power_fraction_ = lag(power_fraction_, power, 0.25, dt_s);
    const double speed = std::max(0.0, air.true_airspeed_mps);
    const double windmill_drag = speed > 20.0 ? 0.24 * (speed - 20.0) * (speed - 20.0) * (1.0 - power_fraction_) : 0.0;
    thrust_n_ = 0.80 * kPowerW * power_fraction_ / std::hypot(speed, 34.0) - windmill_drag;

    const double flow = running_ ? (1.3 + 13.2 * power_fraction_) * (0.72 + 0.28 * controls.mixture) : 0.0;
    fuel_flow_gph_ = lag(fuel_flow_gph_, flow, 0.6, dt_s);
    const bool pumped = running_ || (controls.fuel_pump && controls.battery);
    fuel_pressure_psi_ = lag(fuel_pressure_psi_, pumped ? 5.4 - 0.8 * power_fraction_ : 0.0, 0.8, dt_s);
    vacuum_in_hg_ = lag(vacuum_in_hg_, 5.2 * (1.0 - std::exp(-rpm_ / 520.0)), 0.9, dt_s);
}

void Engine::warm(const Controls& controls, const EngineAir& air, double dt_s) {
    const double outside = air.temperature_c;
    const double lean = std::clamp(1.0 - controls.mixture, 0.0, 0.6);
    const double exhaust = running_ ? 470.0 + 270.0 * power_fraction_ + 130.0 * lean : outside;
    exhaust_c_ = lag(exhaust_c_, exhaust, running_ ? 5.0 : 25.0, dt_s);
    const double cooling = 0.35 * air.true_airspeed_mps;
    const double head = running_ ? outside + 105.0 + 105.0 * power_fraction_ - cooling : outside;
    cylinder_head_c_ = lag(cylinder_head_c_, head, running_ ? 45.0 : 400.0, dt_s);
    const double oil = running_ ? outside + 44.0 + 34.0 * power_fraction_ : outside;
    oil_temperature_c_ = lag(oil_temperature_c_, oil, running_ ? 70.0 : 600.0, dt_s);
    // Thick cold oil builds pressure sooner; the relief valve bends the curve near its top.
    const double thickness = 1.30 - 0.0045 * oil_temperature_c_;
    const double oil_pressure = 84.0 * (1.0 - std::exp(-rpm_ * thickness / 1250.0));
    oil_pressure_psi_ = lag(oil_pressure_psi_, oil_pressure, 0.9, dt_s);
}

void Engine::step(const Controls& controls, const EngineAir& air, double bus_volts, FuelTanks& tanks, double dt_s) {
    const bool fuel = tanks.burn(fuel_flow_gph_ * dt_s / 3600.0);
    turn(controls, air, bus_volts, fuel, dt_s);
    breathe(controls, air, dt_s);
    warm(controls, air, dt_s);
}

}  // namespace simhost
