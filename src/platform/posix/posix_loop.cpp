#include "platform/posix/posix_loop.h"

#include <poll.h>

#include <algorithm>
#include <csignal>

namespace platform::posix {

namespace {

// How long a wait for a descriptor sleeps before it looks after the page again.
constexpr Milliseconds kPageSlice{5};

}  // namespace

PosixLoop::PosixLoop()
    : work_(boost::asio::make_work_guard(io_context_)), wake_up_(io_context_), signals_(io_context_, SIGINT, SIGTERM) {
    on_terminate = [this] { stop(); };
    await_signal();
}

void PosixLoop::await_signal() {
    signals_.async_wait([this](const boost::system::error_code& error, int) {
        if (!error) {
            post([this] { on_terminate(); });
            await_signal();
        }
    });
}

void PosixLoop::wait(std::optional<TimePoint> until) {
    if (until) {
        wake_up_.expires_at(*until);
        wake_up_.async_wait([](const boost::system::error_code&) {});
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
    pollfd entry{descriptor, events, 0};
    while (true) {
        const Duration left = std::max(deadline - now(), Duration::zero());
        const Duration slice = std::min<Duration>(left, kPageSlice);
        const timespec timeout{0, static_cast<long>(std::chrono::nanoseconds(slice).count())};
        if (::ppoll(&entry, 1, &timeout, nullptr) > 0) {
            return true;
        }
        if (left == Duration::zero()) {
            return false;
        }
        io_context_.poll();
    }
}

void PosixLoop::serve_page_until(TimePoint deadline) {
    while (now() < deadline) {
        io_context_.run_one_until(deadline);
    }
}

}  // namespace platform::posix
