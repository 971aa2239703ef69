#include "bench/devices/line_device.h"

namespace bench {

void LineDevice::receive(std::string_view bytes) {
    statistics_.bytes_in += bytes.size();
    bytes_rate_.add(bytes.size(), loop_.now());
    take_bytes(bytes);
}

void LineDevice::send(std::string_view bytes) {
    statistics_.bytes_out += bytes.size();
    bytes_rate_.add(bytes.size(), loop_.now());
    if (on_send) {
        on_send(bytes);
    }
}

void LineDevice::count_frame() {
    ++statistics_.frames_in;
    frames_rate_.add(1, loop_.now());
}

}  // namespace bench
