#include "run/trim_wheel.h"

#include <gtest/gtest.h>

#include <limits>

#include "run_world.h"

namespace {

using run_test::RunWorld;
using Sent = RunWorld::Sent;

constexpr int kId = 9;
constexpr int kElevatorTrim = 17;
constexpr int kRudderTrim = 19;
constexpr int kSwitch = 40;

struct TrimWheel : testing::Test {
    RunWorld world;

    void start(int trim = kElevatorTrim, int autopilot = kSwitch) {
        world.add_gauge(kId, 140, trim, autopilot);
        world.status.cmdRun_Click();
    }
    static void report(RunWorld& to, int position, int mode) {
        to.report(kId, 140, {{7, position >> 8}, {8, position}, {13, mode}});
    }
    // Motor modes and positions; the polls are left out.
    std::vector<Sent> sent_in(int ticks) {
        world.take_frames();
        world.tick(ticks);
        std::vector<Sent> sent = world.take_frames();
        std::erase_if(sent, [](const Sent& one) { return one.command == 7; });
        return sent;
    }
    double trim(int function = kElevatorTrim) {
        return world.space->read_f64(0x4000U + static_cast<unsigned>(function) * 32U);
    }
};

TEST_F(TrimWheel, a_wheel_that_is_turned_by_hand_trims_the_simulator) {
    world.set_value(kElevatorTrim, 777);
    start();
    world.tick(5);
    EXPECT_EQ(trim(), 777) << "not before the wheel has told where it stands";
    struct Case {
        int position;
        double trim;
    };
    for (const Case& one :
         {Case{512, 0}, Case{0, -16383}, Case{1023, 511.0 / 512 * 16383}, Case{768, 8191.5}, Case{770, 8191.5},
          Case{766, 8191.5}, Case{771, 259.0 / 512 * 16383}, Case{2000, 259.0 / 512 * 16383}}) {
        report(world, one.position, 0);
        world.tick(2);
        EXPECT_NEAR(trim(), one.trim, 0.01) << one.position;
    }
}

TEST_F(TrimWheel, every_change_of_the_autopilot_switch_sets_the_motor) {
    start();
    EXPECT_EQ(sent_in(1), (std::vector<Sent>{{kId, 9, 0}}));
    world.tick(2);
    world.set_value(kSwitch, 0.4);
    EXPECT_TRUE(sent_in(3).empty());
    world.set_value(kSwitch, 1);
    world.tick(1);
    EXPECT_EQ(world.take_values(kId, 9).back(), 4);
    world.set_value(kSwitch, std::numeric_limits<double>::quiet_NaN());
    world.tick(1);
    world.take_frames();
    EXPECT_TRUE(sent_in(5).empty());
    EXPECT_TRUE(world.machine.boxes.shown().empty());
}

TEST_F(TrimWheel, under_the_autopilot_position_and_mode_frames_alternate) {
    world.set_value(kSwitch, 1);
    world.set_value(kElevatorTrim, 16383);
    start();
    world.tick(2);
    report(world, 512, 4);
    const std::vector<Sent> sent = sent_in(4);
    ASSERT_EQ(sent.size(), 4U);
    for (std::size_t frame = 0; frame < 4; ++frame) {
        const Sent expected = sent[frame].command == 5 ? Sent{kId, 5, 1023} : Sent{kId, 9, 4};
        EXPECT_EQ(sent[frame], expected);
        EXPECT_NE(sent[frame].command, sent[(frame + 1) % 4].command);
    }
    for (const auto& [value, position] : std::vector<std::pair<double, int>>{
             {0, 512}, {-16383, 1}, {-8191.5, 256}, {40000, 1023}, {-40000, 0}, {8000, 762}}) {
        world.set_value(kElevatorTrim, value);
        world.tick(2);
        world.take_frames();
        world.tick(2);
        const std::vector<int> positions = world.take_values(kId, 5);
        if (position < 3) {
            EXPECT_TRUE(positions.empty()) << "as good as the switch's own value";
        } else {
            EXPECT_EQ(positions, std::vector<int>{position}) << value;
        }
    }
    world.set_value(kElevatorTrim, std::numeric_limits<double>::infinity());
    world.tick(3);
    EXPECT_TRUE(world.machine.boxes.shown().empty());
}

TEST_F(TrimWheel, a_trim_switch_of_a_yoke_drives_the_motor_and_the_wheel_trims_the_simulator) {
    struct Case {
        int function;
        std::uint8_t elevator, ailerons;
        std::vector<int> modes;
        std::vector<int> modes_when_released;
    };
    for (const Case& one :
         {Case{kElevatorTrim, 1, 0, {1}, {0}}, Case{kElevatorTrim, 2, 0, {2}, {0}}, Case{kElevatorTrim, 0, 1, {}, {}},
          Case{kRudderTrim, 0, 2, {2}, {0}}, Case{kRudderTrim, 2, 0, {}, {}}, Case{kElevatorTrim, 3, 0, {}, {0}},
          Case{kElevatorTrim, 0xFD, 0, {1}, {0}}}) {
        RunWorld fresh;
        fresh.add_gauge(kId, 140, one.function);
        fresh.status.cmdRun_Click();
        fresh.tick(2);
        report(fresh, 512, 0);
        fresh.take_frames();
        fresh.status.context().trim_switches = {one.elevator, one.ailerons};
        fresh.tick(1);
        report(fresh, 600, one.modes.empty() ? 0 : one.modes.front());
        fresh.tick(3);
        EXPECT_EQ(fresh.take_values(kId, 9), one.modes) << int{one.elevator} << ' ' << int{one.ailerons};
        EXPECT_NEAR(fresh.space->read_f64(0x4000U + static_cast<unsigned>(one.function) * 32U), 88.0 / 512 * 16383,
                    0.01);
        fresh.status.context().trim_switches = {};
        fresh.tick(1);
        EXPECT_EQ(fresh.take_values(kId, 9), one.modes_when_released);
    }
}

TEST_F(TrimWheel, a_motor_mode_that_has_not_arrived_goes_again) {
    start();
    world.tick(2);
    report(world, 512, 4);  // the wheel believes to be driven by the autopilot
    EXPECT_EQ(sent_in(2), (std::vector<Sent>{{kId, 9, 0}, {kId, 9, 0}}));
    report(world, 512, 0);
    EXPECT_TRUE(sent_in(3).empty());
}

TEST_F(TrimWheel, after_an_outage_of_the_bus_the_motor_mode_goes_again) {
    start();
    world.tick(3);
    world.wire.unplug();
    world.tick();
    world.wire.plug();
    EXPECT_EQ(sent_in(4), (std::vector<Sent>{{kId, 9, 0}}));
}

TEST_F(TrimWheel, a_wheel_without_functions_does_no_harm) {
    start(0, 0);
    report(world, 800, 0);
    world.tick(5);
    EXPECT_TRUE(world.machine.boxes.shown().empty());
}

}  // namespace
