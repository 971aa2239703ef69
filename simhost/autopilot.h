#pragma once

#include "simhost/airframe.h"
#include "simhost/radios.h"

namespace simhost {

// Positions for stick and pedals, -1..1.
struct StickWish {
    double elevator = 0;
    double aileron = 0;
    double rudder = 0;
};

// The loops by which the autopilot and the scripted pilot hold attitude and flight path.
class AttitudeLoops {
  public:
    // Forgets what was learned, keeping `elevator` as the position to start from.
    void restart(double elevator, double pitch_deg);
    StickWish hold(double pitch_deg, double bank_deg, const Airframe& airframe, double dt_s);
    // The pitch attitude that brings the climb to `climb_mps`, between -9 and 13 degrees.
    double pitch_for_climb(double climb_mps, const Airframe& airframe, double dt_s);
    // The bank that turns the nose onto a true heading or the track onto a true track, no steeper than `limit_deg`.
    static double bank_for_heading(double heading_deg, double limit_deg, const Airframe& airframe);
    static double bank_for_track(double track_deg, double limit_deg, const Airframe& airframe);

  private:
    double elevator_held_ = 0;
    double pitch_held_deg_ = 0;
};

// The three-axis autopilot: its switches and values as they are set, and what it does with the stick.
class Autopilot {
  public:
    bool master = false;
    bool wing_leveler = false;
    bool heading_hold = false;
    bool nav_hold = false;
    bool approach_hold = false;
    bool glide_slope_hold = false;
    bool back_course_hold = false;
    bool altitude_hold = false;
    bool attitude_hold = false;
    bool vertical_speed_hold = false;
    bool yaw_damper = false;
    bool flight_director = false;
    double heading_bug_deg = 252;  // magnetic
    double turn_knob_deg = 0;      // the bank that the wing leveler holds
    double altitude_m = 900;
    double vertical_speed_fpm = 700;
    double airspeed_knots = 100;
    double course_deg = 252;  // magnetic, of the tracked beam

    // Works out the stick while the autopilot flies.
    void step(const Airframe& airframe, const NavReceiver& nav, bool powered, double obs_deg, double dt_s);
    // Tells where the stick stands while someone else moves it, so that the autopilot takes over without a jerk.
    void watch_stick(const StickWish& stick) { wish_ = stick; }
    // True while the autopilot moves the stick.
    bool flying() const { return flying_; }
    const StickWish& wish() const { return wish_; }
    // Where the flight director wants the aircraft, degrees.
    double director_pitch_deg() const { return director_pitch_deg_; }
    double director_bank_deg() const { return director_bank_deg_; }
    bool beam_captured() const { return beam_captured_; }
    bool slope_captured() const { return slope_captured_; }
    // Switches everything off.
    void disengage();

  private:
    double wanted_bank(const Airframe& airframe, const NavReceiver& nav, double obs_deg);
    double wanted_climb(const Airframe& airframe, const NavReceiver& nav);

    AttitudeLoops loops_;
    StickWish wish_;
    bool flying_ = false;
    bool beam_captured_ = false;
    bool slope_captured_ = false;
    double held_pitch_deg_ = 0;
    double director_pitch_deg_ = 0;
    double director_bank_deg_ = 0;
};

}  // namespace simhost
