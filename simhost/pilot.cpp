#include "simhost/pilot.h"

#include <cmath>

#include "simhost/units.h"

namespace simhost {

namespace {

constexpr double kThrottleSpeed = 0.35;  // of the travel, a second
constexpr double kBrakeStep = 0.02;      // of the travel, a step
constexpr double kTurnSpeedMps = 4.5;
constexpr double kTurnAcceleration = 1.5;  // metres a second squared, to the side
constexpr double kTurnRate = 0.42;         // radians a second
constexpr double kWheelBaseM = 1.7;
constexpr double kNoseWheelThrow = 0.45;
constexpr double kArrivedM = 2.5;
constexpr double kRollOutFirstDeg = 60.0;  // with more bank the pilot levels the wings before anything else
constexpr double kPitchReachDeg = 15.0;    // the nose is brought back from afar bit by bit

double rolling_mps(const Aircraft& aircraft) {
    return aircraft.airframe.forward_speed_mps();
}

}  // namespace

void Pilot::take_stick(const Aircraft& aircraft) {
    loops_.restart(aircraft.controls.elevator, aircraft.airframe.pitch_deg());
    throttle_held_ = aircraft.controls.throttle;
}

void Pilot::release_stick(Aircraft& aircraft) {
    aircraft.pilot_stick = {};
}

void Pilot::fly_attitude(Aircraft& aircraft, double pitch_deg, double bank_deg, double dt_s) {
    const double pitch_now_deg = aircraft.airframe.pitch_deg();
    if (aircraft.controls.elevator_hand.held()) {  // nothing is to be learned from another's hands
        loops_.restart(0, pitch_now_deg);
    }
    if (std::abs(aircraft.airframe.bank_deg()) > kRollOutFirstDeg) {
        loops_.restart(0, pitch_now_deg);
        aircraft.pilot_stick = loops_.hold(pitch_now_deg, 0, aircraft.airframe, dt_s);
        aircraft.pilot_stick.elevator = 0;
        return;
    }
    const double reached_deg = std::clamp(pitch_deg, pitch_now_deg - kPitchReachDeg, pitch_now_deg + kPitchReachDeg);
    aircraft.pilot_stick = loops_.hold(reached_deg, bank_deg, aircraft.airframe, dt_s);
}

void Pilot::fly_climb(Aircraft& aircraft, double climb_mps, double bank_deg, double dt_s) {
    fly_attitude(aircraft, loops_.pitch_for_climb(climb_mps, aircraft.airframe, dt_s), bank_deg, dt_s);
}

void Pilot::set_throttle(Aircraft& aircraft, double wanted, double dt_s) const {
    if (!aircraft.hands.holds(ClientGroup::throttle)) {
        aircraft.controls.throttle = approach(aircraft.controls.throttle, wanted, kThrottleSpeed * dt_s);
    }
}

void Pilot::hold_speed(Aircraft& aircraft, double indicated_mps, double dt_s) {
    const double error = indicated_mps - aircraft.airframe.indicated_airspeed_mps();
    throttle_held_ = std::clamp(throttle_held_ + 0.010 * std::clamp(error, -6.0, 6.0) * dt_s, 0.05, 0.95);
    set_throttle(aircraft, std::clamp(throttle_held_ + 0.055 * error, 0.0, 1.0), dt_s);
}

void Pilot::set_flaps(Aircraft& aircraft, double flaps) const {
    if (!aircraft.hands.holds(ClientGroup::flaps)) {
        aircraft.controls.flaps_lever = flaps;
    }
}

void Pilot::set_gear(Aircraft& aircraft, double gear) const {
    if (!aircraft.hands.holds(ClientGroup::gear)) {
        aircraft.controls.gear_lever = gear;
    }
}

void Pilot::set_brakes(Aircraft& aircraft, double brakes) const {
    if (!aircraft.hands.holds(ClientGroup::brakes)) {
        aircraft.controls.left_brake = approach(aircraft.controls.left_brake, brakes, kBrakeStep);
        aircraft.controls.right_brake = approach(aircraft.controls.right_brake, brakes, kBrakeStep);
    }
}

void Pilot::set_lights(Aircraft& aircraft, std::uint16_t lights) const {
    if (!aircraft.hands.holds(ClientGroup::lights)) {
        aircraft.controls.lights = lights;
    }
}

void Pilot::set_trim(Aircraft& aircraft, double elevator_trim, double dt_s) const {
    if (!aircraft.hands.holds(ClientGroup::trims)) {
        aircraft.controls.elevator_trim = approach(aircraft.controls.elevator_trim, elevator_trim, 0.05 * dt_s);
        aircraft.controls.rudder_trim = approach(aircraft.controls.rudder_trim, 0.0, 0.05 * dt_s);
    }
}

void Pilot::set_parking_brake(Aircraft& aircraft, bool on) const {
    if (!aircraft.hands.holds(ClientGroup::brakes)) {
        aircraft.controls.parking_brake = on;
    }
}

void Pilot::set_heading(Aircraft& aircraft, double heading_deg) {
    heading_deg_ = wrap360(heading_deg);
    if (!aircraft.hands.holds(ClientGroup::autopilot) && !aircraft.hands.holds(ClientGroup::heading_bug)) {
        aircraft.autopilot.heading_bug_deg = heading_deg_;
    }
    turn_with_knob(aircraft);
}

void Pilot::turn_with_knob(Aircraft& aircraft) const {
    Autopilot& autopilot = aircraft.autopilot;
    if (aircraft.hands.holds(ClientGroup::autopilot)) {
        autopilot.turn_knob_deg = 0;
        return;
    }
    const double true_deg = heading_deg_ + kMagneticVariationDeg;
    autopilot.turn_knob_deg = AttitudeLoops::bank_for_heading(true_deg, 20.0, aircraft.airframe);
    if (autopilot.heading_hold && aircraft.hands.holds(ClientGroup::heading_bug)) {
        autopilot.heading_hold = false;
        autopilot.wing_leveler = true;
    }
}

void Pilot::turn_left_to(Aircraft& aircraft, double heading_deg, double rate_deg, double dt_s) {
    const double left_to_go = wrap360(heading_deg_ - heading_deg);
    if (left_to_go > 0.01 && left_to_go < 300.0) {
        set_heading(aircraft, heading_deg_ - std::min(left_to_go, rate_deg * dt_s));
    }
    turn_with_knob(aircraft);
}

void Pilot::mind_autopilot(Aircraft& aircraft, double height_m, double heading_deg, double dt_s) {
    turn_with_knob(aircraft);
    if (aircraft.autopilot.flying()) {
        loops_.restart(aircraft.controls.elevator, aircraft.airframe.pitch_deg());
        return;
    }
    const double climb_mps = std::clamp(0.10 * (height_m - aircraft.airframe.height_m()), -4.0, 4.0);
    const double true_deg = heading_deg + kMagneticVariationDeg;
    fly_climb(aircraft, climb_mps, AttitudeLoops::bank_for_heading(true_deg, 20.0, aircraft.airframe), dt_s);
}

void Pilot::steer_on_runway(Aircraft& aircraft) const {
    const RunwayPlace here = aircraft.airframe.runway_place();
    const double wanted_deg = kRunwayHeadingDeg - std::clamp(here.across_m * 1.2, -12.0, 12.0);
    const double error_deg = wrap180(wanted_deg - aircraft.airframe.heading_deg());
    aircraft.pilot_stick.rudder = std::clamp(0.035 * error_deg - 0.45 * aircraft.airframe.yaw_rate(), -0.7, 0.7);
}

void Pilot::start_path(std::span<const RunwayPlace> path) {
    path_length_ = std::min(path.size(), kPathPlaces);
    std::copy_n(path.begin(), path_length_, path_.begin());
    next_ = 0;
}

bool Pilot::taxi(Aircraft& aircraft, double speed_mps, double dt_s) {
    set_parking_brake(aircraft, false);
    const RunwayPlace here = aircraft.airframe.runway_place();
    const double speed = rolling_mps(aircraft);
    const double reach_m = 3.0 + 0.9 * std::max(0.0, speed);
    const auto distance_to = [&](const RunwayPlace& place) {
        return std::hypot(place.along_m - here.along_m, place.across_m - here.across_m);
    };
    while (next_ + 1 < path_length_ && distance_to(path_[next_]) < reach_m) {
        ++next_;
    }
    const RunwayPlace& goal = path_[next_];
    const bool last = next_ + 1 >= path_length_;
    const double distance = distance_to(goal);
    const double bearing = kRunwayHeadingDeg + degrees(std::atan2(goal.across_m - here.across_m,  //
                                                                  goal.along_m - here.along_m));
    const double off_deg = wrap180(bearing - aircraft.airframe.heading_deg());
    const bool arrived = last && (distance < kArrivedM || (distance < 8.0 && std::abs(off_deg) > 90.0));

    double wanted_speed = arrived ? 0.0 : speed_mps;
    wanted_speed = std::min(wanted_speed, std::abs(off_deg) > 25.0 ? kTurnSpeedMps : speed_mps);
    // Slow down in time for the next corner or for the end.
    const double corner_speed = last ? 0.3 : kTurnSpeedMps;
    wanted_speed =
        std::min(wanted_speed, std::sqrt(corner_speed * corner_speed + 2.0 * 0.8 * std::max(0.0, distance - 2.0)));
    const double error = wanted_speed - speed;
    set_throttle(aircraft, arrived ? 0.0 : std::clamp(0.05 + 0.06 * error, 0.0, 0.30), dt_s);
    set_brakes(aircraft, arrived ? 0.22 : std::clamp(-0.18 * (error + 0.4), 0.0, 0.5));

    const double turn_rate = std::min(kTurnRate, kTurnAcceleration / std::max(1.0, speed));
    const double sharpest = std::atan(turn_rate * kWheelBaseM / std::max(1.0, speed));
    const double steer = arrived ? 0.0 : std::clamp(0.012 * off_deg, -sharpest, sharpest);
    aircraft.pilot_stick = {};
    aircraft.pilot_stick.rudder = std::clamp(steer / kNoseWheelThrow * (1.0 + speed * speed / 36.0), -1.0, 1.0);
    return arrived && std::abs(speed) < 0.06;
}

}  // namespace simhost
