#pragma once

#include <string>

#include "bench/devices/device.h"
#include "bench/devices/faults.h"
#include "bench/devices/line_device.h"
#include "bench/devices/reply_queue.h"

namespace bench {

// A unit with a line of its own that the virtual cockpit draws with a face, as it draws the devices on a bus.
class LineInstrument : public LineDevice {
  public:
    static constexpr int kEveryReply = -1;
    // Stands for the bus id, which a unit of this kind does not have.
    static constexpr int kNoId = 0;

    LineInstrument(platform::EventLoop& loop, Identity identity, ReplyTiming timing);

    const Identity& identity() const { return identity_; }
    // Gives the state; flags `lit` and `power` and the number `level` belong to every instrument.
    virtual void show(StateSink& sink) const = 0;
    // A knob is turned by so many clicks, or a switch set to a position, by hand. False when there is no such control.
    virtual bool operate(std::string_view /*control*/, int /*amount*/) { return false; }
    // Pushes needle 1.. out of its place by so many steps, until it is recalibrated. False when there is no such
    // needle.
    virtual bool knock(int /*needle*/, int /*steps*/) { return false; }

    // The next `replies` replies (or all, kEveryReply) suffer the fault. `deaf` and `mute` last until another fault is
    // set; a wrong id or type means nothing here.
    void set_fault(Fault fault, int replies = kEveryReply);
    Fault fault() const { return fault_; }

    // Bytes that come from nowhere, as an interference on the line would send them.
    void send_noise(std::string_view bytes) { send(bytes); }

    void power_cycle() final;

  protected:
    // Bytes as they come, unless the unit is deaf.
    virtual void hear(std::string_view bytes) = 0;
    virtual void power_on() = 0;
    // Sends a reply after its time, as the fault in force leaves it.
    void reply(std::string bytes);

    platform::TimePoint now() const { return loop_.now(); }

  private:
    void take_bytes(std::string_view bytes) final;

    Identity identity_;
    ReplyQueue replies_;
    Fault fault_ = Fault::none;
    int faulty_replies_ = 0;
};

}  // namespace bench
