#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/posix/posix_loop.h"
#include "platform/posix/system_failure.h"
#include "platform/sim_transport.h"

namespace platform::posix {

// The simulator's transport over Unix sockets: a window is a connection to its class, the mapping a memfd. While a send
// waits, the page is served and nothing else. docs/simulator-link.md tells the conversation.
class PosixTransport : public SimTransport {
  public:
    explicit PosixTransport(PosixLoop& loop) : loop_(loop) {}

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
        Descriptor socket;
        std::vector<std::uint16_t> introduced_atoms;  // their memfd has gone over this connection
    };
    struct Atom {
        std::uint16_t number;
        std::string name;
    };
    struct Mapping {
        MappingHandle handle;
        std::string name;
        Descriptor memory;
        std::uint32_t size_bytes;
        std::uint8_t* view = nullptr;
    };

    bool alive(const Window& window) const;
    // Connects the window anew. Gives 0 or the system's error code.
    int connect(Window& window);
    void disconnect(Window& window);
    const Mapping* mapping_of(std::int32_t atom) const;
    // Both give 0 or an error code; ETIMEDOUT for a time-out.
    int send_packet(Window& window, std::uint32_t message, std::int32_t atom, TimePoint deadline);
    int receive_reply(Window& window, TimePoint deadline, std::uint32_t& reply);

    PosixLoop& loop_;
    std::uint32_t last_error_ = 0;
    std::uint32_t send_number_ = 0;
    std::uint16_t next_atom_ = 0xC000;
    MappingHandle next_mapping_ = 1;
    std::vector<Window> windows_;  // a window's handle is its place here, plus 1
    std::vector<Atom> atoms_;
    std::vector<Mapping> mappings_;
};

}  // namespace platform::posix
