#pragma once

#include <cstdint>
#include <optional>

#include "platform/event_loop.h"

namespace bench {

inline constexpr int kQuartersPerStep = 4;
inline constexpr int kStepsPerTurn = 1080;
inline constexpr int kQuartersPerTurn = kStepsPerTurn * kQuartersPerStep;

// A needle on a stepper motor that turns at one speed from where it stands to where it was sent. Positions are quarter
// steps (4320 to the turn) counted from the zero mark. Where it stands is worked out from the time when asked, so that
// hours cost nothing.
class Stepper {
  public:
    explicit Stepper(int step_time_us) : step_time_us_(step_time_us) {}

    // Time of one whole step, in microseconds, above 0. A needle on its way goes on at the new speed.
    void set_step_time(int step_time_us, platform::TimePoint now);
    int step_time_us() const { return step_time_us_; }

    // Sends the needle to a position. While it looks for its zero mark, it goes there afterwards.
    void move_to(int quarters, platform::TimePoint now);
    // Sends the needle to its zero mark, where it forgets the steps it has lost, and waits for the next position.
    void find_zero(platform::TimePoint now);
    // The needle is where it is told to be, at once (power-on).
    void place(int quarters, platform::TimePoint now);

    // Where the motor believes the needle to be.
    double position(platform::TimePoint now) const;
    // Where the motor goes or stands.
    int target() const { return after_zero_.value_or(to_); }
    bool moving(platform::TimePoint now) const;
    bool finding_zero(platform::TimePoint now) const;

    // The needle is knocked out of place by so many quarter steps, which the motor does not know.
    void lose_steps(int quarters) { lost_ += quarters; }
    // By how much the needle really stands beside the position.
    int lost_steps(platform::TimePoint now) const;

  private:
    platform::Duration travel_time(double from, int to) const;
    platform::TimePoint zero_reached() const { return started_ + travel_time(from_, 0); }
    double on_the_way(double from, int to, platform::TimePoint started, platform::TimePoint now) const;
    void settle(platform::TimePoint now);

    int step_time_us_;
    platform::TimePoint started_{};
    double from_ = 0;
    int to_ = 0;
    bool zero_first_ = false;
    std::optional<int> after_zero_;
    int lost_ = 0;
};

}  // namespace bench
