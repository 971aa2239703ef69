#pragma once

#include <array>
#include <memory>
#include <string>

#include "bench/devices/bus_frame_reader.h"
#include "bench/devices/device.h"
#include "bench/devices/faults.h"
#include "bench/devices/line_device.h"
#include "bench/devices/reply_queue.h"

namespace bench {

// A controller with the gauges and instruments that hang on it, at the end of a gauge bus line. Takes 6-byte frames in
// any pieces, hands each command to the device with that id, and sends a device's 25-byte report when it is asked.
// Reports follow each other on the line, they never overlap.
class BusController : public LineDevice {
  public:
    static constexpr int kEveryReply = -1;

    explicit BusController(platform::EventLoop& loop, ReplyTiming timing = {});

    // Hangs a device of the identity's type on the bus, instead of one that has the id. Ids are 1..255.
    Device& add(int id, Identity identity);
    // The same for a device of a known class, so that a test can read its state.
    template <typename Kind>
    Kind& add_device(int id, Identity identity) {
        auto device = std::make_unique<Kind>(loop_, identity);
        Kind& added = *device;
        put(id, std::move(device));
        return added;
    }
    void remove(int id);
    // Null when no device has the id.
    Device* device(int id) { return valid(id) ? slots_[static_cast<std::size_t>(id)].device.get() : nullptr; }

    // A device's next `replies` answers (or all, kEveryReply) suffer the fault. `deaf` and `mute` last until another
    // fault is set. Nothing happens when no device has the id.
    void set_fault(int id, Fault fault, int replies = kEveryReply);
    Fault fault(int id) const { return valid(id) ? slots_[static_cast<std::size_t>(id)].fault : Fault::none; }

    // Bytes that come from nowhere, as an interference on the line would send them.
    void send_noise(std::string_view bytes) { send(bytes); }

    void power_cycle() override;

    std::uint64_t frames_for_nobody() const { return frames_for_nobody_; }
    // Requests to take an id that another device has.
    std::uint64_t refused_id_changes() const { return refused_id_changes_; }
    // Counts up whenever a device is added, taken away or given another id.
    std::uint64_t layout_version() const { return layout_version_; }

  protected:
    void take_bytes(std::string_view bytes) override;

  private:
    struct Slot {
        std::unique_ptr<Device> device;
        Fault fault = Fault::none;
        int faulty_replies = 0;
    };
    static bool valid(int id) { return id >= 1 && id <= bus::kHighestGaugeId; }
    void put(int id, std::unique_ptr<Device> device);
    // The slot of a device that hears what it is told, or null.
    Slot* listening(int id);
    void take_command(int id, const Command& command);
    void change_id(int old_id, int new_id);
    void answer(int id);
    Fault next_fault(Slot& slot);

    BusFrameReader reader_;
    std::array<Slot, bus::kHighestGaugeId + 1> slots_;
    ReplyQueue replies_;
    std::uint64_t frames_for_nobody_ = 0;
    std::uint64_t refused_id_changes_ = 0;
    std::uint64_t layout_version_ = 0;
};

}  // namespace bench
