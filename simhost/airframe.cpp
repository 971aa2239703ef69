#include "simhost/airframe.h"

#include <cmath>

#include "simhost/units.h"

namespace simhost {

namespace {

// A four-seat single with retractable gear.
constexpr double kMassKg = 1150.0;
constexpr double kWingAreaM2 = 16.2;
constexpr double kSpanM = 10.9;
constexpr double kChordM = 1.5;
constexpr double kInertiaRoll = 1285.0;
constexpr double kInertiaPitch = 1825.0;
constexpr double kInertiaYaw = 2670.0;

constexpr double kElevatorThrow = 0.45;
constexpr double kAileronThrow = 0.30;
constexpr double kRudderThrow = 0.28;
constexpr double kTrimThrow = 0.22;
constexpr double kNoseWheelThrow = 0.45;  // at a walk; less at speed

constexpr double kStallAngle = 0.29;
constexpr double kStallWarningAngle = 0.225;
constexpr double kStallWarningReset = 0.205;

// Wheels: the struts sink 12 cm under the weight; the nose rests a little high.
constexpr double kStrutSinkM = 0.12;
constexpr double kStrutStiffness = kMassKg * kGravity / kStrutSinkM;
constexpr double kStrutDamping = 1.2 * kMassKg * 9.0;
constexpr double kRestPitch = 0.035;
constexpr double kMainWheelArmM = 0.28;
constexpr double kWheelBaseM = 1.7;
constexpr double kTyreGrip = 4.0;  // metres a second squared

constexpr double kSeaLevelDensity = 1.225;

}  // namespace

// The directions of the nose, the right wing and the belly in north, east, down.
struct Airframe::Axes {
    double nose[3];
    double wing[3];
    double belly[3];

