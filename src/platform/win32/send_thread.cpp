#include "platform/win32/send_thread.h"

#include <windows.h>

namespace platform::win32 {

namespace {

// The call keeps to its time-out itself; this much later something is wrong with the thread.
constexpr Milliseconds kGrace{1000};

}  // namespace

SendThread::SendThread(Win32Loop& loop) : loop_(loop), thread_([this] { work(); }) {}

SendThread::~SendThread() {
    ending_ = true;
    ::SetEvent(start_.get());
    thread_.join();
}

WindowReply SendThread::send(const WindowSend& what) {
    const TimePoint deadline = loop_.now() + Milliseconds(what.timeout_ms) + kGrace;
    if (under_way_ && !loop_.wait_signalled_serving_page(done_.get(), deadline)) {
        return {.error = ERROR_TIMEOUT};
    }
    send_ = what;
    reply_ = {};
    under_way_ = true;
    ::SetEvent(start_.get());
    if (!loop_.wait_signalled_serving_page(done_.get(), deadline)) {
        return {.error = ERROR_TIMEOUT};
    }
    under_way_ = false;
    return reply_;
}

void SendThread::work() {
    while (::WaitForSingleObject(start_.get(), INFINITE) == WAIT_OBJECT_0 && !ending_) {
        DWORD_PTR value = 0;
        ::SetLastError(0);
        // The atom is a signed number, widened as such.
        const LRESULT sent =
            ::SendMessageTimeoutA(static_cast<HWND>(send_.window), send_.message,
                                  static_cast<WPARAM>(send_.first_parameter), 0, SMTO_BLOCK, send_.timeout_ms, &value);
        const DWORD error = ::GetLastError();
        reply_ = {sent != 0, error, static_cast<std::uint32_t>(value)};
        ::SetEvent(done_.get());
    }
}

}  // namespace platform::win32
