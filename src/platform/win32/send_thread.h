#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

#include "platform/win32/win32_failure.h"
#include "platform/win32/win32_loop.h"

namespace platform::win32 {

// One send of a message to a window.
struct WindowSend {
    void* window = nullptr;
    std::uint32_t message = 0;
    std::int32_t first_parameter = 0;
    std::uint32_t timeout_ms = 0;
};

struct WindowReply {
    bool sent = false;
    SystemError error = 0;  // of a send that failed
    std::uint32_t value = 0;
};

// Sends messages to windows from a thread of its own, because the call stands still until the other program has
// answered, and the page is to be served meanwhile.
class SendThread {
  public:
    explicit SendThread(Win32Loop& loop);
    // Waits for a send that is under way.
    ~SendThread();
    SendThread(const SendThread&) = delete;
    SendThread& operator=(const SendThread&) = delete;

    // SendMessageTimeoutA with a second parameter of 0 and SMTO_BLOCK. Waits for its end and serves the page meanwhile;
    // when the program is asked to end it gives the send up.
    WindowReply send(const WindowSend& what);

  private:
    void work();

    Win32Loop& loop_;
    Handle start_ = make_event();
    Handle done_ = make_event();
    WindowSend send_;
    WindowReply reply_;
    bool under_way_ = false;  // a send that was given up
    std::atomic<bool> ending_ = false;
    std::thread thread_;
};

}  // namespace platform::win32
