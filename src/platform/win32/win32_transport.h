#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/sim_transport.h"
#include "platform/win32/send_thread.h"
#include "platform/win32/win32_loop.h"

namespace platform::win32 {

// The simulator's transport on the window system's own calls. A handle of a window stands for its class: when the
// simulator has ended and another one has come, the next send goes to the new window.
class Win32Transport : public SimTransport {
  public:
    explicit Win32Transport(Win32Loop& loop) : loop_(loop) {}

    WindowHandle FindWindowExA(const std::string& window_class) override;
    std::uint32_t RegisterWindowMessageA(const std::string& text) override;
    std::uint32_t GetCurrentProcessId() override;
    std::uint16_t GlobalAddAtomA(const std::string& name) override;
    void GlobalDeleteAtom(std::uint16_t atom) override;
    MappingHandle CreateFileMappingA(std::uint32_t size_bytes, const std::string& name) override;
    std::uint32_t GetLastError() override { return last_error_; }
    std::uint8_t* MapViewOfFile(MappingHandle mapping) override;
    void UnmapViewOfFile(std::uint8_t* view) override;
    void CloseHandle(MappingHandle mapping) override;
    bool SendMessageTimeoutA(WindowHandle window, std::uint32_t message, std::int32_t atom, std::uint32_t timeout_ms,
                             std::uint32_t& reply) override;
    void Sleep(std::uint32_t milliseconds) override;

  private:
    struct Window {
        std::string window_class;
        void* window = nullptr;  // null = none was found
    };

    static bool is_there(const Window& window);

    Win32Loop& loop_;
    std::uint32_t last_error_ = 0;
    std::vector<Window> windows_;  // a window's handle is its place here, plus 1
    std::optional<SendThread> send_thread_;
};

}  // namespace platform::win32
