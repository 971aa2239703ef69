#include "run/autopilot_unit.h"

#include <gtest/gtest.h>

#include <limits>

#include "run_world.h"
#include "simlink/sim_offsets.h"

namespace {

using run_test::RunWorld;
using Sent = RunWorld::Sent;

constexpr int kId = 3;
constexpr int kAltitudeFunction = 4;

struct Unit {
    int altitude = 0;
    int vertical_speed = 0;
    int modes = 0;
    int operated = 0;
    int pressure = 2992;
    int hectopascal = 0;
};

void report(RunWorld& world, const Unit& unit) {
    world.report(kId, 124,
                 {{7, unit.altitude >> 8},
                  {8, unit.altitude},
                  {10, unit.vertical_speed >> 8},
                  {11, unit.vertical_speed},
                  {19, unit.pressure >> 8},
                  {20, unit.pressure},
                  {22, unit.modes},
                  {23, unit.hectopascal},
                  {24, unit.operated}});
}

struct AutopilotUnit : testing::Test {
    RunWorld world;
    tables::GaugeRow& row = world.add_gauge(kId, 124, kAltitudeFunction, 7);

    void start(int flags = 0, int default_speed = 0) {
        row.GaugePlate1 = static_cast<std::int16_t>(flags);
        row.GaugePlate2 = static_cast<std::int16_t>(default_speed);
        world.status.cmdRun_Click();
        world.tick(3);
        world.take_frames();
    }
    // What the unit is sent in so many ticks, but for polls and steady lamps.
    std::vector<Sent> sent_in(int ticks) {
        world.take_frames();
        world.tick(ticks);
        std::vector<Sent> sent = world.take_frames();
        std::erase_if(sent, [](const Sent& one) { return one.command == 7 || one == Sent{kId, 11, 0}; });
        return sent;
    }
    void set_mode(std::uint32_t offset, int state) { world.space->write_i32(offset, state); }
    int mode(std::uint32_t offset) { return world.space->read_i32(offset); }
};

TEST_F(AutopilotUnit, an_operated_unit_writes_modes_altitude_and_vertical_speed) {
    start(8);
    world.set_value(kAltitudeFunction, 3000);
    world.tick(2);
    report(world, {.altitude = 5000, .vertical_speed = 700, .modes = 0xFF, .operated = 1});
    for (const std::uint32_t offset : {0x7BCU, 0x7C8U, 0x7C0U, 0x7C4U, 0x800U, 0x7FCU, 0x804U, 0x7ECU, 0x7D0U}) {
        EXPECT_EQ(mode(offset), 1) << std::hex << offset;
    }
    EXPECT_EQ(world.space->read_i32(simlink::kOffsetApAltitude), 99876861);  // 5000 ft in metres * 65536
    EXPECT_EQ(world.space->read_i16(simlink::kOffsetApVerticalSpeed), 700);
    EXPECT_TRUE(sent_in(5).empty()) << "a unit in use is left alone";
    report(world, {.altitude = -500, .vertical_speed = -800, .modes = 0x81, .operated = 1});
    EXPECT_EQ(mode(0x7C8), 0);
    EXPECT_EQ(mode(0x7D0), 1);
    EXPECT_EQ(world.space->read_i32(simlink::kOffsetApAltitude), -9987686);
    EXPECT_EQ(world.space->read_i16(simlink::kOffsetApVerticalSpeed), -800);
    report(world, {.altitude = 5000, .vertical_speed = -800, .modes = 0x81, .operated = 1});
    EXPECT_EQ(world.space->read_i16(simlink::kOffsetApVerticalSpeed), 0) << "down is not the way to 5000 ft";
}

TEST_F(AutopilotUnit, without_a_flight_director_all_modes_end_with_the_master) {
    struct Case {
        int flags;
        int heading;
    };
    for (const Case& one : {Case{0, 0}, Case{4, 1}}) {
        row.GaugePlate1 = static_cast<std::int16_t>(one.flags);
        start(one.flags);
        report(world, {.altitude = 5000, .modes = 0x02, .operated = 1});
        EXPECT_EQ(mode(simlink::kOffsetApHeading), one.heading);
        world.status.cmdStop_Click();
    }
}

TEST_F(AutopilotUnit, the_units_pressure_sets_the_simulator_when_it_is_wanted) {
    struct Case {
        int flags, pressure, hectopascal;
        double expected;
    };
    for (const Case& one : {Case{0, 3010, 0, 0}, Case{2, 3010, 0, 30.10}, Case{2, 1013, 1, 1013 / 33.86}}) {
        RunWorld fresh;
        fresh.add_gauge(kId, 124, kAltitudeFunction).GaugePlate1 = static_cast<std::int16_t>(one.flags);
        fresh.status.cmdRun_Click();
        fresh.tick();
        report(fresh, {.operated = 1, .pressure = one.pressure, .hectopascal = one.hectopascal});
        EXPECT_NEAR(fresh.space->read_f64(0x4000 + 32), one.expected, 1e-4);
    }
}

TEST_F(AutopilotUnit, a_unit_at_rest_leaves_the_simulator_alone_and_takes_its_state) {
    start();
    set_mode(simlink::kOffsetApMaster, 1);
    set_mode(simlink::kOffsetApHeading, 1);
    world.space->write_i16(simlink::kOffsetApVerticalSpeed, -1250);
    world.tick(3);
    // Until the unit has said so itself, the simulator's state goes to it at every tick.
    const int word = -(12 * 256 + 3);  // hundreds rounded to even, and the frame's sign for "down"
    EXPECT_EQ(sent_in(2), (std::vector<Sent>{{kId, 5, word}, {kId, 5, word}}));
    report(world, {.modes = 0x03});
    EXPECT_EQ(mode(simlink::kOffsetApMaster), 1);
    EXPECT_EQ(mode(simlink::kOffsetApHeading), 1);
    world.take_frames();
    world.tick(4);
    EXPECT_EQ(world.take_values(kId, 5), std::vector<int>{}) << "both agree";
    set_mode(simlink::kOffsetApHeading, 0);
    set_mode(simlink::kOffsetApNav, 1);
    world.tick(3);
    EXPECT_EQ(sent_in(1), (std::vector<Sent>{{kId, 5, -(12 * 256 + 9)}}));
}

TEST_F(AutopilotUnit, modes_that_exclude_each_other_are_sorted_out) {
    struct Case {
        int reported, sent;
    };
    for (const Case& one : {Case{0x08, 0x08}, Case{0x10, 0x10}, Case{0x20, 0x30}, Case{0x30, 0x30}, Case{0x38, 0x08},
                            Case{0x18, 0x08}, Case{0x42, 0x42}}) {
        RunWorld fresh;
        fresh.add_gauge(kId, 124, kAltitudeFunction);
        fresh.status.cmdRun_Click();
        fresh.tick(3);
        fresh.take_frames();
        report(fresh, {.modes = one.reported});
        EXPECT_EQ(fresh.take_values(kId, 5), std::vector<int>{one.sent}) << std::hex << one.reported;
    }
}

TEST_F(AutopilotUnit, the_actual_altitude_goes_to_a_unit_that_begins_to_hold) {
    start(16);
    world.set_value(kAltitudeFunction, 4321.4);
    world.tick(3);
    world.take_frames();
    report(world, {.modes = 0x80});
    EXPECT_EQ(world.take_values(kId, 3), std::vector<int>{4321});
    report(world, {.modes = 0xC0});
    EXPECT_EQ(world.take_values(kId, 3), std::vector<int>{}) << "it was holding before";
}

TEST_F(AutopilotUnit, towards_a_target_the_default_vertical_speed_is_chosen) {
    struct Case {
        double altitude;
        int target, default_speed, chosen;
    };
    for (const Case& one : {Case{4000, 5000, 500, 500}, Case{4000, 5000, 0, 700}, Case{6000, 5000, 600, -600},
                            Case{4801, 5000, 500, 0}, Case{4799, 5000, 500, 500}, Case{4000, 0, 500, -500},
                            Case{std::numeric_limits<double>::quiet_NaN(), 5000, 500, 0},
                            Case{-std::numeric_limits<double>::infinity(), 5000, 500, 0}}) {
        RunWorld fresh;
        tables::GaugeRow& gauge = fresh.add_gauge(kId, 124, kAltitudeFunction);
        gauge.GaugePlate2 = static_cast<std::int16_t>(one.default_speed);
        fresh.set_value(kAltitudeFunction, one.altitude);
        fresh.status.cmdRun_Click();
        fresh.tick(3);
        report(fresh, {.altitude = one.target, .operated = 1});
        report(fresh, {.altitude = one.target});
        fresh.tick(5);
        EXPECT_EQ(fresh.space->read_i16(simlink::kOffsetApVerticalSpeed), one.chosen) << one.altitude;
        fresh.take_frames();
        EXPECT_EQ(fresh.sim_com.ApVerticalSpeed, one.chosen);
        EXPECT_TRUE(fresh.machine.boxes.shown().empty());
    }
}

TEST_F(AutopilotUnit, a_changed_vertical_speed_goes_to_the_unit_once) {
    start();
    world.space->write_i16(simlink::kOffsetApVerticalSpeed, -1250);
    EXPECT_EQ(sent_in(5), (std::vector<Sent>{{kId, 4, -1250}}));
}

TEST_F(AutopilotUnit, reaching_the_target_altitude_alerts_once) {
    start();
    world.set_value(kAltitudeFunction, 4000);
    world.tick(2);
    report(world, {.altitude = 5000, .vertical_speed = 700, .operated = 1});
    report(world, {.altitude = 5000});
    EXPECT_EQ(sent_in(3), std::vector<Sent>{});
    world.set_value(kAltitudeFunction, 4901);
    EXPECT_EQ(sent_in(5), (std::vector<Sent>{{kId, 11, 20}}));
    EXPECT_TRUE(sent_in(5).empty());
}

TEST_F(AutopilotUnit, moving_trim_lights_its_arrow) {
    start();
    struct Case {
        int trim, lamps;
    };
    for (const Case& one :
         {Case{11, 0x3000}, Case{22, 0x3000}, Case{32, 0}, Case{-16383, 0x6000}, Case{16383, 0x3000}, Case{16383, 0}}) {
        world.space->write_i16(simlink::kOffsetApTrim, static_cast<std::int16_t>(one.trim));
        world.tick(16);
        world.take_frames();
        world.tick(1);
        EXPECT_EQ(world.take_values(kId, 11), std::vector<int>{one.lamps}) << one.trim;
        world.tick(15);
    }
}

TEST_F(AutopilotUnit, after_an_outage_of_the_bus_the_unit_gets_modes_and_vertical_speed_again) {
    start();
    world.space->write_i16(simlink::kOffsetApVerticalSpeed, 900);
    set_mode(simlink::kOffsetApMaster, 1);
    world.tick(3);
    report(world, {.modes = 0x41});
    world.tick(5);
    world.wire.unplug();
    world.tick();
    world.wire.plug();
    EXPECT_EQ(sent_in(6), (std::vector<Sent>{{kId, 5, 9 * 256 + 0x41}, {kId, 4, 900}}));
}

}  // namespace
