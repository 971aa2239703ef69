#pragma once

#include <array>
#include <cstdint>

#include "panel/control.h"
#include "panel/layout.h"
#include "panel/panel.h"
#include "tables/yoke_settings.h"
#include "yoke/yoke_switches.h"
#include "yoke/yoke_telegram.h"

namespace yoke {

// A slider of a yoke panel and the setting that it holds.
struct SliderRow {
    const char* name;
    const char* caption;
    std::int16_t tables::YokeSettings::*setting;
    int minimum;
    int maximum;
};
inline constexpr std::size_t kSettingSliders = 32;
const std::array<SliderRow, kSettingSliders>& slider_rows();

// The fields of a yoke panel, which derives from this beside panel::Panel. They hold no logic.
class YokeFields {
  private:
    panel::Panel& owner_;

  public:
    explicit YokeFields(panel::Panel& owner);

    // --- Link -------------------------------------------------------------------------------------------------------
    panel::Indicator boxRunning{owner_, "boxRunning", "State"};
    panel::Indicator boxYokeAssignment{owner_, "boxYokeAssignment", "Role"};
    panel::Indicator boxMotors{owner_, "boxMotors", "Motors"};  // whether the motors may push, or why not
    panel::Indicator ComPortNr{owner_, "ComPortNr", "Port"};
    panel::TextBox ReceivedMessage{owner_, "ReceivedMessage", "Last telegram"};
    panel::Label ProgressIndicator{owner_, "ProgressIndicator"};
    panel::TextBox boxUpdatesPerSecond{owner_, "boxUpdatesPerSecond", "Telegrams per second"};
    panel::Indicator boxStandbyBank{owner_, "boxStandbyBank", "Ailerons motor"};
    panel::Indicator boxStandbyPitch{owner_, "boxStandbyPitch", "Elevator motor"};
    panel::TextBox boxBank{owner_, "boxBank", "Ailerons (%)"};
    panel::TextBox boxPitch{owner_, "boxPitch", "Elevator (%)"};
    panel::TextBox boxBankForce{owner_, "boxBankForce", "Ailerons force (%)"};
    panel::TextBox boxPitchForce{owner_, "boxPitchForce", "Elevator force (%)"};
    panel::TextBox boxAirspeed{owner_, "boxAirspeed", "Airspeed (kt)"};
    std::array<panel::Indicator, kYokeSwitches> SwitchIndicator;

    // --- Commands ---------------------------------------------------------------------------------------------------
    panel::CommandButton cmdRun{owner_, "cmdRun", "Run"};
    panel::CommandButton cmdStop{owner_, "cmdStop", "Stop"};
    panel::CommandButton cmdSetMaster{owner_, "cmdSetMaster", "Set master"};
    panel::CommandButton cmdSetSlave{owner_, "cmdSetSlave", "Set slave"};
    panel::CommandButton cmdCopySettingsYoke2{owner_, "cmdCopySettingsYoke2", "Copy settings to yoke 2"};
    panel::CommandButton cmdSaveLoad{owner_, "cmdSaveLoad", "Save or load"};
    panel::CommandButton cmdHide{owner_, "cmdHide", "Hide"};

    // --- Modes ------------------------------------------------------------------------------------------------------
    panel::OptionButton OptionCentre{owner_, "OptionCentre", "Center Mode", "mode"};
    panel::OptionButton OptionFFB{owner_, "OptionFFB", "FFB Mode", "mode"};
    panel::OptionButton OptionFollowAPmode{owner_, "OptionFollowAPmode", "Follow AP mode", "mode"};
    panel::OptionButton OptionServoMode{owner_, "OptionServoMode", "Servo Mode", "mode"};
    panel::OptionButton OptionOff{owner_, "OptionOff", "OFF mode", "mode"};
    panel::Indicator BoxCenterActive{owner_, "BoxCenterActive", "Center"};
    panel::Indicator boxFFBactive{owner_, "boxFFBactive", "FFB"};
    panel::Indicator boxFollowAPActive{owner_, "boxFollowAPActive", "Follow AP"};
    panel::Indicator boxServoActive{owner_, "boxServoActive", "Servo"};

