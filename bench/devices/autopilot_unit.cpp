#include "bench/devices/autopilot_unit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace bench {

namespace {

constexpr int kLateralModes = AutopilotUnit::hdg | AutopilotUnit::nav | AutopilotUnit::apr | AutopilotUnit::rev;
constexpr int kLowestAltitude = -1000;
constexpr int kHighestAltitude = 32000;
constexpr int kHighestVerticalSpeed = 9900;
constexpr int kVerticalSpeedPress = 100;
constexpr int kPerHundred = 100;

constexpr int kLowestHpa = 900;
constexpr int kHighestHpa = 1100;
constexpr int kLowestInHg = 2650;
constexpr int kHighestInHg = 3250;
constexpr double kHpaPerHundredthInHg = 0.3386;
constexpr int kCoarseClicks = 10;  // of the pressure

// It counts as being operated for so long and until its report has gone out so often.
constexpr std::chrono::milliseconds kOperatedTime{1500};
constexpr int kReportsOfOperation = 2;
constexpr std::chrono::seconds kDisplayTime{5};

// Word of command 11: low byte, bit 4 begins an alert of as many seconds as bits 0..3 say, one at least; high byte, the
// lamps of the trim.
constexpr int kAlertBit = 16;
constexpr int kAlertSecondsMask = 15;
constexpr int kTrimUp = 0x1000;
constexpr int kTrimLamp = 0x2000;
constexpr int kTrimDown = 0x4000;
constexpr int kKnownLamps = 31 | kTrimUp | kTrimLamp | kTrimDown;

constexpr int kNightLevel = 0x300;
constexpr int kSettingInchHg = 1;

}  // namespace

void AutopilotUnit::set_up(Device& device, const tables::GaugeRow& row) {
    constexpr int kHectopascal = 1;
    static_cast<AutopilotUnit&>(device).pressure_unit_ =
        (row.GaugePlate1 & kHectopascal) != 0 ? PressureUnit::hectopascal : PressureUnit::inch_hg;
}

double AutopilotUnit::pressure() const {
    return pressure_unit_ == PressureUnit::inch_hg ? pressure_inhg_hundredths_ / 100.0 : pressure_hpa_;
}

bool AutopilotUnit::operated() const {
    return now() < operated_until_ || reports_due_ > 0;
}

AutopilotUnit::Display AutopilotUnit::display() const {
    return now() < display_until_ ? display_ : Display::altitude;
}

std::string AutopilotUnit::display_text() const {
    std::string text;
    switch (display()) {
        case Display::altitude:
            text = std::to_string(altitude_feet_);
            break;
        case Display::vertical_speed:
            text = (vertical_speed_ > 0 ? "+" : "") + std::to_string(vertical_speed_);
            break;
        case Display::pressure:
            text = std::to_string(pressure_unit_ == PressureUnit::inch_hg ? pressure_inhg_hundredths_ : pressure_hpa_);
            if (pressure_unit_ == PressureUnit::inch_hg) {
                text.insert(2, 1, '.');
            }
            break;
    }
    return shown(text);
}

void AutopilotUnit::begin_operating() {
    operated_until_ = now() + kOperatedTime;
    reports_due_ = kReportsOfOperation;
}

void AutopilotUnit::show_for_a_while(Display display) {
    display_ = display;
    display_until_ = now() + kDisplayTime;
}

Device::Answer AutopilotUnit::take_command(const Command& command) {
    switch (command.number) {
        case bus::kCommandRecalibrate:
            reset();
            return command.value == 0 ? Answer::done : Answer::bad_value;
        case 3:
            return take_altitude(command.value);
        case 4:
            return take_vertical_speed(command.value);
        case 5:
            return take_modes(command.value);
        case 9:
            pressure_unit_ = command.value == kSettingInchHg ? PressureUnit::inch_hg : PressureUnit::hectopascal;
            return command.value == 0 || command.value == kSettingInchHg ? Answer::done : Answer::bad_value;
        case 11:
            return take_lamps(command.value);
        case 12:
            pressure_click_ = std::max(1, command.value);
            return command.value > 0 ? Answer::done : Answer::bad_value;
        case 13:
            display_level_ = command.value & bus::kLightLevelMask;
            return command.value >= 0 && command.value <= kNightLevel + kHighestLightLevel ? Answer::done
                                                                                           : Answer::bad_value;
        case 15:
            if (command.value < 0) {
                return Answer::bad_value;
            }
            coarse_feet_ = command.value >> 8;
            fine_feet_ = (command.value & 255) * 10;
            return Answer::done;
        default:
            return Answer::unknown_command;
    }
}

