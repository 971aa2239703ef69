#include "bus/port_set.h"

#include <gtest/gtest.h>

#include "bus_world.h"
#include "support/failure.h"

namespace {

using bus_test::BusWorld;

// The owner of one port, which writes down what happens to it.
struct Owner : bus::PortOwner {
    std::unique_ptr<platform::SerialPort> port;
    std::vector<std::string>& log;
    std::string name;

    Owner(BusWorld& world, std::vector<std::string>& shared_log, std::string owner_name)
        : port(world.machine.serial_ports.create()), log(shared_log), name(std::move(owner_name)) {}
    platform::SerialPort& serial_port() override { return *port; }
    void reset_link() override { log.push_back(name + (port->is_open() ? " reset while open" : " reset")); }
    void link_opened() override { log.push_back(name + (port->is_open() ? " opened" : " not open")); }
};

struct PortSet : testing::Test {
    BusWorld world;
    std::vector<std::string> log;
    Owner cluster{world, log, "cluster"};
    Owner iom1{world, log, "iom1"};
    Owner yoke2{world, log, "yoke2"};

    PortSet() {
        world.ports.set_owner(bus::PortPlace::cluster, &cluster);
        world.ports.set_owner(bus::PortPlace::iom1, &iom1);
        world.ports.set_owner(bus::PortPlace::yoke2, &yoke2);
        world.tables.ClusterPort = 4;
        world.tables.IomPort1 = 5;
        world.tables.IomPort2 = 6;  // its owner is not there: left alone
        world.tables.YokePort2 = 7;
        for (const int number : {4, 5, 6, 7}) {
            world.machine.serial_ports.wire(number);
        }
    }
};

TEST_F(PortSet, every_port_with_a_number_and_an_owner_is_opened_twice_with_its_settings) {
    world.ports.OpenAllPorts();
    EXPECT_TRUE(world.shown().empty());
    EXPECT_EQ(log, (std::vector<std::string>{"cluster reset", "cluster opened", "iom1 reset", "iom1 opened",
                                             "yoke2 reset", "yoke2 opened"}));
    struct Expected {
        int number;
        const char* settings;
        std::size_t bytes;
    };
    for (const Expected& expected : {Expected{3, "38400,N,8,1", 25}, Expected{4, "38400,N,8,2", 16},
                                     Expected{5, "38400,N,8,2", 25}, Expected{7, "38400,N,8,2", 25}}) {
        const platform::manual::Wire& wire = world.machine.serial_ports.wire(expected.number);
        ASSERT_NE(wire.port(), nullptr) << expected.number;
        EXPECT_EQ(wire.opens, 2);
        EXPECT_EQ(wire.port()->settings(), expected.settings);
        EXPECT_EQ(wire.port()->receive_threshold(), expected.bytes);
        EXPECT_EQ(wire.port()->read_length(), expected.bytes);
    }
    EXPECT_EQ(world.machine.serial_ports.wire(6).opens, 0);
    EXPECT_EQ(world.tables.TxBuffer, std::string(40, ' '));
    world.ports.OpenAllPorts();
    EXPECT_EQ(world.wire.opens, 4);
    world.ports.CloseAllComPorts();
    for (const int number : {3, 4, 5, 7}) {
        EXPECT_EQ(world.machine.serial_ports.wire(number).port(), nullptr) << number;
    }
}

TEST_F(PortSet, failing_ports_are_told_in_one_message_and_do_not_touch_the_others) {
    world.machine.serial_ports.wire(4).faults.busy = true;
    world.machine.serial_ports.wire(7).faults.missing = true;
    world.ports.OpenAllPorts();
    EXPECT_EQ(world.shown(), std::vector<std::string>{"Commmunicaton error COM port(s)\r\n"
                                                      "  - Port nr:4, Port COM4 is in use by another program\r\n"
                                                      "  - Port nr:7, Port COM7 does not exist\r\n"
                                                      "Check for correct portnumbers\r\n"
                                                      "Note: Some Comport errors need a reboot of Windows"});
    EXPECT_TRUE(world.ports.failed(bus::PortPlace::cluster));
    EXPECT_FALSE(world.ports.failed(bus::PortPlace::iom1));
    EXPECT_TRUE(world.gauge_bus.serial_port().is_open());
    EXPECT_TRUE(iom1.port->is_open());
    world.machine.serial_ports.wire(4).faults.busy = false;
    world.machine.serial_ports.wire(7).faults.missing = false;
    world.ports.OpenAllPorts();
    EXPECT_EQ(world.shown().size(), 1U);
    EXPECT_FALSE(world.ports.failed(bus::PortPlace::cluster));
    EXPECT_TRUE(cluster.port->is_open());
}

TEST_F(PortSet, two_devices_on_one_number_are_told) {
    world.tables.IomPort1 = 4;
    world.ports.OpenAllPorts();
    ASSERT_EQ(world.shown().size(), 1U);
    EXPECT_NE(world.shown()[0].find("  - Port nr:4, "), std::string::npos);
    EXPECT_TRUE(cluster.port->is_open());
}

TEST_F(PortSet, carrier_at_the_gauge_bus_tells_of_missing_power_and_leaves_the_port_open) {
    world.wire.carrier = true;
    world.tables.LastReply = "old";
    world.ports.OpenAllPorts();
    EXPECT_EQ(world.shown(), std::vector<std::string>{"No Power on CIM; Check Power Switch and Fuses"});
    EXPECT_TRUE(world.gauge_bus.serial_port().is_open());
    EXPECT_EQ(world.tables.LastReply, "");
}

}  // namespace