    Axes(double roll, double pitch, double heading) {
        const double sr = std::sin(roll), cr = std::cos(roll);
        const double sp = std::sin(pitch), cp = std::cos(pitch);
        const double sh = std::sin(heading), ch = std::cos(heading);
        nose[0] = cp * ch, nose[1] = cp * sh, nose[2] = -sp;
        wing[0] = sr * sp * ch - cr * sh, wing[1] = sr * sp * sh + cr * ch, wing[2] = sr * cp;
        belly[0] = cr * sp * ch + sr * sh, belly[1] = cr * sp * sh - sr * ch, belly[2] = cr * cp;
    }
};

// Forces in the axes of the aircraft (nose, right wing, belly), the ground's in north, east, down; moments about the
// axes of the aircraft.
struct Airframe::Forces {
    double x = 0, y = 0, z = 0;
    double north = 0, east = 0, down = 0;
    double roll = 0, pitch = 0, yaw = 0;
};

void Airframe::place_on_ground(RunwayPlace place, double true_heading_deg) {
    *this = Airframe();
    place_ = place_of(place);
    heading_ = radians(wrap360(true_heading_deg));
    pitch_ = kRestPitch;
    height_m_ = -kStrutSinkM;
}

double Airframe::pitch_deg() const {
    return degrees(pitch_);
}
double Airframe::bank_deg() const {
    return degrees(roll_);
}
double Airframe::heading_deg() const {
    return wrap360(degrees(heading_));
}
double Airframe::ground_speed_mps() const {
    return std::hypot(v_north_, v_east_);
}
double Airframe::load_factor() const {
    return normal_acceleration_ / kGravity;
}

double Airframe::track_deg() const {
    return ground_speed_mps() < 1.0 ? heading_deg() : wrap360(degrees(std::atan2(v_east_, v_north_)));
}

double Airframe::forward_speed_mps() const {
    return v_north_ * std::cos(heading_) + v_east_ * std::sin(heading_);
}

double Airframe::turn_rate_deg() const {
    return degrees((q_ * std::sin(roll_) + r_ * std::cos(roll_)) / std::max(0.2, std::cos(pitch_)));
}

void Airframe::meet_air(const Axes& axes, const Weather& weather) {
    const double north = v_north_ - weather.air_north_mps(height_m_);
    const double east = v_east_ - weather.air_east_mps(height_m_);
    const double down = -climb_ + weather.air_up_mps(height_m_);
    const auto along = [&](const double(&axis)[3]) { return axis[0] * north + axis[1] * east + axis[2] * down; };
    air_u_ = along(axes.nose);
    air_v_ = along(axes.wing);
    air_w_ = along(axes.belly);
    air_roll_rate_ = weather.air_roll_rate(height_m_);
    true_airspeed_ = std::sqrt(air_u_ * air_u_ + air_v_ * air_v_ + air_w_ * air_w_);
    const double density_ratio = weather.density(altitude_m()) / kSeaLevelDensity;
    indicated_airspeed_ = std::max(0.0, air_u_) * std::sqrt(density_ratio);
    // Below walking pace there is no flow to speak of.
    const double flow = std::clamp((true_airspeed_ - 2.0) / 8.0, 0.0, 1.0);
    alpha_ = flow * std::atan2(air_w_, std::max(air_u_, 1.0));
    beta_ = flow * std::atan2(air_v_, std::max(air_u_, 1.0));
}

Airframe::Forces Airframe::air_forces(const AirframeInputs& inputs, double density) const {
    const double pressure = 0.5 * density * true_airspeed_ * true_airspeed_;
    const double wing_force = pressure * kWingAreaM2;
    const double speed = std::max(true_airspeed_, 12.0);
    const double pitch_damping = q_ * kChordM / (2.0 * speed);
    const double roll_damping = (p_ - air_roll_rate_) * kSpanM / (2.0 * speed);
    const double yaw_damping = r_ * kSpanM / (2.0 * speed);
    const double elevator = inputs.elevator * kElevatorThrow + inputs.elevator_trim * kTrimThrow;
    const double aileron = inputs.aileron * kAileronThrow + inputs.aileron_trim * 0.06;
    const double rudder = inputs.rudder * kRudderThrow + inputs.rudder_trim * 0.10;

    const double attached = 0.31 + 4.6 * alpha_ + 0.55 * inputs.flaps + 3.9 * pitch_damping + 0.40 * elevator;
    const double separation = 1.0 / (1.0 + std::exp(-(std::abs(alpha_) - kStallAngle) / 0.025));
    const double lift = (1.0 - separation) * attached + separation * 1.15 * std::sin(2.0 * alpha_);
    const double drag = 0.027 + 0.054 * lift * lift + 0.045 * inputs.flaps + 0.018 * inputs.gear +
                        1.2 * separation * std::sin(alpha_) * std::sin(alpha_) + 0.3 * beta_ * beta_;
    const double side = -0.35 * beta_ - 0.15 * rudder;

    Forces forces;
    forces.x = wing_force * (lift * std::sin(alpha_) - drag * std::cos(alpha_)) + inputs.thrust_n;
    forces.z = -wing_force * (lift * std::cos(alpha_) + drag * std::sin(alpha_));
    forces.y = wing_force * side;
    forces.pitch =
        wing_force * kChordM * (0.055 - 0.95 * alpha_ - 12.4 * pitch_damping + 1.20 * elevator - 0.06 * inputs.flaps);
    forces.roll = wing_force * kSpanM *
                  (-0.089 * beta_ - 0.47 * roll_damping + 0.10 * yaw_damping + 0.178 * aileron - 0.010 * rudder);
    forces.yaw = wing_force * kSpanM *
                 (0.068 * beta_ - 0.03 * roll_damping - 0.105 * yaw_damping - 0.012 * aileron + 0.066 * rudder);
    // The slipstream turns the nose a little to the left under power.
    forces.yaw -= 0.10 * inputs.thrust_n;
    return forces;
}

void Airframe::add_ground_forces(const AirframeInputs& inputs, const Axes& axes, Forces& forces) {
    wheel_load_ = 0;
    const double sink = -height_m_;
    const bool touched = sink > 0;
    if (touched && !on_ground_) {
        touchdown_climb_ = climb_;
    }
    on_ground_ = touched;
    if (!touched) {
        return;
    }
    // A strut damps the more the deeper it sinks, so that the first touch is soft.
    const double damping = kStrutDamping * std::min(1.0, sink / kStrutSinkM);
    const double carried = std::max(0.0, kStrutStiffness * sink - damping * climb_);
    forces.down -= carried;
    wheel_load_ = std::min(carried / (kMassKg * kGravity), 1.5);

    const double forward = forward_speed_mps();
    const double sideways = -v_north_ * std::sin(heading_) + v_east_ * std::cos(heading_);
    const double rolling = wheel_load_ * kMassKg * kGravity * (0.015 + 0.42 * inputs.brakes);
    const double braking = -rolling * std::tanh(forward / 0.08);
    const double gripping = -wheel_load_ * kMassKg * std::clamp(9.0 * sideways, -kTyreGrip, kTyreGrip);
    forces.north += braking * std::cos(heading_) - gripping * std::sin(heading_);
    forces.east += braking * std::sin(heading_) + gripping * std::cos(heading_);

    // The nose wheel holds the nose up, the main wheels behind the centre of gravity pull it down; both keep level.
    const double below_rest = kRestPitch - pitch_;
    const double nose_wheel = below_rest > 0 ? 45.0 * below_rest - 6.0 * q_ : 0.0;
    const double main_wheels = -std::clamp(-below_rest / 0.02, 0.0, 1.0) * kMainWheelArmM * carried;
    forces.pitch += std::min(1.0, wheel_load_ * 2.0) * kInertiaPitch * nose_wheel + main_wheels;
    forces.roll -= wheel_load_ * kInertiaRoll * (60.0 * roll_ + 8.0 * p_);
    (void)axes;
}

void Airframe::move(const Axes& axes, const Forces& forces, double dt_s) {
    const auto felt = [&](int i) {
        const double ground = i == 0 ? forces.north : i == 1 ? forces.east : forces.down;
        return (axes.nose[i] * forces.x + axes.wing[i] * forces.y + axes.belly[i] * forces.z + ground) / kMassKg;
    };
    const double north = felt(0);
    const double east = felt(1);
    const double down = felt(2);
    const auto along = [&](const double(&axis)[3]) { return axis[0] * north + axis[1] * east + axis[2] * down; };
    forward_acceleration_ = along(axes.nose);
    lateral_acceleration_ = along(axes.wing);
    normal_acceleration_ = -along(axes.belly);

    v_north_ += north * dt_s;
    v_east_ += east * dt_s;
    climb_ -= (down + kGravity) * dt_s;
    place_.north_m += v_north_ * dt_s;
    place_.east_m += v_east_ * dt_s;
    height_m_ += climb_ * dt_s;

    p_ += forces.roll / kInertiaRoll * dt_s;
    q_ += (forces.pitch / kInertiaPitch + p_ * r_ * (kInertiaYaw - kInertiaRoll) / kInertiaPitch) * dt_s;
    r_ += forces.yaw / kInertiaYaw * dt_s;
    const double turn = (q_ * std::sin(roll_) + r_ * std::cos(roll_)) / std::max(0.2, std::cos(pitch_));
    roll_ += (p_ + turn * std::sin(pitch_)) * dt_s;
    pitch_ += (q_ * std::cos(roll_) - r_ * std::sin(roll_)) * dt_s;
    heading_ = radians(wrap360(degrees(heading_ + turn * dt_s)));
    pitch_ = std::clamp(pitch_, -1.2, 1.2);
    roll_ = radians(wrap180(degrees(roll_)));
}

void Airframe::steer_on_ground(const AirframeInputs& inputs, double dt_s) {
    if (wheel_load_ < 0.05) {
        return;
    }
    const double forward = forward_speed_mps();
    const double steer = inputs.rudder * kNoseWheelThrow / (1.0 + forward * forward / 36.0);
    const double wanted_rate = forward * std::tan(steer) / kWheelBaseM;
    // A wheel that hardly rolls holds its ground; a rolling one follows in a moment.
    const double grip_s = 0.02 + 0.10 * std::min(1.0, std::abs(forward) / 2.0);
    r_ = lag(r_, wanted_rate, grip_s / std::min(1.0, wheel_load_), dt_s);
    if (inputs.brakes > 0.5 && std::abs(forward) < 0.04) {  // the brakes hold
        v_north_ = 0;
        v_east_ = 0;
    }
}

void Airframe::step(const AirframeInputs& inputs, const Weather& weather, double dt_s) {
    const Axes axes(roll_, pitch_, heading_);
    meet_air(axes, weather);
    Forces forces = air_forces(inputs, weather.density(altitude_m()));
    add_ground_forces(inputs, axes, forces);
    move(axes, forces, dt_s);
    steer_on_ground(inputs, dt_s);
    const double warning_angle = stall_warning_ ? kStallWarningReset : kStallWarningAngle;
    stall_warning_ = !on_ground_ && indicated_airspeed_ > 12.0 && alpha_ > warning_angle;
}

}  // namespace simhost
