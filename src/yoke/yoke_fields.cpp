#include "yoke/yoke_fields.h"

#include <string>
#include <utility>

namespace yoke {

namespace {

using panel::board;
using panel::column;
using panel::frame;
using panel::LayoutNode;
using panel::row;
using tables::YokeSettings;

// In the order of the tabs; a pair is of ailerons and elevator.
constexpr std::array<SliderRow, kSettingSliders> kRows = {{
    // Center
    {"SliderSensitivityCenterModeAilerons", "Sensitivity ailerons", &YokeSettings::SensitivityCenterAilerons, 0, 100},
    {"SliderSensitivityCenterModeElevator", "Sensitivity elevator", &YokeSettings::SensitivityCenterElevator, 0, 100},
    {"SliderCenterModeCorrectionAilerons", "Center correction ailerons", &YokeSettings::CenterCorrectionAilerons, -100,
     100},
    {"SliderCenterModeCorrectionElevator", "Center correction elevator", &YokeSettings::CenterCorrectionElevator, -100,
     100},
    {"SliderMaximumForceCenterModeAilerons", "Maximum force ailerons", &YokeSettings::MaxForceCenterAilerons, 0, 100},
    {"SliderMaximumForceCenterModeElevator", "Maximum force elevator", &YokeSettings::MaxForceCenterElevator, 0, 100},
    // Force feedback
    {"SliderFFBeffectAilerons", "Force effect ailerons", &YokeSettings::FFBEffectAilerons, 0, 100},
    {"SliderFFBeffectElevator", "Force effect elevator", &YokeSettings::FFBEffectElevator, 0, 100},
    {"SliderMaxForceFFBAilerons", "Maximum force ailerons", &YokeSettings::MaxForceFFBAilerons, 0, 100},
    {"SliderMaxForceFFBElevator", "Maximum force elevator", &YokeSettings::MaxForceFFBElevator, 0, 100},
    {"SliderTurbulenceAilerons", "Turbulence ailerons", &YokeSettings::TurbulenceAilerons, 0, 100},
    {"SliderTurbulenceElevator", "Turbulence elevator", &YokeSettings::TurbulenceElevator, 0, 100},
    {"SliderWheelsShockFrequency", "Wheel shocks, frequency", &YokeSettings::WheelsShockFrequency, 0, 100},
    {"SliderWheelsShockForce", "Wheel shocks, force", &YokeSettings::WheelsShockForce, 0, 100},
    {"SliderElevatorCorrection", "Weight of the elevator on the ground", &YokeSettings::ElevatorCorrection, -100, 0},
    // Follow AP
    {"SliderSensitivityFollowAPAilerons", "Sensitivity ailerons", &YokeSettings::SensitivityFollowAPAilerons, 0, 100},
    {"SliderSensitivityFollowAPElevator", "Sensitivity elevator", &YokeSettings::SensitivityFollowAPElevator, 0, 100},
    {"SliderMaxForceFollowAPAilerons", "Maximum force ailerons", &YokeSettings::MaxForceFollowAPAilerons, 0, 100},
    {"SliderMaxForceFollowAPElevator", "Maximum force elevator", &YokeSettings::MaxForceFollowAPElevator, 0, 100},
    {"SliderSwingAPAilerons", "Swing ailerons", &YokeSettings::SwingAPAilerons, 0, 100},
    {"SliderSwingAPElevator", "Swing elevator", &YokeSettings::SwingAPElevator, 0, 100},
    {"SliderAPOverruleForce", "Overrule Force (%)", &YokeSettings::APOverruleForce, 10, 100},
    {"SliderAPOverruleTime", "Overrule Time (mS)", &YokeSettings::APOverruleTime, 1, 100},
    // Servo
    {"SliderSensitivityServoModeAilerons", "Sensitivity ailerons", &YokeSettings::SensitivityServoAilerons, 0, 50},
    {"SliderSensitivityServoModeElevator", "Sensitivity elevator", &YokeSettings::SensitivityServoElevator, 0, 50},
    {"SliderMaximumForceServoModeAilerons", "Maximum force ailerons", &YokeSettings::MaxForceServoAilerons, 0, 100},
    {"SliderMaximumForceServoModeElevator", "Maximum force elevator", &YokeSettings::MaxForceServoElevator, 0, 100},
    // Limits
    {"SliderForceThesholdAilerons", "Force threshold ailerons", &YokeSettings::ForceThresholdAilerons, 0, 20},
    {"SliderForceThesholdElevator", "Force threshold elevator", &YokeSettings::ForceThresholdElevator, 0, 20},
    {"SliderDeadbandAilerons", "Deadband ailerons", &YokeSettings::DeadbandAilerons, 0, 25},
    {"SliderDeadbandElevator", "Deadband elevator", &YokeSettings::DeadbandElevator, 0, 25},
    // Switches
    {"SliderTrimSwitchSpeed", "Trim switch speed", &YokeSettings::TrimSwitchSpeed, 0, 100},
}};

// Where the sliders of each tab stand in the table.
constexpr std::size_t kCenterFirst = 0;
constexpr std::size_t kForceFeedbackFirst = 6;
constexpr std::size_t kFollowApFirst = 15;
constexpr std::size_t kServoFirst = 23;
constexpr std::size_t kLimitsFirst = 27;
constexpr std::size_t kSwitchesFirst = 31;

template <std::size_t... Index>
std::array<panel::Slider, sizeof...(Index)> make_sliders(panel::Panel& owner, std::index_sequence<Index...>) {
    return {
        {panel::Slider(owner, kRows[Index].name, kRows[Index].caption, kRows[Index].minimum, kRows[Index].maximum)...}};
}

template <std::size_t... Index>
std::array<panel::Indicator, sizeof...(Index)> make_lamps(panel::Panel& owner, std::index_sequence<Index...>) {
    return {{panel::Indicator(owner, "SwitchIndicator", {}, static_cast<int>(Index))...}};
}

template <std::size_t... Index>
std::array<panel::ComboBox, sizeof...(Index)> make_lists(panel::Panel& owner, std::index_sequence<Index...>) {
    return {
        {panel::ComboBox(owner, "ComboSwitchFunction", "Switch " + std::to_string(Index), static_cast<int>(Index))...}};
}

std::size_t row_of(std::int16_t YokeSettings::*setting) {
    std::size_t at = 0;
    while (at + 1 < kRows.size() && kRows[at].setting != setting) {
        ++at;
    }
    return at;
}

}  // namespace

const std::array<SliderRow, kSettingSliders>& slider_rows() {
    return kRows;
}

YokeFields::YokeFields(panel::Panel& owner)
    : owner_(owner),
      SwitchIndicator(make_lamps(owner, std::make_index_sequence<kYokeSwitches>{})),
      sliders(make_sliders(owner, std::make_index_sequence<kSettingSliders>{})),
      ComboSwitchFunction(make_lists(owner, std::make_index_sequence<kYokeSwitches>{})) {
    for (int number = 0; number < kYokeSwitches; ++number) {
        SwitchIndicator[static_cast<std::size_t>(number)].text = std::to_string(number);
        for (int function = 0; function < kSwitchFunctions; ++function) {
            ComboSwitchFunction[static_cast<std::size_t>(number)].items.add(switch_function_text(function, number));
        }
    }
    // On a board a lamp bears its writing on itself.
    for (panel::Indicator* const lamp : {&BoxCenterActive,
                                         &boxFFBactive,
                                         &boxFollowAPActive,
                                         &boxServoActive,
                                         &boxAPMasterSwitch,
                                         &boxAutoHeading,
                                         &boxAutoAltitude,
                                         &StallWarningIndicator,
                                         &OverspeedWarningIndicator,
                                         &IndicatorReadAilerons,
                                         &IndicatorReadElevator,
                                         &IndicatorWriteAilerons,
                                         &IndicatorWriteElevator,
                                         &IndicatorReadAileronsTrim,
                                         &IndicatorReadElevatorTrim,
                                         &boxServoFollowAP,
                                         &boxServoFollowSimulator,
                                         &boxServoFollowMaster,
                                         &boxStandbyBank,
                                         &boxStandbyPitch}) {
        lamp->text = lamp->caption.get();
        lamp->caption = "";
        lamp->colour = panel::kGreen;
    }
    for (panel::CheckBox* const check : {&Check1, &Check2, &Check3, &Check4}) {
        check->enabled = false;  // ticked by the calibration
    }
}

panel::Slider& YokeFields::slider(std::int16_t YokeSettings::*setting) {
    return sliders[row_of(setting)];
}

// --- Layout

LayoutNode YokeFields::yoke_layout() {
    return column({
        row({boxRunning, boxYokeAssignment, boxMotors, ComPortNr, cmdRun, cmdStop, cmdHide}),
        panel::tabs({
            run_tab(),
            settings_tab("Center", kCenterFirst, kForceFeedbackFirst - kCenterFirst, {}),
            settings_tab("Force feedback", kForceFeedbackFirst, kFollowApFirst - kForceFeedbackFirst,
                         {row({BoxAileronsSensitivity, boxElevatorSensitivity}),
                          column({CheckForceLimit, CheckStickShakerAtStall, CheckStickShakerAtOverspeed}),
                          row({CmdSetProfile})}),
            settings_tab("Follow AP", kFollowApFirst, kServoFirst - kFollowApFirst,
                         {column({CheckAutoSwitchFFB_AP, CheckEnableAPOverrule})}),
            settings_tab("Servo", kServoFirst, kLimitsFirst - kServoFirst,
                         {column({optionIfyokeSlaveFollowMaster, optionIfYokeSlaveFollowSimulator})}),
            settings_tab("Limits and standby", kLimitsFirst, kSwitchesFirst - kLimitsFirst,
                         {row({SetDeadbandAndFgreshold}), row({boxStbyTimer, boxStbyThreshold, CmdSetTimer})}),
            switches_tab(),
            calibration_tab(),
        }),
    });
}

// Ailerons stand at the left, the elevator at the right.
LayoutNode YokeFields::run_tab() {
    return frame(
        "Flight",
        {frame("Mode", {row({OptionCentre, OptionFFB, OptionFollowAPmode, OptionServoMode, OptionOff}),
                        board(4, {BoxCenterActive, boxFFBactive, boxFollowAPActive, boxServoActive}),
                        row({cmdSetMaster, cmdSetSlave, cmdSaveLoad}), row({cmdCopySettingsYoke2})}),
         frame("Yoke", {row({boxBank, boxPitch}), row({boxBankForce, boxPitchForce}),
                        board(2, {boxStandbyBank, boxStandbyPitch}),
                        row({boxUpdatesPerSecond, ReceivedMessage, ProgressIndicator}),
                        board(kYokeSwitches / 2, {SwitchIndicator.begin(), SwitchIndicator.end()})}),
         frame("Simulator", {row({boxAirspeed, boxTrimValue}), row({boxFSAilerons, boxFSElevator}),
                             row({boxFSAileronsTrim, boxFSElevatorTrim}), row({boxCenterAilerons, BoxCenterElevator}),
                             board(4, {boxAPMasterSwitch, boxAutoHeading, boxAutoAltitude, StallWarningIndicator,
                                       OverspeedWarningIndicator, IndicatorReadAilerons, IndicatorReadElevator,
                                       IndicatorWriteAilerons, IndicatorWriteElevator, IndicatorReadAileronsTrim,
                                       IndicatorReadElevatorTrim})}),
         frame("Forces", {row({BoxAileronsPosition, boxElevatorPosition}), row({BoxCurveAilerons, boxCurveElevator}),
                          row({boxBankTurbulence, boxPitchTurbulence}), row({boxFFBSetBankForce, boxFFBSetPitchForce}),
                          row({boxServoYokePositionAilerons, boxServoYokePositionElevator}),
                          board(3, {boxServoFollowAP, boxServoFollowSimulator, boxServoFollowMaster})})});
}

LayoutNode YokeFields::settings_tab(const char* caption, std::size_t first, std::size_t count,
                                    std::vector<LayoutNode> more) {
    std::vector<LayoutNode> nodes;
    for (std::size_t at = first; at < first + count; ++at) {
        nodes.emplace_back(sliders[at]);
    }
    for (LayoutNode& node : more) {
        nodes.push_back(std::move(node));
    }
    return frame(caption, std::move(nodes));
}

LayoutNode YokeFields::switches_tab() {
    std::vector<LayoutNode> lists(ComboSwitchFunction.begin(), ComboSwitchFunction.end());
    return frame(
        "Switches",
        {row(std::move(lists)), row({CheckEnableSwitches, CmdSetSwitches}), sliders[kSwitchesFirst],
         frame("Virtual joystick", {row({boxVirtualJS, boxJoystickButtonTest, cmdTestButtonOn, cmdTestButtonOff})})});
}

LayoutNode YokeFields::calibration_tab() {
    return frame("Calibration",
                 {row({CmdStartCalibration, boxCalibrationAilerons, boxCalibrationElevator}),
                  row({CmdFullIn, boxMaximumElevator, Check1}), row({CmdFullOut, boxMinimumElevator, Check2}),
                  row({CmdFullLeft, boxmaximumailerons, Check3}), row({cmdFullRight, boxMinimumAilerons, Check4}),
                  row({CmdCalibrationDone})});
}

void YokeFields::set_tool_tips() {
    boxRunning.tool_tip = "Running: the yoke is told where to go 25 times a second. Stopped: it keeps its last force";
    boxMotors.tool_tip = "Whether the motors may push at this moment and, if not, why";
    ComPortNr.tool_tip = "Serial port of the yoke; one that was unplugged is opened again by itself";
    boxYokeAssignment.tool_tip = "The master flies the aircraft; the slave is moved";
    ReceivedMessage.tool_tip = "What the last telegram of the yoke was";
    boxUpdatesPerSecond.tool_tip = "Good telegrams in the last second; 25 is right";
    boxStandbyBank.tool_tip = "Green: the motor of the ailerons is on. Red: it is off";
    boxStandbyPitch.tool_tip = "Green: the motor of the elevator is on. Red: it is off";
    boxBankForce.tool_tip = "Force at the ailerons as the yoke measures it";
    boxPitchForce.tool_tip = "Force at the elevator as the yoke measures it";
    OptionCentre.tool_tip = "A spring around the centre";
    OptionFFB.tool_tip = "A spring whose force follows the airspeed, with turbulence, wheel shocks and stick shaker";
    OptionFollowAPmode.tool_tip = "The autopilot moves the yoke";
    OptionServoMode.tool_tip = "The other yoke or the simulator moves the yoke";
    OptionOff.tool_tip = "The motors do not push";
    CheckForceLimit.tool_tip = "The motors' limit follows the force curve too; not stored";
    boxStbyTimer.tool_tip = "Seconds without movement after which the motors go off, 0 to 999";
    boxStbyThreshold.tool_tip = "Percent of movement that keeps the motors on";
    boxVirtualJS.tool_tip = "(= Function #204)";
    CmdSetProfile.tool_tip = "Draw the force over the airspeed";
    cmdSaveLoad.tool_tip = "Save the settings in the configuration file, or load it";
    CmdSetSwitches.tool_tip = "Take over the functions chosen above";
    cmdHide.tool_tip = "Hide this panel; the yoke goes on";
}

}  // namespace yoke
