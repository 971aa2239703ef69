#pragma once

#include <cstdint>
#include <functional>

#include "platform/serial_port.h"

namespace platform::win32 {

// Error bits of a serial line, as ClearCommError tells them.
inline constexpr std::uint32_t kLineErrorFraming = 0x0008;
inline constexpr std::uint32_t kLineErrorBreak = 0x0010;

// Calls `raise` for what the error bits mean to a port. A break makes the line's receiver see a byte without its stop
// bit as well, so that it stands for both.
void raise_line_errors(std::uint32_t errors, const std::function<void(SerialEvent)>& raise);

}  // namespace platform::win32
