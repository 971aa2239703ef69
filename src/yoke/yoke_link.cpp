// The link of a yoke's panel: what it reports, and a port that is restarted after a bad telegram.

#include <algorithm>
#include <array>

#include "bus/port_lamp.h"
#include "support/failure.h"
#include "support/rounding.h"
#include "yoke/frm_config_yoke.h"

namespace yoke {

namespace {

constexpr const char* kTenths = "#0.0";
constexpr std::array<const char*, 4> kProgress = {"---", " \\", " |", " /"};

// The restart of a port: closed at the next tick, opened two ticks later.
constexpr std::int16_t kClose = 3;
constexpr std::int16_t kWait = 2;
constexpr std::int16_t kOpen = 1;

double tenths(double value) {
    return support::round_half_even(value * 10) / 10;
}

}  // namespace

void frmConfigYoke::ComposeCmd(int GaugeIDYoke, int icmd, int Ival1, int Ival2, int Ival3, int Ival4) {
    append_yoke_command(YokeOutBuffer_, {GaugeIDYoke, icmd, {Ival1, Ival2, Ival3, Ival4}});
}

void frmConfigYoke::SendSerial() {
    if (YokeOutBuffer_.empty()) {
        return;
    }
    if (MSComm1_->connected()) {
        MSComm1_->clear_input();
        try {
            MSComm1_->write(YokeOutBuffer_);
        } catch (const support::Failure& failure) {
            if (MSComm1_->connected()) {
                cmdStop_Click();
                platform_.boxes.message("Error Yoke1 Port: " + failure.description());
            }
        }
    }
    YokeOutBuffer_.clear();
}

void frmConfigYoke::reset_link() {
    YokeOutBuffer_.clear();
}

void frmConfigYoke::link_opened() {
    restart_link();
    show_port();
}

// Whatever the yoke knew may be gone: it is told everything again, and forces rise from nothing.
void frmConfigYoke::restart_link() {
    yoke_.PortRestart = 0;
    yoke_.last_telegram.reset();
    if (running_) {
        select_mode(yoke_.YokeMode);
    }
}

// --- Telegrams

void frmConfigYoke::MSComm1_OnComm(platform::SerialEvent event) {
    switch (event) {
        case platform::SerialEvent::break_received:
            bad_input("Break rcvd.");
            break;
        case platform::SerialEvent::framing_error:
            bad_input("Framing err.");
            break;
        case platform::SerialEvent::receive:
            take_telegram();
            break;
        case platform::SerialEvent::disconnected:
            show_port();
            break;
        case platform::SerialEvent::reconnected:
            restart_link();
            show_port();
            break;
    }
}

void frmConfigYoke::bad_input(const char* what) {
    MSComm1_->read_into(input_);
    MSComm1_->clear_input();
    ReceivedMessage.text = what;
    yoke_.PortRestart = kClose;
}

void frmConfigYoke::take_telegram() {
    MSComm1_->read_into(input_);
    if (input_.size() != kStatusLength) {
        ReceivedMessage.text = "Inc. reply";
        yoke_.PortRestart = kClose;
        return;
    }
    if (!is_yoke_status(input_)) {
        ReceivedMessage.text = "Garbled reply";
        yoke_.PortRestart = kClose;
        return;
    }
    const platform::TimePoint now = platform_.loop.now();
    if (running_ && yoke_.last_telegram && now - *yoke_.last_telegram >= kSilence) {
        restart_link();  // it has been away; its supply may have failed
    }
    yoke_.last_telegram = now;
    ReceivedMessage.text = "Correct";
    yoke_.YokeType = static_cast<std::uint8_t>(yoke_type(input_));
    try {
        take_axis(Axis::ailerons, input_);
        take_axis(Axis::elevator, input_);
    } catch (const support::Failure&) {
        // A calibration without a range leads to no position.
        ReceivedMessage.text = "Wrong Reply";
        yoke_.PortRestart = kClose;
    }
    ProgressIndicator.text = kProgress[static_cast<std::size_t>(yoke_.ProgressStep)];
    yoke_.ProgressStep = static_cast<std::int16_t>((yoke_.ProgressStep + 1) & 3);
    ++yoke_.FrameCount;
    take_switches(input_);
}

void frmConfigYoke::take_axis(Axis axis, std::string_view status) {
    AxisState& state = yoke_.axis(axis);
    const tables::YokeAxis& travel = axis == Axis::ailerons ? settings().aileron_axis : settings().elevator_axis;
    const int raw = raw_position(status, axis);
    const int position = support::round_to_i32((raw - travel.centre) * travel.scale);
    state.position = static_cast<std::int16_t>(std::clamp(position, -kFullPosition, kFullPosition));
    state.force = measured_force(status, axis);
    const auto at = static_cast<std::size_t>(axis);
    shown_percent_[at] = tenths(state.position * 100.0 / kFullPosition);
    shown_force_[at] = tenths(state.force * 100.0 / kFullForce);
    const bool ailerons = axis == Axis::ailerons;
    show_number(ailerons ? boxBank : boxPitch, shown_percent_[at], kTenths);
    show_number(ailerons ? boxBankForce : boxPitchForce, shown_force_[at], kTenths);
}

void frmConfigYoke::take_switches(std::string_view status) {
    const unsigned closed = closed_switches(status);
    const int count = switch_count(yoke_.YokeType);
    for (int number = 0; number < count; ++number) {
        const auto at = static_cast<std::size_t>(number);
        yoke_.YokeSwitch[at] = static_cast<std::uint8_t>(closed >> number & 1U);
        SwitchIndicator[at].colour = yoke_.YokeSwitch[at] != 0 ? panel::kRed : panel::kGreen;
    }
}

// --- The port

void frmConfigYoke::restart_port() {
    if (yoke_.PortRestart == kClose) {
        MSComm1_->close();
        yoke_.PortRestart = kWait;
    } else if (yoke_.PortRestart == kWait) {
        yoke_.PortRestart = kOpen;
    } else if (yoke_.PortRestart == kOpen) {
        open_port();
    }
}

// Quiet when it fails: it is tried again every second.
void frmConfigYoke::open_port() {
    yoke_.PortRestart = 0;
    try {
        bus::open_line(*MSComm1_, traits_.place, tables_.*traits_.port);
    } catch (const support::Failure&) {
        return;
    }
    restart_link();
    show_port();
}

void frmConfigYoke::SwichPowerOffTimer_Timer() {
    if (yoke_.YokeMode == kCenter || yoke_.YokeMode == kForceFeedback) {
        for (AxisState* const axis : {&yoke_.ailerons, &yoke_.elevator}) {
            if (axis->StandbyCount >= 1) {
                --axis->StandbyCount;
            } else {
                axis->PowerOff = true;
            }
        }
    }
    show_number(boxUpdatesPerSecond, yoke_.FrameCount, "0");
    yoke_.FrameCount = 0;
    if (!MSComm1_->is_open() && yoke_.PortRestart == 0 && hasPort()) {
        open_port();
    }
    show_port();
}

void frmConfigYoke::show_port() {
    bus::show_port(ComPortNr, *MSComm1_, tables_.*traits_.port);
}

// --- May the motors push?

// Why they may not, the weightiest reason first; null when they may.
const char* frmConfigYoke::why_motors_rest() const {
    const platform::TimePoint now = platform_.loop.now();
    if (!hasPort()) {
        return "No: there is no port";
    }
    if (!running_) {
        return "Halted: the yoke keeps its last force";
    }
    if (yoke_.PortRestart != 0) {
        return "Unknown: the port is being restarted";
    }
    if (!MSComm1_->connected()) {
        return "Unknown: the yoke is not connected";
    }
    if (!yoke_.last_telegram || now - *yoke_.last_telegram >= kSilence) {
        return "Unknown: no telegrams from the yoke";
    }
    if (yoke_.StartupStep != 0) {
        return "No: start-up";
    }
    if (yoke_.YokeMode == kOff) {
        return "No: OFF mode";
    }
    if (!yoke_.ailerons.motor_on && !yoke_.elevator.motor_on) {
        return "No: standby";
    }
    return nullptr;
}

void frmConfigYoke::show_motors() {
    const char* const reason = why_motors_rest();
    if (reason != nullptr) {
        boxMotors.text = reason;
        boxMotors.colour = reason[0] == 'N' ? panel::kGreen : panel::kRed;
        return;
    }
    const auto answer = sim_com_.last_answer();
    const bool silent = !answer || platform_.loop.now() - *answer >= kSilence;
    const char* const ramping = yoke_.RampCount > 0 ? "Yes: forces are rising" : "Yes";
    boxMotors.text = silent ? "Yes, but the simulator is silent" : ramping;
    boxMotors.colour = panel::kRed;
}

}  // namespace yoke
