#include "bench/devices/radios.h"

#include <algorithm>
#include <string>

namespace bench {

namespace {

constexpr int kCtl30Type = 111;
constexpr int kLastKind = 3;

constexpr int kCommandFastRotate = 4;
constexpr int kCommandSteps = 5;
constexpr int kCommandSwitch = 6;  // generic unit: the indicators; CTL30 unit: on and off from outside
constexpr int kCommandKind = 9;
constexpr int kCommandMaximum = 10;
constexpr int kCommandMinimum = 11;
constexpr int kCommandDefault = 12;
constexpr int kCommandBrightness = 13;
constexpr int kCommandClicks = 14;

constexpr int kReportActive = 7;    // 7, 8
constexpr int kReportStandby = 10;  // 10, 11
constexpr int kReportRotary = 24;

constexpr int kAllIndicators = 15;
constexpr int kNoFastRotate = -1;
constexpr int kFastFactor = 10;

// A step of the fine knob comes in tens of kHz, so one of 25 kHz has lost its half.
constexpr int kQuarterStepTens = 2;
constexpr int kQuarterStepKhz = 25;

Band band_of(int model) {
    return static_cast<Band>(std::clamp(model, 0, kLastKind));
}

const char* kind_of(Band band) {
    return band == Band::com ? "COM" : band == Band::nav ? "NAV" : "ADF";
}

}  // namespace

Radio::Radio(platform::EventLoop& loop, Identity identity) : Device(loop, identity), tuner_(band_of(identity.model)) {}

void Radio::set_up(Device& device, const tables::GaugeRow& row) {
    auto& radio = static_cast<Radio&>(device);
    radio.set_model(row.GaugeModel);
    radio.tuner_.choose_band(band_of(row.GaugeModel));
    tune_as_delivered(radio.tuner_, row.GaugeSeqNr1);
}

bool Radio::has_rotary() const {
    return identity().type == kCtl30Type;
}

bool Radio::switched_on() const {
    return !has_rotary() || external_on_off_ || rotary_ > 1;
}

std::string Radio::digits(int frequency) const {
    const std::string text = shown(tuner_.text(frequency));
    return switched_on() ? text : std::string(text.size(), ' ');
}

bool Radio::operate(std::string_view control, int amount) {
    if (control == "coarse") {
        tuner_.turn_coarse(amount);
    } else if (control == "fine") {
        turn_fine(amount);
    } else if (control == "swap") {
        tuner_.swap();
    } else if (control == "rotary" && has_rotary()) {
        rotary_ = std::clamp(amount, 1, kLastRotaryPosition);
    } else {
        return false;
    }
    return true;
}

void Radio::turn_fine(int clicks) {
    const bool fast = fast_rotate_.count() > 0 && last_fine_click_ != platform::TimePoint{} &&
                      now() - last_fine_click_ < fast_rotate_;
    last_fine_click_ = now();
    tuner_.turn_fine(fast ? std::clamp(clicks, -100, 100) * kFastFactor : clicks);
}

Device::Answer Radio::take_command(const Command& command) {
    const auto done = [](bool good) { return good ? Answer::done : Answer::bad_value; };
    switch (command.number) {
        case kCommandFastRotate:
            return set_fast_rotate(command.value);
        case kCommandSteps:
            return set_steps(command.value);
        case kCommandSwitch:
            return take_command6(command.value);
        case kCommandKind:
            return choose_kind(command.value);
        case kCommandMaximum:
            return done(tuner_.set_maximum(command.value));
        case kCommandMinimum:
            return done(tuner_.set_minimum(command.value));
        case kCommandDefault:
            return done(tuner_.set_default(command.value));
        case kCommandBrightness:
            return done(brightness_.take(command.value));
        case kCommandClicks:
            return set_clicks(command.value);
        default:
            return Answer::unknown_command;
    }
}

// The version of the unit that the dialog knew stands in the high byte and means nothing here.
Device::Answer Radio::choose_kind(int value) {
    const int kind = value & 0xFF;
    if (value < 0 || kind > kLastKind) {
        return Answer::bad_value;
    }
    set_model(kind);
    tuner_.choose_band(band_of(kind));
    return Answer::done;
}

// High byte the coarse step, low byte the fine one: MHz and tens of kHz, of an ADF tenths of a kHz both.
Device::Answer Radio::set_steps(int value) {
    const int coarse = value >> 8;
    const int fine = value & 0xFF;
    if (value < 0 || coarse == 0 || fine == 0) {
        return Answer::bad_value;
    }
    if (tuner_.is_adf()) {
        tuner_.set_steps(coarse, fine);
    } else {
        tuner_.set_steps(coarse * 1000, fine == kQuarterStepTens ? kQuarterStepKhz : fine * 10);
    }
    return Answer::done;
}

// Hundredths of a second.
Device::Answer Radio::set_fast_rotate(int value) {
    if (value < kNoFastRotate) {
        return Answer::bad_value;
    }
    fast_rotate_ = platform::Milliseconds(std::max(value, 0) * 10);
    return Answer::done;
}

Device::Answer Radio::set_clicks(int value) {
    if (value < 0) {
        return Answer::bad_value;
    }
    tuner_.set_clicks_per_step(value >> 8, value & 0xFF);
    return Answer::done;
}

Device::Answer Radio::take_command6(int value) {
    if (has_rotary()) {
        external_on_off_ = value != 0;
        return value == 0 || value == 1 ? Answer::done : Answer::bad_value;
    }
    if (tuner_.band() != Band::adf_to_999 || value < 0 || value > kAllIndicators) {
        return Answer::bad_value;
    }
    indicators_ = value;
    return Answer::done;
}

void Radio::fill_report(ReportBytes& report) const {
    report.set_byte(bus::kReportFirstTagByte, 'A');
    report.set_word(kReportActive, tuner_.active());
    report.set_byte(bus::kReportSecondTagByte, 'S');
    report.set_word(kReportStandby, tuner_.standby());
    report.set_byte(kReportRotary, has_rotary() ? rotary_ : 0);
}

void Radio::show_state(StateSink& sink) const {
    sink.text("kind", kind_of(tuner_.band()));
    sink.text("active", digits(tuner_.active()));
    sink.text("standby", digits(tuner_.standby()));
    sink.number("rotary", has_rotary() ? rotary_ : 0);
    sink.number("indicators", lights().displays_on() ? indicators_ : 0);
    sink.number("brightness", brightness_.level(lights()));
}

}  // namespace bench
