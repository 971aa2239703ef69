#include "simhost/air_actions.h"

namespace simhost::air_phases {

bool client_flies(const Aircraft& aircraft) {
    return aircraft.hands.holds(ClientGroup::autopilot);
}

void engage(Aircraft& aircraft, double height_m, double climb_fpm) {
    if (client_flies(aircraft) || aircraft.hands_fly()) {
        return;
    }
    Autopilot& autopilot = aircraft.autopilot;
    autopilot.disengage();
    autopilot.master = true;
    // A bug in other hands may stand anywhere: the pilot steers with the turn knob then.
    const bool bug_is_free = !aircraft.hands.holds(ClientGroup::heading_bug);
    autopilot.heading_hold = bug_is_free;
    autopilot.wing_leveler = !bug_is_free;
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

double track_to_centre_line(const Aircraft& aircraft, double gain, double limit_deg) {
    const RunwayPlace here = aircraft.airframe.runway_place();
    return kRunwayHeadingDeg - std::clamp(gain * here.across_m, -limit_deg, limit_deg);
}

void move_propeller(Aircraft& aircraft, double wanted, double dt_s) {
    if (!aircraft.hands.holds(ClientGroup::propeller)) {
        aircraft.controls.propeller = approach(aircraft.controls.propeller, wanted, 0.05 * dt_s);
    }
}

void move_switch(Aircraft& aircraft, bool& position, bool wanted) {
    position = aircraft.hands.holds(ClientGroup::switches) ? position : wanted;
}

bool client_tunes(const Aircraft& aircraft) {
    return aircraft.hands.holds(ClientGroup::radios);
}

void move_mixture(Aircraft& aircraft, double wanted, double dt_s) {
    if (!aircraft.hands.holds(ClientGroup::mixture)) {
        aircraft.controls.mixture = approach(aircraft.controls.mixture, wanted, 0.04 * dt_s);
    }
}

}  // namespace simhost::air_phases
