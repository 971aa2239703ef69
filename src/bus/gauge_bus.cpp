#include "bus/gauge_bus.h"

#include <string>

#include "platform/line_settings.h"
#include "support/failure.h"
#include "support/steps.h"

namespace bus {

namespace {

constexpr platform::Milliseconds kSenderInterval{10};
constexpr std::int16_t kReplyWaitSeconds = 2;
// Every gauge of a full table with a handful of frames each.
constexpr std::size_t kTxBufferCapacity = 16384;
constexpr std::size_t kBlanksAfterOpening = 40;

}  // namespace

GaugeBus::GaugeBus(const platform::Platform& platform, tables::CoreTables& tables)
    : WriteDuringConfig(platform.loop, "frmStatus.WriteDuringConfig", kSenderInterval,
                        [this] { WriteDuringConfig_Timer(); }),
      loop_(platform.loop),
      boxes_(platform.boxes),
      tables_(tables),
      MSComm1_(platform.serial_ports.create()) {
    tables_.TxBuffer.reserve(kTxBufferCapacity);
    MSComm1_->set_event_handler([this](platform::SerialEvent event) { MSComm1_OnComm(event); });
    WriteDuringConfig.start();
}

void GaugeBus::set_io_module(int device_id, IoModuleLink* module) {
    if (device_id == kIoModule1Id || device_id == kIoModule2Id) {
        io_modules_[device_id == kIoModule1Id ? 0 : 1] = module;
    }
}

void GaugeBus::QueueFrame(int GaugeId, int Command, double Value) {
    const std::size_t before = tables_.TxBuffer.size();
    support::append_byte(tables_.TxBuffer, kFrameGap);
    try {
        append_frame(tables_.TxBuffer, GaugeId, Command, Value);
    } catch (const support::Failure&) {
        tables_.TxBuffer.resize(before);
        throw;
    }
}

Flushed GaugeBus::FlushFrames() {
    MSComm1_->clear_input();
    if (!MSComm1_->is_open() || tables_.TxBuffer.empty()) {
        return Flushed::nothing;
    }
    MSComm1_->write(tables_.TxBuffer);
    bytes_written_ += tables_.TxBuffer.size();
    return Flushed::written;
}

int GaugeBus::capacity() {
    const auto byte_time =
        platform::byte_time(platform::parse_line_settings(port_settings(PortPlace::gauge_bus).settings));
    return static_cast<int>(std::chrono::seconds(1) / byte_time);
}

void GaugeBus::prepare_run() {
    if (tables_.TxPending == 1) {
        // Set-up has left a frame that the 10 ms sender had no time for; the run would drop it.
        tables_.TxPending = 0;
        if (MSComm1_->connected()) {
            MSComm1_->write(tables_.TxBuffer);
        }
    }
    tables_.TxBuffer.clear();
    MSComm1_->clear_input();
}

void GaugeBus::wait_for_sender() {
    // NOTE: while the sender is off (a run is on) nothing would end this wait. The frame then takes the place of what
    // stands in TxBuffer, and the next tick drops it.
    loop_.yield_until([this] { return tables_.TxPending != 1 || !WriteDuringConfig.enabled(); });
}

void GaugeBus::SendGauge(int GaugeId, int Command, double Value) {
    if (GaugeId >= 0 && GaugeId <= kHighestGaugeId) {
        wait_for_sender();
        tables_.TxBuffer.clear();
        append_frame(tables_.TxBuffer, GaugeId, Command, Value);
        tables_.TxPending = 1;
    } else if (GaugeId == kIoModule1Id || GaugeId == kIoModule2Id) {
        IoModuleLink* const module = io_modules_[GaugeId == kIoModule1Id ? 0 : 1];
        if (module != nullptr) {
            module->ComposeCmd(GaugeId, Command, Value);
        }
    }
}

void GaugeBus::QueryGauge(int GaugeId) {
    tables_.ReplyReceived = 0;
    SendGauge(GaugeId, kCommandStatus, kStatusInQuery);
    tables_.ReplyWait = kReplyWaitSeconds;
    loop_.yield_until([this] { return tables_.ReplyWait < 1 || tables_.ReplyReceived == 1; });
}

void GaugeBus::count_down_reply_wait() {
    if (tables_.ReplyWait > 0) {
        --tables_.ReplyWait;
    }
}

void GaugeBus::ChangeGaugeID(int OldId, int NewId) {
    if (OldId < 1 || OldId > kHighestGaugeId || NewId < 1 || NewId > kHighestGaugeId) {
        throw support::Failure("Gauge id out of range");
    }
    wait_for_sender();
    tables_.TxBuffer.clear();
    append_change_id_frame(tables_.TxBuffer, OldId, NewId);
    if (!MSComm1_->is_open()) {
        boxes_.message("Com Port #1 is not available; Action aborted");
        return;
    }
    support::Steps steps([&](const support::Failure&) {
        return boxes_.question("Error writing New ID to Gauge.Comport: " + std::to_string(MSComm1_->number()) +
                               "\r\n Curent Gauge ID =" + std::to_string(OldId) +
                               ", New Gauge ID= " + std::to_string(NewId)) == platform::Answer::yes;
    });
    try {
        steps.attempt([&] { MSComm1_->clear_input(); });
        steps.attempt([&] {
            const char gap = static_cast<char>(kFrameGap);
            MSComm1_->write(tables_.TxBuffer + gap + gap);
        });
        steps.attempt([&] { tables::move_gauge_row(tables_, OldId, NewId); });
    } catch (const support::StepsAbandoned&) {
        // The user does not want to go on; the gauge row stays where it is.
    }
}

void GaugeBus::WriteDuringConfig_Timer() {
    if (tables_.TxPending != 1) {
        return;
    }
    try {
        send_pending_frame();
        sender_failure_told_ = false;
    } catch (const support::Failure&) {
        // Told once until a frame has gone out again: a panel that polls would bring the box up 100 times a second.
        if (!sender_failure_told_) {
            sender_failure_told_ = true;
            boxes_.message("Com Port #1 is not available; Action aborted");
        }
    }
}

void GaugeBus::send_pending_frame() {
    // Cleared first: whatever happens to the frame, nobody may wait for it for ever.
    tables_.TxPending = 0;
    if (tables_.GaugeBusPort1 < 1 && !MSComm1_->is_open()) {
        return;
    }
    open_port_if_closed();
    MSComm1_->write(tables_.TxBuffer);
}

void GaugeBus::open_port_if_closed() {
    if (!MSComm1_->is_open()) {
        open_line(*MSComm1_, PortPlace::gauge_bus, tables_.GaugeBusPort1);
    }
}

void GaugeBus::retry_open() {
    if (MSComm1_->is_open() || tables_.GaugeBusPort1 < 1) {
        return;
    }
    try {
        open_port_if_closed();
    } catch (const support::Failure&) {
        return;
    }
    if (on_fresh_link) {
        on_fresh_link();
    }
}

void GaugeBus::reset_link() {
    // A single frame that waits to be sent is kept.
    if (tables_.TxPending != 1) {
        tables_.TxBuffer.assign(kBlanksAfterOpening, ' ');
    }
}

void GaugeBus::link_opened() {
    if (MSComm1_->carrier_detect()) {
        boxes_.message("No Power on CIM; Check Power Switch and Fuses");
    }
    tables_.LastReply.clear();
    if (MSComm1_->is_open() && on_fresh_link) {
        on_fresh_link();
    }
}

void GaugeBus::MSComm1_OnComm(platform::SerialEvent event) {
    switch (event) {
        case platform::SerialEvent::break_received:
        case platform::SerialEvent::framing_error:
            MSComm1_->clear_input();
            break;
        case platform::SerialEvent::receive:
            take_report();
            break;
        case platform::SerialEvent::reconnected:
            if (on_fresh_link) {
                on_fresh_link();
            }
            break;
        case platform::SerialEvent::disconnected:
            break;
    }
}

void GaugeBus::take_report() {
    MSComm1_->read_into(tables_.LastReply);
    tables_.ReplyReceived = 1;
    if (check_report(tables_.LastReply) != ReportError::none) {
        // This is how the receiver gets back in step after a lost byte: it throws away everything and waits for the
        // next 25.
        MSComm1_->clear_input();
        return;
    }
    if (on_report) {
        // A copy: the handler may wait in a box, and the next report would change LastReply under it.
        const std::string report = tables_.LastReply;
        on_report(GaugeReport(report));
    }
}

}  // namespace bus
