#include "platform/manual/manual_loop.h"

#include <algorithm>
#include <stdexcept>

namespace platform::manual {

void ManualLoop::advance(Duration duration) {
    const TimePoint end = now_ + duration;
    try {
        // What falls due after the end waits, even when a task has taken so long that it is overdue by then.
        for (auto next = next_due(); !stopped() && next && *next <= end; next = next_due()) {
            now_ = std::max(now_, *next);
            run_one_due();
        }
    } catch (const LoopStopped&) {
        // A task that waited has been unwound.
    }
    now_ = std::max(now_, end);
}

void ManualLoop::wait(std::optional<TimePoint> until) {
    if (!until) {
        throw std::logic_error("a task waits for something that can never happen: no timer runs and nothing is queued");
    }
    now_ = std::max(now_, *until);
}

}  // namespace platform::manual
