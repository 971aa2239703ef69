#include <cmath>
#include <utility>

#include "simhost/air_actions.h"

namespace simhost::air_phases {

namespace {

constexpr double kBaseTurnAlongM = -4900.0;
constexpr RunwayPlace kApproachFix{-7500.0, -400.0};
constexpr double kApproachMps = 48.0;
constexpr double kShortFinalMps = 34.0;
constexpr double kHandFlownBelowM = 75.0;
constexpr double kFlareM = 10.0;
constexpr double kStraightenM = 2.0;
constexpr double kOffSlopeM = 60.0;

// The climb that leads back onto the glide path by hand.
double climb_on_slope(const Aircraft& aircraft) {
    const double to_go_m = kGlidePathOriginM - aircraft.airframe.runway_place().along_m;
    const double slope = std::tan(radians(kGlidePathDeg));
    const double above_m = aircraft.airframe.height_m() - std::max(0.0, to_go_m) * slope;
    return -aircraft.airframe.ground_speed_mps() * slope - std::clamp(0.12 * above_m, -2.2, 2.2);
}

// Whether the runway lies ahead, near enough to the centre line.
bool can_land_from_here(const Aircraft& aircraft) {
    const RunwayPlace here = aircraft.airframe.runway_place();
    const double off_deg = std::abs(wrap180(aircraft.airframe.track_deg() - kRunwayHeadingDeg));
    return here.along_m < -2500.0 && std::abs(here.across_m) < 1200.0 && off_deg < 100.0;
}

// Whether the approach can be gone on with after a client has flown a part of it.
bool still_on_approach(const Aircraft& aircraft) {
    const RunwayPlace here = aircraft.airframe.runway_place();
    const double to_go_m = kGlidePathOriginM - here.along_m;
    const double off_deg = std::abs(wrap180(aircraft.airframe.track_deg() - kRunwayHeadingDeg));
    const double above_m = aircraft.airframe.height_m() - to_go_m * std::tan(radians(kGlidePathDeg));
    return to_go_m > 0 && off_deg < 40.0 && std::abs(here.across_m) < 40.0 + 0.15 * to_go_m && above_m < kOffSlopeM;
}

// Whoever has come to another place than the circuit's goes out to where the approach begins.
void fly_to_approach_fix(FlightScript& script, Aircraft& aircraft, double dt_s) {
    if (!client_flies(aircraft)) {
        aircraft.autopilot.disengage();
    }
    const double track_deg = bearing_deg(aircraft.airframe.place(), place_of(kApproachFix));
    const double climb_mps = std::clamp(0.10 * (kInterceptHeightM - aircraft.airframe.height_m()), -4.0, 4.0);
    script.pilot.fly_climb(aircraft, climb_mps, AttitudeLoops::bank_for_track(track_deg, 20.0, aircraft.airframe),
                           dt_s);
}

bool ils_tuned(const Aircraft& aircraft) {
    return aircraft.navigation.nav1.localizer;
}

}  // namespace

void begin_downwind(FlightScript& script, Aircraft& aircraft) {
    engage(aircraft, kInterceptHeightM, 600);
    script.pilot.set_heading(aircraft, kDownwindMagneticDeg);
}

bool downwind(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.hold_speed(aircraft, 47.0, dt_s);
    script.pilot.mind_autopilot(aircraft, kInterceptHeightM, kDownwindMagneticDeg, dt_s);
    move_mixture(aircraft, 1.0, dt_s);
    return aircraft.airframe.runway_place().along_m < kBaseTurnAlongM;
}

void begin_base_turn(FlightScript& script, Aircraft& aircraft) {
    script.pilot.set_flaps(aircraft, 0.33);
    script.pilot.set_lights(aircraft, kFlightLights | kLandingLights);
    move_switch(aircraft, aircraft.controls.carburettor_heat, true);
    move_switch(aircraft, aircraft.controls.fuel_pump, true);
    if (!client_tunes(aircraft)) {
        std::swap(aircraft.radios.adf1_main, aircraft.radios.adf1_standby_main);
        aircraft.radios.dme_selected = 1;
    }
    if (!client_flies(aircraft)) {
        engage(aircraft, kInterceptHeightM, 500);
        aircraft.autopilot.approach_hold = aircraft.autopilot.master && ils_tuned(aircraft);
    }
}

bool base_turn(FlightScript& script, Aircraft& aircraft, double dt_s) {
    script.pilot.hold_speed(aircraft, 47.0, dt_s);
    script.pilot.turn_left_to(aircraft, kRunwayMagneticDeg + 30.0, kBugRateDeg, dt_s);
    script.pilot.mind_autopilot(aircraft, kInterceptHeightM, script.pilot.heading_deg(), dt_s);
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
    move_switch(aircraft, aircraft.controls.carburettor_heat, false);
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
    script.pilot.turn_left_to(aircraft, kRunwayMagneticDeg, kBugRateDeg, dt_s);
    if (aircraft.hands_fly() && !still_on_approach(aircraft)) {
        script.marked_s = 0;
    }
    if (script.marked_s == 0 && !can_land_from_here(aircraft)) {
        fly_to_approach_fix(script, aircraft, dt_s);
        return false;
    }
    script.marked_s = 1;
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
