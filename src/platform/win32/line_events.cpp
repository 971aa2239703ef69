#include "platform/win32/line_events.h"

namespace platform::win32 {

void raise_line_errors(std::uint32_t errors, const std::function<void(SerialEvent)>& raise) {
    if ((errors & kLineErrorBreak) != 0) {
        raise(SerialEvent::break_received);
    } else if ((errors & kLineErrorFraming) != 0) {
        raise(SerialEvent::framing_error);
    }
}

}  // namespace platform::win32