Device::Answer AutopilotUnit::take_altitude(int feet) {
    if (!operated()) {
        altitude_feet_ = std::clamp(feet, kLowestAltitude, kHighestAltitude);
    }
    return feet == std::clamp(feet, kLowestAltitude, kHighestAltitude) ? Answer::done : Answer::bad_value;
}

Device::Answer AutopilotUnit::take_vertical_speed(int feet_per_minute) {
    if (!operated()) {
        vertical_speed_ = feet_per_minute;
    }
    return std::abs(feet_per_minute) <= 32768 ? Answer::done : Answer::bad_value;
}

// The word has hundreds of ft/min only; a vertical speed that fits them stays exact.
Device::Answer AutopilotUnit::take_modes(int word) {
    if (operated()) {
        return Answer::done;
    }
    const int magnitude = std::abs(word);
    modes_ = magnitude & 255;
    const int word_speed = (magnitude >> 8) * kPerHundred * (word < 0 ? -1 : 1);
    if (std::abs(word_speed - vertical_speed_) > kPerHundred / 2) {
        vertical_speed_ = word_speed;
    }
    return Answer::done;
}

Device::Answer AutopilotUnit::take_lamps(int word) {
    if (word < 0) {
        return Answer::bad_value;
    }
    lamps_ = word & (kTrimUp | kTrimLamp | kTrimDown);
    if ((word & kAlertBit) != 0) {
        alert_until_ = now() + std::chrono::seconds(std::max(1, word & kAlertSecondsMask));
    }
    return (word & ~kKnownLamps) == 0 ? Answer::done : Answer::bad_value;
}

bool AutopilotUnit::operate(std::string_view control, int amount) {
    if (control == "coarse" || control == "fine") {
        turn(amount, control == "coarse");
    } else if (!press(control)) {
        return false;
    }
    begin_operating();
    return true;
}

bool AutopilotUnit::press(std::string_view button) {
    if (button == "ap") {
        press_ap();
    } else if (button == "hdg") {
        press_lateral(hdg, nav | apr | rev);
    } else if (button == "nav") {
        press_lateral(nav, hdg | apr | rev);
    } else if (button == "apr") {
        press_lateral(apr, hdg | nav | rev);
    } else if (button == "rev") {
        press_lateral(rev | apr, hdg | nav);
    } else if (button == "alt") {
        modes_ ^= alt;
        modes_ = lit(alt) ? modes_ & ~vertical_speed_hold : modes_ | vertical_speed_hold;
    } else if (button == "arm") {
        // Climbs or descends at the vertical speed to the target altitude and holds it.
        modes_ = (modes_ | alt) & ~vertical_speed_hold;
    } else if (button == "up") {
        change_vertical_speed(kVerticalSpeedPress);
    } else if (button == "down") {
        change_vertical_speed(-kVerticalSpeedPress);
    } else if (button == "baro") {
        if (display() == Display::pressure) {
            display_until_ = now();
        } else {
            show_for_a_while(Display::pressure);
        }
    } else {
        return false;
    }
    return true;
}

// It comes up levelling the wings and holding the vertical speed; switched off, all modes end.
void AutopilotUnit::press_ap() {
    if (lit(ap)) {
        modes_ = 0;
        return;
    }
    modes_ |= ap;
    if ((modes_ & kLateralModes) == 0) {
        modes_ |= rol;
    }
    if (!lit(alt)) {
        modes_ |= vertical_speed_hold;
    }
}

