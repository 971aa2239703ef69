#pragma once

#include <string_view>

#include "bench/devices/line_device.h"

namespace bench {

// Puts a device at the far end of a line, which is anything with `to_device`, a handler for what arrives there, and
// `deliver`, which sends bytes back. Both must outlive the traffic between them.
template <typename Line>
void connect(LineDevice& device, Line& line) {
    line.to_device = [&device](std::string_view bytes) { device.receive(bytes); };
    device.on_send = [&line](std::string_view bytes) { line.deliver(bytes); };
}

}  // namespace bench
