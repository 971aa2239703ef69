#pragma once

#include <array>
#include <cstdint>

#include "bench/devices/device.h"

namespace bench {

// Picks the frames out of the bytes of the bus. Only a frame's first byte is 0, so a 0 always starts a frame and the
// reader is back in step with the next one, whatever came before. 255 between frames is padding.
class BusFrameReader {
  public:
    enum class Found {
        nothing,     // the byte belongs to a frame that is not complete, or is padding
        command,     // command() to device id()
        identify,    // device id() is asked who it is
        change_id,   // device id() shall answer to new_id()
        broken,      // a frame was cut short by the start of the next
        bad_frame,   // six bytes that break the rules of a frame
        stray_byte,  // a byte outside any frame
    };

    // Takes the next byte of the line.
    Found take(std::uint8_t byte);

    // Of the frame just found.
    int id() const { return frame_[bus::kFrameGaugeId]; }
    int new_id() const { return frame_[bus::kFrameLow]; }
    const Command& command() const { return command_; }

  private:
    Found complete_frame();

    std::array<std::uint8_t, bus::kFrameLength> frame_{};
    std::size_t filled_ = 0;
    Command command_;
};

}  // namespace bench
