#include "bench/devices/com_nav_radio.h"

#include <string>

namespace bench {

namespace {

constexpr int kCommandNavMinimum = 3;
constexpr int kCommandNavMaximum = 4;
constexpr int kCommandModule = 5;
constexpr int kCommandExternalOnOff = 6;
constexpr int kCommandNavDefault = 9;
constexpr int kCommandComMinimum = 10;
constexpr int kCommandComMaximum = 11;
constexpr int kCommandComDefault = 12;
constexpr int kCommandBrightness = 13;

constexpr int kReportComActive = 7;    // 7, 8
constexpr int kReportComStandby = 10;  // 10, 11
constexpr int kReportNavActive = 13;   // 13, 14
constexpr int kReportNavStandby = 16;  // 16, 17
constexpr int kReportPower = 23;
constexpr int kOffBit = 32;

}  // namespace

void ComNavRadio::set_up(Device& device, const tables::GaugeRow& row) {
    auto& radio = static_cast<ComNavRadio&>(device);
    radio.module_number_ = row.GaugeSeqNr1;
    tune_as_delivered(radio.com_, row.GaugeSeqNr1);
    tune_as_delivered(radio.nav_, row.GaugeSeqNr1);
}

std::string ComNavRadio::digits(const Tuner& tuner, int frequency) const {
    const std::string text = shown(tuner.text(frequency));
    return on() ? text : std::string(text.size(), ' ');
}

bool ComNavRadio::operate(std::string_view control, int amount) {
    if (control == "comCoarse") {
        com_.turn_coarse(amount);
    } else if (control == "comFine") {
        com_.turn_fine(amount);
    } else if (control == "comSwap") {
        com_.swap();
    } else if (control == "navCoarse") {
        nav_.turn_coarse(amount);
    } else if (control == "navFine") {
        nav_.turn_fine(amount);
    } else if (control == "navSwap") {
        nav_.swap();
    } else if (control == "on") {
        switch_on_ = amount != 0;
    } else {
        return false;
    }
    return true;
}

Device::Answer ComNavRadio::take_command(const Command& command) {
    const auto done = [](bool good) { return good ? Answer::done : Answer::bad_value; };
    switch (command.number) {
        case kCommandNavMinimum:
            return done(nav_.set_minimum(command.value));
        case kCommandNavMaximum:
            return done(nav_.set_maximum(command.value));
        case kCommandNavDefault:
            return done(nav_.set_default(command.value));
        case kCommandComMinimum:
            return done(com_.set_minimum(command.value));
        case kCommandComMaximum:
            return done(com_.set_maximum(command.value));
        case kCommandComDefault:
            return done(com_.set_default(command.value));
        case kCommandModule:
            module_number_ = command.value == 2 ? 2 : 1;
            return done(command.value == module_number_);
        case kCommandExternalOnOff:
            external_on_off_ = command.value != 0;
            return done(command.value == 0 || command.value == 1);
        case kCommandBrightness:
            return done(brightness_.take(command.value));
        default:
            return Answer::unknown_command;
    }
}

void ComNavRadio::fill_report(ReportBytes& report) const {
    report.set_byte(bus::kReportFirstTagByte, 'C');
    report.set_word(kReportComActive, com_.active());
    report.set_byte(bus::kReportSecondTagByte, 'S');
    report.set_word(kReportComStandby, com_.standby());
    report.set_word(kReportNavActive, nav_.active());
    report.set_word(kReportNavStandby, nav_.standby());
    report.set_byte(kReportPower, on() ? 0 : kOffBit);
}

void ComNavRadio::show_state(StateSink& sink) const {
    sink.text("comActive", digits(com_, com_.active()));
    sink.text("comStandby", digits(com_, com_.standby()));
    sink.text("navActive", digits(nav_, nav_.active()));
    sink.text("navStandby", digits(nav_, nav_.standby()));
    sink.flag("on", on());
    sink.number("brightness", brightness_.level(lights()));
}

// The switch stands where it stood.
void ComNavRadio::reset() {
    com_.power_on();
    nav_.power_on();
}

}  // namespace bench
