#include "platform/serial_port.h"

#include <algorithm>
#include <vector>

#include "platform/manual/manual_platform.h"
#include "support/failure.h"
#include "tests/platform/machines.h"

namespace platform_tests {
namespace {

using platform::SerialEvent;
using platform::SerialPort;
using support::Failure;

constexpr int kNumber = 41;

std::string all_bytes() {
    std::string bytes;
    for (int value = 0; value < 256; ++value) {
        bytes.push_back(static_cast<char>(value));
    }
    return bytes;
}

class SerialPortContract : public ContractTest {
  protected:
    // Opens the port of the line with a receive threshold and read length, and keeps what its handler reads.
    void open(std::size_t threshold) {
        port_->set_number(kNumber);
        port_->set_settings("38400,N,8,2");
        port_->set_receive_threshold(threshold);
        port_->set_read_length(threshold);
        port_->set_event_handler([this](SerialEvent event) {
            events_.push_back(event);
            if (event == SerialEvent::receive) {
                reads_.push_back(port_->read());
            }
        });
        port_->open();
    }
    std::size_t count(SerialEvent event) const {
        return static_cast<std::size_t>(std::count(events_.begin(), events_.end(), event));
    }

    DeviceEnd& device_ = machine_->line(kNumber);
    std::unique_ptr<SerialPort> port_ = machine_->serial_ports().create();
    std::vector<SerialEvent> events_;
    std::vector<std::string> reads_;
};
INSTANTIATE_TEST_SUITE_P(BackEnds, SerialPortContract, testing::ValuesIn(kBackEnds), back_end_name);

TEST_P(SerialPortContract, every_byte_passes_both_ways_unchanged) {
    open(256);
    port_->write(all_bytes());
    device_.deliver(all_bytes());
    ASSERT_TRUE(machine_->run_until([&] { return device_.received.size() >= 256 && !reads_.empty(); }));
    EXPECT_EQ(device_.received, all_bytes());
    EXPECT_EQ(reads_, std::vector<std::string>{all_bytes()});
}

TEST_P(SerialPortContract, the_receive_event_comes_once_for_each_threshold_that_waits) {
    open(4);
    device_.deliver("abc");
    machine_->run_for(Milliseconds(30));
    EXPECT_TRUE(events_.empty()) << "three bytes of four";
    device_.deliver("defghijk");
    ASSERT_TRUE(machine_->run_until([&] { return reads_.size() == 2; }));
    EXPECT_EQ(reads_, (std::vector<std::string>{"abcd", "efgh"}));
    machine_->run_for(Milliseconds(30));
    EXPECT_EQ(events_.size(), 2U) << "three bytes wait";
    EXPECT_EQ(port_->read(), "ijk");
    EXPECT_EQ(port_->read(), "");
}

TEST_P(SerialPortContract, clearing_the_input_drops_what_waits) {
    open(4);
    device_.deliver("abc");
    machine_->run_for(Milliseconds(30));
    port_->clear_input();
    device_.deliver("1234");
    ASSERT_TRUE(machine_->run_until([&] { return !reads_.empty(); }));
    EXPECT_EQ(reads_.front(), "1234");
}

TEST_P(SerialPortContract, a_threshold_of_0_raises_no_receive_events_and_a_read_length_of_0_reads_all) {
    open(0);
    device_.deliver("a telegram");
    machine_->run_for(Milliseconds(50));
    EXPECT_TRUE(events_.empty());
    EXPECT_EQ(port_->read(), "a telegram");
}

TEST_P(SerialPortContract, a_handler_that_waits_is_not_entered_again_and_has_the_rest_afterwards) {
    open(2);
    int depth = 0;
    int deepest = 0;
    std::string taken;
    port_->set_event_handler([&](SerialEvent) {
        deepest = std::max(deepest, ++depth);
        taken += port_->read();
        if (taken.size() == 2) {
            bool over = false;
            device_.deliver("cdef");
            loop_.post_after(Milliseconds(30), [&] { over = true; });
            loop_.yield_until([&] { return over; });
            EXPECT_EQ(taken, "ab");
        }
        --depth;
    });
    device_.deliver("ab");
    ASSERT_TRUE(machine_->run_until([&] { return taken.size() == 6; }));
    EXPECT_EQ(taken, "abcdef");
    EXPECT_EQ(deepest, 1);
}

TEST_P(SerialPortContract, a_port_that_cannot_be_opened_says_so_and_stays_closed) {
    port_->set_number(kNumber + 1);
    EXPECT_THROW(port_->open(), Failure) << "no such port";
    EXPECT_FALSE(port_->is_open());
    for (const char* bad : {"", "38400", "38400,N,8", "38400,N,8,1,", "39000,N,8,1", "38400,X,8,1", "38400,N,9,1",
                            "38400,N,8,3", "38400,,8,1", "-1,N,8,1"}) {
        EXPECT_THROW(port_->set_settings(bad), Failure) << bad;
    }
    port_->set_number(kNumber);
    port_->open();
    EXPECT_THROW(port_->open(), Failure) << "open already";
    EXPECT_THROW(port_->set_number(kNumber + 1), Failure) << "open";
    const auto second = machine_->serial_ports().create();
    second->set_number(kNumber);
    EXPECT_THROW(second->open(), Failure) << "another has it";
    port_->close();
    second->open();
    EXPECT_TRUE(second->connected());
}

TEST_P(SerialPortContract, a_closed_port_reads_nothing_and_refuses_to_write) {
    open(1);
    port_->close();
    EXPECT_FALSE(port_->is_open());
    EXPECT_FALSE(port_->connected());
    EXPECT_FALSE(port_->carrier_detect());
    EXPECT_EQ(port_->read(), "");
    port_->clear_input();
    port_->clear_output();
    EXPECT_THROW(port_->write("x"), Failure);
    port_->open();
    device_.deliver("y");
    EXPECT_TRUE(machine_->run_until([&] { return !reads_.empty(); })) << "it opens again";
}

TEST_P(SerialPortContract, what_was_sent_before_the_port_was_opened_is_not_received) {
    device_.deliver(std::string(1000, 'x'));
    machine_->run_for(Milliseconds(400));
    open(1);
    device_.deliver("y");
    ASSERT_TRUE(machine_->run_until([&] { return !reads_.empty(); }));
    EXPECT_EQ(reads_.front(), "y");
}

TEST_P(SerialPortContract, a_port_whose_plug_is_pulled_says_so_once_and_comes_back_by_itself) {
    open(1);
    device_.unplug();
    ASSERT_TRUE(machine_->run_until([&] { return !events_.empty(); }));
    EXPECT_EQ(events_, std::vector<SerialEvent>{SerialEvent::disconnected});
    EXPECT_TRUE(port_->is_open()) << "the logic has not closed it";
    EXPECT_FALSE(port_->connected());
    EXPECT_THROW(port_->write("x"), Failure);
    machine_->run_for(Milliseconds(600));
    EXPECT_EQ(events_.size(), 1U);

    device_.plug();
    ASSERT_TRUE(machine_->run_until([&] { return events_.size() == 2; }));
    EXPECT_EQ(events_.back(), SerialEvent::reconnected);
    EXPECT_TRUE(port_->connected());
    port_->write("hello");
    device_.deliver("z");
    ASSERT_TRUE(machine_->run_until([&] { return device_.received == "hello" && !reads_.empty(); }));
    EXPECT_EQ(reads_.back(), "z");
}

TEST_P(SerialPortContract, a_port_that_is_closed_while_its_device_is_away_stays_closed) {
    open(1);
    device_.unplug();
    ASSERT_TRUE(machine_->run_until([&] { return count(SerialEvent::disconnected) == 1; }));
    port_->close();
    device_.plug();
    machine_->run_for(Milliseconds(700));
    EXPECT_EQ(count(SerialEvent::reconnected), 0U);
    EXPECT_FALSE(port_->is_open());
}

TEST_P(SerialPortContract, a_port_that_goes_away_takes_its_events_with_it) {
    open(1);
    device_.deliver("a");
    machine_->run_for(Milliseconds(5));
    device_.deliver("b");
    port_.reset();
    device_.unplug();
    machine_->run_for(Milliseconds(30));
    EXPECT_LE(events_.size(), 1U);
}

TEST(ManualSerialPort, break_framing_error_and_carrier_reach_the_port) {
    platform::manual::ManualPlatform machine;
    platform::manual::Wire& wire = machine.serial_ports.wire(1);
    const auto port = machine.serial_ports.create();
    std::vector<SerialEvent> events;
    port->set_number(1);
    port->set_event_handler([&](SerialEvent event) { events.push_back(event); });
    port->open();
    EXPECT_FALSE(port->carrier_detect());
    wire.carrier = true;
    EXPECT_TRUE(port->carrier_detect());
    wire.send_break();
    wire.send_framing_error();
    machine.loop.advance(Milliseconds(1));
    EXPECT_EQ(events, (std::vector<SerialEvent>{SerialEvent::break_received, SerialEvent::framing_error}));
}

TEST(ManualSerialPort, bytes_take_their_time_on_the_line) {
    struct Case {
        const char* settings;
        std::chrono::microseconds time_of_25_bytes;
    };
    for (const Case& line :
         {Case{"38400,N,8,1", std::chrono::microseconds(6510)}, Case{"38400,N,8,2", std::chrono::microseconds(7161)},
          Case{"9600,E,7,1", std::chrono::microseconds(26041)}}) {
        platform::manual::ManualPlatform machine;
        platform::manual::Wire& wire = machine.serial_ports.wire(1);
        std::string received;
        wire.to_device = [&](std::string_view bytes) { received.append(bytes); };
        const auto port = machine.serial_ports.create();
        port->set_number(1);
        port->set_settings(line.settings);
        port->open();
        port->write(std::string(25, 'x'));
        machine.loop.advance(line.time_of_25_bytes - std::chrono::microseconds(10));
        EXPECT_EQ(received.size(), 0U) << line.settings;
        machine.loop.advance(std::chrono::microseconds(20));
        EXPECT_EQ(received.size(), 25U) << line.settings;
    }
}

}  // namespace
}  // namespace platform_tests
