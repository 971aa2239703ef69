#include "bench/devices/heading_indicator.h"

#include <cmath>

namespace bench {

namespace {

constexpr double kStepsPerTurn = 4320;
constexpr double kStepsPerDegree = 12;
constexpr double kStepsPerSecond = 1440;  // 120 degrees

constexpr int kCommandHeading = 5;
constexpr int kCommandBug = 6;

constexpr int kReportKnob = 7;
constexpr int kReportBug = 10;

int whole_steps(const Motor& motor) {
    return static_cast<int>(std::lround(motor.target())) % static_cast<int>(kStepsPerTurn);
}

}  // namespace

HeadingIndicator::HeadingIndicator(platform::EventLoop& loop, Identity identity)
    : Device(loop, identity),
      card_(Motor::Travel::round, 0, kStepsPerTurn, kStepsPerSecond),
      bug_(card_),
      knob_(card_) {}

double HeadingIndicator::card_degrees() const {
    return std::fmod(card_.position(now()) + knob_.target(), kStepsPerTurn) / kStepsPerDegree;
}

double HeadingIndicator::bug_degrees() const {
    return bug_.position(now()) / kStepsPerDegree;
}

double HeadingIndicator::drift_degrees() const {
    return std::remainder(knob_.target(), kStepsPerTurn) / kStepsPerDegree;
}

bool HeadingIndicator::operate(std::string_view control, int amount) {
    if (control == "heading") {
        knob_.turn(amount * kStepsPerDegree);
    } else if (control == "bug") {
        bug_.turn(amount * kStepsPerDegree);
    } else {
        return false;
    }
    return true;
}

Device::Answer HeadingIndicator::take_command(const Command& command) {
    const bool on_the_card = command.value >= 0 && command.value < static_cast<int>(kStepsPerTurn);
    switch (command.number) {
        case kCommandHeading:
            card_.move_to(command.value, now());
            return on_the_card ? Answer::done : Answer::bad_value;
        case kCommandBug:
            bug_.move_to(command.value, now());
            return on_the_card ? Answer::done : Answer::bad_value;
        case bus::kCommandRecalibrate:
            card_.place(0);
            return Answer::done;
        case 9:   // which knobs act while they are pressed
        case 10:  // trim of disk and bug, setting and clearing them
        case 11:
        case 12:
        case 13:
        case 14:
            return Answer::done;
        default:
            return Answer::unknown_command;
    }
}

void HeadingIndicator::fill_report(ReportBytes& report) const {
    report.set_word(kReportKnob, whole_steps(knob_));
    report.set_word(kReportBug, whole_steps(bug_));
}

void HeadingIndicator::show_state(StateSink& sink) const {
    sink.number("card", card_degrees());
    sink.number("bug", bug_degrees());
    sink.number("drift", drift_degrees());
}

void HeadingIndicator::reset() {
    card_.place(0);
}

}  // namespace bench