    // --- What a tick reads and writes -------------------------------------------------------------------------------
    panel::Indicator boxAPMasterSwitch{owner_, "boxAPMasterSwitch", "AP master"};
    panel::Indicator boxAutoHeading{owner_, "boxAutoHeading", "AP heading"};
    panel::Indicator boxAutoAltitude{owner_, "boxAutoAltitude", "AP altitude"};
    panel::Indicator IndicatorReadAilerons{owner_, "IndicatorReadAilerons", "Read ailerons"};
    panel::Indicator IndicatorReadElevator{owner_, "IndicatorReadElevator", "Read elevator"};
    panel::Indicator IndicatorWriteAilerons{owner_, "IndicatorWriteAilerons", "Write ailerons"};
    panel::Indicator IndicatorWriteElevator{owner_, "IndicatorWriteElevator", "Write elevator"};
    panel::Indicator IndicatorReadAileronsTrim{owner_, "IndicatorReadAileronsTrim", "Read AP ailerons"};
    panel::Indicator IndicatorReadElevatorTrim{owner_, "IndicatorReadElevatorTrim", "Read AP elevator"};
    panel::Indicator boxServoFollowAP{owner_, "boxServoFollowAP", "Follows AP"};
    panel::Indicator boxServoFollowSimulator{owner_, "boxServoFollowSimulator", "Follows simulator"};
    panel::Indicator boxServoFollowMaster{owner_, "boxServoFollowMaster", "Follows master"};
    panel::Indicator StallWarningIndicator{owner_, "StallWarningIndicator", "Stall"};
    panel::Indicator OverspeedWarningIndicator{owner_, "OverspeedWarningIndicator", "Overspeed"};
    panel::TextBox boxFSAilerons{owner_, "boxFSAilerons", "Simulator ailerons (%)"};
    panel::TextBox boxFSElevator{owner_, "boxFSElevator", "Simulator elevator (%)"};
    panel::TextBox BoxAileronsPosition{owner_, "BoxAileronsPosition", "Ailerons position (%)"};
    panel::TextBox boxElevatorPosition{owner_, "boxElevatorPosition", "Elevator position (%)"};
    panel::TextBox boxBankTurbulence{owner_, "boxBankTurbulence", "Bank turbulence"};
    panel::TextBox boxPitchTurbulence{owner_, "boxPitchTurbulence", "Pitch turbulence"};
    panel::TextBox BoxCurveAilerons{owner_, "BoxCurveAilerons", "Curve ailerons (%)"};
    panel::TextBox boxCurveElevator{owner_, "boxCurveElevator", "Curve elevator (%)"};
    panel::TextBox boxFFBSetBankForce{owner_, "boxFFBSetBankForce", "Ailerons force (%)"};
    panel::TextBox boxFFBSetPitchForce{owner_, "boxFFBSetPitchForce", "Elevator force (%)"};
    panel::TextBox boxFSAileronsTrim{owner_, "boxFSAileronsTrim", "AP ailerons"};
    panel::TextBox boxFSElevatorTrim{owner_, "boxFSElevatorTrim", "AP elevator"};
    panel::TextBox boxServoYokePositionAilerons{owner_, "boxServoYokePositionAilerons", "Wanted ailerons (%)"};
    panel::TextBox boxServoYokePositionElevator{owner_, "boxServoYokePositionElevator", "Wanted elevator (%)"};
    panel::TextBox boxTrimValue{owner_, "boxTrimValue", "Trim (%)"};
    panel::TextBox boxCenterAilerons{owner_, "boxCenterAilerons", "Center ailerons (%)"};
    panel::TextBox BoxCenterElevator{owner_, "BoxCenterElevator", "Center elevator (%)"};

