// The settings of a yoke's panel: sliders and check boxes, standby, switches, calibration, test of the virtual
// joystick.

#include <cstdlib>

#include "support/failure.h"
#include "support/rounding.h"
#include "yoke/frm_config_yoke.h"

namespace yoke {

namespace {

constexpr int kLongestStandby = 999;
constexpr int kHighestThreshold = 100;
constexpr int kStandbyUnit = 10;  // seconds
constexpr std::size_t kCopiedSwitchBytes = 17;

// The function that stands for the buttons of the virtual joystick.
constexpr std::size_t kButtonsFunction = 204;
constexpr int kHighestButton = 15;
constexpr std::uint32_t kButtonBytes = 4;

// What a text field says, rounded; a text that is no number counts as 0.
double number_in(const panel::TextBox& box) {
    return support::round_half_even(std::strtod(box.text.get().c_str(), nullptr));
}

}  // namespace

void frmConfigYoke::set_setting_handlers() {
    for (std::size_t number = 0; number < sliders.size(); ++number) {
        sliders[number].on_change = [this, number] { take_slider(number); };
    }
    const auto store = [this](panel::Control& check, auto tables::YokeSettings::*setting) {
        check.on_click = [this, &check, setting] {
            using Value = std::remove_reference_t<decltype(settings().*setting)>;
            settings().*setting = static_cast<Value>(check.value.get());
        };
    };
    store(CheckStickShakerAtOverspeed, &tables::YokeSettings::ShakerAtOverspeed);
    store(CheckStickShakerAtStall, &tables::YokeSettings::ShakerAtStall);
    store(CheckAutoSwitchFFB_AP, &tables::YokeSettings::AutoSwitchFFBAP);
    store(CheckEnableAPOverrule, &tables::YokeSettings::EnableAPOverrule);
    store(CheckEnableSwitches, &tables::YokeSettings::EnableSwitchesAsSlave);
    optionIfyokeSlaveFollowMaster.on_click = [this] { settings().SlaveFollowsMaster = 1; };
    optionIfYokeSlaveFollowSimulator.on_click = [this] { settings().SlaveFollowsMaster = 0; };
    CmdSetTimer.on_click = [this] { CmdSetTimer_Click(); };
    SetDeadbandAndFgreshold.on_click = [this] { SetDeadbandAndFgreshold_Click(); };
    CmdSetSwitches.on_click = [this] { CmdSetSwitches_Click(); };
    cmdCopySettingsYoke2.on_click = [this] { cmdCopySettingsYoke2_Click(); };
    cmdTestButtonOn.on_click = [this] { cmdTestButtonOn_Click(); };
    cmdTestButtonOff.on_click = [this] { cmdTestButtonOff_Click(); };
    CmdStartCalibration.on_click = [this] { CmdStartCalibration_Click(); };
    CmdFullIn.on_click = [this] {
        take_stop(settings().elevator_axis.maximum, boxMaximumElevator, Check1, boxCalibrationElevator);
    };
    CmdFullOut.on_click = [this] {
        take_stop(settings().elevator_axis.minimum, boxMinimumElevator, Check2, boxCalibrationElevator);
    };
    CmdFullLeft.on_click = [this] {
        take_stop(settings().aileron_axis.maximum, boxmaximumailerons, Check3, boxCalibrationAilerons);
    };
    cmdFullRight.on_click = [this] {
        take_stop(settings().aileron_axis.minimum, boxMinimumAilerons, Check4, boxCalibrationAilerons);
    };
    CmdCalibrationDone.on_click = [this] { CmdCalibrationDone_Click(); };
}

// NOTE: a stored value beyond the slider shows at its end; it stays as it is until the slider is moved.
void frmConfigYoke::show_settings() {
    for (std::size_t number = 0; number < sliders.size(); ++number) {
        panel::Slider& slider = sliders[number];
        slider.value = std::clamp<int>(settings().*slider_rows()[number].setting, slider.minimum, slider.maximum);
    }
    show_number(BoxAileronsSensitivity, settings().FFBEffectAilerons, "0");
    show_number(boxElevatorSensitivity, settings().FFBEffectElevator, "0");
    CheckStickShakerAtOverspeed.value = settings().ShakerAtOverspeed == 1 ? 1 : 0;
    CheckStickShakerAtStall.value = settings().ShakerAtStall == 1 ? 1 : 0;
    CheckAutoSwitchFFB_AP.value = settings().AutoSwitchFFBAP == 1 ? 1 : 0;
    CheckEnableAPOverrule.value = settings().EnableAPOverrule == 1 ? 1 : 0;
    CheckEnableSwitches.value = settings().EnableSwitchesAsSlave == 1 ? 1 : 0;
    optionIfyokeSlaveFollowMaster.value = settings().SlaveFollowsMaster == 1 ? 1 : 0;
    optionIfYokeSlaveFollowSimulator.value = settings().SlaveFollowsMaster == 1 ? 0 : 1;
    boxStbyTimer.text = std::to_string(settings().StandbyTime);
    boxStbyThreshold.text = std::to_string(settings().StandbyThreshold);
    show_switch_functions();
}

// A list of the older form has no mark in front.
void frmConfigYoke::show_switch_functions() {
    const auto& functions = settings().YokeSwitchFunctions;
    const std::size_t shift = functions[0] == tables::kYokeSwitchMark ? 1 : 0;
    for (std::size_t number = 0; number < ComboSwitchFunction.size(); ++number) {
        const int function = functions[number + shift];
        ComboSwitchFunction[number].value = function < kSwitchFunctions ? function : kNoFunction;
    }
}

void frmConfigYoke::take_slider(std::size_t number) {
    settings().*slider_rows()[number].setting = static_cast<std::int16_t>(sliders[number].value.get());
    show_number(BoxAileronsSensitivity, settings().FFBEffectAilerons, "0");
    show_number(boxElevatorSensitivity, settings().FFBEffectElevator, "0");
}

void frmConfigYoke::CmdSetTimer_Click() {
    const double seconds = number_in(boxStbyTimer);
    if (!(seconds >= 0 && seconds <= kLongestStandby)) {
        platform_.boxes.message("Timer must be a positive value from 0 to 999 (seconds)");
    } else {
        settings().StandbyTime = static_cast<std::int16_t>(seconds);
        ComposeCmd(kYokeDevice, kCommandStandby, settings().StandbyTime / kStandbyUnit, 0, 0, 0);
        SendSerial();
    }
    const double threshold = number_in(boxStbyThreshold);
    if (!(threshold >= 0 && threshold <= kHighestThreshold)) {
        platform_.boxes.message("Threshold must be a positive value from 0 to 100(%)");
    } else {
        settings().StandbyThreshold = static_cast<std::uint8_t>(threshold);
    }
}

void frmConfigYoke::SetDeadbandAndFgreshold_Click() {
    ComposeCmd(kYokeDevice, kCommandDeadbands, settings().DeadbandAilerons, 0, settings().DeadbandElevator, 0);
    SendSerial();
}

void frmConfigYoke::CmdSetSwitches_Click() {
    settings().EnableSwitchesAsSlave = static_cast<std::uint8_t>(CheckEnableSwitches.value.get());
    auto& functions = settings().YokeSwitchFunctions;
    functions[0] = tables::kYokeSwitchMark;
    for (std::size_t number = 0; number < ComboSwitchFunction.size(); ++number) {
        functions[number + 1] = static_cast<std::uint8_t>(std::max(ComboSwitchFunction[number].value.get(), 0));
    }
}

// Yoke 2 shows and uses them from its next activation on; its derived travel and the last two bytes of its switch list
// stay.
void frmConfigYoke::cmdCopySettingsYoke2_Click() {
    tables::YokeSettings& target = tables_.yokes[1];
    tables::YokeSettings copy = tables_.yokes[0];
    std::copy(target.YokeSwitchFunctions.begin() + kCopiedSwitchBytes, target.YokeSwitchFunctions.end(),
              copy.YokeSwitchFunctions.begin() + kCopiedSwitchBytes);
    copy.elevator_axis = target.elevator_axis;
    copy.aileron_axis = target.aileron_axis;
    target = copy;
}

// --- Virtual joystick

bool frmConfigYoke::link_okay_for_test() {
    const std::int32_t result = sim_com_.client().IpcResult;
    if (!traits_.tests_link_first || result == simlink::kIpcOkay) {
        return true;
    }
    platform_.boxes.message("Flight Simulator or FSUIPC is not available. Current status is: " +
                            std::string(simlink::result_text(result)));
    return false;
}

void frmConfigYoke::cmdTestButtonOn_Click() {
    if (!link_okay_for_test()) {
        return;
    }
    const double button = number_in(boxJoystickButtonTest);
    if (!(button >= 0 && button <= kHighestButton)) {
        platform_.boxes.message("Button number must be 0-15");
        return;
    }
    sim_com_.FfbJoystickButtons = std::int32_t{1} << static_cast<int>(button);
    button_phase_ = false;
    TimerVirtualButton.start();
    boxJoystickButtonTest.colour = panel::kRed;
    platform_.boxes.message(
        "If 'On' the button is pressed every second button for one second.\r\n"
        "Go to Flightsimulator, Unpause and open Modules/FSUIPC to assign.");
}

void frmConfigYoke::cmdTestButtonOff_Click() {
    if (link_okay_for_test()) {
        end_button_test();
    }
}

// A start comes here too, with the simulator there or not.
void frmConfigYoke::end_button_test() {
    boxJoystickButtonTest.colour = panel::kGreen;
    sim_com_.FfbJoystickButtons = 0;
    TimerVirtualButton.stop();
}

void frmConfigYoke::TimerVirtualButton_Timer() {
    const std::int32_t buttons = button_phase_ ? sim_com_.FfbJoystickButtons : 0;
    button_phase_ = !button_phase_;
    simlink::IpcClient& client = sim_com_.client();
    const auto offset = static_cast<std::uint32_t>(tables_.functions[kButtonsFunction].FunctionOffset1);
    if (sim_com_.link_alive() && client.IpcWrite(offset, kButtonBytes, &buttons, client.IpcResult)) {
        client.IpcProcess(client.IpcResult);
    }
}

// --- Calibration

void frmConfigYoke::CmdStartCalibration_Click() {
    OptionOff_Click();
    cmdRun_Click();
    boxMinimumElevator.text = std::to_string(settings().elevator_axis.minimum);
    boxMaximumElevator.text = std::to_string(settings().elevator_axis.maximum);
    boxMinimumAilerons.text = std::to_string(settings().aileron_axis.minimum);
    boxmaximumailerons.text = std::to_string(settings().aileron_axis.maximum);
    for (panel::CheckBox* const check : {&Check1, &Check2, &Check3, &Check4}) {
        check->value = 0;
    }
    for (tables::YokeAxis* const axis : {&settings().elevator_axis, &settings().aileron_axis}) {
        axis->scale = 1.0;
        axis->centre = kRawCentre;
    }
    CalibrationTimer.start();
}

// With a scale of 1 around 512 a position is the raw value less 512.
void frmConfigYoke::CalibrationTimer_Timer() {
    show_number(boxCalibrationAilerons, kRawCentre + yoke_.ailerons.position, "0");
    show_number(boxCalibrationElevator, kRawCentre + yoke_.elevator.position, "0");
}

void frmConfigYoke::take_stop(std::int16_t& stop, panel::TextBox& box, panel::CheckBox& check,
                              const panel::TextBox& value) {
    if (!CalibrationTimer.enabled()) {
        return;
    }
    stop = static_cast<std::int16_t>(number_in(value));
    box.text = value.text.get();
    check.value = 1;
}

// NOTE: a travel without a range is refused before anything is stored, so that the calibration of before is not lost.
void frmConfigYoke::CmdCalibrationDone_Click() {
    if (!CalibrationTimer.enabled()) {
        return;
    }
    CalibrationTimer.stop();
    tables::YokeAxis& elevator = settings().elevator_axis;
    tables::YokeAxis& ailerons = settings().aileron_axis;
    if (elevator.maximum == elevator.minimum || ailerons.maximum == ailerons.minimum) {
        platform_.boxes.message("Incorrect calibration values");
        tables::derive_yoke_axes(settings());
    } else {
        settings().YokeCalibration = {elevator.minimum, elevator.maximum, ailerons.minimum, ailerons.maximum};
        for (tables::YokeAxis* const axis : {&elevator, &ailerons}) {
            axis->range = static_cast<std::int16_t>(axis->maximum - axis->minimum);
            axis->scale = 1024.0 / axis->range;
            axis->centre = support::round_to_i16(axis->range / 2.0 + axis->minimum);
        }
    }
    yoke_.ailerons.RawCenterRun = ailerons.centre;
    yoke_.elevator.RawCenterRun = elevator.centre;
}

}  // namespace yoke
