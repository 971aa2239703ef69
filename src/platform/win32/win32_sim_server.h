#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "platform/server_fault.h"
#include "platform/win32/win32_failure.h"
#include "platform/win32/win32_loop.h"

namespace platform::win32 {

// The other end of Win32Transport: a window of a class that answers request blocks. The window lives in a thread of its
// own, as it must answer while it is called; the blocks are answered in tasks of the loop.
class Win32SimServer {
  public:
    // Answers a block in place and gives the reply value.
    using Server = std::function<std::uint32_t(std::uint8_t* block, std::size_t size)>;

    // Makes the window of a class text ("UIPCMAIN"). Throws a Failure when another program has one.
    Win32SimServer(Win32Loop& loop, const std::string& window_class, Server server);
    ~Win32SimServer();
    Win32SimServer(const Win32SimServer&) = delete;
    Win32SimServer& operator=(const Win32SimServer&) = delete;

    // A silent server hangs: its window takes messages and does not come back from them. Sends that were given up
    // meanwhile are not answered afterwards.
    void set_fault(ServerFault fault);
    // Time that passes before each answer.
    void set_answer_delay(Duration delay) { answer_delay_ = delay; }
    std::uint64_t answered() const { return answered_; }

  private:
    struct Window;

    void take_send();
    void answer();
    void reply(std::uint32_t value);

    Win32Loop& loop_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
    Server server_;
    ServerFault fault_ = ServerFault::none;
    Duration answer_delay_ = Duration::zero();
    std::uint64_t answered_ = 0;
    bool send_waits_ = false;
    std::shared_ptr<Window> window_;
    std::thread thread_;
};

}  // namespace platform::win32
