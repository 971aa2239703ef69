#include "bench/devices/altimeter.h"

#include <algorithm>

namespace bench {

namespace {

constexpr double kLowestFeet = -5000;
constexpr double kHighestFeet = 50000;
constexpr double kFeetPerSecond = 3000;

constexpr int kStandardInches = 2992;
constexpr int kStandardMillibar = 1013;
constexpr int kMostClicks = 127;
constexpr int kAllDigits = 5;
constexpr int kFewDigits = 3;

constexpr int kCommandAltitude = 4;
constexpr int kCommandUnit = 5;
constexpr int kCommandPressure = 12;
constexpr int kCommandDigits = 14;
// Bits of the unit command.
constexpr int kUnitInches = 1;
constexpr int kKnobViaSimulator = 16;

constexpr int kReportUnit = 4;
constexpr int kReportPressure = 7;
constexpr int kReportKnobMode = 10;
constexpr int kReportClicks = 12;
constexpr int kReportMoving = 16;
constexpr int kNoClicks = 128;

}  // namespace

Altimeter::Altimeter(platform::EventLoop& loop, Identity identity)
    : Device(loop, identity),
      hands_(Motor::Travel::between_ends, kLowestFeet, kHighestFeet, kFeetPerSecond),
      pressure_(identity.model == kInches ? kStandardInches : kStandardMillibar) {}

void Altimeter::set_up(Device& device, const tables::GaugeRow& row) {
    auto& altimeter = static_cast<Altimeter&>(device);
    altimeter.digits_ = row.GaugePlate1 == 1 ? kFewDigits : kAllDigits;
    altimeter.choose_unit((row.GaugeModel == kInches ? kUnitInches : 0) |
                          (row.GaugeSeqNr2 != 0 ? kKnobViaSimulator : 0));
}

void Altimeter::choose_unit(int bits) {
    const bool inches = (bits & kUnitInches) != 0;
    if (inches != in_inches()) {
        set_model(inches ? kInches : kInches + 1);
        pressure_ = inches ? kStandardInches : kStandardMillibar;
    }
    knob_mode_ = (bits & kKnobViaSimulator) != 0;
}

bool Altimeter::operate(std::string_view control, int amount) {
    if (control != "pressure") {
        return false;
    }
    if (knob_mode_) {
        clicks_ = std::clamp(clicks_ + amount, -kMostClicks, kMostClicks);
    } else {
        pressure_ = std::clamp(pressure_ + amount, 0, 9999);
    }
    return true;
}

Device::Answer Altimeter::take_command(const Command& command) {
    switch (command.number) {
        case kCommandAltitude:
            hands_.move_to(command.value, now());
            return hands_.target() == command.value ? Answer::done : Answer::bad_value;
        case kCommandPressure:
            pressure_ = std::max(command.value, 0);
            return command.value >= 0 ? Answer::done : Answer::bad_value;
        case kCommandUnit:
            choose_unit(command.value);
            return Answer::done;
        case kCommandDigits:
            // With hands it is the brightness of the window; neither of its values is one of these.
            if (command.value == 0 || command.value == 1) {
                digits_ = command.value == 1 ? kFewDigits : kAllDigits;
            }
            return Answer::done;
        case bus::kCommandSpeed:
        case 6:   // calibration: the delta, the needle's steps, storing it
        case 9:   // settings are done
        case 10:  // brightness by day and night
        case 11:
        case 13:
            return Answer::done;
        default:
            return Answer::unknown_command;
    }
}

void Altimeter::fill_report(ReportBytes& report) const {
    report.set_byte(kReportUnit, identity().model);
    report.set_byte(bus::kReportFirstTagByte, 'P');
    report.set_word(kReportPressure, pressure_);
    report.set_byte(bus::kReportSecondTagByte, 'P');
    report.set_byte(kReportKnobMode, knob_mode_ ? 1 : 0);
    report.set_byte(kReportClicks, kNoClicks + clicks_);
    report.set_byte(kReportMoving, hands_.moving(now()) ? 1 : 0);
}

void Altimeter::show_state(StateSink& sink) const {
    sink.number("altitude", altitude_feet());
    sink.number("pressure", pressure());
    sink.text("pressureUnit", in_inches() ? "inHg" : "mbar");
    sink.flag("knobMode", knob_mode_);
    sink.number("digits", digits_);
}

// Pressure, unit and knob mode are stored in the unit.
void Altimeter::reset() {
    hands_.place(0);
    clicks_ = 0;
}

}  // namespace bench
