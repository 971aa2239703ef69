#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/serial_port.h"

namespace platform::posix {

// Takes apart what a terminal delivers with PARMRK set (termios(3)): 255 255 is the byte 255, 255 0 0 a break, 255 0 n
// the byte n received with a framing error (it is dropped). The stream may be cut anywhere.
class ParmrkDecoder {
  public:
    // Calls `on_event` for breaks and framing errors in their order, and `on_bytes` for the data between them.
    void decode(std::string_view bytes, const std::function<void(std::string_view)>& on_bytes,
                const std::function<void(SerialEvent)>& on_event);
    void reset() { state_ = State::data; }

  private:
    enum class State { data, marked, error_byte };

    State state_ = State::data;
    std::string plain_;
};

}  // namespace platform::posix
