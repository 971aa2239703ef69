#pragma once

#include "simhost/weather.h"
#include "simhost/world.h"

namespace simhost {

// What acts on the airframe in a step. Surface positions run from -1 to 1; positive moves the nose up, rolls to the
// right, turns the nose to the right.
struct AirframeInputs {
    double elevator = 0;
    double aileron = 0;
    double rudder = 0;
    double elevator_trim = 0;
    double aileron_trim = 0;
    double rudder_trim = 0;
    double flaps = 0;  // 0 up .. 1 full
    double gear = 1;   // 0 up .. 1 down and locked
    double brakes = 0;
    double thrust_n = 0;
};

// The rigid aircraft: a light single with its centre of gravity, its wing and its three wheels. Six degrees of freedom
// with linear derivatives and a stall; on the ground the wheels carry, roll, brake and steer.
class Airframe {
  public:
    // Puts the aircraft on its wheels, at rest.
    void place_on_ground(RunwayPlace place, double true_heading_deg);
    void step(const AirframeInputs& inputs, const Weather& weather, double dt_s);

    Place place() const { return place_; }
    RunwayPlace runway_place() const { return runway_place_of(place_); }
    double height_m() const { return height_m_; }  // of the wheels above ground
    double altitude_m() const { return kFieldElevationM + height_m_; }
    double pitch_deg() const;
    double bank_deg() const;                  // right wing down is positive
    double heading_deg() const;               // true, 0..360
    double track_deg() const;                 // true, 0..360
    double pitch_rate() const { return q_; }  // radians a second
    double roll_rate() const { return p_; }
    double yaw_rate() const { return r_; }
    double turn_rate_deg() const;  // degrees a second, right is positive

    double true_airspeed_mps() const { return true_airspeed_; }
    double indicated_airspeed_mps() const { return indicated_airspeed_; }
    double ground_speed_mps() const;
    double forward_speed_mps() const;  // along the nose, over ground
    double climb_mps() const { return climb_; }
    double angle_of_attack() const { return alpha_; }  // radians
    double sideslip() const { return beta_; }

    // What an occupant feels, gravity included, in the axes of the aircraft, metres a second squared.
    double forward_acceleration() const { return forward_acceleration_; }
    double lateral_acceleration() const { return lateral_acceleration_; }  // to the right
    double normal_acceleration() const { return normal_acceleration_; }    // up; one g at rest
    double load_factor() const;
    double touchdown_climb_mps() const { return touchdown_climb_; }

    bool on_ground() const { return on_ground_; }
    bool stall_warning() const { return stall_warning_; }

  private:
    struct Axes;
    struct Forces;
    void meet_air(const Axes& axes, const Weather& weather);
    Forces air_forces(const AirframeInputs& inputs, double density) const;
    void add_ground_forces(const AirframeInputs& inputs, const Axes& axes, Forces& forces);
    void move(const Axes& axes, const Forces& forces, double dt_s);
    void steer_on_ground(const AirframeInputs& inputs, double dt_s);

    Place place_;
    double height_m_ = 0;
    double v_north_ = 0;
    double v_east_ = 0;
    double climb_ = 0;
    double roll_ = 0;
    double pitch_ = 0;
    double heading_ = 0;
    double p_ = 0;
    double q_ = 0;
    double r_ = 0;

    double air_u_ = 0;
    double air_v_ = 0;
    double air_w_ = 0;
    double air_roll_rate_ = 0;
    double true_airspeed_ = 0;
    double indicated_airspeed_ = 0;
    double alpha_ = 0;
    double beta_ = 0;
    double wheel_load_ = 1;  // share of the weight that the wheels carry
    double forward_acceleration_ = 0;
    double lateral_acceleration_ = 0;
    double normal_acceleration_ = kNormalAtRest;
    double touchdown_climb_ = 0;
    bool on_ground_ = true;
    bool stall_warning_ = false;

    static constexpr double kNormalAtRest = 9.80665;
};

}  // namespace simhost
