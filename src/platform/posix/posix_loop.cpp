#include "platform/posix/posix_loop.h"

#include <poll.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <csignal>

#include "platform/posix/system_failure.h"

namespace platform::posix {

namespace {

// How long a wait for a descriptor sleeps before it looks after the page again.
constexpr Milliseconds kPageSlice{5};

timespec as_timespec(Duration duration) {
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(duration);
    const std::chrono::nanoseconds rest = duration - seconds;
    return {static_cast<time_t>(seconds.count()), static_cast<long>(rest.count())};
}

}  // namespace

PosixLoop::PosixLoop() : wake_up_(io_context_), signals_(io_context_, SIGINT, SIGTERM) {
    const int timer = ::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC);
    if (timer < 0) {
        throw_system_failure("No timer");
    }
    wake_up_.assign(timer);
    on_terminate = [this] { stop(); };
    await_wake_up();
    await_signal();
}

void PosixLoop::await_signal() {
    signals_.async_wait([this](const boost::system::error_code& error, int) {
        if (error) {
            return;
        }
        if (++signal_count_ == 1) {
            post([this] { on_terminate(); });
            await_signal();
        } else {
            stop();
            boost::system::error_code ignored;
            signals_.clear(ignored);
        }
    });
}

void PosixLoop::await_wake_up() {
    wake_up_.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                        [this](const boost::system::error_code& error) {
                            if (error) {
                                return;
                            }
                            std::uint64_t expirations = 0;
                            if (::read(wake_up_.native_handle(), &expirations, sizeof(expirations)) > 0) {
                                wake_up_due_ = TimePoint{};
                            }
                            await_wake_up();
                        });
}

void PosixLoop::set_wake_up(TimePoint due) {
    if (due == wake_up_due_) {
        return;
    }
    // The steady clock is the system's monotonic clock. A time that has passed fires at once; 0 would switch it off.
    const Duration since_start = std::max<Duration>(due.time_since_epoch(), Duration(1));
    const itimerspec setting{{0, 0}, as_timespec(since_start)};
    ::timerfd_settime(wake_up_.native_handle(), TFD_TIMER_ABSTIME, &setting, nullptr);
    wake_up_due_ = due;
}

void PosixLoop::wait(std::optional<TimePoint> until) {
    if (stopped()) {
        return;  // a handler has stopped the loop after it last looked
    }
    if (until) {
        set_wake_up(*until);
    }
    io_context_.run_one();
}

void PosixLoop::collect_events() {
    io_context_.poll();
}

bool PosixLoop::wait_readable_serving_page(int descriptor, TimePoint deadline) {
    return wait_for_descriptor(descriptor, POLLIN, deadline);
}

bool PosixLoop::wait_writable_serving_page(int descriptor, TimePoint deadline) {
    return wait_for_descriptor(descriptor, POLLOUT, deadline);
}

bool PosixLoop::wait_for_descriptor(int descriptor, short events, TimePoint deadline) {
    // Waiting for the descriptor itself is the shortest way to a reply that comes within the slice.
    pollfd entry{descriptor, events, 0};
    while (true) {
        const Duration left = std::max(deadline - now(), Duration::zero());
        const timespec timeout = as_timespec(std::min<Duration>(left, kPageSlice));
        if (::ppoll(&entry, 1, &timeout, nullptr) > 0) {
            return true;
        }
        if (left == Duration::zero() || ending()) {
            return false;
        }
        io_context_.poll();
    }
}

void PosixLoop::serve_page_until(TimePoint deadline) {
    while (now() < deadline && !ending()) {
        set_wake_up(deadline);
        io_context_.run_one();
    }
}

}  // namespace platform::posix
