#include <cmath>

#include "simhost/flight_script.h"
#include "simhost/units.h"

namespace simhost::ground_phases {

namespace {

constexpr double kTaxiMps = 11.0;
constexpr double kRefuelBelowGal = 12.0;
constexpr std::uint16_t kCircuitCode = 0x4321;
constexpr std::uint16_t kRestCode = 0x7000;
constexpr std::uint8_t kNoMarkerSound = 0xFB;

constexpr std::array<RunwayPlace, 6> kWayOut{
    {{158.0, 106.0}, {136.0, 88.0}, {110.0, 80.0}, {46.0, 80.0}, {20.0, 68.0}, {12.0, 42.0}}};
constexpr std::array<RunwayPlace, 4> kWayToLine{{{13.0, 16.0}, {26.0, 3.0}, {45.0, 0.0}, {62.0, 0.0}}};
// Where the taxiways leave the runway.
constexpr std::array<double, 5> kExitsM{430.0, 510.0, 570.0, 850.0, 1420.0};

constexpr std::uint16_t kGroundLights = kNavigationLights | kBeacon | kInstrumentLights;

bool client_keeps(const Aircraft& aircraft, ClientGroup group) {
    return aircraft.hands.holds(group);
}

void set_switches(Aircraft& aircraft, bool battery, bool alternator, bool avionics) {
    if (!client_keeps(aircraft, ClientGroup::switches)) {
        aircraft.controls.battery = battery;
        aircraft.controls.alternator = alternator;
        aircraft.controls.avionics = avionics;
    }
}

void set_magnetos(Aircraft& aircraft, Magnetos magnetos) {
    if (!client_keeps(aircraft, ClientGroup::switches)) {
        aircraft.controls.magnetos = magnetos;
    }
}

void move_mixture(Aircraft& aircraft, double wanted, double dt_s) {
    if (!client_keeps(aircraft, ClientGroup::mixture)) {
        aircraft.controls.mixture = approach(aircraft.controls.mixture, wanted, 0.5 * dt_s);
    }
}

// The pilot turns the pressure knob and realigns the gyro, unless a client has these knobs.
void set_instruments(Aircraft& aircraft, double dt_s) {
    if (!client_keeps(aircraft, ClientGroup::altimeter)) {
        aircraft.instruments.altimeter_setting_mb =
            approach(aircraft.instruments.altimeter_setting_mb, aircraft.weather.sea_level_pressure_mb(), 1.5 * dt_s);
    }
    if (!client_keeps(aircraft, ClientGroup::gyro)) {
        aircraft.instruments.gyro_drift_deg = approach(aircraft.instruments.gyro_drift_deg, 0.0, 1.0 * dt_s);
    }
}

}  // namespace

void begin_cold_and_dark(FlightScript& script, Aircraft& aircraft) {
    script.pilot.release_stick(aircraft);
    script.pilot.set_lights(aircraft, 0);
    set_switches(aircraft, false, false, false);
    set_magnetos(aircraft, Magnetos::off);
    script.pilot.set_parking_brake(aircraft, true);
    aircraft.turbulence = 0;
}

bool cold_and_dark(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.release_stick(aircraft);
    script.pilot.set_throttle(aircraft, 0, dt_s);
    script.pilot.set_brakes(aircraft, 0);
    script.pilot.set_trim(aircraft, 0, dt_s);
    if (std::min(aircraft.tanks.left_gal, aircraft.tanks.right_gal) < kRefuelBelowGal) {
        script.marked_s = 1;  // the hose is on
    }
    if (script.marked_s > 0) {
        aircraft.tanks.refuel(25.0, dt_s);
    }
    const bool filled = script.marked_s == 0 || std::min(aircraft.tanks.left_gal, aircraft.tanks.right_gal) >= 25.0;
    return script.phase_s() > 10.0 && filled;
}

void begin_power_up(FlightScript& script, Aircraft& aircraft) {
    set_switches(aircraft, true, false, false);
    script.pilot.set_lights(aircraft, kGroundLights);
}

bool power_up(FlightScript& script, Aircraft& aircraft, double dt_s) {
    if (!client_keeps(aircraft, ClientGroup::lights)) {
        aircraft.controls.dimmer = approach(aircraft.controls.dimmer, 0.7, 0.2 * dt_s);
    }
    if (script.phase_s() > 3.0) {
        move_mixture(aircraft, 1.0, dt_s);
        aircraft.controls.fuel_pump = !client_keeps(aircraft, ClientGroup::switches) || aircraft.controls.fuel_pump;
    }
    return script.phase_s() > 8.0;
}

void begin_engine_start(FlightScript& script, Aircraft& aircraft) {
    (void)script;
    set_magnetos(aircraft, Magnetos::start);
}

bool engine_start(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.set_throttle(aircraft, 0.06, dt_s);
    const double runs_s = aircraft.engine.running_s();
    if (aircraft.engine.running() && aircraft.controls.magnetos == Magnetos::start && runs_s > 0.6) {
        set_magnetos(aircraft, Magnetos::both);
    }
    set_switches(aircraft, true, runs_s > 3.0, runs_s > 6.0);
    if (!client_keeps(aircraft, ClientGroup::switches) && runs_s > 4.0) {
        aircraft.controls.fuel_pump = false;
    }
    if (runs_s > 7.0) {
        set_instruments(aircraft, dt_s);
    }
    return runs_s > 14.0;
}

void begin_taxi_out(FlightScript& script, Aircraft& aircraft) {
    script.pilot.start_path(kWayOut);
    script.pilot.set_lights(aircraft, kGroundLights | kTaxiLights);
    script.pilot.set_flaps(aircraft, 0.33);
}

bool taxi_out(FlightScript& script, Aircraft& aircraft, double dt_s) {
    set_instruments(aircraft, dt_s);
    return script.pilot.taxi(aircraft, kTaxiMps, dt_s);
}

void begin_run_up(FlightScript& script, Aircraft& aircraft) {
    script.pilot.release_stick(aircraft);
    script.pilot.set_parking_brake(aircraft, true);
    if (!client_keeps(aircraft, ClientGroup::radios)) {
        aircraft.radios.transponder = kCircuitCode;
    }
}

bool run_up(FlightScript& script, Aircraft& aircraft, double dt_s) {
    const double t = script.phase_s();
    script.pilot.set_throttle(aircraft, t < 9.0 ? 0.36 : 0.05, dt_s);
    // Each magneto alone for a moment, then the controls through their range.
    set_magnetos(aircraft, t > 3.5 && t < 5.0 ? Magnetos::right : t > 6.0 && t < 7.5 ? Magnetos::left : Magnetos::both);
    aircraft.pilot_stick.elevator = t < 10.0 ? 0.5 * std::sin(t * 1.3) : 0.0;
    aircraft.pilot_stick.aileron = t < 10.0 ? 0.6 * std::sin(t * 1.0) : 0.0;
    script.pilot.set_trim(aircraft, 0.10, dt_s);
    return t > 12.0;
}

void begin_line_up(FlightScript& script, Aircraft& aircraft) {
    script.pilot.start_path(kWayToLine);
    script.pilot.set_lights(aircraft, kGroundLights | kTaxiLights | kLandingLights | kStrobes);
    script.pilot.set_brakes(aircraft, 0);
    if (!client_keeps(aircraft, ClientGroup::radios)) {
        aircraft.radios.transponder_standby = 0;
        aircraft.radios.swap(8);  // from the ground to the tower frequency
    }
    script.pilot.set_heading(aircraft, kRunwayHeadingDeg - kMagneticVariationDeg);
}

bool line_up(FlightScript& script, Aircraft& aircraft, double dt_s) {
    return script.pilot.taxi(aircraft, 6.0, dt_s);
}

void begin_roll_out(FlightScript& script, Aircraft& aircraft) {
    script.pilot.release_stick(aircraft);
    aircraft.autopilot.disengage();
}

bool roll_out(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.set_throttle(aircraft, 0, dt_s);
    script.pilot.steer_on_runway(aircraft);
    const double speed = aircraft.airframe.forward_speed_mps();
    script.pilot.set_brakes(aircraft, speed > 8.0 ? std::min(0.85, 0.35 * script.phase_s()) : 0.0);
    return speed < 10.0;
}

void begin_taxi_in(FlightScript& script, Aircraft& aircraft) {
    const double here_m = aircraft.airframe.runway_place().along_m;
    double exit_m = kExitsM.back();
    for (const double candidate : kExitsM) {
        if (candidate > here_m + 12.0) {
            exit_m = candidate;
            break;
        }
    }
    const std::array<RunwayPlace, 9> way_in{{{exit_m - 5.0, 0.0},
                                             {exit_m + 12.0, 12.0},
                                             {exit_m + 16.0, 30.0},
                                             {exit_m + 12.0, 62.0},
                                             {exit_m, 76.0},
                                             {exit_m - 30.0, 80.0},
                                             {235.0, 80.0},
                                             {205.0, 88.0},
                                             kParkingPlace}};
    script.pilot.start_path(way_in);
    script.pilot.set_flaps(aircraft, 0);
    script.pilot.set_lights(aircraft, kGroundLights | kTaxiLights);
    if (!client_keeps(aircraft, ClientGroup::radios)) {
        aircraft.radios.transponder_standby = 1;
        aircraft.radios.transponder = kRestCode;
        aircraft.radios.sound_selector &= kNoMarkerSound;
        aircraft.radios.swap(8);
    }
    if (!aircraft.hands.owns(ClientGroup::courses)) {
        aircraft.radios.obs2_deg = 90.0;
    }
}

bool taxi_in(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.set_trim(aircraft, 0, dt_s);
    return script.pilot.taxi(aircraft, kTaxiMps, dt_s);
}

void begin_shut_down(FlightScript& script, Aircraft& aircraft) {
    script.pilot.release_stick(aircraft);
    script.pilot.set_parking_brake(aircraft, true);
    script.pilot.set_brakes(aircraft, 0);
    if (!client_keeps(aircraft, ClientGroup::radios)) {
        aircraft.radios.swap(2);  // back to the beacon, for the next circuit
    }
}

bool shut_down(FlightScript& script, Aircraft& aircraft, double dt_s) {
    const double t = script.phase_s();
    script.pilot.set_throttle(aircraft, 0, dt_s);
    set_switches(aircraft, t < 9.0, t < 7.0, t < 2.0);
    if (!client_keeps(aircraft, ClientGroup::switches)) {
        aircraft.controls.fuel_pump = false;
        aircraft.controls.pitot_heat = false;
    }
    if (t > 3.0) {
        move_mixture(aircraft, 0, dt_s);
    }
    if (t > 6.5) {
        set_magnetos(aircraft, Magnetos::off);
        script.pilot.set_lights(aircraft, t > 8.0 ? std::uint16_t{0} : std::uint16_t{kGroundLights});
    }
    if (t > 5.0 && !client_keeps(aircraft, ClientGroup::lights)) {
        aircraft.controls.dimmer = approach(aircraft.controls.dimmer, 0.0, 0.3 * dt_s);
    }
    return t > 11.0;
}

}  // namespace simhost::ground_phases
