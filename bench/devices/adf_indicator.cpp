#include "bench/devices/adf_indicator.h"

#include "bench/devices/vor_indicators.h"

namespace bench {

namespace {

constexpr double kStepsPerTurn = 4320;
constexpr double kStepsPerDegree = 12;
constexpr double kStepsPerSecond = 1440;

constexpr int kCommandNeedle = 5;
constexpr int kReportCard = 7;

}  // namespace

AdfIndicator::AdfIndicator(platform::EventLoop& loop, Identity identity)
    : Device(loop, identity), needle_(Motor::Travel::round, 0, kStepsPerTurn, kStepsPerSecond) {}

double AdfIndicator::needle_degrees() const {
    return needle_.position(now()) / kStepsPerDegree;
}

bool AdfIndicator::operate(std::string_view control, int amount) {
    if (control != "card") {
        return false;
    }
    card_degrees_ = turned_course(card_degrees_, amount);
    return true;
}

Device::Answer AdfIndicator::take_command(const Command& command) {
    switch (command.number) {
        case kCommandNeedle:
            needle_.move_to(command.value, now());
            return command.value >= 0 && command.value < static_cast<int>(kStepsPerTurn) ? Answer::done
                                                                                         : Answer::bad_value;
        case bus::kCommandRecalibrate:
        case bus::kCommandSpeed:
        case 6:  // trim of the needle, storing it, calibrating the card
        case 9:
        case 11:
            return Answer::done;
        default:
            return Answer::unknown_command;
    }
}

void AdfIndicator::fill_report(ReportBytes& report) const {
    report.set_byte(bus::kReportFirstTagByte, 'C');
    report.set_word(kReportCard, disk_position(card_degrees_));
    report.set_byte(bus::kReportSecondTagByte, 'A');
}

void AdfIndicator::show_state(StateSink& sink) const {
    sink.number("needle", needle_degrees());
    sink.number("card", card_degrees_);
}

}  // namespace bench
