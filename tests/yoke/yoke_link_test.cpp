// The link of a yoke: start-up, telegrams, port restarts, standby, and what the panel says of the motors.
#include <gtest/gtest.h>

#include "tests/yoke/yoke_world.h"

namespace {

using yoke::YokeCommand;
using yoke_test::command;
using yoke_test::YokeWorld;
using Commands = std::vector<YokeCommand>;

TEST(YokeStart, each_mode_sends_target_deadbands_limits_and_motors_on_before_its_forces) {
    struct Case {
        int mode, ailerons_limit, elevator_limit;
    };
    for (const Case& one :
         {Case{0, 511, 460}, Case{1, 409, 358}, Case{2, 307, 256}, Case{3, 204, 153}, Case{4, 0, 0}}) {
        YokeWorld world;
        world.settings().CenterCorrectionAilerons = 10;
        world.start(one.mode);
        world.tick(6);
        Commands sent = world.take_commands(world.line1);
        ASSERT_GE(sent.size(), 5U);
        Commands expected = {command(11, 614, 0, 512, 0), command(9, 4, 0, 5, 0),
                             command(10, one.ailerons_limit, 10, one.elevator_limit, 10)};
        // In Off mode the motors follow those of the other yoke, which are off.
        if (one.mode != 4) {
            expected.push_back(command(14, 1));
            expected.push_back(command(13, 1));
        }
        sent.resize(expected.size());
        EXPECT_EQ(sent, expected) << "mode " << one.mode;
    }
}

TEST(YokeStart, forces_rise_from_nothing_to_full_in_a_hundred_ticks_and_again_with_every_mode) {
    YokeWorld world;
    world.start(yoke::kCenter);
    world.tick(4 + 2);
    EXPECT_NEAR(world.yoke1.state().ForceRamp, 0.02, 1e-6) << "motor commands take ticks of the ramp";
    EXPECT_EQ(world.next_command(), command(11, 512, 8, 512, 4));
    EXPECT_EQ(world.next_command(47), command(11, 512, 128, 512, 64));
    EXPECT_EQ(world.next_command(49), command(11, 512, 253, 512, 127));
    EXPECT_EQ(world.next_command(), command(7)) << "the spring stays in the yoke";
    world.yoke1.OptionFFB_Click();
    EXPECT_EQ(world.yoke1.state().ForceRamp, 0);
    EXPECT_EQ(world.next_command(), command(11, 512, 0, 512, 0));
    EXPECT_EQ(world.yoke1.boxFFBactive.colour, panel::kRed);
    EXPECT_EQ(world.yoke1.BoxCenterActive.colour, panel::kGreen);
}

TEST(YokeStart, a_mode_chosen_on_a_stopped_yoke_sets_its_limits_only) {
    YokeWorld world;
    world.start(yoke::kCenter);
    world.status.cmdStop_Click();
    world.advance(200);
    world.line1.written.clear();
    world.yoke1.OptionServoMode_Click();
    world.tick(20);
    EXPECT_EQ(world.take_commands(world.line1),
              (Commands{command(11, 512, 0, 512, 0), command(9, 4, 0, 5, 0), command(10, 204, 10, 153, 10)}));
    EXPECT_FALSE(world.yoke1.ProcessTimer.enabled());
}

TEST(YokeTelegrams, positions_forces_and_switches_are_read_by_the_calibration) {
    YokeWorld world;
    world.settings().YokeCalibration = {100, 700, 300, 900};
    world.start_and_ramp(yoke::kCenter);
    struct Case {
        int ailerons, elevator, bank, pitch;
    };
    for (const Case& one : {Case{600, 400, 0, 0}, Case{650, 430, 85, 51}, Case{550, 370, -85, -51},
                            Case{900, 700, 511, 511}, Case{1023, 800, 511, 511}, Case{0, 0, -511, -511}}) {
        world.answer({.ailerons = one.ailerons, .elevator = one.elevator});
        EXPECT_EQ(world.yoke1.state().ailerons.position, one.bank) << one.ailerons;
        EXPECT_EQ(world.yoke1.state().elevator.position, one.pitch) << one.elevator;
    }
    EXPECT_EQ(world.yoke1.boxBank.text.get(), "-100.0");
    world.answer({.ailerons_force = 256, .elevator_force = -511, .switches = 0x8101});
    EXPECT_EQ(world.yoke1.boxBankForce.text.get(), "50.1");
    EXPECT_EQ(world.yoke1.boxPitchForce.text.get(), "-100.0");
    EXPECT_EQ(world.yoke1.SwitchIndicator[8].colour, panel::kRed);
    EXPECT_EQ(world.yoke1.SwitchIndicator[9].colour, panel::kGreen);
    EXPECT_EQ(world.yoke1.ReceivedMessage.text.get(), "Correct");
    EXPECT_EQ(world.yoke1.ProgressIndicator.text.get(), " |");
    world.answer({.switches = 0xFFFF, .type = 2});
    EXPECT_EQ(world.yoke1.state().YokeSwitch[0], 0) << "an older yoke, all open";
    EXPECT_EQ(world.yoke1.state().YokeSwitch[15], 1) << "at its last value";
    EXPECT_EQ(world.yoke1.ProgressIndicator.text.get(), " /");
}

TEST(YokeTelegrams, a_bad_one_closes_the_port_and_opens_it_two_ticks_later_with_a_new_ramp) {
    const std::string good = YokeWorld::bytes_of({.ailerons = 700});
    std::string garbled = good;
    garbled[11] = 'T';
    struct Case {
        const char* message;
        void (*happens)(YokeWorld& world, const std::string& bytes);
        std::string bytes;
    };
    const auto deliver = [](YokeWorld& world, const std::string& bytes) { world.line1.deliver(bytes); };
    for (const Case& one :
         {Case{"Garbled reply", deliver, garbled}, Case{"Inc. reply", deliver, good.substr(0, 24)},
          Case{"Break rcvd.", [](YokeWorld&world, const std::string&) { world.line1.send_break(); }, ""},
          Case{"Framing err.", [](YokeWorld&world, const std::string&) { world.line1.send_framing_error(); }, ""}}) {
        YokeWorld world;
        world.start_and_ramp(yoke::kForceFeedback);
        world.answer({.ailerons = 600});
        world.yoke1.serial_port().set_receive_threshold(one.bytes.size() == 24 ? 24 : 25);
        const int opens = world.line1.opens;
        world.tick();
        one.happens(world, one.bytes);
        world.advance(12);
        EXPECT_EQ(world.yoke1.ReceivedMessage.text.get(), one.message);
        EXPECT_EQ(world.yoke1.state().ailerons.position, 88) << "no value of it counts";
        world.tick();
        EXPECT_FALSE(world.yoke1.serial_port().is_open()) << one.message;
        world.tick(2);
        EXPECT_TRUE(world.yoke1.serial_port().is_open()) << one.message;
        EXPECT_EQ(world.line1.opens, opens + 1);
        EXPECT_EQ(world.yoke1.state().ForceRamp, 0) << one.message;
        world.tick(120);
        EXPECT_NEAR(world.yoke1.state().ForceRamp, 1, 1e-4);
    }
}

TEST(YokeStandby, a_yoke_that_is_not_moved_rests_and_wakes_with_a_movement) {
    YokeWorld world;
    world.settings().StandbyTime = 3;
    world.start_and_ramp(yoke::kForceFeedback);
    world.keep_answering(100, {});
    EXPECT_EQ(world.yoke1.boxStandbyBank.colour, panel::kRed);
    EXPECT_EQ(world.yoke1.boxStandbyPitch.colour, panel::kRed);
    const auto of_motor = [](const YokeCommand& sent) { return sent.command == 13 || sent.command == 14; };
    Commands sent = world.take_commands(world.line1);
    std::erase_if(sent, [&](const YokeCommand& one) { return !of_motor(one); });
    ASSERT_GE(sent.size(), 2U);
    EXPECT_EQ(sent[0], command(14, 0)) << "the elevator first";
    EXPECT_EQ(sent[1], command(13, 0));
    world.keep_answering(3, {.ailerons = 520});  // 1.6 percent, within the threshold
    EXPECT_EQ(world.yoke1.boxStandbyBank.colour, panel::kRed);
    world.keep_answering(3, {.ailerons = 540});
    EXPECT_EQ(world.yoke1.boxStandbyBank.colour, panel::kGreen);
    EXPECT_EQ(world.yoke1.boxStandbyPitch.colour, panel::kRed);
}

TEST(YokeStandby, modes_that_move_by_themselves_never_rest) {
    for (const int mode : {2, 3}) {
        YokeWorld world;
        world.settings().StandbyTime = 1;
        world.start_and_ramp(mode);
        world.advance(10000);
        EXPECT_EQ(world.yoke1.boxStandbyBank.colour, panel::kGreen) << mode;
    }
}

TEST(YokeMotors, the_panel_says_at_any_moment_whether_they_may_push) {
    YokeWorld world;
    const auto says = [&world] {
        EXPECT_EQ(world.both.boxMotorsY1.text.get(), world.yoke1.boxMotors.text.get());
        return world.both.boxMotorsY1.text.get();
    };
    const auto keep_answering = [&world](int ticks) { world.keep_answering(ticks, {}); };
    world.advance(100);
    EXPECT_EQ(says(), "Halted: the yoke keeps its last force");
    EXPECT_EQ(world.both.boxMotorsY2.text.get(), "No: there is no port");
    world.start(yoke::kForceFeedback);
    world.advance(60);
    EXPECT_EQ(says(), "Unknown: no telegrams from the yoke");
    keep_answering(2);
    EXPECT_EQ(says(), "No: start-up");
    keep_answering(10);
    EXPECT_EQ(says(), "Yes: forces are rising");
    keep_answering(130);
    EXPECT_EQ(says(), "Yes");
    world.machine.sim_transport.windows.clear();
    keep_answering(25);
    EXPECT_EQ(says(), "Yes, but the simulator is silent");
    world.machine.sim_transport.windows = {"UIPCMAIN"};
    keep_answering(130);
    EXPECT_EQ(says(), "Yes");
    world.advance(450);
    EXPECT_EQ(says(), "Yes");
    world.advance(100);
    EXPECT_EQ(says(), "Unknown: no telegrams from the yoke");
    keep_answering(2);
    EXPECT_EQ(says(), "No: start-up") << "its supply may have failed meanwhile";
    EXPECT_EQ(world.yoke1.state().ForceRamp, 0);
    keep_answering(10);
    world.line1.unplug();
    world.advance(50);
    EXPECT_EQ(says(), "Unknown: the yoke is not connected");
    EXPECT_EQ(world.yoke1.ComPortNr.text.get(), "COM7 unplugged");
    world.line1.plug();
    keep_answering(120);
    EXPECT_EQ(says(), "Yes");
    world.yoke1.OptionOff_Click();
    keep_answering(10);
    EXPECT_EQ(says(), "No: OFF mode");
    world.status.cmdStop_Click();
    world.advance(50);
    EXPECT_EQ(says(), "Halted: the yoke keeps its last force");
    EXPECT_TRUE(world.machine.boxes.shown().empty());
}

}  // namespace
