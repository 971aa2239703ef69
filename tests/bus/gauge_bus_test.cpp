#include "bus/gauge_bus.h"

#include <gtest/gtest.h>

#include <array>

#include "bus_world.h"
#include "support/failure.h"

namespace {

using bus_test::BusWorld;
using bus_test::bytes_of;

std::string report_of(int gauge_id, int type) {
    std::string report(bus::kReportLength, 'x');
    report[0] = 0;
    report[1] = static_cast<char>(gauge_id);
    report[2] = static_cast<char>(type);
    report[24] = static_cast<char>(255);
    return report;
}

struct GaugeBus : testing::Test {
    BusWorld world;
    std::vector<int> reports;  // gauge ids of the reports handed on

    GaugeBus() {
        world.gauge_bus.on_report = [this](const bus::GaugeReport& report) { reports.push_back(report.gauge_id()); };
        world.ports.OpenAllPorts();
    }
    void arrive(const std::string& bytes, int wait_ms = 30) {
        world.wire.deliver(bytes);
        world.advance(wait_ms);
    }
};

TEST_F(GaugeBus, single_frames_go_out_one_each_ten_milliseconds_without_a_gap_byte) {
    const auto begin = world.machine.loop.now();
    for (int value = 1; value <= 5; ++value) {
        world.gauge_bus.SendGauge(17, 5, value * 100);
    }
    EXPECT_LE(world.machine.loop.now() - begin, std::chrono::milliseconds(50));
    EXPECT_EQ(world.wire.writes, 4) << "the fifth waits for its turn";
    EXPECT_EQ(world.tables.TxPending, 1);
    world.advance(10);
    EXPECT_EQ(world.wire.writes, 5);
    EXPECT_EQ(world.tables.TxPending, 0);
    EXPECT_EQ(world.wire.written.substr(12, 6), bytes_of({0, 17, 88, 45, 3, 255}));
    EXPECT_EQ(world.wire.written.size(), 30U);
    world.advance(100);
    EXPECT_EQ(world.wire.writes, 5);
}

TEST_F(GaugeBus, commands_go_to_gauges_or_to_their_io_module_or_nowhere) {
    struct Module : bus::IoModuleLink {
        std::vector<std::array<double, 3>> commands;
        void ComposeCmd(int id, int command, double value) override {
            commands.push_back({static_cast<double>(id), static_cast<double>(command), value});
        }
    } first, second;
    world.gauge_bus.SendGauge(1000, 10, 1);  // no module: nothing
    world.gauge_bus.set_io_module(1000, &first);
    world.gauge_bus.set_io_module(2000, &second);
    world.tables.TxBuffer = "untouched";
    for (const int id : {-1, 256, 999, 1000, 1001, 1999, 2000, 2001, 32767}) {
        world.gauge_bus.SendGauge(id, 10, id);
    }
    EXPECT_EQ(world.tables.TxBuffer, "untouched");
    EXPECT_EQ(world.tables.TxPending, 0);
    EXPECT_EQ(first.commands, (std::vector<std::array<double, 3>>{{1000, 10, 1000}}));
    EXPECT_EQ(second.commands, (std::vector<std::array<double, 3>>{{2000, 10, 2000}}));
    world.gauge_bus.SendGauge(255, 7, 2);
    EXPECT_EQ(world.tables.TxPending, 1);
}

TEST_F(GaugeBus, a_value_that_cannot_be_sent_fails_and_blocks_nobody) {
    EXPECT_THROW(world.gauge_bus.SendGauge(1, 5, 1.0 / 0.0), support::Failure);
    EXPECT_EQ(world.tables.TxPending, 0);
    world.gauge_bus.QueueFrame(1, 5, 1);
    const std::string before = world.tables.TxBuffer;
    EXPECT_THROW(world.gauge_bus.QueueFrame(1, 5, 0.0 / 0.0), support::Failure);
    EXPECT_EQ(world.tables.TxBuffer, before);
}

TEST_F(GaugeBus, a_closed_port_is_opened_for_a_single_frame_and_a_dead_one_is_told_once) {
    world.ports.CloseAllComPorts();
    world.gauge_bus.SendGauge(1, 5, 0);
    world.advance(20);
    EXPECT_TRUE(world.gauge_bus.serial_port().is_open());
    EXPECT_EQ(world.wire.written.size(), 6U);
    world.wire.unplug();
    for (int frame = 0; frame < 5; ++frame) {
        world.gauge_bus.SendGauge(1, 5, frame);
        world.advance(20);
    }
    EXPECT_EQ(world.shown(), std::vector<std::string>{"Com Port #1 is not available; Action aborted"});
    world.wire.plug();
    world.gauge_bus.SendGauge(1, 5, 0);
    world.advance(20);
    world.wire.unplug();
    world.gauge_bus.SendGauge(1, 5, 0);
    world.advance(20);
    EXPECT_EQ(world.shown().size(), 2U) << "a new outage is told again";
}

TEST_F(GaugeBus, without_a_port_number_single_frames_are_dropped) {
    world.tables.GaugeBusPort1 = 0;
    world.ports.OpenAllPorts();
    EXPECT_FALSE(world.gauge_bus.serial_port().is_open()) << "the port of the earlier configuration is closed";
    world.gauge_bus.SendGauge(1, 5, 0);
    world.gauge_bus.SendGauge(1, 5, 1);
    world.advance(50);
    EXPECT_EQ(world.tables.TxPending, 0);
    EXPECT_TRUE(world.shown().empty());
}

TEST_F(GaugeBus, a_frame_left_by_set_up_survives_the_opening_of_the_ports_and_goes_before_the_run) {
    world.gauge_bus.SendGauge(104, 15, 0);
    world.ports.OpenAllPorts();
    world.gauge_bus.prepare_run();
    EXPECT_EQ(world.wire.written, bytes_of({0, 104, 248, 1, 2, 255}));
    EXPECT_EQ(world.tables.TxPending, 0);
    EXPECT_TRUE(world.tables.TxBuffer.empty());
}

TEST_F(GaugeBus, the_sender_that_is_off_does_not_hang_its_caller) {
    world.gauge_bus.WriteDuringConfig.stop();
    world.gauge_bus.SendGauge(1, 5, 0);
    world.gauge_bus.SendGauge(1, 5, 1);
    EXPECT_EQ(world.wire.writes, 0);
}

TEST_F(GaugeBus, changing_an_id_sends_its_frame_at_once_and_moves_the_whole_row) {
    world.tables.gauges[12].GaugeType = 3;
    world.tables.gauges[12].GaugeWritePort4 = 77;
    const tables::GaugeRow row = world.tables.gauges[12];
    world.gauge_bus.ChangeGaugeID(12, 200);
    EXPECT_EQ(world.wire.written, bytes_of({0, 12, 44, 200, 170, 255, 255, 255}));
    EXPECT_EQ(world.tables.gauges[200], row);
    EXPECT_EQ(world.tables.gauges[12], tables::GaugeRow{});
    for (const auto& [from, to] : {std::pair{0, 5}, std::pair{200, 256}, std::pair{-3, 4}}) {
        EXPECT_THROW(world.gauge_bus.ChangeGaugeID(from, to), support::Failure);
    }
    EXPECT_EQ(world.tables.gauges[200], row);
}

TEST_F(GaugeBus, changing_an_id_without_a_port_or_with_a_failing_one_is_told) {
    world.tables.gauges[12].GaugeType = 3;
    world.ports.CloseAllComPorts();
    world.gauge_bus.ChangeGaugeID(12, 13);
    EXPECT_EQ(world.shown().back(), "Com Port #1 is not available; Action aborted");
    EXPECT_EQ(world.tables.gauges[12].GaugeType, 3);
    world.ports.OpenAllPorts();
    world.wire.unplug();
    world.machine.boxes.answers = {{platform::Answer::no, "", false}, {platform::Answer::yes, "", false}};
    world.gauge_bus.ChangeGaugeID(12, 13);
    EXPECT_EQ(world.shown().back(),
              "Error writing New ID to Gauge.Comport: 3\r\n Curent Gauge ID =12, New Gauge ID= 13");
    EXPECT_EQ(world.tables.gauges[12].GaugeType, 3) << "no: nothing more happens";
    world.gauge_bus.ChangeGaugeID(12, 13);
    EXPECT_EQ(world.tables.gauges[13].GaugeType, 3) << "yes: the next statement is done";
}

TEST_F(GaugeBus, a_report_is_handed_on_and_kept) {
    arrive(report_of(9, 110));
    EXPECT_EQ(reports, std::vector<int>{9});
    EXPECT_EQ(world.tables.LastReply, report_of(9, 110));
    EXPECT_EQ(world.tables.ReplyReceived, 1);
}

TEST_F(GaugeBus, bad_bytes_are_seen_by_a_waiting_panel_and_by_nobody_else) {
    std::string bad = report_of(9, 110);
    bad[24] = 7;
    arrive(bad);
    EXPECT_TRUE(reports.empty());
    EXPECT_EQ(world.tables.ReplyReceived, 1);
    EXPECT_EQ(world.tables.LastReply, bad);
    arrive(report_of(10, 110));
    EXPECT_EQ(reports, std::vector<int>{10});
}

TEST_F(GaugeBus, half_a_report_raises_nothing_and_is_dropped_by_the_next_flush) {
    arrive(report_of(9, 110).substr(0, 24));
    EXPECT_EQ(world.tables.ReplyReceived, 0);
    world.gauge_bus.FlushFrames();
    arrive(report_of(10, 110));
    EXPECT_EQ(reports, std::vector<int>{10});
}

TEST_F(GaugeBus, the_receiver_gets_back_in_step_after_lost_and_foreign_bytes) {
    // A lost byte shifts the stream: the first 25 bytes end in the start of the next report. All of it is dropped, and
    // the report after that is whole again.
    arrive(report_of(1, 110).substr(0, 20) + report_of(2, 110), 60);
    EXPECT_TRUE(reports.empty());
    world.gauge_bus.FlushFrames();  // as each tick does
    arrive(report_of(3, 110));
    EXPECT_EQ(reports, std::vector<int>{3});
    arrive(std::string(1000, '\x55'), 500);
    world.gauge_bus.FlushFrames();
    arrive(report_of(4, 110));
    EXPECT_EQ(reports, (std::vector<int>{3, 4}));
}

TEST_F(GaugeBus, break_and_framing_error_drop_what_is_in) {
    for (const bool is_break : {true, false}) {
        arrive(report_of(9, 110).substr(0, 10));
        is_break ? world.wire.send_break() : world.wire.send_framing_error();
        world.advance(5);
        arrive(report_of(5, 110));
    }
    EXPECT_EQ(reports, (std::vector<int>{5, 5}));
}

TEST_F(GaugeBus, flushing_writes_one_block_and_an_empty_buffer_or_a_closed_port_nothing) {
    EXPECT_EQ(world.gauge_bus.FlushFrames(), bus::Flushed::written) << "the blanks of the opening";
    world.tables.TxBuffer.clear();
    EXPECT_EQ(world.gauge_bus.FlushFrames(), bus::Flushed::nothing);
    world.gauge_bus.QueueFrame(1, 5, 300);
    world.gauge_bus.QueueFrame(2, 6, 0);
    const int writes = world.wire.writes;
    EXPECT_EQ(world.gauge_bus.FlushFrames(), bus::Flushed::written);
    EXPECT_EQ(world.wire.writes, writes + 1);
    EXPECT_EQ(world.wire.written.substr(40), bytes_of({255, 0, 1, 88, 45, 3, 255, 255, 0, 2, 104, 1, 2, 255}));
    world.ports.CloseAllComPorts();
    EXPECT_EQ(world.gauge_bus.FlushFrames(), bus::Flushed::nothing);
}

}  // namespace
