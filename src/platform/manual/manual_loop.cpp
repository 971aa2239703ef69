#include "platform/manual/manual_loop.h"

#include <algorithm>
#include <stdexcept>

namespace platform::manual {

void ManualLoop::advance(Duration duration) {
    const TimePoint end = now_ + duration;
    try {
        while (!stopped()) {
            if (run_one_due()) {
                continue;
            }
            const std::optional<TimePoint> next = next_due();
            if (!next || *next > end) {
                break;
            }
            now_ = std::max(now_, *next);
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
