// Settings, switches, calibration, roles and the curve editor.
#include <gtest/gtest.h>

#include "panel/user_input.h"
#include "tests/yoke/yoke_world.h"

namespace {

using yoke::YokeCommand;
using yoke_test::command;
using yoke_test::YokeWorld;

void work(panel::Control& control, panel::UserAction action) {
    EXPECT_EQ(panel::UserInput::apply(control, action), panel::InputResult::done) << control.name();
}
void click(panel::Control& control) {
    work(control, {panel::UserEvent::click, 0, ""});
}
void type(panel::TextBox& box, const std::string& text) {
    work(box, {panel::UserEvent::change, 0, text});
}

// --- Switches
// ---------------------------------------------------------------------------------------------------------

struct SwitchWorld : YokeWorld {
    SwitchWorld() { settings().TrimSwitchSpeed = 50; }
    void assign(std::size_t number, int function) {
        settings().YokeSwitchFunctions[number + 1] = static_cast<std::uint8_t>(function);
    }
    void close(int bits) {
        answer({.switches = bits});
        advance(80);
    }
};

TEST(YokeSwitchFunctions, act_by_edge_or_as_long_as_they_are_closed) {
    SwitchWorld world;
    const std::vector<int> functions = {1, 2, 4, 5, 6, 7, 8, 9, 10, 13, 14, 15, 16, 17, 18, 18};
    for (std::size_t number = 0; number < functions.size(); ++number) {
        world.assign(number, functions[number]);
    }
    world.start_and_ramp(yoke::kCenter);
    const auto bit = [](int number) { return 1 << number; };
    world.keep_answering(3, {.switches = bit(0)});
    world.close(0);
    const int trim = world.yoke1.state().TrimValue;
    EXPECT_GE(trim, 150);
    EXPECT_EQ(trim % 50, 0) << "a step in every tick";
    EXPECT_EQ(world.ffb(12), trim);
    world.keep_answering(2, {.switches = bit(1)});
    world.close(0);
    EXPECT_LT(world.yoke1.state().TrimValue, trim);

    world.close(bit(2));
    EXPECT_EQ(world.ffb(15), 128);
    world.close(bit(2) | bit(3));
    EXPECT_EQ(world.ffb(16), 192);
    world.close(bit(3));
    EXPECT_EQ(world.ffb(15), 64) << "what stays pressed stays told";
    world.close(0);
    EXPECT_EQ(world.ffb(16), 0);

    for (const auto& [closed, master] : std::vector<std::pair<int, int>>{
             {bit(4), 1}, {0, 1}, {bit(4), 0}, {0, 0}, {bit(5), 1}, {0, 1}, {bit(6), 0}, {0, 0}}) {
        world.close(closed);
        EXPECT_EQ(world.ffb(1), master) << closed;
    }
    world.close(bit(7));
    EXPECT_EQ(world.ffb(13), 32767);
    world.close(0);
    EXPECT_EQ(world.ffb(13), 0);

    world.keep_answering(4, {.switches = bit(8) | bit(9)});
    world.close(0);
    EXPECT_LT(world.yoke1.state().elevator.CenterOffset, 0);
    EXPECT_GT(world.yoke1.state().ailerons.CenterOffset, 0);
    world.close(bit(10) | bit(13));
    EXPECT_EQ(world.status.context().trim_switches.TrimMotorElevator, 2);
    EXPECT_EQ(world.status.context().trim_switches.TrimMotorAilerons, 2);
    world.close(bit(11) | bit(12));
    EXPECT_EQ(world.status.context().trim_switches.TrimMotorElevator, 1);
    EXPECT_EQ(world.status.context().trim_switches.TrimMotorAilerons, 1);
    world.close(bit(14) | bit(15));
    EXPECT_EQ(world.ffb(14), 0xC000);
    world.close(bit(15));
    EXPECT_EQ(world.ffb(14), 0x8000);
}

TEST(YokeSwitchFunctions, end_at_their_limits_and_a_slave_is_silent_unless_it_may) {
    yoke::YokeState state;
    tables::YokeSettings settings;
    settings.TrimSwitchSpeed = 100;
    SwitchWorld world;
    struct Around : yoke::SwitchSurroundings {
        explicit Around(SwitchWorld& used) : world(used) {}
        simlink::SimCom& sim_com() override { return world.sim_com; }
        run::TrimSwitches& trim_switches() override { return world.status.context().trim_switches; }
        void swap_master() override { ++swaps; }
        SwitchWorld& world;
        int swaps = 0;
    } around(world);
    yoke::YokeSwitches switches;
    const auto hold = [&](int function, int times) {
        for (int tick = 0; tick < times; ++tick) {
            switches.carry_out(function, 0, 1, state, settings, around);
        }
    };
    hold(1, 200);
    EXPECT_EQ(state.TrimValue, 16383);
    hold(2, 400);
    EXPECT_EQ(state.TrimValue, -16383);
    hold(11, 60);
    hold(12, 60);
    EXPECT_EQ(state.elevator.CenterOffset, 50);
    EXPECT_EQ(state.ailerons.CenterOffset, -50);
    hold(3, 5);
    EXPECT_EQ(around.swaps, 1) << "by edge";
    switches.carry_out(3, 7, 0, state, settings, around);
    switches.carry_out(3, 7, 1, state, settings, around);
    EXPECT_EQ(around.swaps, 2) << "whichever switch it is";

    world.assign(0, 1);
    world.start_and_ramp(yoke::kCenter);
    world.yoke1.cmdSetSlave_Click();
    world.keep_answering(5, {.switches = 1});
    EXPECT_EQ(world.yoke1.state().TrimValue, 0);
    world.settings().EnableSwitchesAsSlave = 1;
    world.keep_answering(5, {.switches = 1});
    EXPECT_GT(world.yoke1.state().TrimValue, 0);
}

TEST(YokeSwitchFunctions, a_list_of_the_older_form_shows_without_its_shift_until_it_is_set) {
    YokeWorld world;
    world.settings().YokeSwitchFunctions = {3, 1, 2, 200};
    world.panels.show(world.yoke1);
    EXPECT_EQ(world.yoke1.ComboSwitchFunction[0].value, 3);
    EXPECT_EQ(world.yoke1.ComboSwitchFunction[2].value, 2);
    EXPECT_EQ(world.yoke1.ComboSwitchFunction[3].value, 0) << "there is no such function";
    EXPECT_EQ(world.yoke1.ComboSwitchFunction[7].items[18], "--> Virtual JStck button #07");
    work(world.yoke1.ComboSwitchFunction[15], {panel::UserEvent::change, 18, ""});
    click(world.yoke1.CmdSetSwitches);
    EXPECT_EQ(world.settings().YokeSwitchFunctions,
              (std::array<std::uint8_t, 19>{255, 3, 1, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 18}));
}

// --- Settings
// ---------------------------------------------------------------------------------------------------------

TEST(YokeSettings, every_slider_holds_its_own_setting_and_shows_it_again) {
    YokeWorld world;
    world.panels.show(world.yoke1);
    tables::YokeSettings before = world.settings();
    for (std::size_t number = 0; number < yoke::kSettingSliders; ++number) {
        panel::Slider& slider = world.yoke1.sliders[number];
        const int value = slider.minimum + 1 + static_cast<int>(number) % 9;
        work(slider, {panel::UserEvent::change, value, ""});
        EXPECT_EQ(world.settings().*yoke::slider_rows()[number].setting, value) << slider.name();
    }
    EXPECT_EQ(world.settings().SensitivityServoElevator,
              world.yoke1.slider(&tables::YokeSettings::SensitivityServoElevator).value);
    EXPECT_EQ(world.yoke1.BoxAileronsSensitivity.text.get(), std::to_string(world.settings().FFBEffectAilerons));
    before.ElevatorCorrection = -999;
    world.settings() = before;
    world.yoke1.activate();
    EXPECT_EQ(world.yoke1.slider(&tables::YokeSettings::ElevatorCorrection).value, -100);
    EXPECT_EQ(world.settings().ElevatorCorrection, -999) << "shown at the end, kept as it is";
}

TEST(YokeSettings, standby_is_checked_and_told_at_once) {
    YokeWorld world;
    world.start_and_ramp(yoke::kCenter);
    world.panels.show(world.yoke1);
    struct Case {
        const char *timer, *threshold;
        int seconds, percent;
        const char* message;
    };
    for (const Case& one : {Case{"5", "7", 5, 7, ""}, Case{"999", "100", 999, 100, ""}, Case{"0", "0", 0, 0, ""},
                            Case{"1000", "3", 0, 3, "Timer must be a positive value from 0 to 999 (seconds)"},
                            Case{"-1", "4", 0, 4, "Timer must be a positive value from 0 to 999 (seconds)"},
                            Case{"600", "101", 600, 4, "Threshold must be a positive value from 0 to 100(%)"}}) {
        world.machine.boxes.forget_shown();
        world.line1.written.clear();
        type(world.yoke1.boxStbyTimer, one.timer);
        type(world.yoke1.boxStbyThreshold, one.threshold);
        click(world.yoke1.CmdSetTimer);
        EXPECT_EQ(world.settings().StandbyTime, one.seconds) << one.timer;
        EXPECT_EQ(world.settings().StandbyThreshold, one.percent) << one.threshold;
        EXPECT_EQ(world.last_shown(), one.message);
        if (std::string(one.timer) == "5" || std::string(one.timer) == "999") {
            EXPECT_EQ(world.take_commands(world.line1)[0], command(2, one.seconds / 10));
        }
    }
    world.line1.written.clear();
    click(world.yoke1.SetDeadbandAndFgreshold);
    EXPECT_EQ(world.take_commands(world.line1)[0], command(9, 4, 0, 5, 0));
}

TEST(YokeSettings, are_copied_to_the_other_yoke_whole_but_for_what_only_runs) {
    YokeWorld world;
    world.settings().TurbulenceElevator = 77;
    world.settings().YokeSwitchFunctions = {255, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 90, 91};
    world.settings().YokeCalibration = {100, 900, 200, 800};
    world.settings().carried_byte = 9;
    world.tables.yokes[1].YokeSwitchFunctions[17] = 55;
    world.panels.show(world.yoke1);
    click(world.yoke1.cmdCopySettingsYoke2);
    const tables::YokeSettings& copy = world.tables.yokes[1];
    EXPECT_EQ(copy.TurbulenceElevator, 77);
    EXPECT_EQ(copy.carried_byte, 9);
    EXPECT_EQ(copy.YokeSwitchFunctions[16], 16);
    EXPECT_EQ(copy.YokeSwitchFunctions[17], 55);
    EXPECT_EQ(copy.YokeCalibration[3], 800);
    EXPECT_EQ(copy.aileron_axis.maximum, 1023) << "until it is activated";
    world.yoke2.activate();
    EXPECT_EQ(copy.aileron_axis.maximum, 800);
    EXPECT_FALSE(world.yoke2.cmdCopySettingsYoke2.visible);
}

TEST(YokeCalibration, takes_the_four_ends_of_the_travel) {
    YokeWorld world;
    world.panels.show(world.yoke1);
    click(world.yoke1.CmdStartCalibration);
    EXPECT_EQ(world.yoke1.state().YokeMode, yoke::kOff);
    const auto stand = [&world](int ailerons, int elevator, panel::CommandButton& button) {
        world.keep_answering(2, {.ailerons = ailerons, .elevator = elevator});
        world.advance(25);
        click(button);
    };
    stand(512, 991, world.yoke1.CmdFullIn);
    EXPECT_EQ(world.yoke1.boxCalibrationElevator.text.get(), "991");
    stand(512, 31, world.yoke1.CmdFullOut);
    stand(950, 500, world.yoke1.CmdFullLeft);
    EXPECT_EQ(world.yoke1.Check4.value, 0);
    stand(100, 500, world.yoke1.cmdFullRight);
    EXPECT_EQ(world.yoke1.Check4.value, 1);
    click(world.yoke1.CmdCalibrationDone);
    EXPECT_EQ(world.settings().YokeCalibration, (std::array<std::int16_t, 4>{31, 991, 100, 950}));
    EXPECT_EQ(world.settings().elevator_axis.centre, 511);
    EXPECT_EQ(world.settings().aileron_axis.centre, 525);
    EXPECT_NEAR(world.settings().elevator_axis.scale, 1024.0 / 960, 1e-9);
    EXPECT_EQ(world.yoke1.state().ailerons.RawCenterRun, 525);
    world.keep_answering(2, {.ailerons = 950, .elevator = 31});
    EXPECT_EQ(world.yoke1.state().ailerons.position, 511);
    EXPECT_EQ(world.yoke1.state().elevator.position, -511);

    click(world.yoke1.CmdStartCalibration);
    stand(600, 400, world.yoke1.CmdFullIn);
    stand(600, 400, world.yoke1.CmdFullOut);
    click(world.yoke1.CmdCalibrationDone);
    EXPECT_EQ(world.last_shown(), "Incorrect calibration values");
    EXPECT_EQ(world.settings().YokeCalibration[0], 31) << "the one before stands";
    EXPECT_EQ(world.settings().elevator_axis.maximum, 991);
}

TEST(YokeJoystickTest, presses_a_button_every_other_second) {
    YokeWorld world;
    world.tables.functions[204].FunctionOffset1 = 0x3340;
    world.start_and_ramp(yoke::kCenter);
    world.panels.show(world.yoke1);
    world.panels.show(world.yoke2);
    type(world.yoke1.boxJoystickButtonTest, "16");
    click(world.yoke1.cmdTestButtonOn);
    EXPECT_EQ(world.last_shown(), "Button number must be 0-15");
    type(world.yoke1.boxJoystickButtonTest, "5");
    click(world.yoke1.cmdTestButtonOn);
    EXPECT_EQ(world.yoke1.boxJoystickButtonTest.colour, panel::kRed);
    std::vector<std::uint32_t> words;
    for (int second = 0; second < 4; ++second) {
        world.advance(1000);
        words.push_back(world.space->read_u32(0x3340));
    }
    EXPECT_EQ(words, (std::vector<std::uint32_t>{0, 32, 0, 32}));
    click(world.yoke1.cmdTestButtonOff);
    EXPECT_EQ(world.yoke1.boxJoystickButtonTest.colour, panel::kGreen);
    world.client.IpcResult = simlink::kIpcNotConnected;
    click(world.yoke2.cmdTestButtonOn);
    EXPECT_EQ(world.last_shown(), "Flight Simulator or FSUIPC is not available. Current status is: Not Connected");
}

// --- Roles
// ------------------------------------------------------------------------------------------------------------

TEST(YokeRoles, the_slave_that_is_pushed_long_enough_takes_over) {
    YokeWorld world;
    world.tables.YokePort2 = yoke_test::kSecondWire;
    world.tables.yoke_common.AutoSwitchEnabled = 1;
    world.start_and_ramp(yoke::kForceFeedback);
    EXPECT_EQ(world.both.boxAssignmentY1.text.get(), "Master");
    EXPECT_EQ(world.both.boxY2Mode.text.get(), "Servo Mode");
    world.answer({.ailerons_force = 511});
    world.advance(500);
    EXPECT_EQ(world.roles.MasterYoke, 0) << "only the slave is watched";
    world.answer_on(world.line2, {.ailerons_force = 256});
    world.advance(500);
    EXPECT_EQ(world.roles.MasterYoke, 0) << "50 percent is not above";
    world.answer({});
    world.answer_on(world.line2, {.elevator_force = -257});
    world.tick(4);
    EXPECT_EQ(world.roles.MasterYoke, 0);
    world.tick(2);
    EXPECT_EQ(world.roles.MasterYoke, 1);
    EXPECT_EQ(world.yoke2.state().YokeMode, yoke::kForceFeedback);
    EXPECT_EQ(world.yoke1.state().YokeMode, yoke::kServo);
    EXPECT_EQ(world.yoke2.state().ForceRamp, 0);
    world.tick(3);
    EXPECT_EQ(world.both.boxAssignmentY2.colour, panel::kRed);
    EXPECT_EQ(world.both.boxY1Mode.text.get(), "Servo Mode");
}

TEST(YokeRoles, a_switch_on_either_yoke_swaps_them) {
    YokeWorld world;
    world.tables.YokePort2 = yoke_test::kSecondWire;
    world.tables.yokes[1].EnableSwitchesAsSlave = 1;
    world.tables.yokes[1].YokeSwitchFunctions[1] = yoke::kSwapMaster;
    world.start_and_ramp(yoke::kForceFeedback);
    for (const int master : {1, 0}) {
        world.answer_on(world.line2, {.switches = 1});
        world.tick(2);
        EXPECT_EQ(world.roles.MasterYoke, master);
        EXPECT_EQ(world.yoke2.state().YokeMode, master == 1 ? yoke::kForceFeedback : yoke::kServo);
        EXPECT_EQ(world.yoke1.state().YokeMode, master == 0 ? yoke::kForceFeedback : yoke::kServo);
        world.tick(10);
        world.answer_on(world.line2, {});
        world.tick(10);
    }
}

TEST(YokeRoles, are_set_at_every_activation_and_the_boxes_exclude_each_other) {
    YokeWorld world;
    world.tables.functions[204].FunctionOffset1 = 13120 + 8;
    world.panels.show(world.both);
    EXPECT_EQ(world.yoke2.boxVirtualJS.text.get(), "66");
    EXPECT_EQ(world.both.CheckMasterAtStartupY1.value, 1);
    work(world.both.CheckMasterAtStartupY2, {panel::UserEvent::click, 1, ""});
    EXPECT_EQ(world.both.CheckMasterAtStartupY1.value, 0);
    work(world.both.CheckMasterAtStartupY2, {panel::UserEvent::click, 0, ""});
    EXPECT_EQ(world.both.CheckMasterAtStartupY1.value, 1);
    work(world.both.CheckMasterAtStartupY1, {panel::UserEvent::click, 0, ""});
    EXPECT_EQ(world.tables.yoke_common.Yoke2MasterAtStartup, 1);
    work(world.both.ComboSlaveToMasterY2, {panel::UserEvent::change, yoke::kCenter, ""});
    world.panels.hide(world.both);
    world.panels.show(world.both);
    EXPECT_EQ(world.roles.MasterYoke, 1);
    EXPECT_EQ(world.yoke2.state().YokeMode, yoke::kCenter);
    EXPECT_EQ(world.yoke1.boxYokeAssignment.text.get(), "Slave");
}

// --- Force curves
// -----------------------------------------------------------------------------------------------------

TEST(ForceCurvePanel, a_point_is_dragged_and_saved_for_both_yokes) {
    YokeWorld world;
    world.panels.show(world.curve);
    const auto draw = [&world](const std::string& what) {
        work(world.curve.PictureCurve, {panel::UserEvent::change, 0, what});
    };
    EXPECT_EQ(world.curve.LabelCaption.text.get(), "Force Profile Ailerons");
    EXPECT_EQ(world.curve.Labelspeed[9].text.get(), "400");
    draw("down 3850 4100");
    EXPECT_FALSE(world.curve.selected()) << "100 away is too far";
    draw("down 3750 4080");
    EXPECT_EQ(world.curve.selected(), 3);
    draw("move 4300.9 2000.7");
    draw("up");
    EXPECT_EQ(world.curve.boxAirspeed.text.get(), "140");
    EXPECT_EQ(world.curve.BoxForce.text.get(), "70");
    draw("move 900 900");
    EXPECT_EQ(world.curve.work_copy()[3].airspeed, 4300) << "nothing is held any more";
    EXPECT_EQ(world.tables.yoke_common.AileronForceCurve[3].airspeed, 3800) << "not saved yet";
    click(world.curve.CmdSaveCurve);
    EXPECT_EQ(world.tables.yoke_common.AileronForceCurve[3].force, 2000);
    world.yoke2.activate();
    EXPECT_EQ(world.yoke2.state().ailerons.profile.ProfileForce[3], 70);

    draw("down 10800 500");
    draw("move 99999 -5");
    EXPECT_EQ(world.curve.work_copy()[10].airspeed, 10800);
    EXPECT_EQ(world.curve.work_copy()[10].force, 500);
    for (const char* const nonsense : {"", "down", "down x y", "down 1", "move 1 2 3", "down nan 5", "sideways 1 2"}) {
        draw(nonsense);
    }
    work(world.curve.SliderAirspeed, {panel::UserEvent::change, 2, ""});
    EXPECT_EQ(world.curve.Labelspeed[4].text.get(), "100");
    click(world.curve.cmdLinear);
    EXPECT_EQ(world.curve.work_copy()[3].airspeed, 3800);
    EXPECT_EQ(world.curve.SliderAirspeed.value, 2);
    click(world.curve.CmdReload);
    EXPECT_EQ(world.curve.work_copy()[3].airspeed, 4300);
    EXPECT_EQ(world.curve.SliderAirspeed.value, 4);
    click(world.curve.OptionElevator);
    EXPECT_EQ(world.curve.LabelCaption.text.get(), "Force Profile Elevator");
    EXPECT_EQ(world.curve.work_copy()[3].airspeed, 3800);
}

}  // namespace