    // --- Settings ---------------------------------------------------------------------------------------------------
    std::array<panel::Slider, kSettingSliders> sliders;
    panel::TextBox BoxAileronsSensitivity{owner_, "BoxAileronsSensitivity", "Ailerons"};
    panel::TextBox boxElevatorSensitivity{owner_, "boxElevatorSensitivity", "Elevator"};
    panel::CheckBox CheckForceLimit{owner_, "CheckForceLimit", "Maximum force follows the profile"};
    panel::CheckBox CheckStickShakerAtOverspeed{owner_, "CheckStickShakerAtOverspeed", "Stick shaker at overspeed"};
    panel::CheckBox CheckStickShakerAtStall{owner_, "CheckStickShakerAtStall", "Stick shaker at stall"};
    // NOLINTNEXTLINE(readability-identifier-naming): the system's own word
    panel::CheckBox CheckAutoSwitchFFB_AP{owner_, "CheckAutoSwitchFFB_AP",
                                          "Switch between FFB and Follow AP with the autopilot"};
    panel::CheckBox CheckEnableAPOverrule{owner_, "CheckEnableAPOverrule", "Pilot can overrule the autopilot"};
    panel::OptionButton optionIfyokeSlaveFollowMaster{owner_, "optionIfyokeSlaveFollowMaster",
                                                      "A slave follows the master", "follow"};
    panel::OptionButton optionIfYokeSlaveFollowSimulator{owner_, "optionIfYokeSlaveFollowSimulator",
                                                         "A slave follows the simulator", "follow"};
    panel::TextBox boxStbyTimer{owner_, "boxStbyTimer", "Standby time (s)", panel::Access::editable};
    panel::TextBox boxStbyThreshold{owner_, "boxStbyThreshold", "Standby threshold (%)", panel::Access::editable};
    panel::CommandButton CmdSetTimer{owner_, "CmdSetTimer", "Set standby"};
    panel::CommandButton SetDeadbandAndFgreshold{owner_, "SetDeadbandAndFgreshold", "Set deadbands"};
    panel::CommandButton CmdSetProfile{owner_, "CmdSetProfile", "Force curves"};

    // --- Switches ---------------------------------------------------------------------------------------------------
    panel::CheckBox CheckEnableSwitches{owner_, "CheckEnableSwitches", "Switches work on a slave too"};
    std::array<panel::ComboBox, kYokeSwitches> ComboSwitchFunction;
    panel::CommandButton CmdSetSwitches{owner_, "CmdSetSwitches", "Set switches"};
    panel::TextBox boxVirtualJS{owner_, "boxVirtualJS", "Virtual joystick"};
    panel::TextBox boxJoystickButtonTest{owner_, "boxJoystickButtonTest", "Button to test", panel::Access::editable};
    panel::CommandButton cmdTestButtonOn{owner_, "cmdTestButtonOn", "On"};
    panel::CommandButton cmdTestButtonOff{owner_, "cmdTestButtonOff", "Off"};

    // --- Calibration ------------------------------------------------------------------------------------------------
    panel::CommandButton CmdStartCalibration{owner_, "CmdStartCalibration", "Start calibration"};
    panel::TextBox boxCalibrationAilerons{owner_, "boxCalibrationAilerons", "Ailerons"};
    panel::TextBox boxCalibrationElevator{owner_, "boxCalibrationElevator", "Elevator"};
    panel::CommandButton CmdFullIn{owner_, "CmdFullIn", "Push Yoke full in and press ->"};
    panel::CommandButton CmdFullOut{owner_, "CmdFullOut", "Pull Yoke full out and press ->"};
    panel::CommandButton CmdFullLeft{owner_, "CmdFullLeft", "Rotate Yoke full left and press ->"};
    panel::CommandButton cmdFullRight{owner_, "cmdFullRight", "Rotate Yoke full right and press ->"};
    panel::CheckBox Check1{owner_, "Check1", "Full in"};
    panel::CheckBox Check2{owner_, "Check2", "Full out"};
    panel::CheckBox Check3{owner_, "Check3", "Full left"};
    panel::CheckBox Check4{owner_, "Check4", "Full right"};
    panel::TextBox boxMaximumElevator{owner_, "boxMaximumElevator", "Elevator maximum"};
    panel::TextBox boxMinimumElevator{owner_, "boxMinimumElevator", "Elevator minimum"};
    panel::TextBox boxmaximumailerons{owner_, "boxmaximumailerons", "Ailerons maximum"};
    panel::TextBox boxMinimumAilerons{owner_, "boxMinimumAilerons", "Ailerons minimum"};
    panel::CommandButton CmdCalibrationDone{owner_, "CmdCalibrationDone", "Done/Save"};

    // The slider that holds a setting.
    panel::Slider& slider(std::int16_t tables::YokeSettings::*setting);

  protected:
    panel::LayoutNode yoke_layout();
    void set_tool_tips();

  private:
    panel::LayoutNode run_tab();
    panel::LayoutNode modes_tab();
    panel::LayoutNode settings_tab(const char* caption, std::size_t first, std::size_t count,
                                   std::vector<panel::LayoutNode> more);
    panel::LayoutNode switches_tab();
    panel::LayoutNode calibration_tab();
};

}  // namespace yoke
