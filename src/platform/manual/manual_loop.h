#pragma once

#include "platform/event_loop.h"

namespace platform::manual {

// The event loop in virtual time: time moves only by advance(), by a wait inside a task, or by pass_time().
class ManualLoop : public EventLoop {
  public:
    TimePoint now() const override { return now_; }

    // Runs exactly what falls due in the next `duration`, in order; ends at the new time, or later when a task has
    // waited longer. Ends at once when the loop is stopped.
    void advance(Duration duration);

    // Moves the time without running anything: what falls due meanwhile is late.
    void pass_time(Duration duration) { now_ += duration; }

  protected:
    // Jumps to `until`. Throws std::logic_error when nothing can ever happen.
    void wait(std::optional<TimePoint> until) override;

  private:
    TimePoint now_{std::chrono::hours(1)};
};

}  // namespace platform::manual
