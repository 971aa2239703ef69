#pragma once

#include "simhost/controls.h"
#include "simhost/engine.h"

namespace simhost {

// A 28 volt system: battery, alternator, main bus and avionics bus. Volts and amperes.
class Electrical {
  public:
    void step(const Controls& controls, const Engine& engine, double dt_s);

    double battery_volts() const { return battery_volts_; }
    double battery_amps() const { return battery_amps_; }  // positive while charging
    double main_bus_volts() const { return main_bus_volts_; }
    double main_bus_amps() const { return main_bus_amps_; }
    double avionics_bus_volts() const { return avionics_bus_volts_; }
    double avionics_bus_amps() const { return avionics_bus_amps_; }
    double alternator_volts() const { return alternator_volts_; }
    double alternator_amps() const { return alternator_amps_; }
    double total_load_amps() const { return main_bus_amps_ + avionics_bus_amps_; }

    // Instruments and radios work above this.
    static constexpr double kWorkingVolts = 16.0;
    bool main_bus_works() const { return main_bus_volts_ > kWorkingVolts; }
    bool avionics_work() const { return avionics_bus_volts_ > kWorkingVolts; }

  private:
    double charge_ = 0.93;  // of the battery, 0..1
    double battery_volts_ = 24.7;
    double battery_amps_ = 0;
    double starter_amps_ = 0;
    double main_bus_volts_ = 0;
    double main_bus_amps_ = 0;
    double avionics_bus_volts_ = 0;
    double avionics_bus_amps_ = 0;
    double alternator_volts_ = 0;
    double alternator_amps_ = 0;
};

}  // namespace simhost
