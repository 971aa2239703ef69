#include <cmath>
#include <utility>

#include "simhost/flight_script.h"
#include "simhost/units.h"

namespace simhost::air_phases {

namespace {

constexpr double kRotateMps = 28.0;
constexpr double kClimbMps = 43.5;
constexpr double kCircuitHeightM = 390.0;
constexpr double kInterceptHeightM = 240.0;
constexpr double kBaseTurnAlongM = -4900.0;
constexpr double kBugRateDeg = 3.1;
constexpr double kApproachMps = 48.0;
constexpr double kShortFinalMps = 34.0;
constexpr double kHandFlownBelowM = 75.0;
constexpr double kFlareM = 10.0;
constexpr double kStraightenM = 2.0;

constexpr std::uint8_t kMarkerSound = 4;

constexpr double kRunwayMagneticDeg = kRunwayHeadingDeg - kMagneticVariationDeg;
constexpr double kDownwindMagneticDeg = kRunwayMagneticDeg - 180.0;

constexpr std::uint16_t kFlightLights = kNavigationLights | kBeacon | kInstrumentLights | kStrobes;

bool client_flies(const Aircraft& aircraft) {
    return aircraft.hands.holds(ClientGroup::autopilot);
}

// Speeds are indicated; the scripted pilot gives full power and leans back.
double knots(const Aircraft& aircraft) {
    return aircraft.indicated_airspeed_knots();
}

void engage(Aircraft& aircraft, double height_m, double climb_fpm) {
    if (client_flies(aircraft)) {
        return;
    }
    Autopilot& autopilot = aircraft.autopilot;
    autopilot.disengage();
    autopilot.master = true;
    autopilot.heading_hold = true;
    autopilot.altitude_hold = true;
    autopilot.yaw_damper = true;
    autopilot.flight_director = true;
    autopilot.altitude_m = kFieldElevationM + height_m;
    autopilot.vertical_speed_fpm = climb_fpm;
}

void disengage(Aircraft& aircraft) {
    if (!client_flies(aircraft)) {
        aircraft.autopilot.disengage();
        aircraft.autopilot.yaw_damper = false;
        aircraft.autopilot.flight_director = false;
    }
}

// Where the runway's centre line is, seen from the aircraft: a track that leads onto it.
double track_to_centre_line(const Aircraft& aircraft, double gain, double limit_deg) {
    const RunwayPlace here = aircraft.airframe.runway_place();
    return kRunwayHeadingDeg - std::clamp(gain * here.across_m, -limit_deg, limit_deg);
}

// The climb that leads back onto the glide path by hand.
double climb_on_slope(const Aircraft& aircraft) {
    const double to_go_m = kGlidePathOriginM - aircraft.airframe.runway_place().along_m;
    const double slope = std::tan(radians(kGlidePathDeg));
    const double above_m = aircraft.airframe.height_m() - std::max(0.0, to_go_m) * slope;
    return -aircraft.airframe.ground_speed_mps() * slope - std::clamp(0.12 * above_m, -2.2, 2.2);
}

void move_propeller(Aircraft& aircraft, double wanted, double dt_s) {
    if (!aircraft.hands.holds(ClientGroup::propeller)) {
        aircraft.controls.propeller = approach(aircraft.controls.propeller, wanted, 0.05 * dt_s);
    }
}

void move_switch(Aircraft& aircraft, bool& position, bool wanted) {
    position = aircraft.hands.holds(ClientGroup::switches) ? position : wanted;
}

void move_carburettor_heat(Aircraft& aircraft, bool wanted) {
    move_switch(aircraft, aircraft.controls.carburettor_heat, wanted);
}

bool client_tunes(const Aircraft& aircraft) {
    return aircraft.hands.holds(ClientGroup::radios);
}

bool ils_tuned(const Aircraft& aircraft) {
    return aircraft.navigation.nav1.localizer;
}

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
    script.pilot.turn_bug_left(aircraft, kDownwindMagneticDeg, kBugRateDeg, dt_s);
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
    if (!aircraft.hands.holds(ClientGroup::mixture)) {
        aircraft.controls.mixture = approach(aircraft.controls.mixture, 0.82, 0.03 * dt_s);
    }
    if (!client_tunes(aircraft)) {  // find the radial to the second beacon
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
    if (knots(aircraft) < 125.0) {
        script.pilot.set_gear(aircraft, 1);
    }
    if (knots(aircraft) < 95.0) {
        script.pilot.set_flaps(aircraft, 0.33);
    }
    script.marked_s += aircraft.airframe.stall_warning() ? dt_s : 0.0;
    return script.marked_s > 2.0;
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

void begin_downwind(FlightScript& script, Aircraft& aircraft) {
    (void)script;
    engage(aircraft, kInterceptHeightM, 600);
    if (!client_flies(aircraft)) {
        aircraft.autopilot.heading_bug_deg = wrap360(kDownwindMagneticDeg);
    }
}

bool downwind(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.hold_speed(aircraft, 47.0, dt_s);
    if (!aircraft.hands.holds(ClientGroup::mixture)) {
        aircraft.controls.mixture = approach(aircraft.controls.mixture, 1.0, 0.05 * dt_s);
    }
    return aircraft.airframe.runway_place().along_m < kBaseTurnAlongM;
}

void begin_base_turn(FlightScript& script, Aircraft& aircraft) {
    script.pilot.set_flaps(aircraft, 0.33);
    script.pilot.set_lights(aircraft, kFlightLights | kLandingLights);
    move_carburettor_heat(aircraft, true);
    move_switch(aircraft, aircraft.controls.fuel_pump, true);
    if (!client_tunes(aircraft)) {
        std::swap(aircraft.radios.adf1_main, aircraft.radios.adf1_standby_main);
        aircraft.radios.dme_selected = 1;
    }
    if (!client_flies(aircraft)) {
        engage(aircraft, kInterceptHeightM, 500);
        aircraft.autopilot.approach_hold = ils_tuned(aircraft);
    }
}

bool base_turn(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.hold_speed(aircraft, 47.0, dt_s);
    script.pilot.turn_bug_left(aircraft, kRunwayMagneticDeg + 30.0, kBugRateDeg, dt_s);
    const RunwayPlace here = aircraft.airframe.runway_place();
    return aircraft.autopilot.beam_captured() || std::abs(here.across_m) < 250.0 || here.along_m > -1500.0;
}

void begin_final_approach(FlightScript& script, Aircraft& aircraft) {
    script.pilot.set_gear(aircraft, 1);
    script.pilot.set_flaps(aircraft, 0.66);
    if (!client_flies(aircraft) && !ils_tuned(aircraft)) {
        disengage(aircraft);
    }
}

bool final_approach(FlightScript& script, Aircraft& aircraft, double dt_s) {
    move_propeller(aircraft, 1.0, dt_s);
    move_carburettor_heat(aircraft, false);
    const double height_m = aircraft.airframe.height_m();
    const RunwayPlace here = aircraft.airframe.runway_place();
    const bool short_final = here.along_m > -1500.0;
    script.pilot.hold_speed(aircraft, short_final ? kShortFinalMps : kApproachMps, dt_s);
    if (short_final) {
        script.pilot.set_flaps(aircraft, 1.0);
    }
    if (height_m < kHandFlownBelowM && aircraft.autopilot.master) {
        aircraft.autopilot.disengage();
        script.pilot.take_stick(aircraft);
    }
    script.pilot.turn_bug_left(aircraft, kRunwayMagneticDeg, kBugRateDeg, dt_s);
    const double line = track_to_centre_line(aircraft, 0.06, 35.0);
    const double bank_deg = AttitudeLoops::bank_for_track(line, 18.0, aircraft.airframe);
    const bool below_slope = here.along_m < -kInterceptHeightM / std::tan(radians(kGlidePathDeg));
    script.pilot.fly_climb(aircraft, below_slope ? 0.0 : climb_on_slope(aircraft), bank_deg, dt_s);
    return height_m < kFlareM;
}

void begin_landing(FlightScript& script, Aircraft& aircraft) {
    (void)script;
    aircraft.autopilot.disengage();
}

bool landing(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.set_throttle(aircraft, 0.0, dt_s);
    const double height_m = std::max(0.0, aircraft.airframe.height_m());
    if (aircraft.airframe.on_ground()) {
        script.marked_s += dt_s;
        const double let_down = approach(aircraft.pilot_stick.elevator, 0.0, 0.25 * dt_s);
        script.pilot.release_stick(aircraft);
        aircraft.pilot_stick.elevator = let_down;
        script.pilot.steer_on_runway(aircraft);
        return script.marked_s > 1.5;
    }
    const double line = track_to_centre_line(aircraft, 0.15, 8.0);
    const double bank_deg = AttitudeLoops::bank_for_track(line, 6.0, aircraft.airframe);
    // The flare: the nose comes up as the ground comes near, more when the sink is too great.
    const double too_fast_down = -0.20 - 0.17 * height_m - aircraft.airframe.climb_mps();
    const double pitch_deg = std::clamp(5.0 - 0.72 * height_m + 1.6 * too_fast_down, -4.0, 8.5);
    script.pilot.fly_attitude(aircraft, pitch_deg, bank_deg, dt_s);
    if (height_m < kStraightenM) {  // off the crab, before the wheels touch
        const double off_deg = wrap180(kRunwayHeadingDeg - aircraft.airframe.heading_deg());
        aircraft.pilot_stick.rudder = std::clamp(0.05 * off_deg - 0.5 * aircraft.airframe.yaw_rate(), -0.5, 0.5);
    }
    return false;
}

}  // namespace simhost::air_phases
