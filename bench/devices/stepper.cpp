#include "bench/devices/stepper.h"

#include <cmath>

namespace bench {

namespace {
constexpr double kNanosecondsPerMicrosecond = 1000.0;
}

platform::Duration Stepper::travel_time(double from, int to) const {
    const double steps = std::abs(to - from) / kQuartersPerStep;
    return platform::Duration(static_cast<std::int64_t>(std::ceil(steps * step_time_us_ * kNanosecondsPerMicrosecond)));
}

double Stepper::on_the_way(double from, int to, platform::TimePoint started, platform::TimePoint now) const {
    if (now >= started + travel_time(from, to)) {
        return to;
    }
    const double passed_us = static_cast<double>((now - started).count()) / kNanosecondsPerMicrosecond;
    const double moved = passed_us / step_time_us_ * kQuartersPerStep;
    return to > from ? from + moved : from - moved;
}

double Stepper::position(platform::TimePoint now) const {
    if (zero_first_ && after_zero_ && now >= zero_reached()) {
        return on_the_way(0, *after_zero_, zero_reached(), now);
    }
    return on_the_way(from_, to_, started_, now);
}

bool Stepper::moving(platform::TimePoint now) const {
    return position(now) != target();
}

bool Stepper::finding_zero(platform::TimePoint now) const {
    return zero_first_ && now < zero_reached();
}

int Stepper::lost_steps(platform::TimePoint now) const {
    return zero_first_ && now >= zero_reached() ? 0 : lost_;
}

// Turns what has happened up to now into a new start. A search for the zero mark that is under way stays one.
void Stepper::settle(platform::TimePoint now) {
    const double position_now = position(now);
    const int lost_now = lost_steps(now);
    const int target_now = target();
    const bool searching = finding_zero(now);
    started_ = now;
    from_ = position_now;
    lost_ = lost_now;
    zero_first_ = searching;
    if (!searching) {
        to_ = target_now;
        after_zero_.reset();
    }
}

void Stepper::set_step_time(int step_time_us, platform::TimePoint now) {
    settle(now);
    step_time_us_ = step_time_us;
}

void Stepper::move_to(int quarters, platform::TimePoint now) {
    settle(now);
    if (zero_first_) {
        after_zero_ = quarters;
    } else {
        to_ = quarters;
    }
}

void Stepper::find_zero(platform::TimePoint now) {
    settle(now);
    zero_first_ = true;
    to_ = 0;
    after_zero_.reset();
}

void Stepper::place(int quarters, platform::TimePoint now) {
    started_ = now;
    from_ = quarters;
    to_ = quarters;
    zero_first_ = false;
    after_zero_.reset();
    lost_ = 0;
}

}  // namespace bench
