#include "bench/devices/transponders.h"

#include <algorithm>
#include <cstdio>
#include <string>

namespace bench {

namespace {

constexpr int k737Type = 114;
constexpr int kStartCode = 07000;

constexpr int kCommandCode1 = 4;
constexpr int kCommandCode2 = 5;
constexpr int kCommandFlightLevel = 5;
constexpr int kCommandExternalOnOff = 6;
constexpr int kCommandDefault1 = 10;
constexpr int kCommandDefault2 = 11;
constexpr int kCommandAtc = 12;            // 737 unit
constexpr int kCommandFlightDisplay = 12;  // Bendix/King unit: zeros, dashes
constexpr int kCommandBrightness = 13;

constexpr int kAtcActive = 256;
constexpr int kHighestFlightLevel = 999;
constexpr int kLowestFlightLevel = -99;

constexpr int kReportCode1 = 7;   // 7, 8
constexpr int kReportCode2 = 10;  // 10, 11
constexpr int kReportIdent = 13;
constexpr int kReportActive = 15;  // Bendix/King unit: the button VFR
constexpr int kReportVfr = 15;
constexpr int kReportRotary = 17;
constexpr int kReportAltitudeSource = 23;

Device::Answer done_if(bool good) {
    return good ? Device::Answer::done : Device::Answer::bad_value;
}

// Turns a digit of the code when the control is one of digit1..digit4.
bool turn_digit(TransponderCode& code, std::string_view control, int clicks) {
    constexpr std::string_view kDigit = "digit";
    if (control.size() != kDigit.size() + 1 || !control.starts_with(kDigit) || control.back() < '1' ||
        control.back() > '4') {
        return false;
    }
    code.turn(control.back() - '0', clicks);
    return true;
}

}  // namespace

// --- CTL30 and 737 units ------------------------------------------------------------------------------------------

void Transponder::set_up(Device& device, const tables::GaugeRow&) {
    auto& transponder = static_cast<Transponder&>(device);
    transponder.default_codes_.fill(TransponderCode(kStartCode));
    transponder.codes_ = transponder.default_codes_;
}

bool Transponder::is_737() const {
    return identity().type == k737Type;
}

std::string Transponder::code_text(int number) const {
    const std::string text = code(number).text();
    return is_off() ? std::string(text.size(), ' ') : shown(text);
}

bool Transponder::answers(const Command& command) const {
    return !is_off() && (Device::answers(command) || (is_737() && command.number == kCommandAtc));
}

bool Transponder::operate(std::string_view control, int amount) {
    if (control == "select") {
        active_ = amount == 2 ? 2 : 1;
    } else if (control == "rotary") {
        rotary_ = std::clamp(amount, 1, kTransponderPositions);
    } else if (control == "ident") {
        ident_.press(now());
    } else if (control == "altSource" && is_737()) {
        altitude_source_ = amount == 2 ? 2 : 1;
    } else {
        return turn_digit(codes_[active_ == 2 ? 1 : 0], control, amount);
    }
    return true;
}

Device::Answer Transponder::take_command(const Command& command) {
    switch (command.number) {
        case kCommandCode1:
            return done_if(codes_[0].set_word(command.value));
        case kCommandCode2:
            return done_if(codes_[1].set_word(command.value));
        case kCommandDefault1:
            return done_if(default_codes_[0].set_word(command.value));
        case kCommandDefault2:
            return done_if(default_codes_[1].set_word(command.value));
        case kCommandExternalOnOff:
            external_on_off_ = command.value != 0;
            return done_if(command.value == 0 || command.value == 1);
        case kCommandAtc:
            return is_737() ? show_atc(command.value) : Answer::unknown_command;
        case kCommandBrightness:
            return done_if(brightness_.take(command.value));
        default:
            return Answer::unknown_command;
    }
}

Device::Answer Transponder::show_atc(int value) {
    atc_ = value == kAtcActive;
    return done_if(value == 0 || value == kAtcActive);
}

void Transponder::fill_report(ReportBytes& report) const {
    report.set_byte(bus::kReportFirstTagByte, 'X');
    report.set_word(kReportCode1, codes_[0].nibbles());
    report.set_byte(bus::kReportSecondTagByte, 'Y');
    report.set_word(kReportCode2, codes_[1].nibbles());
    report.set_byte(kReportIdent, ident() ? 1 : 0);
    report.set_byte(kReportActive, active_);
    report.set_byte(kReportRotary, rotary_);
    report.set_byte(kReportAltitudeSource, is_737() ? altitude_source_ : 0);
}

void Transponder::show_state(StateSink& sink) const {
    sink.text("code1", code_text(1));
    sink.text("code2", code_text(2));
    sink.number("active", active_);
    sink.number("rotary", rotary_);
    sink.flag("ident", ident());
    sink.flag("atc", atc_ && !is_off() && lights().displays_on());
    sink.number("altSource", altitude_source_);
    sink.flag("externalOnOff", external_on_off_);
    sink.number("brightness", brightness_.level(lights()));
}

// Switches stand where they stood.
void Transponder::reset() {
    codes_ = default_codes_;
    ident_.forget();
    atc_ = false;
}

// --- Bendix/King unit ---------------------------------------------------------------------------------------------

void BkTransponder::set_up(Device& device, const tables::GaugeRow&) {
    auto& transponder = static_cast<BkTransponder&>(device);
    transponder.vfr_code_ = transponder.code_ = TransponderCode(kStartCode);
}

std::string BkTransponder::code_text() const {
    return position() == off ? "    " : position() == test ? shown("8888") : shown(code_.text());
}

std::string BkTransponder::flight_level_text() const {
    if (position() == test) {
        return shown("888");
    }
    if (position() != on && position() != altitude) {
        return "   ";
    }
    if (!flight_level_) {
        return shown(dashes_ ? "---" : "000");
    }
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%03d", *flight_level_);
    return shown(text.data());
}

bool BkTransponder::answers(const Command& command) const {
    return Device::answers(command) || command.number == kCommandFlightLevel;
}

bool BkTransponder::operate(std::string_view control, int amount) {
    if (control == "rotary") {
        rotary_ = std::clamp(amount, 1, kTransponderPositions);
    } else if (control == "ident") {
        ident_.press(now());
    } else if (control == "vfr") {
        vfr_.press(now());
        code_ = vfr_code_;
    } else {
        return turn_digit(code_, control, amount);
    }
    return true;
}

Device::Answer BkTransponder::take_command(const Command& command) {
    switch (command.number) {
        case kCommandFlightLevel:
            flight_level_ = std::clamp(command.value, kLowestFlightLevel, kHighestFlightLevel);
            return done_if(command.value == *flight_level_);
        case kCommandExternalOnOff:
            external_on_off_ = command.value != 0;
            return done_if(command.value == 0 || command.value == 1);
        case kCommandDefault1:
            return done_if(vfr_code_.set_word(command.value));
        case kCommandFlightDisplay:
            dashes_ = command.value != 0;
            return done_if(command.value == 0 || command.value == 1);
        case kCommandBrightness:
            return done_if(brightness_.take(command.value));
        default:
            return Answer::unknown_command;
    }
}

void BkTransponder::fill_report(ReportBytes& report) const {
    report.set_byte(bus::kReportFirstTagByte, 'X');
    report.set_word(kReportCode1, code_.nibbles());
    report.set_byte(bus::kReportSecondTagByte, 'F');
    report.set_byte(kReportIdent, ident() ? 1 : 0);
    report.set_byte(kReportVfr, vfr() ? 1 : 0);
    report.set_byte(kReportRotary, rotary_);
}

void BkTransponder::reported() {
    ident_.told();
    vfr_.told();
}

void BkTransponder::show_state(StateSink& sink) const {
    sink.text("code", code_text());
    sink.text("flightLevel", flight_level_text());
    sink.number("rotary", rotary_);
    sink.flag("ident", ident());
    sink.flag("vfr", vfr());
    sink.number("brightness", brightness_.level(lights()));
}

void BkTransponder::reset() {
    code_ = vfr_code_;
    ident_.forget();
    vfr_.forget();
    flight_level_.reset();
}

}  // namespace bench
