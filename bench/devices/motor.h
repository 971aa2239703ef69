#pragma once

#include "platform/event_loop.h"

namespace bench {

// Something that a motor moves at one speed from where it stands to where it was sent: a card that turns by the shorter
// way round, or a pointer between two ends. Where it stands is worked out from the time when asked, so that hours cost
// nothing.
class Motor {
  public:
    enum class Travel { round, between_ends };

    // Round: positions 0..`highest`, where `highest` is 0 again. Between ends: `lowest`..`highest`.
    // `speed` is in positions a second, above 0.
    Motor(Travel travel, double lowest, double highest, double speed)
        : travel_(travel), lowest_(lowest), highest_(highest), speed_(speed) {}

    // A target beyond an end stands for the end, or goes round.
    void move_to(double target, platform::TimePoint now);
    // It is there at once: power-on, or a hand.
    void place(double position);
    // Moves the target by hand.
    void turn(double by) { place(target_ + by); }
    // Above 0. What is on its way goes on at the new speed.
    void set_speed(double positions_per_second, platform::TimePoint now);

    double position(platform::TimePoint now) const;
    double target() const { return target_; }
    bool moving(platform::TimePoint now) const { return position(now) != target_; }

  private:
    double in_range(double position) const;

    Travel travel_;
    double lowest_;
    double highest_;
    double speed_;
    double from_ = 0;
    double way_ = 0;  // signed
    double target_ = 0;
    platform::TimePoint started_{};
};

}  // namespace bench
