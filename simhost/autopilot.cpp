#include "simhost/autopilot.h"

#include <cmath>

#include "simhost/units.h"

namespace simhost {

namespace {

constexpr double kBankLimitDeg = 20.0;
constexpr double kBeamInterceptDeg = 32.0;
constexpr double kMinimumHeightM = 12.0;
constexpr double kDefaultClimbFpm = 700.0;

}  // namespace

void AttitudeLoops::restart(double elevator, double pitch_deg) {
    elevator_held_ = elevator;
    pitch_held_deg_ = pitch_deg;
}

StickWish AttitudeLoops::hold(double pitch_deg, double bank_deg, const Airframe& airframe, double dt_s) {
    const double speed = std::max(20.0, airframe.indicated_airspeed_mps());
    const double effect = std::clamp((45.0 / speed) * (45.0 / speed), 0.4, 3.0);
    const double pitch_error = pitch_deg - airframe.pitch_deg();
    elevator_held_ = std::clamp(elevator_held_ + 0.030 * effect * pitch_error * dt_s, -0.8, 0.8);
    StickWish wish;
    // A turn needs some more elevator than level flight.
    const double turning = 0.25 * (1.0 / std::max(0.5, std::cos(radians(airframe.bank_deg()))) - 1.0);
    wish.elevator = elevator_held_ + turning + effect * (0.040 * pitch_error - 0.45 * airframe.pitch_rate());
    const double bank_error = bank_deg - airframe.bank_deg();
    wish.aileron = std::sqrt(effect) * (0.022 * bank_error - 0.14 * airframe.roll_rate());
    wish.rudder = 2.2 * airframe.sideslip() - 0.25 * (airframe.yaw_rate() - radians(airframe.turn_rate_deg()));
    wish.elevator = std::clamp(wish.elevator, -0.9, 0.9);
    wish.aileron = std::clamp(wish.aileron, -0.6, 0.6);
    wish.rudder = std::clamp(wish.rudder, -0.6, 0.6);
    return wish;
}

double AttitudeLoops::pitch_for_climb(double climb_mps, const Airframe& airframe, double dt_s) {
    const double error_mps = climb_mps - airframe.climb_mps();
    // The slower the flight, the more pitch a change of climb needs.
    const double effect = 50.0 / std::max(25.0, airframe.true_airspeed_mps());
    const double learned = 0.50 * effect * std::clamp(error_mps, -3.0, 3.0) * dt_s;
    pitch_held_deg_ = std::clamp(pitch_held_deg_ + learned, -9.0, 13.0);
    return std::clamp(pitch_held_deg_ + 0.85 * effect * std::clamp(error_mps, -5.0, 5.0), -9.0, 13.0);
}

double AttitudeLoops::bank_for_heading(double heading_deg, double limit_deg, const Airframe& airframe) {
    return std::clamp(1.1 * wrap180(heading_deg - airframe.heading_deg()), -limit_deg, limit_deg);
}

double AttitudeLoops::bank_for_track(double track_deg, double limit_deg, const Airframe& airframe) {
    return std::clamp(1.3 * wrap180(track_deg - airframe.track_deg()), -limit_deg, limit_deg);
}

void Autopilot::disengage() {
    master = wing_leveler = heading_hold = nav_hold = approach_hold = false;
    glide_slope_hold = back_course_hold = altitude_hold = attitude_hold = vertical_speed_hold = false;
}

double Autopilot::wanted_bank(const Airframe& airframe, const NavReceiver& nav, double obs_deg) {
    const bool tracking = nav_hold || approach_hold || back_course_hold;
    beam_captured_ = tracking && nav.good() && (beam_captured_ || std::abs(nav.needle) < 120.0);
    if (beam_captured_) {
        // On the back course of a localizer the beam is flown the other way, with the needle's sense reversed.
        const bool reversed = nav.localizer && back_course_hold;
        const double beam_deg = kRunwayHeadingDeg - kMagneticVariationDeg + (reversed ? 180.0 : 0.0);
        course_deg = nav.localizer ? wrap360(beam_deg) : obs_deg;
        const double gain = (nav.localizer ? 9.0 : 2.5) * (reversed ? -1.0 : 1.0);
        const double turn_in = std::clamp(gain * nav.deviation_deg, -kBeamInterceptDeg, kBeamInterceptDeg);
        return AttitudeLoops::bank_for_track(course_deg + kMagneticVariationDeg + turn_in, kBankLimitDeg, airframe);
    }
    if (heading_hold || (tracking && !wing_leveler)) {
        return AttitudeLoops::bank_for_heading(heading_bug_deg + kMagneticVariationDeg, kBankLimitDeg, airframe);
    }
    return std::clamp(turn_knob_deg, -kBankLimitDeg, kBankLimitDeg);
}

double Autopilot::wanted_climb(const Airframe& airframe, const NavReceiver& nav) {
    const bool sloping = approach_hold || glide_slope_hold;
    slope_captured_ =
        sloping && beam_captured_ && nav.glide_slope && (slope_captured_ || std::abs(nav.slope_deviation_deg) < 0.12);
    if (slope_captured_) {
        altitude_hold = false;
        const double along_slope = -airframe.ground_speed_mps() * std::tan(radians(kGlidePathDeg));
        return along_slope + std::clamp(4.0 * nav.slope_deviation_deg, -2.5, 2.5);
    }
    if (altitude_hold) {
        const double set_fpm = vertical_speed_fpm == 0 ? kDefaultClimbFpm : std::abs(vertical_speed_fpm);
        const double limit = std::min(set_fpm, 1500.0) * kMpsPerFpm;
        return std::clamp(0.10 * (altitude_m - airframe.altitude_m()), -limit, limit);
    }
    return std::clamp(vertical_speed_fpm, -2000.0, 1500.0) * kMpsPerFpm;
}

void Autopilot::step(const Airframe& airframe, const NavReceiver& nav, bool powered, double obs_deg, double dt_s) {
    const bool engaged = master && powered && airframe.height_m() > kMinimumHeightM;
    if (engaged && !flying_) {
        loops_.restart(wish_.elevator, airframe.pitch_deg());
        held_pitch_deg_ = airframe.pitch_deg();
    }
    flying_ = engaged;
    if (!engaged) {
        beam_captured_ = slope_captured_ = false;
        director_pitch_deg_ = lag(director_pitch_deg_, 0.0, 0.5, dt_s);
        director_bank_deg_ = lag(director_bank_deg_, 0.0, 0.5, dt_s);
        return;
    }
    const double bank_deg = wanted_bank(airframe, nav, obs_deg);
    const double climb_mps = wanted_climb(airframe, nav);
    const bool path = slope_captured_ || altitude_hold || vertical_speed_hold;
    const double pitch_deg = path ? loops_.pitch_for_climb(climb_mps, airframe, dt_s) : held_pitch_deg_;
    wish_ = loops_.hold(pitch_deg, bank_deg, airframe, dt_s);
    director_pitch_deg_ = lag(director_pitch_deg_, pitch_deg, 0.5, dt_s);
    director_bank_deg_ = lag(director_bank_deg_, bank_deg, 0.5, dt_s);
}

}  // namespace simhost
