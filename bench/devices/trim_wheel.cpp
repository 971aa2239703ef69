#include "bench/devices/trim_wheel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace bench {

namespace {

constexpr int kHighestPosition = 1023;
constexpr int kNeutral = 512;
constexpr int kPositionsPerClick = 8;
constexpr int kDeliveredStepTimeUs = 4100;  // end to end in 4.2 s
constexpr int kPositionByte = 7;            // 7, 8
constexpr int kMotorByte = 13;

int quarters(int position) {
    return position * kQuartersPerStep;
}

}  // namespace

TrimWheel::TrimWheel(platform::EventLoop& loop, Identity identity)
    : Device(loop, identity),
      wheel_(kDeliveredStepTimeUs),
      wanted_(kNeutral),
      autopilot_step_time_us_(kDeliveredStepTimeUs),
      manual_step_time_us_(kDeliveredStepTimeUs) {
    wheel_.place(quarters(kNeutral), now());
}

Device::Answer TrimWheel::take_command(const Command& command) {
    switch (command.number) {
        case 3:
            return set_step_time(autopilot_step_time_us_, command.value);
        case 4:
            return set_step_time(manual_step_time_us_, command.value);
        case 5:
            return move_to(command.value);
        case 9:
            return set_motor(command.value);
        case 13:
            deadband_ = std::max(0, command.value);
            return command.value >= 0 ? Answer::done : Answer::bad_value;
        default:
            return Answer::unknown_command;
    }
}

Device::Answer TrimWheel::set_step_time(int& step_time_us, int value) {
    if (value <= 0) {
        return Answer::bad_value;
    }
    step_time_us = value;
    drive();
    return Answer::done;
}

Device::Answer TrimWheel::set_motor(int mode) {
    if (mode != 0 && mode != 1 && mode != 2 && mode != 4) {
        return Answer::bad_value;
    }
    const auto motor = static_cast<Motor>(mode);
    if (motor != motor_) {
        motor_ = motor;
        wanted_ = static_cast<int>(std::lround(wheel()));  // stays there until it is sent elsewhere
        drive();
    }
    return Answer::done;
}

Device::Answer TrimWheel::move_to(int position) {
    const int reachable = std::clamp(position, 0, kHighestPosition);
    if (motor_ == Motor::autopilot && std::abs(reachable - wheel()) >= deadband_) {
        wanted_ = reachable;
        drive();
    }
    return reachable == position ? Answer::done : Answer::bad_value;
}

void TrimWheel::drive() {
    const bool by_autopilot = motor_ == Motor::autopilot;
    wheel_.set_step_time(by_autopilot ? autopilot_step_time_us_ : manual_step_time_us_, now());
    switch (motor_) {
        case Motor::off:
            wheel_.place(static_cast<int>(std::lround(wheel_.position(now()))), now());
            break;
        case Motor::switch1:
            wheel_.move_to(quarters(kHighestPosition), now());
            break;
        case Motor::switch2:
            wheel_.move_to(0, now());
            break;
        case Motor::autopilot:
            wheel_.move_to(quarters(wanted_), now());
            break;
    }
}

bool TrimWheel::operate(std::string_view control, int amount) {
    if (control != "wheel") {
        return false;
    }
    const int clicks = std::clamp(amount, -kHighestPosition, kHighestPosition);
    const int turned = static_cast<int>(std::lround(wheel())) + clicks * kPositionsPerClick;
    wheel_.place(quarters(std::clamp(turned, 0, kHighestPosition)), now());
    drive();  // a motor that is on goes on from there
    return true;
}

void TrimWheel::fill_report(ReportBytes& report) const {
    report.set_byte(bus::kReportFirstTagByte, 'P');
    report.set_byte(bus::kReportSecondTagByte, 'T');
    report.set_word(kPositionByte, static_cast<int>(std::lround(wheel())));
    report.set_byte(kMotorByte, static_cast<int>(motor_));
}

void TrimWheel::show_state(StateSink& sink) const {
    sink.number("wheel", wheel());
    switch (motor_) {
        case Motor::off:
            sink.text("motor", "off");
            break;
        case Motor::switch1:
            sink.text("motor", "switch 1");
            break;
        case Motor::switch2:
            sink.text("motor", "switch 2");
            break;
        case Motor::autopilot:
            sink.text("motor", "autopilot");
            break;
    }
}

// The wheel stays where it was left; speeds and dead band are stored.
void TrimWheel::reset() {
    motor_ = Motor::off;
    drive();
}

}  // namespace bench
