#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "support/failure.h"

namespace platform::win32 {

// An error code of the system, as GetLastError gives it.
using SystemError = std::uint32_t;

// The system's words for an error code, in Windows-1252 as all texts of the program.
std::string system_words(SystemError error);

// Throws a Failure of the text and the system's words for `error`; without one, for the thread's last error.
[[noreturn]] void throw_system_failure(const std::string& what, SystemError error);
[[noreturn]] void throw_system_failure(const std::string& what);

// The system's own texts. What has no counterpart becomes a replacement character.
std::wstring wide(std::string_view utf8);
std::string utf8(std::wstring_view text);

// Owns a handle of the system.
class Handle {
  public:
    Handle() = default;
    // Null and INVALID_HANDLE_VALUE are no handles.
    explicit Handle(void* value);
    Handle(Handle&& other) noexcept : value_(std::exchange(other.value_, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept {
        if (this != &other) {
            reset();
            value_ = std::exchange(other.value_, nullptr);
        }
        return *this;
    }
    ~Handle() { reset(); }

    void* get() const { return value_; }
    bool valid() const { return value_ != nullptr; }
    void* release() { return std::exchange(value_, nullptr); }
    void reset();

  private:
    void* value_ = nullptr;
};

// An event of the system that a wait resets. Throws a Failure.
Handle make_event();

}  // namespace platform::win32
