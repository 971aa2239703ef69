#include "simhost/electrical.h"

#include "simhost/units.h"

namespace simhost {

namespace {

constexpr double kBatteryAmpHours = 24.0;
constexpr double kDead = 0.001;
constexpr double kBatteryOhms = 0.035;
constexpr double kAlternatorMaximumAmps = 60.0;
constexpr double kStarterAmps = 150.0;

// What each consumer draws, amperes.
struct LightLoad {
    std::uint16_t bit;
    double amps;
};
constexpr LightLoad kLightLoads[] = {
    {kNavigationLights, 3.0}, {kBeacon, 2.5},           {kLandingLights, 8.0},     {kTaxiLights, 5.0},
    {kStrobes, 3.5},          {kInstrumentLights, 1.0}, {kRecognitionLights, 4.0}, {kWingLights, 2.0},
    {kLogoLights, 2.0},       {kCabinLights, 1.0},
};

double wanted_amps(const Controls& controls) {
    double amps = 2.0;
    for (const LightLoad& light : kLightLoads) {
        amps += (controls.lights & light.bit) != 0 ? light.amps : 0.0;
    }
    amps += controls.fuel_pump ? 3.0 : 0.0;
    amps += controls.pitot_heat ? 7.0 : 0.0;
    amps += controls.flaps_moving() ? 9.0 : 0.0;
    amps += controls.gear_moving() ? 14.0 : 0.0;
    return amps;
}

}  // namespace

void Electrical::step(const Controls& controls, const Engine& engine, double dt_s) {
    const double speed_share = std::clamp((engine.rpm() - 600.0) / 500.0, 0.0, 1.0);
    const bool alternating = controls.alternator && controls.battery && engine.running();
    const double available = alternating ? kAlternatorMaximumAmps * speed_share : 0.0;
    alternator_volts_ =
        lag(alternator_volts_, alternating ? 28.2 * std::min(1.0, 0.85 + speed_share) : 0.0, 0.45, dt_s);

    const double bus_load = controls.battery ? wanted_amps(controls) : 0.0;
    const double radio_load = controls.battery && controls.avionics ? 6.5 : 0.0;
    const double load = bus_load + radio_load;
    const double charging = alternating ? std::clamp((1.0 - charge_) * 90.0, 0.4, 18.0) : 0.0;
    alternator_amps_ = lag(alternator_amps_, std::min(available, load + charging), 0.2, dt_s);
    const double into_battery = controls.battery ? alternator_amps_ - load : 0.0;
    battery_amps_ = lag(battery_amps_, into_battery, 0.2, dt_s);
    charge_ = std::clamp(charge_ + battery_amps_ * dt_s / (kBatteryAmpHours * 3600.0), 0.0, 1.0);

    // The starter draws from the battery directly: the ammeter does not see it, the voltage does.
    starter_amps_ = lag(starter_amps_, engine.cranking() ? kStarterAmps : 0.0, 0.2, dt_s);
    const double open_volts = 22.5 + 2.4 * charge_;
    const double sagged = open_volts + kBatteryOhms * (battery_amps_ - starter_amps_);
    const double carried = std::max(sagged, available > load ? 28.0 : 0.0);
    battery_volts_ = lag(battery_volts_, carried, 0.2, dt_s);
    main_bus_volts_ = lag(main_bus_volts_, controls.battery ? carried : 0.0, 0.22, dt_s);
    avionics_bus_volts_ = lag(avionics_bus_volts_, controls.avionics ? main_bus_volts_ - 0.2 : 0.0, 0.22, dt_s);
    avionics_bus_volts_ = avionics_bus_volts_ < kDead ? 0.0 : avionics_bus_volts_;
    main_bus_volts_ = main_bus_volts_ < kDead ? 0.0 : main_bus_volts_;
    main_bus_amps_ = lag(main_bus_amps_, bus_load, 0.2, dt_s);
    avionics_bus_amps_ = lag(avionics_bus_amps_, radio_load, 0.2, dt_s);
}

}  // namespace simhost
