#pragma once

#include <cstdint>
#include <string>

namespace platform {

using WindowHandle = std::intptr_t;
using MappingHandle = std::intptr_t;

// The window-system operations that the simulator client stands on, one method each, with their argument meanings and
// return values. On Windows they are the real calls.
class SimTransport {
  public:
    virtual ~SimTransport() = default;

    // FindWindowExA without parent, child and title. 0 = no such window.
    virtual WindowHandle FindWindowExA(const std::string& window_class) = 0;
    // 0 = failed.
    virtual std::uint32_t RegisterWindowMessageA(const std::string& text) = 0;
    virtual std::uint32_t GetCurrentProcessId() = 0;
    // 0 = failed.
    virtual std::uint16_t GlobalAddAtomA(const std::string& name) = 0;
    virtual void GlobalDeleteAtom(std::uint16_t atom) = 0;
    // CreateFileMappingA on the page file, read and write. 0 = failed; see GetLastError, which is 0 after a new mapping
    // and 183 when one of that name was there already.
    virtual MappingHandle CreateFileMappingA(std::uint32_t size_bytes, const std::string& name) = 0;
    virtual std::uint32_t GetLastError() = 0;
    // Access "write", offset 0, whole size. Null = failed.
    virtual std::uint8_t* MapViewOfFile(MappingHandle mapping) = 0;
    virtual void UnmapViewOfFile(std::uint8_t* view) = 0;
    virtual void CloseHandle(MappingHandle mapping) = 0;
    // SendMessageTimeoutA with a second parameter of 0 and SMTO_BLOCK: false = failed, GetLastError then tells why, 0
    // for a time-out. While it waits, the page is served and nothing else.
    virtual bool SendMessageTimeoutA(WindowHandle window, std::uint32_t message, std::int32_t atom,
                                     std::uint32_t timeout_ms, std::uint32_t& reply) = 0;
    // While it sleeps, the page is served and nothing else.
    virtual void Sleep(std::uint32_t milliseconds) = 0;
};

inline constexpr std::uint32_t kErrorAlreadyExists = 183;

}  // namespace platform
