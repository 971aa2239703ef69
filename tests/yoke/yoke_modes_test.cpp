// What each mode makes of position, airspeed and simulator.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/yoke/yoke_world.h"
#include "yoke/force_modes.h"

namespace {

using yoke::YokeCommand;
using yoke_test::command;
using yoke_test::YokeWorld;

// --- The curve
// --------------------------------------------------------------------------------------------------------

TEST(ForceProfile, is_a_line_through_its_points_carried_on_at_the_end) {
    tables::ForceCurve curve{};
    YokeWorld::set_linear_curve(curve, 4);
    const yoke::ForceProfile linear = yoke::profile_of(curve);
    EXPECT_EQ(linear.ProfileAirspeed[3], 120);
    EXPECT_EQ(linear.ProfileForce[3], 30);
    for (const auto& [knots, percent] : std::vector<std::pair<double, double>>{
             {0, 0}, {20, 5}, {40, 10}, {60, 15}, {399, 99.75}, {400, 100}, {480, 120}, {-40, -10}}) {
        EXPECT_NEAR(static_cast<double>(yoke::profile_force(linear, knots)), percent, 1e-4) << knots;
    }
    yoke::ForceProfile steps;
    steps.ProfileAirspeed = {50, 50, 51, 100, 100, 100, 100, 100, 100, 100, 100};
    steps.ProfileForce = {10, 20, 30, 60, 70, 70, 70, 70, 70, 70, 90};
    for (const auto& [knots, percent] :
         std::vector<std::pair<double, double>>{{10, 10}, {50, 10}, {50.5, 20}, {75.5, 45}, {100, 60}, {150, 70}}) {
        EXPECT_NEAR(static_cast<double>(yoke::profile_force(steps, knots)), percent, 1e-4) << knots;
    }
}

// --- Position
// ---------------------------------------------------------------------------------------------------------

TEST(YokePosition, a_master_writes_it_and_the_elevator_is_negated) {
    for (const int mode : {0, 1, 4}) {
        YokeWorld world;
        world.start_and_ramp(mode);
        world.answer({.ailerons = 768, .elevator = 300});
        world.advance(100);
        EXPECT_EQ(world.ffb(5), std::floor(256 / 512.0 * 16383)) << "mode " << mode;
        EXPECT_EQ(world.ffb(4), -std::floor(-212 / 512.0 * 16383)) << "mode " << mode;
        EXPECT_EQ(world.yoke1.boxFSAilerons.text.get(), "50.0");
        EXPECT_EQ(world.yoke1.IndicatorWriteAilerons.colour, panel::kRed);
        world.yoke1.cmdSetSlave_Click();
        world.answer({.ailerons = 100, .elevator = 300});
        world.advance(100);
        EXPECT_EQ(world.ffb(5), std::floor(256 / 512.0 * 16383)) << "a slave does not";
    }
}

// --- Force feedback
// ---------------------------------------------------------------------------------------------------

TEST(YokeForces, follow_the_airspeed_by_the_curve) {
    YokeWorld world;
    world.start_and_ramp(yoke::kForceFeedback);
    for (const auto& [knots, ailerons, elevator] : std::vector<std::tuple<double, int, int>>{
             {0, 0, 0}, {120, 172, 345}, {60, 86, 172}, {400, 575, 1150}, {480, 690, 1150}, {1000, 1150, 1150}}) {
        world.set_airspeed(knots);
        EXPECT_EQ(world.next_command(), command(11, 512, ailerons, 512, elevator)) << knots;
    }
    EXPECT_EQ(world.yoke1.BoxCurveAilerons.text.get(), "250.0");
    EXPECT_EQ(world.yoke1.boxAirspeed.text.get(), "1000.0");
    // A curve that falls beyond its end leads to nothing, not to the highest force there is.
    world.tables.yoke_common.AileronForceCurve[10].force = 5500;
    world.yoke1.activate();
    world.set_airspeed(900);
    EXPECT_EQ(world.next_command().values[1], 0);
}

TEST(YokeForces, the_air_shakes_within_its_limits) {
    YokeWorld world;
    world.settings().TurbulenceAilerons = 10;
    world.settings().TurbulenceElevator = 20;
    world.start_and_ramp(yoke::kForceFeedback);
    double bank = 0, pitch = 0;
    for (const auto& [bank_change, pitch_change, ailerons, elevator] :
         std::vector<std::tuple<double, double, int, int>>{
             {0.5, 0, 5, 0}, {-0.75, 1.25, -8, 25}, {0, -1.0, 0, -20}, {40, 3, 50, 50}, {-70, -9, -50, -50}}) {
        bank += bank_change;
        pitch += pitch_change;
        world.set_value(197, bank);
        world.set_value(196, pitch);
        const yoke::YokeState& state = world.yoke1.state();
        for (int wait = 0; wait < 100 && (state.ailerons.last_motion != bank || state.elevator.last_motion != pitch);
             ++wait) {
            world.line1.written.clear();
            world.advance(1);
        }
        const std::vector<YokeCommand> sent = world.take_commands(world.line1);
        ASSERT_EQ(sent.size(), 1U);
        EXPECT_EQ(sent[0].values[0], 512 + ailerons) << bank_change;
        EXPECT_EQ(sent[0].values[2], 512 + elevator) << pitch_change;
    }
    world.set_value(197, std::numeric_limits<double>::quiet_NaN());
    world.tick(3);
    EXPECT_TRUE(world.status.running());
}

TEST(YokeForces, wheels_shock_while_it_rolls_and_once_at_touchdown) {
    YokeWorld world;
    world.settings().WheelsShockForce = 30;
    world.settings().WheelsShockFrequency = 100;
    world.start_and_ramp(yoke::kForceFeedback);
    world.set_value(190, 1);
    world.advance(20);
    std::vector<int> targets;
    for (int tick = 0; tick < 4; ++tick) {
        const YokeCommand sent = world.next_command();
        if (sent.values[0] != 512) {
            EXPECT_EQ(sent.values[1], 200);
        }
        targets.push_back(sent.values[0]);
    }
    EXPECT_EQ(std::count(targets.begin(), targets.end(), 572), 1) << "the touchdown";
    EXPECT_EQ(std::count(targets.begin(), targets.end(), 512), 3) << "then it stands still";
    world.set_ffb(17, 30);
    int left = 0, right = 0, none = 0;
    for (int tick = 0; tick < 300; ++tick) {
        const int target = world.next_command().values[0];
        left += target == 482 ? 1 : 0;
        right += target == 542 ? 1 : 0;
        none += target == 512 ? 1 : 0;
    }
    EXPECT_GT(left, 50);
    EXPECT_GT(right, 50);
    EXPECT_EQ(left + right + none, 300);
    // Slower shocks: the pause is (2 * 60 - 40 knots) / 16 ticks.
    world.settings().WheelsShockFrequency = 40;
    world.set_airspeed(40);
    int longest = 0, pause = 0;
    for (int tick = 0; tick < 200; ++tick) {
        pause = world.next_command().values[0] == 512 ? pause + 1 : 0;
        longest = std::max(longest, pause);
    }
    EXPECT_GE(longest, 5);
}

TEST(YokeForces, on_the_ground_the_elevator_has_weight) {
    YokeWorld world;
    world.settings().ElevatorCorrection = -80;
    world.start_and_ramp(yoke::kForceFeedback);
    world.set_ffb(0, 1);
    world.tick(3);
    EXPECT_EQ(world.next_command(), command(11, 512, 0, 512 + 409, 120));
    world.set_airspeed(20);  // 57 of force
    EXPECT_EQ(world.next_command(), command(11, 512, 28, 512 + 117, 120));
    world.set_airspeed(40);
    EXPECT_EQ(world.next_command(), command(11, 512, 57, 512, 115)) << "the air carries it";
}

TEST(YokeForces, the_stick_shakes_at_stall_and_overspeed_where_it_is_to) {
    YokeWorld world;
    world.settings().ShakerAtStall = 1;
    world.start_and_ramp(yoke::kForceFeedback);
    const auto targets = [&world](int ticks) {
        std::vector<int> all;
        for (int tick = 0; tick < ticks; ++tick) {
            all.push_back(world.next_command().values[2]);
        }
        return all;
    };
    world.set_ffb(9, 1);
    EXPECT_EQ(targets(5), (std::vector<int>{512, 512, 512, 512, 512})) << "not at overspeed";
    world.set_ffb(8, 1);
    const std::vector<int> shaken = targets(9);
    EXPECT_EQ(std::count(shaken.begin() + 2, shaken.end(), 612), 2);
    EXPECT_GE(std::count(shaken.begin() + 2, shaken.end(), 412), 4);
    EXPECT_EQ(world.yoke1.StallWarningIndicator.colour, panel::kRed);
}

TEST(YokeForces, the_shaker_keeps_within_the_travel) {
    yoke::YokeState state;
    state.ShakerOn = 1;
    for (const auto& [position, up, down] : std::vector<std::tuple<int, int, int>>{
             {0, 100, -100}, {412, 100, -100}, {450, 62, -138}, {-450, 100, -62}, {511, 1, -199}}) {
        state.elevator.position = static_cast<std::int16_t>(position);
        state.ShakerStep = state.ShakeCarry = 0;
        yoke::shake(state);
        EXPECT_EQ(state.ShakeOffset, up) << position;
        yoke::shake(state);
        EXPECT_EQ(state.ShakeOffset, down) << position;
        yoke::shake(state);
        EXPECT_EQ(state.ShakeOffset, down) << "the third tick rests";
        EXPECT_EQ(state.ShakerStep, 0);
    }
}

TEST(YokeForces, the_limit_follows_the_curve_every_other_tick_when_asked_to) {
    YokeWorld world;
    world.start_and_ramp(yoke::kForceFeedback);
    world.yoke1.CheckForceLimit.value = 1;
    world.yoke1.CheckForceLimit.on_click();
    world.set_airspeed(200);
    world.tick();
    std::vector<YokeCommand> sent = {world.next_command(), world.next_command()};
    if (sent[0].command == 10) {
        std::swap(sent[0], sent[1]);
    }
    EXPECT_EQ(sent[0], command(11, 512, 287, 512, 575));
    EXPECT_EQ(sent[1], command(10, 256, 1, 256, 1));
}

// --- Follow AP and Servo
// ----------------------------------------------------------------------------------------------

TEST(YokeFollowsAutopilot, gliding_a_step_a_tick_to_where_it_is_wanted) {
    YokeWorld world;
    world.set_value(191, 1);
    world.set_value(192, 1);
    world.set_value(200, 0.02);  // 50 * 0.02 * 10 = 10 percent
    world.set_value(201, -0.1);  // 50 percent, the other way round
    world.start_and_ramp(yoke::kFollowAp);
    const int wanted = 512 + 51;
    world.tick(60);
    EXPECT_EQ(world.next_command(), command(11, wanted, 500, 512, 400)) << "no demand without altitude hold";
    world.set_ffb(3, 1);
    world.tick(3);
    const YokeCommand before = world.next_command();
    EXPECT_EQ(world.next_command(10).values[2], before.values[2] + 10);
    world.tick(300);
    EXPECT_EQ(world.next_command(), command(11, wanted, 500, 512 + 255, 400));
    EXPECT_EQ(world.yoke1.boxFSAileronsTrim.text.get(), "020.0");
    EXPECT_EQ(world.yoke1.boxServoYokePositionElevator.text.get(), "-50.0");
    world.set_ffb(10, 5);
    world.tick(600);
    EXPECT_EQ(world.next_command().values[0], 1023) << "held to the travel";
}

TEST(YokeServo, goes_where_master_or_simulator_are) {
    YokeWorld world;
    world.tables.YokePort2 = yoke_test::kSecondWire;
    world.start_and_ramp(yoke::kForceFeedback);
    world.answer({.ailerons = 768, .elevator = 256});
    world.answer_on(world.line2, {.ailerons = 900});
    world.tick(2);
    std::vector<YokeCommand> sent = world.take_commands(world.line2);
    ASSERT_FALSE(sent.empty());
    EXPECT_EQ(sent.back(), command(11, 767, 1000, 256, 800));
    EXPECT_EQ(world.yoke2.boxServoFollowMaster.colour, panel::kRed);

    world.tables.yokes[1].SlaveFollowsMaster = 0;
    world.answer({});  // neutral hands
    world.tick(4);
    sent = world.take_commands(world.line2);
    ASSERT_FALSE(sent.empty());
    EXPECT_EQ(sent.back(), command(11, 512, 1000, 512, 800));
    EXPECT_EQ(world.yoke2.boxServoFollowSimulator.colour, panel::kRed);
    world.answer({.ailerons = 1023, .elevator = 1023});
    world.tick(4);
    sent = world.take_commands(world.line2);
    EXPECT_EQ(sent.back().values[0], 1023) << "the end of the travel, by the simulator";
    EXPECT_EQ(sent.back().values[2], 1022) << "the elevator negated there and back";
}

// --- Autopilot
// --------------------------------------------------------------------------------------------------------

TEST(YokeAutopilot, takes_over_and_gives_back_when_that_is_wanted) {
    YokeWorld world;
    world.start_and_ramp(yoke::kForceFeedback);
    world.set_ffb(1, 1);
    world.tick(5);
    EXPECT_EQ(world.yoke1.state().YokeMode, yoke::kForceFeedback) << "not asked for";
    world.settings().AutoSwitchFFBAP = 1;
    world.tick(2);
    EXPECT_EQ(world.yoke1.state().YokeMode, yoke::kFollowAp);
    EXPECT_EQ(world.yoke1.state().ServoFollow, 1);
    EXPECT_EQ(world.yoke1.state().ForceRamp, 0);
    world.tick(10);
    world.set_ffb(1, 0);
    world.tick(3);
    EXPECT_EQ(world.yoke1.state().YokeMode, yoke::kForceFeedback);
}

TEST(YokeAutopilot, a_pilot_who_pushes_long_enough_overrules_it) {
    for (const auto& [time_ms, pushes] : std::vector<std::pair<int, int>>{{25, 1}, {40, 2}, {100, 3}}) {
        YokeWorld world;
        world.settings().AutoSwitchFFBAP = 1;
        world.settings().EnableAPOverrule = 1;
        world.settings().APOverruleTime = static_cast<std::int16_t>(time_ms);
        world.set_value(191, 1);
        world.start_and_ramp(yoke::kFollowAp);
        world.answer({.ailerons_force = 102});  // 20.0 percent is not above
        world.tick(10);
        EXPECT_EQ(world.yoke1.state().YokeMode, yoke::kFollowAp);
        world.answer({.elevator_force = -103});
        world.tick(pushes - 1);
        EXPECT_EQ(world.yoke1.state().YokeMode, yoke::kFollowAp) << time_ms;
        world.tick(2);
        EXPECT_EQ(world.yoke1.state().YokeMode, yoke::kForceFeedback) << time_ms;
        world.tick(2);
        EXPECT_EQ(world.ffb(1), 0) << "the autopilot is off";
    }
}

}  // namespace
