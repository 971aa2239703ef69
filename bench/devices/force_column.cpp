#include "bench/devices/force_column.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace bench {

namespace {

constexpr std::chrono::milliseconds kStep{2};
constexpr double kStepS = 0.002;
constexpr double kMass = 0.0007;         // force units * s^2 / raw unit
constexpr double kStaticFriction = 2.5;  // force units
constexpr double kSlidingFriction = 2;
constexpr double kFullSpringForce = 1150;
constexpr double kFullStiffness = 1.0;  // force units a raw unit, at the full spring force
constexpr double kBearingDamping = 0.002;
constexpr double kServoDamping = 0.45;  // share of the critical damping
constexpr double kHandStiffness = 2;    // force units a raw unit
constexpr double kHandDamping = 0.05;   // force units * s / raw unit
constexpr double kRestSpeed = 2;        // raw units a second

}  // namespace

void ForceColumn::drive(int target, int force, platform::TimePoint now) {
    catch_up(now);
    target_ = target;
    force_ = force;
}

void ForceColumn::set_limits(int maximum, int threshold, platform::TimePoint now) {
    catch_up(now);
    maximum_ = maximum;
    threshold_ = threshold;
}

void ForceColumn::set_deadband(int raw, platform::TimePoint now) {
    catch_up(now);
    deadband_ = raw;
}

void ForceColumn::switch_motor(bool on, platform::TimePoint now) {
    catch_up(now);
    motor_on_ = on;
}

void ForceColumn::push(double force, platform::TimePoint now) {
    catch_up(now);
    push_ = std::clamp(force, -kFullForce, kFullForce);
    held_at_.reset();
    drawn_to_.reset();
}

void ForceColumn::hold(double raw, platform::TimePoint now) {
    catch_up(now);
    push_ = 0;
    drawn_to_.reset();
    held_at_ = std::clamp(raw, kLowStop, kHighStop);
    position_ = *held_at_;
    speed_ = 0;
}

void ForceColumn::draw(double raw, platform::TimePoint now) {
    catch_up(now);
    push_ = 0;
    held_at_.reset();
    drawn_to_ = raw;
}

void ForceColumn::let_go(platform::TimePoint now) {
    push(0, now);
}

double ForceColumn::position(platform::TimePoint now) const {
    catch_up(now);
    return position_;
}

int ForceColumn::measured_force(platform::TimePoint now) const {
    catch_up(now);
    return static_cast<int>(std::lround(held_at_ ? -motor_force() : hand_force()));
}

void ForceColumn::power_on(platform::TimePoint now) {
    catch_up(now);
    force_ = 0;
    maximum_ = 0;
    motor_on_ = false;
}

double ForceColumn::motor_force() const {
    const double way = target_ - position_;
    if (!motor_on_ || std::fabs(way) <= deadband_) {
        return 0;
    }
    const double wanted = way * force_ / kFullSpringForce * kFullStiffness;
    const double exerted = std::clamp<double>(wanted, -maximum_, maximum_);
    return std::fabs(exerted) < threshold_ ? 0 : exerted;
}

double ForceColumn::hand_force() const {
    return drawn_to_ ? std::clamp(kHandStiffness * (*drawn_to_ - position_), -kFullForce, kFullForce) : push_;
}

bool ForceColumn::at_rest() const {
    return speed_ == 0 && (held_at_ || std::fabs(motor_force() + hand_force()) <= kStaticFriction);
}

void ForceColumn::catch_up(platform::TimePoint now) const {
    while (time_ + kStep <= now) {
        if (at_rest()) {
            // Nothing moves before something new comes.
            time_ += (now - time_) / kStep * kStep;
            return;
        }
        step();
        time_ += kStep;
    }
}

void ForceColumn::step() const {
    const double motor = motor_force();
    const double stiffness = motor_on_ ? force_ / kFullSpringForce * kFullStiffness : 0;
    const double damping = kBearingDamping + 2 * kServoDamping * std::sqrt(stiffness * kMass);
    const double hand = hand_force();
    double net = motor + hand - (drawn_to_ ? damping + kHandDamping : damping) * speed_;
    const double direction = speed_ != 0 ? speed_ : net;
    net -= std::copysign(kSlidingFriction, direction);
    const double before = speed_;
    speed_ += net / kMass * kStepS;
    // Friction stops it and does not turn it round.
    const bool turned = before * speed_ < 0;
    if ((turned || std::fabs(speed_) < kRestSpeed) && std::fabs(motor + hand) <= kStaticFriction) {
        speed_ = 0;
    }
    position_ += speed_ * kStepS;
    if (position_ <= kLowStop || position_ >= kHighStop) {
        position_ = std::clamp(position_, kLowStop, kHighStop);
        speed_ = 0;
    }
}

}  // namespace bench
