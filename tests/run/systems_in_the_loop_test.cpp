// The branches of clocks, DME, autopilot and trim wheel against the simulated devices, over the wire.

#include <gtest/gtest.h>

#include "bench/devices/autopilot_unit.h"
#include "bench/devices/bus_controller.h"
#include "bench/devices/clocks.h"
#include "bench/devices/connect.h"
#include "bench/devices/dme_indicators.h"
#include "bench/devices/trim_wheel.h"
#include "run_world.h"
#include "simlink/sim_offsets.h"

namespace {

using run_test::RunWorld;

struct SystemsInTheLoop : testing::Test {
    RunWorld world;
    bench::BusController bus{world.machine.loop};

    template <typename Kind>
    Kind& add(int id, int type, int function1, int plate1 = 0, int function2 = 0) {
        world.add_gauge(id, type, function1, function2).GaugePlate1 = static_cast<std::int16_t>(plate1);
        return bus.add_device<Kind>(id, {.type = type});
    }
    void start() {
        bench::connect(bus, world.wire);
        world.set_value(9, 28, 1);
        world.set_value(9, 28, 2);
        world.status.cmdRun_Click();
        world.tick(30);
    }
    void expect_clean(const bench::Device& device) {
        EXPECT_EQ(device.bad_values(), 0);
        EXPECT_EQ(device.unknown_commands(), 0);
        EXPECT_TRUE(world.machine.boxes.shown().empty());
    }
    int mode(std::uint32_t offset) { return world.space->read_i32(offset); }
};

TEST_F(SystemsInTheLoop, a_press_on_the_autopilot_flies_the_simulator_and_the_unit_keeps_its_modes) {
    using Unit = bench::AutopilotUnit;
    Unit& unit = add<Unit>(3, 124, 4);
    world.set_value(4, 3000);
    start();
    unit.operate("coarse", 5);
    unit.operate("ap", 1);
    unit.operate("hdg", 1);
    for (int press = 0; press < 7; ++press) {
        unit.operate("up", 1);
    }
    world.tick(200);
    EXPECT_EQ(mode(simlink::kOffsetApMaster), 1);
    EXPECT_EQ(mode(simlink::kOffsetApHeading), 1);
    EXPECT_EQ(mode(simlink::kOffsetApBit6), 1);
    EXPECT_EQ(mode(simlink::kOffsetApWingLeveler), 0);
    EXPECT_EQ(world.space->read_i16(simlink::kOffsetApVerticalSpeed), 700);
    EXPECT_EQ(unit.modes(), Unit::ap | Unit::hdg | Unit::vertical_speed_hold);
    EXPECT_EQ(unit.vertical_speed(), 700);
    world.space->write_i32(simlink::kOffsetApHeading, 0);  // the simulator's own panel
    world.space->write_i32(simlink::kOffsetApNav, 1);
    world.space->write_i16(simlink::kOffsetApVerticalSpeed, -450);
    world.tick(10);
    EXPECT_EQ(unit.modes() & (Unit::hdg | Unit::nav), Unit::nav);
    EXPECT_EQ(unit.vertical_speed(), -450);
    world.space->write_i32(simlink::kOffsetApMaster, 0);
    world.tick(10);
    EXPECT_FALSE(unit.modes() & Unit::ap);
    EXPECT_EQ(mode(simlink::kOffsetApMaster), 0) << "a unit at rest does not switch it on again";
    expect_clean(unit);
}

TEST_F(SystemsInTheLoop, the_trim_wheel_trims_by_hand_and_follows_the_autopilot) {
    bench::TrimWheel& wheel = add<bench::TrimWheel>(9, 140, 17, 0, 40);
    start();
    wheel.operate("wheel", 16);
    world.tick(5);
    EXPECT_NEAR(world.value_of(17), 128.0 / 512 * 16383, 0.01);
    world.status.context().trim_switches.TrimMotorElevator = 1;
    world.tick(25);
    EXPECT_GT(wheel.wheel(), 640 + 100);
    world.status.context().trim_switches.TrimMotorElevator = 0;
    world.tick(5);
    const double stopped = wheel.wheel();
    world.tick(10);
    EXPECT_EQ(wheel.wheel(), stopped);
    EXPECT_NEAR(world.value_of(17), (stopped - 512) / 512 * 16383, 3.0 / 512 * 16383);
    world.set_value(40, 1);
    world.tick(5);
    world.set_value(17, -8191.5);
    world.tick(150);
    EXPECT_EQ(wheel.motor(), bench::TrimWheel::Motor::autopilot);
    EXPECT_EQ(wheel.wheel(), 256);
    world.set_value(40, 0);
    world.tick(10);
    EXPECT_EQ(wheel.motor(), bench::TrimWheel::Motor::off);
    expect_clean(wheel);
}

TEST_F(SystemsInTheLoop, two_trim_wheels_and_an_autopilot_do_not_starve_each_other) {
    bench::TrimWheel& elevator = add<bench::TrimWheel>(8, 140, 17);
    bench::TrimWheel& rudder = add<bench::TrimWheel>(9, 140, 19);
    add<bench::AutopilotUnit>(3, 124, 4);
    start();
    elevator.operate("wheel", 16);
    rudder.operate("wheel", -16);
    world.tick(20);
    EXPECT_NEAR(world.value_of(17), 128.0 / 512 * 16383, 0.01);
    EXPECT_NEAR(world.value_of(19), -128.0 / 512 * 16383, 0.01);
}

TEST_F(SystemsInTheLoop, the_clocks_show_the_simulators_time_and_the_boeing_clock_sets_it) {
    bench::BoeingClock& boeing = add<bench::BoeingClock>(7, 104, 10, 2);
    bench::CessnaClock& cessna = add<bench::CessnaClock>(5, 109, 10, 2);
    world.space->write_u8(simlink::kOffsetHour, 21);
    world.space->write_u8(simlink::kOffsetMinute, 31);
    world.space->write_u8(simlink::kOffsetZuluHour, 23);
    world.space->write_i16(simlink::kOffsetYear, 2026);
    world.space->write_i16(simlink::kOffsetDayOfYear, 327);
    world.set_value(13, -5);
    start();
    world.tick(75);
    EXPECT_EQ(boeing.second_of_day() / 60, 21 * 60 + 31);
    EXPECT_EQ(boeing.day(), 22);
    EXPECT_EQ(boeing.month(), 11);
    EXPECT_EQ(cessna.local_hour(), 21);
    EXPECT_EQ(cessna.universal_second_of_day() / 60, 23 * 60 + 31);
    expect_clean(boeing);
    expect_clean(cessna);
}

TEST_F(SystemsInTheLoop, the_boeing_clocks_own_time_sets_the_simulator_at_the_start) {
    bench::BoeingClock& boeing = add<bench::BoeingClock>(7, 104, 10, 3);
    add<bench::DmeIndicator>(4, 113, 27);
    boeing.take({5, 15 * 3600});
    boeing.take({4, 26 * 1024 + 11 * 64 + 22});
    start();
    EXPECT_EQ(world.space->read_u8(simlink::kOffsetHour), 15);
    EXPECT_EQ(boeing.year(), 2026) << "its date comes back as it was";
    EXPECT_EQ(boeing.day(), 22);
    world.space->write_u8(simlink::kOffsetHour, 3);
    world.tick(100);
    EXPECT_EQ(world.space->read_u8(simlink::kOffsetHour), 3) << "at the start only";
    expect_clean(boeing);
}

TEST_F(SystemsInTheLoop, the_dme_indicators_follow_their_switches) {
    bench::DmeIndicator& dme = add<bench::DmeIndicator>(4, 113, 27, 1);
    bench::BkDmeIndicator& bk = add<bench::BkDmeIndicator>(6, 123, 27, 2);
    world.tables.functions[27].FunctionOffset4 = 0;
    for (const int number : {1, 2}) {
        world.set_value(27, 12.3 * number, number);
        world.set_value(28, 120 * number, number);
        world.set_value(29, 6 * number, number);
    }
    world.space->write_u16(simlink::kOffsetRadioFlags, 1U << 1);
    start();
    EXPECT_EQ(dme.distance(), "12.3");
    EXPECT_EQ(bk.distance(), "12.3");
    EXPECT_EQ(bk.speed(), "120");
    EXPECT_EQ(bk.time(), "06");
    dme.operate("rotary", 4);
    bk.operate("rotary", 2);
    bk.operate("coarse", 4);
    bk.operate("fine", 9);
    world.tick(15);
    EXPECT_EQ(dme.distance(), "24.6");
    EXPECT_EQ(dme.speed(), "240");
    EXPECT_EQ(dme.time(), "12");
    EXPECT_EQ(world.space->read_u16(simlink::kOffsetNav1Frequency), 0x1245);
    EXPECT_EQ(bk.speed(), "   ");
    world.space->write_u16(simlink::kOffsetRadioFlags, 0);
    world.tick(15);
    EXPECT_EQ(bk.distance(), "   ");
    expect_clean(dme);
    expect_clean(bk);
}

}  // namespace
