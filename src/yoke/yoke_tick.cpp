// The tick of a yoke: where each axis is to go in the next 40 ms, and how hard its motor may push.

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "support/failure.h"
#include "support/rounding.h"
#include "yoke/frm_config_yoke.h"

namespace yoke {

namespace {

constexpr const char* kTenths = "#0.0";
constexpr const char* kDemand = "000.0";
constexpr double kControlRange = 16383;
constexpr double kHalfRange = 512;
constexpr int kTickMs = static_cast<int>(kTick.count());

// FFBOffsetNr of what a master reads at every tick, and of what is written.
constexpr int kApMaster = 1;
constexpr int kTrim = 12;

std::int32_t lamp(bool on) {
    return on ? panel::kRed : panel::kGreen;
}

}  // namespace

void frmConfigYoke::ProcessTimer_Timer() {
    restart_port();
    if (yoke_.StartupStep != 0) {
        startup_step();
        return;
    }
    ramp();
    // 1.
    YokeOutBuffer_.clear();
    const double airspeed = static_cast<double>(tables_.AircraftIAS);
    show_number(boxAirspeed, airspeed, kTenths);
    // 2.
    if (yoke_.master()) {
        for (int number = 0; number <= 3; ++number) {
            read_ffb(sim_com_, number);
        }
    }
    // 3.
    show_reads();
    // 4.
    if (yoke_.YokeMode != kOff) {
        watch_standby(yoke_.ailerons, shown_percent_[static_cast<std::size_t>(Axis::ailerons)]);
        watch_standby(yoke_.elevator, shown_percent_[static_cast<std::size_t>(Axis::elevator)]);
    } else {
        copy_partner_power(Axis::ailerons);
        copy_partner_power(Axis::elevator);
    }
    if (send_motor_power()) {
        return;
    }
    // 5.
    switch_with_autopilot();
    // 6.
    if (!yoke_.master()) {
        yoke_.ServoFollow = settings().SlaveFollowsMaster == 1 ? kFollowMaster : kFollowSimulator;
    }
    // 7.
    run_mode({yoke_, settings(), sim_com_, partner_->yoke_, platform_.random, airspeed});
    // 8.
    if (yoke_.master() || settings().EnableSwitchesAsSlave == 1) {
        switches_.tick(yoke_, settings(), *this);
        show_number(boxCenterAilerons, static_cast<double>(yoke_.ailerons.CenterOffset), kTenths);
        show_number(BoxCenterElevator, static_cast<double>(yoke_.elevator.CenterOffset), kTenths);
    }
    // 9.
    put_trim();
    // 10.
    shake(yoke_);
    // 11.
    SendSerial();
}

// --- Start

void frmConfigYoke::startup_step() {
    switch (yoke_.StartupStep) {
        case 1:
            yoke_.ForceRamp = 0;
            ComposeCmd(kYokeDevice, kCommandRun, center_target(settings(), Axis::ailerons), 0,
                       center_target(settings(), Axis::elevator), 0);
            break;
        case 2:
            ComposeCmd(kYokeDevice, kCommandDeadbands, settings().DeadbandAilerons, 0, settings().DeadbandElevator, 0);
            break;
        case 3: {
            const YokeCommand limits = force_limits(settings(), yoke_.YokeMode);
            append_yoke_command(YokeOutBuffer_, limits);
            break;
        }
        default:
            if (!running_) {
                ProcessTimer.stop();
            }
            yoke_.StartupStep = 0;
            yoke_.RampCount = kRampTicks;
            yoke_.ForceRamp = 0;
            return;
    }
    ++yoke_.StartupStep;
    SendSerial();
}

void frmConfigYoke::ramp() {
    if (yoke_.RampCount > 0) {
        --yoke_.RampCount;
        yoke_.ForceRamp = static_cast<double>(kRampTicks - yoke_.RampCount) / kRampTicks;
    }
}

// --- Standby

void frmConfigYoke::watch_standby(AxisState& axis, double shown_percent) {
    const std::int16_t percent = support::round_to_i16(std::fabs(shown_percent));
    const bool moved = std::abs(axis.LastPercent - percent) > settings().StandbyThreshold;
    if (axis.StandbyCount > 0) {
        if (moved) {
            axis.StandbyCount = settings().StandbyTime;
        }
        axis.LastPercent = percent;
    } else if (moved) {
        axis.PowerOn = true;
        axis.StandbyCount = settings().StandbyTime;
    }
}

void frmConfigYoke::copy_partner_power(Axis axis) {
    AxisState& own = yoke_.axis(axis);
    const AxisState& other = partner_->yoke_.axis(axis);
    if (own.motor_on != other.motor_on) {
        (other.motor_on ? own.PowerOn : own.PowerOff) = true;
    }
}

// One motor command a tick; it ends the tick.
bool frmConfigYoke::send_motor_power() {
    struct Request {
        bool AxisState::*flag;
        Axis axis;
        bool on;
    };
    constexpr std::array<Request, 4> kInOrder = {{{&AxisState::PowerOff, Axis::elevator, false},
                                                  {&AxisState::PowerOff, Axis::ailerons, false},
                                                  {&AxisState::PowerOn, Axis::elevator, true},
                                                  {&AxisState::PowerOn, Axis::ailerons, true}}};
    for (const Request& request : kInOrder) {
        bool& flag = yoke_.axis(request.axis).*request.flag;
        if (flag) {
            set_motor(request.axis, request.on);
            flag = false;
            return true;
        }
    }
    return false;
}

void frmConfigYoke::set_motor(Axis axis, bool on) {
    yoke_.axis(axis).motor_on = on;
    (axis == Axis::ailerons ? boxStandbyBank : boxStandbyPitch).colour = on ? panel::kGreen : panel::kRed;
    ComposeCmd(kYokeDevice, axis == Axis::ailerons ? kCommandAileronsPower : kCommandElevatorPower, on ? 1 : 0, 0, 0,
               0);
    SendSerial();
}

// --- Autopilot

void frmConfigYoke::switch_with_autopilot() {
    if (!yoke_.master() || settings().AutoSwitchFFBAP != 1) {
        return;
    }
    if (sim_com_.FfbApMaster == 1 && yoke_.YokeMode == kForceFeedback) {
        OptionFollowAPmode_Click();
        yoke_.ServoFollow = 1;
    }
    if (sim_com_.FfbApMaster == 1 && yoke_.YokeMode == kFollowAp && CheckEnableAPOverrule.value == 1) {
        const bool pushed = std::fabs(shown_force_[0]) > settings().APOverruleForce ||
                            std::fabs(shown_force_[1]) > settings().APOverruleForce;
        yoke_.OverruleTicks = static_cast<std::int16_t>(pushed ? std::min(yoke_.OverruleTicks + 1, 10000) : 0);
        // The setting is in milliseconds.
        if (yoke_.OverruleTicks * kTickMs > settings().APOverruleTime) {
            sim_com_.FfbApMaster = 0;
            sim_com_.PutPortFFB(kApMaster);
        }
    }
    if (sim_com_.FfbApMaster == 0 && yoke_.YokeMode == kFollowAp) {
        OptionFFB_Click();
        yoke_.ServoFollow = kFollowNothing;
    }
}

// --- Modes

void frmConfigYoke::run_mode(const TickContext& tick) {
    YokeCommand command;
    switch (yoke_.YokeMode) {
        case kCenter:
            command = center_tick(tick);
            break;
        case kForceFeedback:
            command = force_feedback_tick(tick);
            show_force_feedback();
            break;
        case kFollowAp:
            command = follow_ap_tick(tick);
            show_follow_ap();
            break;
        case kServo:
            command = servo_tick(tick);
            show_servo();
            break;
        default:
            command = off_tick(tick);
            break;
    }
    if (yoke_.YokeMode == kCenter || yoke_.YokeMode == kForceFeedback || yoke_.YokeMode == kOff) {
        show_position();
    }
    append_yoke_command(YokeOutBuffer_, command);
}

void frmConfigYoke::put_trim() {
    if (yoke_.master() && yoke_.TrimValue != yoke_.LastTrimValue) {
        yoke_.LastTrimValue = yoke_.TrimValue;
        sim_com_.FfbTrim = yoke_.TrimValue;
        sim_com_.PutPortFFB(kTrim);
        show_number(boxTrimValue, yoke_.TrimValue / kControlRange * 100, kTenths);
    }
}

// --- What the panel shows of it

// All indicators of reads and writes go green; the step that uses one turns it red.
void frmConfigYoke::show_reads() {
    const std::int16_t mode = yoke_.YokeMode;
    const bool from_simulator = mode == kServo && yoke_.ServoFollow == kFollowSimulator;
    const bool writes = yoke_.master() && (mode == kCenter || mode == kForceFeedback || mode == kOff);
    boxAPMasterSwitch.colour = lamp(sim_com_.FfbApMaster != 0);
    boxAutoHeading.colour = lamp(sim_com_.FfbApRoll != 0);
    boxAutoAltitude.colour = lamp(sim_com_.FfbApPitch != 0);
    IndicatorReadAilerons.colour = lamp(from_simulator);
    IndicatorReadElevator.colour = lamp(from_simulator);
    IndicatorWriteAilerons.colour = lamp(writes);
    IndicatorWriteElevator.colour = lamp(writes);
    IndicatorReadAileronsTrim.colour = lamp(mode == kFollowAp);
    IndicatorReadElevatorTrim.colour = lamp(mode == kFollowAp);
    boxServoFollowAP.colour = lamp(mode == kFollowAp);
    boxServoFollowSimulator.colour = lamp(from_simulator);
    boxServoFollowMaster.colour = lamp(mode == kServo && yoke_.ServoFollow == kFollowMaster);
    StallWarningIndicator.colour = lamp(mode == kForceFeedback && sim_com_.FfbStall == 1);
    OverspeedWarningIndicator.colour = lamp(mode == kForceFeedback && sim_com_.FfbOverspeed == 1);
}

void frmConfigYoke::show_position() {
    if (!yoke_.master()) {
        return;
    }
    show_number(boxFSAilerons, yoke_.ailerons.position / kHalfRange * 100, kTenths);
    show_number(boxFSElevator, yoke_.elevator.position / kHalfRange * 100, kTenths);
}

void frmConfigYoke::show_force_feedback() {
    BoxAileronsPosition.text = boxFSAilerons.text.get();
    boxElevatorPosition.text = boxFSElevator.text.get();
    show_number(boxBankTurbulence, yoke_.ailerons.Turbulence, "0");
    show_number(boxPitchTurbulence, yoke_.elevator.Turbulence, "0");
    show_number(BoxCurveAilerons, static_cast<double>(yoke_.ailerons.curve_percent), kTenths);
    show_number(boxCurveElevator, static_cast<double>(yoke_.elevator.curve_percent), kTenths);
    boxFFBSetBankForce.text = boxBankForce.text.get();
    boxFFBSetPitchForce.text = boxPitchForce.text.get();
}

void frmConfigYoke::show_follow_ap() {
    show_number(boxFSAileronsTrim, static_cast<double>(sim_com_.FfbApAileron) * 1000, kDemand);
    show_number(boxFSElevatorTrim, static_cast<double>(sim_com_.FfbApElevator) * 1000, kDemand);
    show_number(boxServoYokePositionAilerons, yoke_.ailerons.servo_percent, kTenths);
    show_number(boxServoYokePositionElevator, yoke_.elevator.servo_percent, kTenths);
}

void frmConfigYoke::show_servo() {
    if (yoke_.ServoFollow == kFollowMaster) {
        show_number(boxServoYokePositionAilerons, yoke_.ailerons.servo_percent, kTenths);
        show_number(boxServoYokePositionElevator, yoke_.elevator.servo_percent, kTenths);
    } else if (yoke_.ServoFollow == kFollowSimulator) {
        show_number(boxFSAilerons, sim_com_.FfbAileron / kControlRange * 100, kTenths);
        show_number(boxFSElevator, sim_com_.FfbElevator / kControlRange * 100, kTenths);
    }
}

}  // namespace yoke
