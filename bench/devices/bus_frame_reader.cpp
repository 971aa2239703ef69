#include "bench/devices/bus_frame_reader.h"

namespace bench {

namespace {
constexpr std::uint8_t kLowFillBit = 1;   // set in every low byte, whatever the value
constexpr std::uint8_t kHighFillBit = 2;  // the same for the high byte

// 2 only stands in frames that change an id, and 0 in none.
bool carries_values(int command) {
    return command != 0 && command != 2;
}
}  // namespace

BusFrameReader::Found BusFrameReader::take(std::uint8_t byte) {
    if (byte == bus::kFrameStart) {
        const bool cut_short = filled_ > 0;
        frame_[0] = byte;
        filled_ = 1;
        return cut_short ? Found::broken : Found::nothing;
    }
    if (filled_ == 0) {
        return byte == bus::kFrameGap ? Found::nothing : Found::stray_byte;
    }
    frame_[filled_++] = byte;
    if (filled_ < frame_.size()) {
        return Found::nothing;
    }
    filled_ = 0;
    return complete_frame();
}

BusFrameReader::Found BusFrameReader::complete_frame() {
    const std::uint8_t control = frame_[bus::kFrameControl];
    const std::uint8_t low = frame_[bus::kFrameLow];
    const std::uint8_t high = frame_[bus::kFrameHigh];
    if (frame_[bus::kFrameLast] != bus::kFrameEnd) {
        return Found::bad_frame;
    }
    if (control == bus::kChangeIdControl && high == bus::kRawFrameHigh) {
        return Found::change_id;
    }
    if (control == bus::kIdentifyControl && low == bus::kIdentifyLow && high == bus::kRawFrameHigh) {
        return Found::identify;
    }
    if ((control & bus::kControlAlwaysSet) == 0 || (low & kLowFillBit) == 0 || (high & kHighFillBit) == 0) {
        return Found::bad_frame;
    }
    if (!carries_values(control >> 4)) {
        return Found::bad_frame;
    }
    // The true values of the two filled bits travel in the control byte.
    const int true_low = (low & ~kLowFillBit) | (control & bus::kControlLowBit0);
    const int true_high = (high & ~kHighFillBit) | (control & bus::kControlHighBit1);
    const int magnitude = true_high * 256 + true_low;
    command_.number = control >> 4;
    command_.value = (control & bus::kControlNegative) != 0 ? -magnitude : magnitude;
    return Found::command;
}

}  // namespace bench
