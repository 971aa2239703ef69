#include <cmath>
#include <utility>

#include "simhost/air_actions.h"

namespace simhost::air_phases {

namespace {

constexpr double kRotateMps = 28.0;
constexpr double kClimbMps = 43.5;
constexpr double kAutopilotGivesUpS = 3.0;
constexpr double kTooLowToStallM = 150.0;

constexpr std::uint8_t kMarkerSound = 4;

}  // namespace

void begin_take_off(FlightScript& script, Aircraft& aircraft) {
    script.pilot.release_stick(aircraft);
    script.pilot.set_brakes(aircraft, 0);
    move_switch(aircraft, aircraft.controls.fuel_pump, true);
    move_switch(aircraft, aircraft.controls.pitot_heat, true);
}

bool take_off(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.set_throttle(aircraft, 1.0, dt_s);
    script.pilot.set_brakes(aircraft, 0);
    script.pilot.set_parking_brake(aircraft, false);
    move_propeller(aircraft, 1.0, dt_s);
    if (aircraft.airframe.indicated_airspeed_mps() > kRotateMps || !aircraft.airframe.on_ground()) {
        script.marked_s += dt_s;
        const double pitch_deg = std::min(7.5, 2.0 + 2.5 * script.marked_s);
        const double rudder = aircraft.pilot_stick.rudder;
        script.pilot.fly_attitude(aircraft, pitch_deg, 0, dt_s);
        if (aircraft.airframe.on_ground()) {
            aircraft.pilot_stick.rudder = rudder;
        }
    } else {
        script.pilot.release_stick(aircraft);
    }
    if (aircraft.airframe.on_ground()) {
        script.pilot.steer_on_runway(aircraft);
    }
    return aircraft.airframe.height_m() > 15.0;
}

void begin_climb(FlightScript& script, Aircraft& aircraft) {
    script.pilot.set_gear(aircraft, 0);
    script.pilot.set_lights(aircraft, kFlightLights | kLandingLights);
}

bool climb(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.set_throttle(aircraft, 1.0, dt_s);
    const double fast_mps = aircraft.airframe.indicated_airspeed_mps() - kClimbMps;
    const double pitch_deg = std::clamp(8.0 + 0.7 * fast_mps, 3.0, 11.0);
    const double bank_deg =
        AttitudeLoops::bank_for_track(track_to_centre_line(aircraft, 0.05, 8.0), 15.0, aircraft.airframe);
    script.pilot.fly_attitude(aircraft, pitch_deg, bank_deg, dt_s);
    if (aircraft.airframe.height_m() > 55.0) {
        script.pilot.set_flaps(aircraft, 0);
    }
    return aircraft.airframe.height_m() > 90.0;
}

void begin_climbing_turn(FlightScript& script, Aircraft& aircraft) {
    engage(aircraft, kCircuitHeightM, 800);
    move_switch(aircraft, aircraft.controls.fuel_pump, false);
    if (!client_tunes(aircraft)) {
        aircraft.radios.transponder_ident = 1;  // radar has asked for it
    }
    script.pilot.set_lights(aircraft, kFlightLights);
}

bool climbing_turn(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.turn_left_to(aircraft, kDownwindMagneticDeg, kBugRateDeg, dt_s);
    script.pilot.mind_autopilot(aircraft, kCircuitHeightM, script.pilot.heading_deg(), dt_s);
    script.pilot.hold_speed(aircraft, 47.0, dt_s);
    script.pilot.set_throttle(aircraft, std::max(aircraft.controls.throttle, 0.9), dt_s);
    move_propeller(aircraft, 0.75, dt_s);
    const double off_deg = wrap180(kRunwayHeadingDeg - 180.0 - aircraft.airframe.heading_deg());
    return std::abs(off_deg) < 6.0;
}

void begin_cruise(FlightScript& script, Aircraft& aircraft) {
    (void)script;
    if (!client_tunes(aircraft)) {
        aircraft.radios.swap(2);  // the landing system comes up for the approach
        std::swap(aircraft.radios.adf1_main, aircraft.radios.adf1_standby_main);
        aircraft.radios.sound_selector ^= kMarkerSound;
        aircraft.radios.dme_selected = 2;
    }
}

bool cruise(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.hold_speed(aircraft, 62.0, dt_s);
    script.pilot.mind_autopilot(aircraft, kCircuitHeightM, kDownwindMagneticDeg, dt_s);
    move_mixture(aircraft, 0.82, dt_s);
    if (!aircraft.hands.owns(ClientGroup::courses)) {  // find the radial to the second beacon
        aircraft.radios.obs2_deg = approach(aircraft.radios.obs2_deg, 215.0, 12.0 * dt_s);
        aircraft.radios.adf_card_deg = wrap360(std::round(aircraft.instruments.gyro_heading_deg()));
    }
    return script.phase_s() > 16.0;
}

void begin_turbulence(FlightScript& script, Aircraft& aircraft) {
    (void)script;
    aircraft.turbulence = 1.0;
}

bool turbulence(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.hold_speed(aircraft, 62.0, dt_s);
    script.pilot.mind_autopilot(aircraft, kCircuitHeightM, kDownwindMagneticDeg, dt_s);
    // The autopilot gives up on such air, and the pilot takes the stick.
    if (script.marked_s == 0 && script.phase_s() > kAutopilotGivesUpS) {
        script.marked_s = 1;
        disengage(aircraft);
        script.pilot.take_stick(aircraft);
    }
    if (script.phase_s() > 20.0) {
        aircraft.turbulence = 0;
    }
    return script.phase_s() > 25.0;
}

void begin_fast_descent(FlightScript& script, Aircraft& aircraft) {
    (void)script;
    aircraft.turbulence = 0;
    disengage(aircraft);
}

bool fast_descent(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.set_throttle(aircraft, 1.0, dt_s);
    const double bank_deg = AttitudeLoops::bank_for_heading(kRunwayHeadingDeg - 180.0, 15.0, aircraft.airframe);
    const double climb_mps = -std::min(7.0, 2.0 * script.phase_s());
    script.pilot.fly_climb(aircraft, climb_mps, bank_deg, dt_s);
    script.marked_s += aircraft.overspeed ? dt_s : 0.0;
    return script.marked_s > 2.0 || aircraft.airframe.height_m() < kInterceptHeightM + 20.0;
}

void begin_slow_flight(FlightScript& script, Aircraft& aircraft) {
    (void)script;
    disengage(aircraft);
}

bool slow_flight(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.set_throttle(aircraft, 0.0, dt_s);
    const double bank_deg = AttitudeLoops::bank_for_heading(kRunwayHeadingDeg - 180.0, 15.0, aircraft.airframe);
    const double climb_mps = std::min(0.4, -7.0 + 2.0 * script.phase_s());
    if (aircraft.airframe.stall_warning()) {
        script.pilot.fly_attitude(aircraft, 8.5, bank_deg, dt_s);
    } else {
        script.pilot.fly_climb(aircraft, climb_mps, bank_deg, dt_s);
    }
    if (aircraft.indicated_airspeed_knots() < 125.0) {
        script.pilot.set_gear(aircraft, 1);
    }
    if (aircraft.indicated_airspeed_knots() < 95.0) {
        script.pilot.set_flaps(aircraft, 0.33);
    }
    script.marked_s += aircraft.airframe.stall_warning() ? dt_s : 0.0;
    return script.marked_s > 2.0 || aircraft.airframe.height_m() < kTooLowToStallM;
}

void begin_stall_recovery(FlightScript& script, Aircraft& aircraft) {
    (void)script;
    disengage(aircraft);
}

bool stall_recovery(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.set_throttle(aircraft, 1.0, dt_s);
    const double bank_deg = AttitudeLoops::bank_for_heading(kRunwayHeadingDeg - 180.0, 10.0, aircraft.airframe);
    script.pilot.fly_attitude(aircraft, 3.0, bank_deg, dt_s);
    return aircraft.airframe.indicated_airspeed_mps() > 37.0;
}

}  // namespace simhost::air_phases
