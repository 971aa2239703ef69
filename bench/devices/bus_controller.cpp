#include "bench/devices/bus_controller.h"

#include "bench/devices/device_families.h"

namespace bench {

namespace {
constexpr std::size_t kHalfReport = 12;
constexpr int kWrongType = 250;
}  // namespace

BusController::BusController(platform::EventLoop& loop, ReplyTiming timing)
    : LineDevice(loop), replies_(loop, timing, [this](const std::string& bytes) {
          count_report();
          send(bytes);
      }) {}

void BusController::put(int id, std::unique_ptr<Device> device) {
    slots_.at(static_cast<std::size_t>(id)) = Slot{std::move(device)};
    ++layout_version_;
}

Device& BusController::add(int id, Identity identity) {
    auto device = device_family(identity.type).create(loop_, identity);
    Device& added = *device;
    put(id, std::move(device));
    return added;
}

void BusController::remove(int id) {
    put(id, nullptr);
}

void BusController::set_fault(int id, Fault fault, int replies) {
    if (device(id) != nullptr) {
        slots_[static_cast<std::size_t>(id)].fault = fault;
        slots_[static_cast<std::size_t>(id)].faulty_replies = replies;
    }
}

void BusController::power_cycle() {
    reader_ = BusFrameReader();
    replies_.clear();
    for (Slot& slot : slots_) {
        if (slot.device) {
            slot.device->power_on();
        }
    }
}

void BusController::take_bytes(std::string_view bytes) {
    for (const char byte : bytes) {
        switch (reader_.take(static_cast<std::uint8_t>(byte))) {
            case BusFrameReader::Found::nothing:
                break;
            case BusFrameReader::Found::command:
                count_frame();
                take_command(reader_.id(), reader_.command());
                break;
            case BusFrameReader::Found::identify:
                count_frame();
                answer(reader_.id());
                break;
            case BusFrameReader::Found::change_id:
                count_frame();
                change_id(reader_.id(), reader_.new_id());
                break;
            case BusFrameReader::Found::broken:
            case BusFrameReader::Found::bad_frame:
                count_bad_frame();
                break;
            case BusFrameReader::Found::stray_byte:
                count_stray_byte();
                break;
        }
    }
}

BusController::Slot* BusController::listening(int id) {
    Slot& slot = slots_[static_cast<std::size_t>(id)];
    if (!slot.device) {
        ++frames_for_nobody_;
        return nullptr;
    }
    return slot.fault == Fault::deaf ? nullptr : &slot;
}

void BusController::take_command(int id, const Command& command) {
    Slot* const slot = listening(id);
    if (slot == nullptr) {
        return;
    }
    if (command.number != bus::kCommandStatus) {
        slot->device->take(command);
    }
    if (slot->device->answers(command)) {
        answer(id);
    }
}

void BusController::change_id(int old_id, int new_id) {
    Slot* old_slot = listening(old_id);
    if (old_slot == nullptr || old_id == new_id) {
        return;
    }
    // NOTE: two real devices under one id would talk at the same time; here the second keeps its own.
    Slot& new_slot = slots_[static_cast<std::size_t>(new_id)];
    if (new_slot.device) {
        ++refused_id_changes_;
        return;
    }
    new_slot = std::move(*old_slot);
    *old_slot = Slot{};
    ++layout_version_;
}

Fault BusController::next_fault(Slot& slot) {
    const Fault fault = slot.fault;
    if (fault != Fault::mute && slot.faulty_replies > 0 && --slot.faulty_replies == 0) {
        slot.fault = Fault::none;
    }
    return fault;
}

void BusController::answer(int id) {
    Slot* slot = listening(id);
    if (slot == nullptr) {
        return;
    }
    ReportBytes report = slot->device->report(id);
    switch (next_fault(*slot)) {
        case Fault::mute:
        case Fault::deaf:
        case Fault::drop_reply:
            return;
        case Fault::corrupt_byte:
            report.set_byte(static_cast<int>(bus::kReportLength), kWrongLastByte);
            break;
        case Fault::half_report:
            return replies_.add(std::string(report.view().substr(0, kHalfReport)));
        case Fault::wrong_id:
            report.set_byte(bus::kReportGaugeIdByte, id % bus::kHighestGaugeId + 1);
            break;
        case Fault::wrong_type:
            report.set_byte(bus::kReportTypeByte, kWrongType);
            break;
        case Fault::late_reply:
            return replies_.add(std::string(report.view()), kLateReply);
        case Fault::noise:
            return replies_.add(std::string(kNoiseBeforeReply) + std::string(report.view()));
        case Fault::none:
            break;
    }
    replies_.add(std::string(report.view()));
}

}  // namespace bench
