#include "bench/devices/needle_gauges.h"

#include <algorithm>

namespace bench {

namespace {

constexpr int kTypeWithDisplay = 2;
constexpr int kHighestExtraCommand = 3;
constexpr char kNeedleTag = 'N';

// Report bytes of a needle gauge behind the common ones.
constexpr int kNeedle1TagByte = 6;
constexpr int kNeedle1PositionByte = 7;  // 7, 8
constexpr int kNeedle2TagByte = 9;
constexpr int kNeedle2PositionByte = 10;  // 10, 11
constexpr int kLightsByte = 12;           // the level, plus 64 lit, plus 128 power
constexpr int kSettingsByte = 13;         // 1 high resolution, 2 and 4 needle 1 and 2 turn the other way

bool has_two_needles(int type) {
    return type == 3 || type == 5 || type == 6;
}

int wrapped(int quarters) {
    const int rest = quarters % kQuartersPerTurn;
    return rest < 0 ? rest + kQuartersPerTurn : rest;
}

char display_place(int nibble) {
    if (nibble <= 9) {
        return static_cast<char>('0' + nibble);
    }
    if (nibble == bus::kDisplayPoint) {
        return '.';
    }
    return nibble == bus::kDisplayBlank ? ' ' : '-';
}

}  // namespace

NeedleGauge::NeedleGauge(platform::EventLoop& loop, Identity identity)
    : Device(loop, identity),
      needle_count_(has_two_needles(identity.type) ? 2 : 1),
      has_display_(identity.type == kTypeWithDisplay) {}

double NeedleGauge::needle_steps(int needle) const {
    return stepper(needle).position(now()) / kQuartersPerStep;
}

double NeedleGauge::target_steps(int needle) const {
    return static_cast<double>(stepper(needle).target()) / kQuartersPerStep;
}

double NeedleGauge::pointer_steps(int needle) const {
    const int beside = stepper(needle).lost_steps(now()) + (needle == 1 ? calibration_point_ : 0);
    const double quarters = stepper(needle).position(now()) + beside;
    const double steps = quarters / kQuartersPerStep;
    return direction(needle) == Direction::clockwise ? steps : -steps;
}

bool NeedleGauge::calibrating() const {
    return std::any_of(needles_.begin(), needles_.end(),
                       [this](const Stepper& needle) { return needle.finding_zero(now()); });
}

std::string NeedleGauge::display_text() const {
    std::string text;
    for (int shift = 12; shift >= 0; shift -= 4) {
        const char place = display_place((display_word_ >> shift) & 15);
        text.push_back(lights().displays_on() ? place : ' ');
    }
    return text;
}

void NeedleGauge::lose_steps(int needle, int steps) {
    stepper(needle).lose_steps(steps * kQuartersPerStep);
}

bool NeedleGauge::knock(int needle, int steps) {
    if (needle < 1 || needle > needle_count_) {
        return false;
    }
    lose_steps(needle, steps);
    return true;
}

Device::Answer NeedleGauge::take_command(const Command& command) {
    switch (command.number) {
        case bus::kCommandRecalibrate:
            return find_zero();
        case bus::kCommandSpeed:
            return set_speed(command.value);
        case bus::kCommandDirection:
            return set_direction(command.value);
        case bus::kCommandNeedle1:
            return move_needle(1, command.value);
        case bus::kCommandNeedle2:
            return take_second(command.value);
        case bus::kCommandResolution:
            return set_resolution(command.value);
        case bus::kCommandMoveUp:
            return move_calibration_point(command.value);
        case bus::kCommandMoveDown:
            return move_calibration_point(-command.value);
        case bus::kCommandSetPoint:
            return store_calibration_point(command.value);
        case bus::kCommandExtra:
            last_extra_command_ = command.value;
            return command.value >= 0 && command.value <= kHighestExtraCommand ? Answer::done : Answer::bad_value;
        default:
            return Answer::unknown_command;
    }
}

Device::Answer NeedleGauge::find_zero() {
    calibration_point_ = stored_calibration_point_;
    for (Stepper& needle : needles_) {
        needle.find_zero(now());
    }
    return Answer::done;
}

Device::Answer NeedleGauge::set_speed(int value) {
    if (value <= 0) {
        return Answer::bad_value;
    }
    for (Stepper& needle : needles_) {
        needle.set_step_time(std::max(value, kShortestStepTimeUs), now());
    }
    return Answer::done;
}

Device::Answer NeedleGauge::set_direction(int value) {
    if (value < 0 || value >= (1 << needle_count_)) {
        return Answer::bad_value;
    }
    direction_[0] = (value & 1) != 0 ? Direction::counterclockwise : Direction::clockwise;
    direction_[1] = (value & 2) != 0 ? Direction::counterclockwise : Direction::clockwise;
    return Answer::done;
}

Device::Answer NeedleGauge::move_needle(int needle, int value) {
    const int quarters = resolution_ == Resolution::low ? value * kQuartersPerStep : value;
    const int last = kQuartersPerTurn - (resolution_ == Resolution::low ? kQuartersPerStep : 1);
    stepper(needle).move_to(std::clamp(quarters, 0, last), now());
    return quarters == std::clamp(quarters, 0, last) ? Answer::done : Answer::bad_value;
}

Device::Answer NeedleGauge::take_second(int value) {
    if (has_display_) {
        if (value < 0) {
            return Answer::bad_value;
        }
        display_word_ = static_cast<std::uint16_t>(value);
        return Answer::done;
    }
    return needle_count_ == 2 ? move_needle(2, value) : Answer::unknown_command;
}

Device::Answer NeedleGauge::set_resolution(int value) {
    if (value != 0 && value != 1) {
        return Answer::bad_value;
    }
    resolution_ = value == 1 ? Resolution::high : Resolution::low;
    return Answer::done;
}

Device::Answer NeedleGauge::move_calibration_point(int quarters) {
    calibration_point_ = wrapped(calibration_point_ + quarters);
    return Answer::done;
}

Device::Answer NeedleGauge::store_calibration_point(int quarters) {
    if (quarters < 0 || quarters >= kQuartersPerTurn) {
        return Answer::bad_value;
    }
    calibration_point_ = quarters;
    stored_calibration_point_ = quarters;
    return Answer::done;
}

void NeedleGauge::fill_report(ReportBytes& report) const {
    const auto position = [this](int needle) { return static_cast<int>(stepper(needle).position(now())); };
    report.set_byte(kNeedle1TagByte, kNeedleTag);
    report.set_word(kNeedle1PositionByte, position(1));
    if (needle_count_ == 2) {
        report.set_byte(kNeedle2TagByte, kNeedleTag);
        report.set_word(kNeedle2PositionByte, position(2));
    }
    report.set_byte(kLightsByte, lights().level() | (lights().lit() ? bus::kLightOn : 0) |
                                     (lights().displays_on() ? bus::kLightPower : 0));
    report.set_byte(kSettingsByte, (resolution_ == Resolution::high ? 1 : 0) |
                                       (direction_[0] == Direction::counterclockwise ? 2 : 0) |
                                       (direction_[1] == Direction::counterclockwise ? 4 : 0));
}

void NeedleGauge::show_state(StateSink& sink) const {
    sink.number("pointer1", pointer_steps(1));
    sink.number("pointer2", pointer_steps(2));
    sink.flag("calibrating", calibrating());
    sink.text("display", has_display_ ? display_text() : std::string());
}

// Speed, direction, calibration point and the lights' defaults are stored in the gauge; the needle runs to its zero
// mark from where it stands.
void NeedleGauge::reset() {
    resolution_ = Resolution::low;
    calibration_point_ = stored_calibration_point_;
    last_extra_command_ = -1;
    display_word_ = kBlankDisplay;
    for (Stepper& needle : needles_) {
        needle.find_zero(now());
    }
}

}  // namespace bench
