#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "bench/devices/rate_meter.h"
#include "platform/event_loop.h"

namespace bench {

// What has passed on a line since the device was made.
struct LineStatistics {
    std::uint64_t bytes_in = 0;
    std::uint64_t bytes_out = 0;
    std::uint64_t frames_in = 0;    // well-formed frames, whoever they were for
    std::uint64_t bad_frames = 0;   // frames that were cut short or broke the frame's rules
    std::uint64_t stray_bytes = 0;  // bytes outside any frame
    std::uint64_t reports_out = 0;
};

// A device at the far end of a serial line: takes bytes and gives bytes, and never fails on any of them.
class LineDevice {
  public:
    explicit LineDevice(platform::EventLoop& loop) : loop_(loop) {}
    virtual ~LineDevice() = default;
    LineDevice(const LineDevice&) = delete;
    LineDevice& operator=(const LineDevice&) = delete;

    // Where the device's bytes go. Without it they are lost, as on a cable that hangs in the air.
    std::function<void(std::string_view)> on_send;

    // Takes bytes as they come off the line, in pieces of any length.
    void receive(std::string_view bytes);

    // Switches the supply off and on again: everything that is not stored in the device is as new.
    virtual void power_cycle() = 0;

    const LineStatistics& statistics() const { return statistics_; }
    std::uint64_t bytes_per_second() const { return bytes_rate_.per_second(loop_.now()); }
    std::uint64_t frames_per_second() const { return frames_rate_.per_second(loop_.now()); }

  protected:
    virtual void take_bytes(std::string_view bytes) = 0;
    void send(std::string_view bytes);
    void count_frame();
    void count_bad_frame() { ++statistics_.bad_frames; }
    void count_stray_byte() { ++statistics_.stray_bytes; }
    void count_report() { ++statistics_.reports_out; }

    platform::EventLoop& loop_;

  private:
    LineStatistics statistics_;
    RateMeter bytes_rate_;  // both directions
    RateMeter frames_rate_;
};

// A line on which something hangs that is not simulated: it takes everything and says nothing.
class SilentDevice : public LineDevice {
  public:
    using LineDevice::LineDevice;
    void power_cycle() override {}

  protected:
    void take_bytes(std::string_view) override {}
};

}  // namespace bench
