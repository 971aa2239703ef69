#include "yoke/frm_config_yoke.h"

#include "support/failure.h"
#include "support/number_format.h"

namespace yoke {

namespace {

constexpr platform::Milliseconds kOneSecond{1000};
constexpr platform::Milliseconds kCalibrationInterval{20};
constexpr std::size_t kBufferSize = 64;
constexpr std::int16_t kFollowStart = 512;
constexpr std::int16_t kFarAway = 1000;  // a remembered position that makes the next tick count as movement

constexpr YokeTraits kYoke1 = {"frmConfigY1",         "Yoke 1", 0, &tables::CoreTables::YokePort1,
                               bus::PortPlace::yoke1, false};
constexpr YokeTraits kYoke2 = {"frmConfigY2", "Yoke 2", 1, &tables::CoreTables::YokePort2, bus::PortPlace::yoke2, true};

}  // namespace

frmConfigY1::frmConfigY1(const YokeParts& parts, YokeRoles& roles) : frmConfigYoke(parts, kYoke1, roles) {}
frmConfigY2::frmConfigY2(const YokeParts& parts, YokeRoles& roles) : frmConfigYoke(parts, kYoke2, roles) {}

frmConfigYoke::frmConfigYoke(const YokeParts& parts, const YokeTraits& traits, YokeRoles& roles)
    : Panel(traits.panel_name, traits.title),
      YokeFields(static_cast<panel::Panel&>(*this)),
      ProcessTimer(parts.platform.loop, name() + ".ProcessTimer", kTick, [this] { ProcessTimer_Timer(); }),
      SwichPowerOffTimer(parts.platform.loop, name() + ".SwichPowerOffTimer", kOneSecond,
                         [this] { SwichPowerOffTimer_Timer(); }),
      CalibrationTimer(parts.platform.loop, name() + ".CalibrationTimer", kCalibrationInterval,
                       [this] { CalibrationTimer_Timer(); }),
      TimerVirtualButton(parts.platform.loop, name() + ".TimerVirtualButton", kOneSecond,
                         [this] { TimerVirtualButton_Timer(); }),
      platform_(parts.platform),
      tables_(parts.tables),
      sim_com_(parts.sim_com),
      ports_(parts.ports),
      panels_(parts.panels),
      run_panel_(parts.run_panel),
      traits_(traits),
      roles_(roles),
      MSComm1_(parts.platform.serial_ports.create()) {
    YokeOutBuffer_.reserve(kBufferSize);
    input_.reserve(kBufferSize);
    number_text_.reserve(kBufferSize);
    cmdCopySettingsYoke2.visible = traits_.number == 0;
    boxRunning.text = "Stopped";
    boxYokeAssignment.text = "Master";
    set_tool_tips();
    set_handlers();
    set_setting_handlers();
    set_layout(yoke_layout());
    show_mode();
    show_port();
    MSComm1_->set_event_handler([this](platform::SerialEvent event) { MSComm1_OnComm(event); });
    ports_.set_owner(traits_.place, this);
}

frmConfigYoke::~frmConfigYoke() {
    ports_.set_owner(traits_.place, nullptr);
}

void frmConfigYoke::set_handlers() {
    cmdRun.on_click = [this] { cmdRun_Click(); };
    cmdStop.on_click = [this] { cmdStop_Click(); };
    cmdHide.on_click = [this] { panels_.hide(*this); };
    cmdSaveLoad.on_click = [this] { panels_.show("SaveConfig"); };
    CmdSetProfile.on_click = [this] { panels_.show("frmForceCurve"); };
    cmdSetMaster.on_click = [this] { cmdSetMaster_Click(); };
    cmdSetSlave.on_click = [this] { cmdSetSlave_Click(); };
    OptionCentre.on_click = [this] { OptionCentre_Click(); };
    OptionFFB.on_click = [this] { OptionFFB_Click(); };
    OptionFollowAPmode.on_click = [this] { OptionFollowAPmode_Click(); };
    OptionServoMode.on_click = [this] { OptionServoMode_Click(); };
    OptionOff.on_click = [this] { OptionOff_Click(); };
    CheckForceLimit.on_click = [this] { yoke_.CheckForceLimit = CheckForceLimit.value == 1; };
}

void frmConfigYoke::Form_Load() {
    show_settings();
}

void frmConfigYoke::Form_Activate() {
    activate();
}

void frmConfigYoke::activate() {
    // A calibration that was stored or copied since counts from now on; one that is going on is not disturbed.
    if (!CalibrationTimer.enabled()) {
        tables::derive_yoke_axes(settings());
    }
    yoke_.ailerons.RawCenterRun = settings().aileron_axis.centre;
    yoke_.elevator.RawCenterRun = settings().elevator_axis.centre;
    yoke_.ailerons.profile = profile_of(tables_.yoke_common.AileronForceCurve);
    yoke_.elevator.profile = profile_of(tables_.yoke_common.ElevatorForceCurve);
    show_settings();
    show_port();
}

void frmConfigYoke::cmdRun_Click() {
    if (!MSComm1_->is_open() && !ports_.failed(traits_.place)) {
        ports_.OpenAllPorts();
    }
    run_panel_.RefreshConfig();
    sim_com_.OpenSimCom();
    running_ = true;
    boxRunning.text = "Running";
    boxRunning.colour = panel::kRed;
    for (AxisState* const axis : {&yoke_.ailerons, &yoke_.elevator}) {
        axis->StandbyCount = settings().StandbyTime;
        axis->PowerOn = true;
    }
    yoke_.last_telegram.reset();
    yoke_.PortRestart = 0;
    yoke_.StartupStep = 1;
    yoke_.ForceRamp = 0;
    ProcessTimer.start();
    SwichPowerOffTimer.start();
    end_button_test();
    show_port();
}

void frmConfigYoke::cmdStop_Click() {
    running_ = false;
    ProcessTimer.stop();
    SwichPowerOffTimer.stop();
    TimerVirtualButton.stop();
    boxRunning.text = "Stopped";
    boxRunning.colour = panel::kGreen;
    show_motors();
}

// On a stopped yoke a mode sets the limits only; its tick stops by itself behind the start.
void frmConfigYoke::select_mode(int mode) {
    yoke_.YokeMode = static_cast<std::int16_t>(mode >= kCenter && mode < kOff ? mode : kOff);
    yoke_.ForceRamp = 0;
    yoke_.StartupStep = 1;
    if (yoke_.YokeMode != kOff) {
        for (AxisState* const axis : {&yoke_.ailerons, &yoke_.elevator}) {
            axis->LastPercent = kFarAway;
            axis->PowerOff = false;
            axis->PowerOn = true;
        }
    }
    if (yoke_.YokeMode == kFollowAp) {
        yoke_.ailerons.FollowPosition = yoke_.elevator.FollowPosition = kFollowStart;
    }
    show_mode();
    ProcessTimer.start();
}

void frmConfigYoke::show_mode() {
    const std::int16_t mode = yoke_.YokeMode;
    OptionCentre.value = mode == kCenter ? 1 : 0;
    OptionFFB.value = mode == kForceFeedback ? 1 : 0;
    OptionFollowAPmode.value = mode == kFollowAp ? 1 : 0;
    OptionServoMode.value = mode == kServo ? 1 : 0;
    OptionOff.value = mode == kOff ? 1 : 0;
    BoxCenterActive.colour = mode == kCenter ? panel::kRed : panel::kGreen;
    boxFFBactive.colour = mode == kForceFeedback ? panel::kRed : panel::kGreen;
    boxFollowAPActive.colour = mode == kFollowAp ? panel::kRed : panel::kGreen;
    boxServoActive.colour = mode == kServo ? panel::kRed : panel::kGreen;
}

void frmConfigYoke::cmdSetMaster_Click() {
    yoke_.YokeIsSlave = 0;
    boxYokeAssignment.text = "Master";
    boxYokeAssignment.colour = panel::kRed;
    roles_.MasterYoke = static_cast<std::int16_t>(traits_.number);
}

void frmConfigYoke::cmdSetSlave_Click() {
    yoke_.YokeIsSlave = 1;
    boxYokeAssignment.text = "Slave";
    boxYokeAssignment.colour = panel::kGreen;
}

// The lists of the panel over both yokes play no part here.
void frmConfigYoke::swap_master() {
    frmConfigYoke& master = yoke_.master() ? *partner_ : *this;
    frmConfigYoke& slave = yoke_.master() ? *this : *partner_;
    master.cmdSetMaster_Click();
    slave.cmdSetSlave_Click();
    master.OptionFFB_Click();
    slave.OptionServoMode_Click();
}

void frmConfigYoke::show_number(panel::Control& box, double value, const char* picture) {
    support::format_number(value, picture, number_text_);
    box.text = number_text_;
}

}  // namespace yoke