void AutopilotUnit::press_lateral(int mode, int others) {
    const bool on = (modes_ & (mode | others)) == mode;
    modes_ &= ~(mode | others | rol);
    if (!on) {
        modes_ |= mode;
    } else if (lit(ap)) {
        modes_ |= rol;
    }
}

void AutopilotUnit::change_vertical_speed(int feet_per_minute) {
    vertical_speed_ = std::clamp(vertical_speed_ + feet_per_minute, -kHighestVerticalSpeed, kHighestVerticalSpeed);
    show_for_a_while(Display::vertical_speed);
}

void AutopilotUnit::turn(int clicks, bool coarse) {
    const int most = 1000;  // clicks beyond every range
    clicks = std::clamp(clicks, -most, most);
    if (display() == Display::pressure) {
        const int change = clicks * pressure_click_ * (coarse ? kCoarseClicks : 1);
        if (pressure_unit_ == PressureUnit::inch_hg) {
            pressure_inhg_hundredths_ = std::clamp(pressure_inhg_hundredths_ + change, kLowestInHg, kHighestInHg);
            pressure_hpa_ = static_cast<int>(std::lround(pressure_inhg_hundredths_ * kHpaPerHundredthInHg));
        } else {
            pressure_hpa_ = std::clamp(pressure_hpa_ + change, kLowestHpa, kHighestHpa);
            pressure_inhg_hundredths_ = static_cast<int>(std::lround(pressure_hpa_ / kHpaPerHundredthInHg));
        }
        show_for_a_while(Display::pressure);
        return;
    }
    altitude_feet_ =
        std::clamp(altitude_feet_ + clicks * (coarse ? coarse_feet_ : fine_feet_), kLowestAltitude, kHighestAltitude);
    display_until_ = now();
}

void AutopilotUnit::fill_report(ReportBytes& report) const {
    report.set_byte(bus::kReportFirstTagByte, 'A');
    report.set_byte(bus::kReportSecondTagByte, 'V');
    report.set_word(7, altitude_feet_);
    report.set_word(10, vertical_speed_);
    report.set_word(13, alert() ? 1 : 0);
    report.set_word(19, pressure_unit_ == PressureUnit::inch_hg ? pressure_inhg_hundredths_ : pressure_hpa_);
    report.set_byte(22, modes_);
    report.set_byte(23, pressure_unit_ == PressureUnit::inch_hg ? 0 : 1);
    report.set_byte(24, operated() ? 1 : 0);
}

void AutopilotUnit::show_state(StateSink& sink) const {
    sink.number("altitude", altitude_feet_);
    sink.number("verticalSpeed", vertical_speed_);
    sink.number("pressure", pressure());
    sink.text("pressureUnit", pressure_unit_ == PressureUnit::inch_hg ? "inHg" : "mbar");
    constexpr std::array<std::pair<const char*, Mode>, 7> kLamps = {
        {{"ap", ap}, {"hdg", hdg}, {"rol", rol}, {"nav", nav}, {"apr", apr}, {"rev", rev}, {"alt", alt}}};
    for (const auto& [name, mode] : kLamps) {
        sink.flag(name, lit(mode));
    }
    sink.flag("gs", lit(apr) && !lit(rev));  // an approach that is not on the back course has a glide slope
    sink.flag("vs", lit(vertical_speed_hold));
    sink.flag("alert", alert());
    sink.flag("trimUp", (lamps_ & kTrimUp) != 0);
    sink.flag("trimDown", (lamps_ & kTrimDown) != 0);
    sink.flag("operated", operated());
    sink.text("display", display_text());
    constexpr std::array<const char*, 3> kShown = {"ALT", "VS", "BARO"};
    sink.text("displayShows", kShown[static_cast<std::size_t>(display())]);
}

// The pressure setting and how it is set are stored in the unit; modes and targets are not.
void AutopilotUnit::reset() {
    modes_ = 0;
    altitude_feet_ = 0;
    vertical_speed_ = 0;
    lamps_ = 0;
    reports_due_ = 0;
    display_until_ = alert_until_ = operated_until_ = now();
}

}  // namespace bench
