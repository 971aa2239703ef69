#include "bench/devices/bus_controller.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "bench/devices/connect.h"
#include "bench/devices/generic_device.h"
#include "bench/devices/needle_gauges.h"
#include "platform/manual/manual_loop.h"
#include "platform/manual/manual_serial.h"

namespace bench {
namespace {

using std::chrono::milliseconds;

std::string frame(int id, int command, int value) {
    std::string bytes;
    bus::append_frame(bytes, id, command, value);
    return bytes;
}

std::string identify(int id) {
    std::string bytes;
    bus::append_identify_frame(bytes, id);
    return bytes;
}

std::string change_id(int old_id, int new_id) {
    std::string bytes;
    bus::append_change_id_frame(bytes, old_id, new_id);
    return bytes;
}

class Controller : public testing::Test {
  protected:
    Controller() {
        controller.on_send = [this](std::string_view bytes) {
            replies.emplace_back(bytes);
            reply_times.push_back(loop.now());
        };
    }

    // What the controller has sent a while after these bytes.
    std::vector<std::string> replies_to(const std::string& bytes) {
        replies.clear();
        reply_times.clear();
        controller.receive(bytes);
        loop.advance(milliseconds(100));
        return replies;
    }

    platform::manual::ManualLoop loop;
    BusController controller{loop};
    NeedleGauge& gauge = controller.add_device<NeedleGauge>(17, {.type = 3, .model = 2, .version = 6});
    std::vector<std::string> replies;
    std::vector<platform::TimePoint> reply_times;
};

TEST_F(Controller, answers_identify_and_status_with_a_report_of_25_bytes) {
    for (const std::string& request : {identify(17), frame(17, 7, 0), frame(17, 7, 2)}) {
        const auto sent = replies_to(request);
        ASSERT_EQ(sent.size(), 1U);
        EXPECT_EQ(bus::check_report(sent[0]), bus::ReportError::none);
        const bus::GaugeReport report(sent[0]);
        EXPECT_EQ(report.gauge_id(), 17);
        EXPECT_EQ(report.GaugeType(), 3);
        EXPECT_EQ(report.GaugeModel(), 2);
        EXPECT_EQ(report.GaugeVersion(), 6);
    }
    EXPECT_TRUE(replies_to(identify(18)).empty());
    EXPECT_TRUE(replies_to(frame(17, 5, 100)).empty());
    EXPECT_EQ(controller.frames_for_nobody(), 1U);
}

TEST_F(Controller, a_report_tells_where_the_needles_stand) {
    controller.receive(frame(17, 5, 300) + frame(17, 6, 100) + frame(17, 8, 64 + 16 + 9));
    loop.advance(std::chrono::seconds(3));
    const auto sent = replies_to(frame(17, 7, 0));
    ASSERT_EQ(sent.size(), 1U);
    const bus::GaugeReport report(sent[0]);
    EXPECT_EQ(report.byte(6), 'N');
    EXPECT_EQ(report.word(7), 300 * 4);
    EXPECT_EQ(report.byte(9), 'N');
    EXPECT_EQ(report.word(10), 100 * 4);
    EXPECT_EQ(report.byte(12), 64 + 9);
}

TEST_F(Controller, a_device_without_a_family_says_who_it_is_and_obeys_the_lights) {
    const Device& radio = controller.add(30, {.type = 7, .model = 4, .version = 9});
    const auto sent = replies_to(frame(30, 12, 5) + frame(30, 8, 15) + frame(30, 7, 0));
    ASSERT_EQ(sent.size(), 1U);
    const bus::GaugeReport report(sent[0]);
    EXPECT_EQ(report.GaugeType(), 7);
    EXPECT_EQ(report.GaugeVersion(), 9);
    EXPECT_NE(report.byte(6), 'A');
    EXPECT_FALSE(radio.lights().lit());
    EXPECT_EQ(dynamic_cast<const GenericDevice&>(radio).commands_taken(), 1);
}

TEST_F(Controller, frames_may_come_in_any_pieces) {
    const std::string bytes = "\xFF" + frame(17, 5, 300) + "\xFF" + frame(17, 6, 200);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
        controller.receive(frame(17, 5, 0) + frame(17, 6, 0));
        controller.receive(bytes.substr(0, cut));
        controller.receive(bytes.substr(cut));
        EXPECT_EQ(gauge.target_steps(1), 300) << "cut at " << cut;
        EXPECT_EQ(gauge.target_steps(2), 200) << "cut at " << cut;
    }
    EXPECT_EQ(controller.statistics().bad_frames, 0U);
    EXPECT_EQ(controller.statistics().stray_bytes, 0U);
}

TEST_F(Controller, garbage_is_counted_and_stops_nothing) {
    std::minstd_rand random(7);
    for (int round = 0; round < 20000; ++round) {
        const char byte = static_cast<char>((random() >> 8) & 255U);
        controller.receive(std::string_view(&byte, 1));
    }
    EXPECT_GT(controller.statistics().bad_frames + controller.statistics().stray_bytes, 10000U);
    controller.receive(frame(17, 9, 0) + frame(17, 5, 321));
    EXPECT_EQ(gauge.target_steps(1), 321);
}

TEST_F(Controller, reports_to_two_requests_do_not_overlap) {
    controller.add(18, {.type = 1});
    const auto asked_at = loop.now();
    const auto sent = replies_to(frame(17, 7, 0) + frame(18, 7, 0));
    ASSERT_EQ(sent.size(), 2U);
    EXPECT_EQ(bus::GaugeReport(sent[0]).gauge_id(), 17);
    EXPECT_EQ(bus::GaugeReport(sent[1]).gauge_id(), 18);
    EXPECT_EQ(reply_times[0] - asked_at, milliseconds(2));
    EXPECT_GE(reply_times[1] - reply_times[0], std::chrono::microseconds(25 * 260));
    EXPECT_LE(reply_times[1] - reply_times[0], milliseconds(8));
}

TEST_F(Controller, a_device_answers_to_its_new_id_alone) {
    const auto layout_before = controller.layout_version();
    EXPECT_TRUE(replies_to(change_id(17, 99) + "\xFF\xFF").empty());
    EXPECT_TRUE(replies_to(identify(17)).empty());
    const auto sent = replies_to(identify(99));
    ASSERT_EQ(sent.size(), 1U);
    EXPECT_EQ(bus::GaugeReport(sent[0]).gauge_id(), 99);
    EXPECT_EQ(controller.device(99), &gauge);
    EXPECT_GT(controller.layout_version(), layout_before);

    controller.add(5, {.type = 1});
    EXPECT_TRUE(replies_to(change_id(5, 99)).empty());
    EXPECT_EQ(controller.refused_id_changes(), 1U);
    EXPECT_EQ(controller.device(99), &gauge);
    EXPECT_EQ(replies_to(identify(5)).size(), 1U);
}

TEST_F(Controller, faults_spoil_the_reports_they_are_set_for) {
    const std::string good = replies_to(frame(17, 7, 0)).at(0);
    struct Case {
        Fault fault;
        std::vector<std::string> sent;
    };
    std::string wrong_end = good;
    wrong_end[24] = '\x55';
    std::string wrong_id = good;
    wrong_id[1] = 18;
    std::string wrong_type = good;
    wrong_type[2] = '\xFA';
    const std::vector<Case> cases = {
        {Fault::drop_reply, {}},
        {Fault::corrupt_byte, {wrong_end}},
        {Fault::half_report, {good.substr(0, 12)}},
        {Fault::wrong_id, {wrong_id}},
        {Fault::wrong_type, {wrong_type}},
        {Fault::late_reply, {}},
        {Fault::noise, {"\x03\x7F\xC1" + good}},
    };
    for (const Case& one : cases) {
        controller.set_fault(17, one.fault, 1);
        EXPECT_EQ(replies_to(frame(17, 7, 0)), one.sent) << fault_name(one.fault);
        loop.advance(milliseconds(400));
        EXPECT_EQ(replies.size(), one.fault == Fault::late_reply ? 1U : one.sent.size()) << fault_name(one.fault);
        EXPECT_EQ(replies_to(frame(17, 7, 0)), std::vector<std::string>{good}) << "after " << fault_name(one.fault);
        EXPECT_EQ(fault_of_name(fault_name(one.fault)), one.fault);
    }
}

TEST_F(Controller, a_mute_device_obeys_and_a_deaf_one_does_not) {
    controller.set_fault(17, Fault::mute);
    EXPECT_TRUE(replies_to(frame(17, 5, 200) + frame(17, 7, 0)).empty());
    EXPECT_EQ(gauge.target_steps(1), 200);
    controller.set_fault(17, Fault::deaf);
    EXPECT_TRUE(replies_to(frame(17, 5, 700) + frame(17, 7, 0)).empty());
    EXPECT_EQ(gauge.target_steps(1), 200);
    controller.set_fault(17, Fault::none);
    EXPECT_EQ(replies_to(frame(17, 7, 0)).size(), 1U);
}

TEST_F(Controller, statistics_count_the_last_second) {
    for (int tick = 0; tick < 100; ++tick) {
        controller.receive("\xFF" + frame(17, 5, tick));
        loop.advance(milliseconds(40));
    }
    EXPECT_NEAR(static_cast<double>(controller.frames_per_second()), 25, 3);
    EXPECT_NEAR(static_cast<double>(controller.bytes_per_second()), 175, 20);
    EXPECT_EQ(controller.statistics().frames_in, 100U);
    EXPECT_EQ(controller.statistics().bytes_in, 700U);
    loop.advance(std::chrono::seconds(2));
    EXPECT_EQ(controller.frames_per_second(), 0U);
    EXPECT_EQ(controller.bytes_per_second(), 0U);
}

TEST(ControllerOnAWire, is_put_on_a_line_and_answers_the_program) {
    platform::manual::ManualLoop loop;
    platform::manual::ManualSerialPorts ports(loop);
    BusController controller(loop);
    controller.add(17, {.type = 1});
    connect(controller, ports.wire(1));

    const auto port = ports.create();
    std::string received;
    port->set_number(1);
    port->set_settings("38400,N,8,1");
    port->set_receive_threshold(25);
    port->set_event_handler([&](platform::SerialEvent) { received += port->read(); });
    port->open();
    port->write(frame(17, 7, 0));
    loop.advance(milliseconds(9));
    EXPECT_EQ(received, "");
    loop.advance(milliseconds(3));
    EXPECT_EQ(bus::check_report(received), bus::ReportError::none);
}

}  // namespace
}  // namespace bench
