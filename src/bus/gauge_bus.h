#pragma once

#include <functional>
#include <memory>

#include "bus/frames.h"
#include "bus/port_set.h"
#include "platform/platform.h"
#include "tables/core_tables.h"

namespace bus {

inline constexpr int kIoModule1Id = 1000;
inline constexpr int kIoModule2Id = 2000;

enum class Flushed { nothing, written };

// Takes the commands of SendGauge that are meant for an IO module, which hangs on a port of its own.
class IoModuleLink {
  public:
    virtual ~IoModuleLink() = default;
    virtual void ComposeCmd(int GaugeId, int Command, double Value) = 0;
};

// The gauge bus: its port, the frames of a tick, the single frames that panels send while the run is halted, and the
// reports that come back. The outgoing bytes and the query handshake stand in the core tables (TxBuffer, TxPending,
// ReplyReceived, ReplyWait, LastReply).
class GaugeBus : public PortOwner {
  public:
    GaugeBus(const platform::Platform& platform, tables::CoreTables& tables);

    // Where commands for device id 1000 or 2000 go. Without a module they go nowhere.
    void set_io_module(int device_id, IoModuleLink* module);

    // --- During a run ---------------------------------------------------------------------------------------------

    // Appends a gap byte and one frame to TxBuffer. Allocates nothing once the buffer has its capacity. Throws a
    // Failure for a value that is not finite.
    void QueueFrame(int GaugeId, int Command, double Value);

    // Drops what came in and has not made a report, and hands TxBuffer to the port in one block if the port is open
    // and there is something to send. Throws the port's Failure.
    Flushed FlushFrames();

    // Bytes that FlushFrames has handed to the port since the program began.
    std::uint64_t bytes_written() const { return bytes_written_; }
    // What the line carries in a second, in bytes.
    static int capacity();

    // Empties TxBuffer and the input for the first tick. A single frame that still waits is sent before that.
    void prepare_run();

    // --- While halted ---------------------------------------------------------------------------------------------

    // Hands one frame to the 10 ms sender; waits, serving events, while the one before is still there. Ids below 256
    // are gauges, 1000 and 2000 the IO modules, all others send nothing. Throws a Failure for a value that is not
    // finite.
    void SendGauge(int GaugeId, int Command, double Value);

    // Asks a gauge for its report and waits, serving events, until something has come or 1 to 2 seconds have passed.
    // ReplyReceived is 1 when something came; LastReply then holds it.
    void QueryGauge(int GaugeId);

    // Gives the device OldId the id NewId and moves its gauge row. Ids are 1..255. Shows a message when the port is
    // closed, asks whether to go on when it fails.
    void ChangeGaugeID(int OldId, int NewId);

    // Takes one from ReplyWait; called every second.
    void count_down_reply_wait();

    // Every 10 ms while halted: sends the pending single frame.
    platform::Timer WriteDuringConfig;

    // --- The port -------------------------------------------------------------------------------------------------

    platform::SerialPort& serial_port() override { return *MSComm1_; }
    const platform::SerialPort& serial_port() const { return *MSComm1_; }
    void reset_link() override;
    void link_opened() override;

    // Opens the port if it is closed and has a number. Quiet when that fails: its opening by OpenAllPorts has told.
    void retry_open();

    // Called with every well-formed report, halted or running, in a receive event.
    std::function<void(const GaugeReport&)> on_report;
    // Called when the port is fresh: opened by OpenAllPorts or a retry, or plugged in again.
    std::function<void()> on_fresh_link;

  private:
    void MSComm1_OnComm(platform::SerialEvent event);
    void take_report();
    void WriteDuringConfig_Timer();
    void send_pending_frame();
    void open_port_if_closed();
    void wait_for_sender();

    platform::EventLoop& loop_;
    platform::Boxes& boxes_;
    tables::CoreTables& tables_;
    std::unique_ptr<platform::SerialPort> MSComm1_;
    IoModuleLink* io_modules_[2] = {nullptr, nullptr};
    bool sender_failure_told_ = false;
    std::uint64_t bytes_written_ = 0;
};

}  // namespace bus
