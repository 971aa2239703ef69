#include "platform/win32/win32_loop.h"

#include <windows.h>
// The multimedia header needs the one above.
#include <timeapi.h>

#include <algorithm>
#include <boost/asio/post.hpp>
#include <csignal>
#include <utility>

namespace platform::win32 {

namespace {

constexpr UINT kTimerResolutionMs = 1;

// How long a wait for a handle sleeps before it looks after the page again.
constexpr Milliseconds kPageSlice{5};

// Newer systems slow down the timers of a process that shows no window, which is how this one lives. Older ones know
// neither the call nor the slowness.
void keep_timer_resolution() {
    constexpr ULONG kExecutionSpeed = PROCESS_POWER_THROTTLING_EXECUTION_SPEED;
    constexpr ULONG kIgnoreTimerResolution = 4;  // PROCESS_POWER_THROTTLING_IGNORE_TIMER_RESOLUTION, Windows 11
    for (const ULONG controls : {kExecutionSpeed | kIgnoreTimerResolution, kExecutionSpeed}) {
        PROCESS_POWER_THROTTLING_STATE state{};
        state.Version = PROCESS_POWER_THROTTLING_CURRENT_VERSION;
        state.ControlMask = controls;
        if (::SetProcessInformation(::GetCurrentProcess(), ProcessPowerThrottling, &state, sizeof(state)) != FALSE) {
            return;
        }
    }
}

DWORD whole_milliseconds(Duration duration) {
    return static_cast<DWORD>(std::chrono::ceil<Milliseconds>(duration).count());
}

}  // namespace

Win32Loop::Win32Loop() : work_(io_context_.get_executor()), signals_(io_context_, SIGINT, SIGTERM, SIGBREAK) {
    ::timeBeginPeriod(kTimerResolutionMs);
    keep_timer_resolution();
    on_terminate = [this] { stop(); };
    await_signal();
}

Win32Loop::~Win32Loop() {
    ::timeEndPeriod(kTimerResolutionMs);
}

void Win32Loop::await_signal() {
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

void Win32Loop::post_from_any_thread(Task task) {
    boost::asio::post(io_context_, [this, task = std::move(task)]() mutable { post(std::move(task)); });
}

void Win32Loop::wait(std::optional<TimePoint> until) {
    if (stopped()) {
        return;  // a handler has stopped the loop after it last looked
    }
    if (until) {
        io_context_.run_one_until(*until);
    } else {
        io_context_.run_one();
    }
}

void Win32Loop::collect_events() {
    io_context_.poll();
}

bool Win32Loop::wait_signalled_serving_page(void* handle, TimePoint deadline) {
    while (true) {
        const Duration left = std::max(deadline - now(), Duration::zero());
        const DWORD slice_ms = whole_milliseconds(std::min<Duration>(left, kPageSlice));
        if (::WaitForSingleObject(handle, slice_ms) == WAIT_OBJECT_0) {
            return true;
        }
        if (left == Duration::zero() || ending()) {
            return false;
        }
        io_context_.poll();
    }
}

void Win32Loop::serve_page_until(TimePoint deadline) {
    while (now() < deadline && !ending()) {
        io_context_.run_one_until(deadline);
    }
}

}  // namespace platform::win32
