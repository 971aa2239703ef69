#pragma once

#include <optional>

#include "platform/event_loop.h"

namespace bench {

// One axis of a yoke as a thing of mass and friction between two stops: a motor draws it towards a target with a spring
// whose stiffness is the commanded force, and a hand may push it, hold it somewhere, or draw it somewhere.
//
// Positions are raw units of the sensor, 0..1023; forces are in units of 511 for the full force of motor and hand. It
// is worked out in steps of 2 ms up to the moment that is looked at, the same whatever the moments are.
class ForceColumn {
  public:
    static constexpr double kLowStop = 20;
    static constexpr double kHighStop = 1003;
    static constexpr double kFullForce = 511;

    // --- The motor ------------------------------------------------------------------------------------------------

    // Where to, and the force of the spring: 1150 is the full one at half the travel.
    void drive(int target, int force, platform::TimePoint now);
    // The most that the motor exerts, and what it exerts at least or not at all; both 0..511.
    void set_limits(int maximum, int threshold, platform::TimePoint now);
    // How near to its target the motor leaves it alone, raw units.
    void set_deadband(int raw, platform::TimePoint now);
    void switch_motor(bool on, platform::TimePoint now);

    // --- The hand -------------------------------------------------------------------------------------------------

    // Pushes with a force, -511..511; positive towards higher raw values. 0 lets go.
    void push(double force, platform::TimePoint now);
    // Holds it at a place, whatever the motor does.
    void hold(double raw, platform::TimePoint now);
    // Draws it towards a place as an arm does: like a spring, with the full force at most.
    void draw(double raw, platform::TimePoint now);
    void let_go(platform::TimePoint now);

    // --- What is to be seen ---------------------------------------------------------------------------------------

    double position(platform::TimePoint now) const;
    // What hand and motor exert against each other, as the yoke measures it: positive when the hand pushes towards
    // higher raw values. -511..511.
    int measured_force(platform::TimePoint now) const;
    bool motor_on() const { return motor_on_; }
    bool held() const { return held_at_ || drawn_to_ || push_ != 0; }
    // The hand's force where the column last stood; 0 of a hand that holds.
    double pushed_with() const { return hand_force(); }
    int target() const { return target_; }
    int force() const { return force_; }
    int maximum() const { return maximum_; }

    // Switched off and on: no target, no force, the motor off. Where it stands and what the hand does stays.
    void power_on(platform::TimePoint now);

  private:
    void catch_up(platform::TimePoint now) const;
    void step() const;
    double motor_force() const;
    double hand_force() const;
    bool at_rest() const;

    int target_ = 512;
    int force_ = 0;
    int maximum_ = 0;
    int threshold_ = 0;
    int deadband_ = 0;
    bool motor_on_ = false;
    double push_ = 0;
    std::optional<double> held_at_;
    std::optional<double> drawn_to_;

    // Worked out when it is looked at.
    mutable platform::TimePoint time_{};
    mutable double position_ = 511.5;
    mutable double speed_ = 0;  // raw units a second
};

}  // namespace bench
