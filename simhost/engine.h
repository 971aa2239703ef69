#pragma once

#include "simhost/controls.h"

namespace simhost {

// The air that the engine stands in.
struct EngineAir {
    double pressure_in_hg = 29.92;
    double temperature_c = 15;
    double true_airspeed_mps = 0;
};

// Fuel in two wing tanks, US gallons; the left one drains a little faster.
struct FuelTanks {
    static constexpr double kCapacityGal = 28.0;
    static constexpr double kPoundsPerGal = 6.0;
    double left_gal = 25.0;
    double right_gal = 25.4;

    // Takes fuel out of both tanks; true as long as one of them gives any.
    bool burn(double gallons);
    // Fills both tanks up to `limit_gal` at the speed of a hose.
    void refuel(double limit_gal, double dt_s);
};

// A six-cylinder piston engine of 220 hp with a constant-speed propeller.
class Engine {
  public:
    void step(const Controls& controls, const EngineAir& air, double bus_volts, FuelTanks& tanks, double dt_s);

    bool running() const { return running_; }
    bool cranking() const { return cranking_; }
    double rpm() const { return rpm_; }
    double manifold_in_hg() const { return manifold_in_hg_; }
    double power_fraction() const { return power_fraction_; }
    double thrust_n() const { return thrust_n_; }
    double fuel_flow_gph() const { return fuel_flow_gph_; }
    double fuel_flow_pph() const { return fuel_flow_gph_ * FuelTanks::kPoundsPerGal; }
    double fuel_pressure_psi() const { return fuel_pressure_psi_; }
    double exhaust_c() const { return exhaust_c_; }
    double cylinder_head_c() const { return cylinder_head_c_; }
    double oil_temperature_c() const { return oil_temperature_c_; }
    double oil_pressure_psi() const { return oil_pressure_psi_; }
    double vacuum_in_hg() const { return vacuum_in_hg_; }
    double vibration() const { return running_ ? 0.4 + 0.6 * power_fraction_ : 0.0; }
    double running_s() const { return running_s_; }

    static constexpr double kMaximumRpm = 2700.0;

  private:
    void turn(const Controls& controls, const EngineAir& air, double bus_volts, bool fuel, double dt_s);
    void breathe(const Controls& controls, const EngineAir& air, double dt_s);
    void warm(const Controls& controls, const EngineAir& air, double dt_s);

    bool running_ = false;
    bool cranking_ = false;
    double cranked_s_ = 0;
    double running_s_ = 0;
    double rpm_ = 0;
    double manifold_in_hg_ = 29.9;
    double power_fraction_ = 0;
    double thrust_n_ = 0;
    double fuel_flow_gph_ = 0;
    double fuel_pressure_psi_ = 0;
    double exhaust_c_ = 15;
    double cylinder_head_c_ = 15;
    double oil_temperature_c_ = 15;
    double oil_pressure_psi_ = 0;
    double vacuum_in_hg_ = 0;
};

}  // namespace simhost
