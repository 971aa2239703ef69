#include "yoke/frm_status_ffb.h"

#include <algorithm>
#include <cstdlib>

#include "panel/layout.h"
#include "support/rounding.h"

namespace yoke {

namespace {

constexpr std::int16_t kFirstFunction = 190;
constexpr int kReadFunctions = 12;  // the first of them, and the ground speed
constexpr int kGroundSpeed = 17;
constexpr std::size_t kButtonsFunction = 204;
constexpr int kFirstButtonsOffset = 0x3340;
constexpr int kFirstVirtualJoystick = 64;
constexpr double kFullForceLimit = 512;

constexpr std::array<const char*, kModes> kModeItems = {"Center Mode", "FFB Mode", "Follow AP mode", "Servo Mode",
                                                        "OFF mode"};
constexpr std::array<const char*, kModes> kModeTexts = {"Center Mode", "Force Feedback Mode", "Follow AP mode",
                                                        "Servo Mode", "Off Mode"};

void fill_modes(panel::ComboBox& list) {
    list.items.assign({kModeItems.begin(), kModeItems.end()});
}

// A stored number beyond the list shows as the last mode, which is off.
void select_mode_in(panel::ComboBox& list, int mode) {
    list.value = std::clamp<int>(mode, kCenter, kOff);
}

}  // namespace

frmStatusFFB::frmStatusFFB(const YokeParts& parts, YokeRoles& roles, frmConfigYoke& yoke1, frmConfigYoke& yoke2)
    : Panel("frmStatusFFB", "Force feedback yokes"),
      BoxRun(*this, "BoxRun", "State"),
      BoxCurrentConfig(*this, "BoxCurrentConfig", "Configuration"),
      cmdRun(*this, "cmdRun", "Run"),
      cmdStop(*this, "cmdStop", "Stop"),
      cmdSaveLoad(*this, "cmdSaveLoad", "Save or load"),
      cmdHide(*this, "cmdHide", "Hide"),
      boxStatusY1(*this, "boxStatusY1", "State"),
      boxAssignmentY1(*this, "boxAssignmentY1", "Role"),
      boxY1Mode(*this, "boxY1Mode", "Mode"),
      boxMotorsY1(*this, "boxMotorsY1", "May the motors push?"),
      cmdSetYoke1Master(*this, "cmdSetYoke1Master", "Set yoke 1 master"),
      cmdShowY1(*this, "cmdShowY1", "Show yoke 1"),
      CheckMasterAtStartupY1(*this, "CheckMasterAtStartupY1", "Master at start"),
      ComboSlaveToMasterY1(*this, "ComboSlaveToMasterY1", "Mode as master"),
      ComboMasterToSlaveY1(*this, "ComboMasterToSlaveY1", "Mode as slave"),
      boxStatusY2(*this, "boxStatusY2", "State"),
      boxAssignmentY2(*this, "boxAssignmentY2", "Role"),
      boxY2Mode(*this, "boxY2Mode", "Mode"),
      boxMotorsY2(*this, "boxMotorsY2", "May the motors push?"),
      cmdSetYoke2Master(*this, "cmdSetYoke2Master", "Set yoke 2 master"),
      CmdShowY2(*this, "CmdShowY2", "Show yoke 2"),
      CheckMasterAtStartupY2(*this, "CheckMasterAtStartupY2", "Master at start"),
      ComboSlaveToMasterY2(*this, "ComboSlaveToMasterY2", "Mode as master"),
      ComboMasterToSlaveY2(*this, "ComboMasterToSlaveY2", "Mode as slave"),
      CheckAutoSwitch(*this, "CheckAutoSwitch", "The slave takes over when it is pushed"),
      SliderAutoSwichForce(*this, "SliderAutoSwichForce", "Force (%)", 30, 100),
      SliderOverruleTimeAutoswitch(*this, "SliderOverruleTimeAutoswitch", "Time (40 ms)", 5, 50),
      Timer1(parts.platform.loop, "frmStatusFFB.Timer1", kTick, [this] { Timer1_Timer(); }),
      tables_(parts.tables),
      sim_com_(parts.sim_com),
      panels_(parts.panels),
      roles_(roles),
      yokes_{&yoke1, &yoke2} {
    yoke1.set_partner(yoke2);
    yoke2.set_partner(yoke1);
    BoxRun.text = "Stopped";
    BoxRun.colour = panel::kGreen;
    SliderAutoSwichForce.value = 90;
    SliderOverruleTimeAutoswitch.value = 50;
    for (panel::ComboBox* const list :
         {&ComboSlaveToMasterY1, &ComboMasterToSlaveY1, &ComboSlaveToMasterY2, &ComboMasterToSlaveY2}) {
        fill_modes(*list);
        select_mode_in(*list, kCenter);
    }
    set_handlers();
    set_tool_tips();
    arrange();
    Timer1.start();
}

void frmStatusFFB::set_handlers() {
    cmdRun.on_click = [this] { cmdRun_Click(); };
    cmdStop.on_click = [this] { cmdStop_Click(); };
    cmdSaveLoad.on_click = [this] { panels_.show("SaveConfig"); };
    cmdHide.on_click = [this] { panels_.hide(*this); };
    cmdSetYoke1Master.on_click = [this] { cmdSetYoke1Master_Click(); };
    cmdSetYoke2Master.on_click = [this] { cmdSetYoke2Master_Click(); };
    cmdShowY1.on_click = [this] { panels_.show(yoke(0)); };
    CmdShowY2.on_click = [this] { panels_.show(yoke(1)); };
    CheckMasterAtStartupY1.on_click = [this] { take_master_at_startup(CheckMasterAtStartupY1.value == 1 ? 0 : 1); };
    CheckMasterAtStartupY2.on_click = [this] { take_master_at_startup(CheckMasterAtStartupY2.value == 1 ? 1 : 0); };
    const auto store = [this](panel::ComboBox& list, std::uint8_t tables::YokeCommonSettings::*setting) {
        list.on_change = [this, &list, setting] { settings().*setting = static_cast<std::uint8_t>(list.value.get()); };
    };
    store(ComboSlaveToMasterY1, &tables::YokeCommonSettings::ModeSlaveToMasterY1);
    store(ComboMasterToSlaveY1, &tables::YokeCommonSettings::ModeMasterToSlaveY1);
    store(ComboSlaveToMasterY2, &tables::YokeCommonSettings::ModeSlaveToMasterY2);
    store(ComboMasterToSlaveY2, &tables::YokeCommonSettings::ModeMasterToSlaveY2);
    CheckAutoSwitch.on_click = [this] {
        settings().AutoSwitchEnabled = static_cast<std::uint8_t>(CheckAutoSwitch.value.get());
    };
    SliderAutoSwichForce.on_change = [this] {
        settings().AutoSwitchForce = static_cast<std::int16_t>(SliderAutoSwichForce.value.get());
    };
    SliderOverruleTimeAutoswitch.on_change = [this] {
        settings().AutoSwitchTime = static_cast<std::int16_t>(SliderOverruleTimeAutoswitch.value.get());
    };
}

void frmStatusFFB::set_tool_tips() {
    BoxCurrentConfig.tool_tip = "File of the configuration in force";
    cmdRun.tool_tip = "Start both yokes";
    cmdStop.tool_tip = "Stop both yokes; they keep their last force";
    CheckAutoSwitch.tool_tip = "A pilot who pushes the slave long and hard enough makes it master";
    SliderAutoSwichForce.tool_tip = "How hard the slave must be pushed, percent of the full force";
    SliderOverruleTimeAutoswitch.tool_tip = "For how long, in updates of 40 ms; 25 is a second";
    for (panel::Indicator* const box : {&boxMotorsY1, &boxMotorsY2}) {
        box->tool_tip = "Whether the motors may push at this moment and, if not, why";
    }
}

void frmStatusFFB::arrange() {
    using panel::frame;
    using panel::row;
    set_layout(panel::column({
        row({BoxRun, BoxCurrentConfig, cmdRun, cmdStop, cmdSaveLoad, cmdHide}),
        frame("Yoke 1",
              {row({boxStatusY1, boxAssignmentY1}), boxY1Mode, boxMotorsY1, row({cmdSetYoke1Master, cmdShowY1}),
               CheckMasterAtStartupY1, row({ComboSlaveToMasterY1, ComboMasterToSlaveY1})}),
        frame("Yoke 2",
              {row({boxStatusY2, boxAssignmentY2}), boxY2Mode, boxMotorsY2, row({cmdSetYoke2Master, CmdShowY2}),
               CheckMasterAtStartupY2, row({ComboSlaveToMasterY2, ComboMasterToSlaveY2})}),
        frame("Hand over", {CheckAutoSwitch, SliderAutoSwichForce, SliderOverruleTimeAutoswitch}),
    }));
}

void frmStatusFFB::take_master_at_startup(int yoke_number) {
    settings().Yoke2MasterAtStartup = static_cast<std::uint8_t>(yoke_number);
    CheckMasterAtStartupY1.value = yoke_number == 0 ? 1 : 0;
    CheckMasterAtStartupY2.value = yoke_number;
}

// --- Start and stop

void frmStatusFFB::OpenPorts() {
    sim_com_.PortOwnerId = simlink::kOwnerYokes;
    for (int number = 0; number < simlink::kFfbFunctions; ++number) {
        std::uint8_t sequence_number = 1;
        const std::int16_t port =
            sim_com_.OpenSimPort(static_cast<std::int16_t>(kFirstFunction + number), sequence_number);
        sim_com_.FfbPort[static_cast<std::size_t>(number)] = port;
        if (number < kReadFunctions || number == kGroundSpeed) {
            sim_com_.EnableReadSimPort(port);
        }
    }
}

void frmStatusFFB::Form_Activate() {
    activate();
}

void frmStatusFFB::activate() {
    BoxCurrentConfig.text = tables_.ConfigFileName;
    select_mode_in(ComboSlaveToMasterY1, settings().ModeSlaveToMasterY1);
    select_mode_in(ComboMasterToSlaveY1, settings().ModeMasterToSlaveY1);
    select_mode_in(ComboSlaveToMasterY2, settings().ModeSlaveToMasterY2);
    select_mode_in(ComboMasterToSlaveY2, settings().ModeMasterToSlaveY2);
    CheckMasterAtStartupY1.value = settings().Yoke2MasterAtStartup == 0 ? 1 : 0;
    CheckMasterAtStartupY2.value = settings().Yoke2MasterAtStartup == 0 ? 0 : 1;
    if (settings().Yoke2MasterAtStartup != 0) {
        cmdSetYoke2Master_Click();
    } else {
        cmdSetYoke1Master_Click();
    }
    CheckAutoSwitch.value = settings().AutoSwitchEnabled == 1 ? 1 : 0;
    SliderAutoSwichForce.value =
        std::clamp<int>(settings().AutoSwitchForce, SliderAutoSwichForce.minimum, SliderAutoSwichForce.maximum);
    SliderOverruleTimeAutoswitch.value = std::clamp<int>(
        settings().AutoSwitchTime, SliderOverruleTimeAutoswitch.minimum, SliderOverruleTimeAutoswitch.maximum);
    const double offset = tables_.functions[kButtonsFunction].FunctionOffset1;
    const std::string joystick =
        std::to_string(support::round_to_i32((offset - kFirstButtonsOffset) / 4 + kFirstVirtualJoystick));
    yoke(0).boxVirtualJS.text = joystick;
    yoke(1).boxVirtualJS.text = joystick;
}

void frmStatusFFB::cmdRun_Click() {
    activate();
    for (frmConfigYoke* const yoke : yokes_) {
        if (yoke->hasPort()) {
            panels_.load(*yoke);
            yoke->activate();
            yoke->cmdRun_Click();
        }
    }
    BoxRun.text = "Running";
    BoxRun.colour = panel::kRed;
}

void frmStatusFFB::cmdStop_Click() {
    for (frmConfigYoke* const yoke : yokes_) {
        if (yoke->hasPort()) {
            yoke->cmdStop_Click();
        }
    }
    BoxRun.text = "Stopped";
    BoxRun.colour = panel::kGreen;
}

// --- Roles

void frmStatusFFB::cmdSetYoke1Master_Click() {
    yoke(0).cmdSetMaster_Click();
    yoke(1).cmdSetSlave_Click();
    roles_.MasterYoke = 0;
    yoke(0).select_mode(ComboSlaveToMasterY1.value);
    yoke(1).select_mode(ComboMasterToSlaveY2.value);
}

void frmStatusFFB::cmdSetYoke2Master_Click() {
    yoke(1).cmdSetMaster_Click();
    yoke(0).cmdSetSlave_Click();
    roles_.MasterYoke = 1;
    yoke(1).select_mode(ComboSlaveToMasterY2.value);
    yoke(0).select_mode(ComboMasterToSlaveY1.value);
}

void frmStatusFFB::Timer1_Timer() {
    yoke(0).show_motors();
    yoke(1).show_motors();
    show_yokes();
    ForceLimit_ = support::round_to_i16(SliderAutoSwichForce.value / 100.0 * kFullForceLimit);
    if (CheckAutoSwitch.value == 1) {
        watch_slave();
    }
}

void frmStatusFFB::show_yokes() {
    const auto show = [](const frmConfigYoke& yoke, panel::TextBox& mode, panel::Indicator& assignment,
                         panel::Indicator& status, panel::Indicator& motors) {
        mode.text = kModeTexts[static_cast<std::size_t>(yoke.state().YokeMode)];
        assignment.text = yoke.boxYokeAssignment.text.get();
        assignment.colour = yoke.state().master() ? panel::kRed : panel::kGreen;
        status.text = yoke.boxRunning.text.get();
        status.colour = yoke.boxRunning.colour.get();
        motors.text = yoke.boxMotors.text.get();
        motors.colour = yoke.boxMotors.colour.get();
    };
    show(yoke(0), boxY1Mode, boxAssignmentY1, boxStatusY1, boxMotorsY1);
    show(yoke(1), boxY2Mode, boxAssignmentY2, boxStatusY2, boxMotorsY2);
}

void frmStatusFFB::watch_slave() {
    const int slave = roles_.MasterYoke == 0 ? 1 : 0;
    const YokeState& state = yoke(slave).state();
    const bool pushed = std::abs(state.ailerons.force) > ForceLimit_ || std::abs(state.elevator.force) > ForceLimit_;
    OverForceTicks_ = pushed ? OverForceTicks_ + 1 : 0;
    if (OverForceTicks_ > settings().AutoSwitchTime) {
        if (slave == 0) {
            cmdSetYoke1Master_Click();
        } else {
            cmdSetYoke2Master_Click();
        }
    }
}

}  // namespace yoke
