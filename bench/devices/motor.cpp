#include "bench/devices/motor.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace bench {

double Motor::in_range(double position) const {
    if (travel_ == Travel::between_ends) {
        return std::clamp(position, lowest_, highest_);
    }
    const double rest = std::fmod(position, highest_);
    return rest < 0 ? rest + highest_ : rest;
}

void Motor::move_to(double target, platform::TimePoint now) {
    from_ = position(now);
    started_ = now;
    target_ = in_range(target);
    way_ = target_ - from_;
    if (travel_ == Travel::round) {
        way_ = std::remainder(way_, highest_);
    }
}

void Motor::place(double position) {
    target_ = in_range(position);
    from_ = target_;
    way_ = 0;
}

void Motor::set_speed(double positions_per_second, platform::TimePoint now) {
    const double target_now = target_;
    from_ = position(now);
    way_ = 0;
    speed_ = positions_per_second;
    move_to(target_now, now);
}

double Motor::position(platform::TimePoint now) const {
    const double passed_s = std::chrono::duration<double>(now - started_).count();
    const double moved = speed_ * passed_s;
    if (moved >= std::fabs(way_)) {
        return target_;
    }
    return in_range(from_ + std::copysign(moved, way_));
}

}  // namespace bench
