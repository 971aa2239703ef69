#pragma once

#include <array>
#include <functional>
#include <string>
#include <vector>

#include "platform/manual/manual_loop.h"
#include "platform/sim_transport.h"

namespace platform::manual {

inline constexpr std::size_t kManualMappingSize = 32768;

// Faults of the window system and the server that a test can set.
struct TransportFaults {
    bool register_fails = false;
    bool atom_fails = false;
    bool mapping_exists = false;  // CreateFileMappingA gives a handle and last error 183
    bool mapping_fails = false;   // no handle
    bool view_fails = false;
    int failing_sends = 0;                    // so many sends fail next, -1 = all
    std::uint32_t send_error = 0;             // their last error; 0 = a time-out, which takes its time
    Duration answer_time = Duration::zero();  // virtual time that a good answer takes
};

// The simulator's transport with a server in the same process.
class ManualTransport : public SimTransport {
  public:
    // Answers a block in place and gives the reply value.
    using Server = std::function<std::uint32_t(std::uint8_t* block, std::size_t size)>;

    explicit ManualTransport(ManualLoop& loop) : loop_(loop) {}

    Server server;
    // The window classes that are there; a send to a window whose class has gone fails with an error.
    std::vector<std::string> windows = {"UIPCMAIN"};
    TransportFaults faults;

    int sends = 0;
    int sleeps = 0;
    int held_atoms = 0;
    int held_mappings = 0;
    int held_views = 0;
    std::string last_name;  // of the atom and the mapping

    WindowHandle FindWindowExA(const std::string& window_class) override;
    std::uint32_t RegisterWindowMessageA(const std::string& text) override;
    std::uint32_t GetCurrentProcessId() override { return 0x1A2B; }
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
    bool window_there(WindowHandle window) const;

    ManualLoop& loop_;
    std::uint32_t last_error_ = 0;
    std::vector<std::string> known_classes_;
    std::array<std::uint8_t, kManualMappingSize> block_{};
};

// The last error of a send to a window that has gone.
inline constexpr std::uint32_t kErrorInvalidWindow = 1400;

}  // namespace platform::manual
