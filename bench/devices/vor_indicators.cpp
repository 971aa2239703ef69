#include "bench/devices/vor_indicators.h"

#include <cmath>

namespace bench {

namespace {

constexpr double kCentre = 472;
constexpr double kFullScale = 300;  // steps from the centre
constexpr double kHighestPosition = 2 * kCentre;
constexpr double kStepsPerSecond = 600;

constexpr int kCommandLoc = 5;
constexpr int kCommandSlope = 6;
constexpr int kCommandFlags = 12;
constexpr int kToFromMask = 3;
constexpr int kSlopeBit = 4;

constexpr int kReportDisk = 7;
constexpr int kDiskSteps = 1084;
constexpr int kFullTurn = 360;

}  // namespace

int disk_position(int course_degrees) {
    return static_cast<int>(std::lround(static_cast<double>(kFullTurn - course_degrees) * kDiskSteps / kFullTurn));
}

int turned_course(int course_degrees, int clicks) {
    return ((course_degrees + clicks) % kFullTurn + kFullTurn) % kFullTurn;
}

VorIndicator::VorIndicator(platform::EventLoop& loop, Identity identity)
    : Device(loop, identity), loc_(Motor::Travel::between_ends, 0, kHighestPosition, kStepsPerSecond), slope_(loc_) {
    VorIndicator::reset();
}

double VorIndicator::loc() const {
    return (loc_.position(now()) - kCentre) / kFullScale;
}

double VorIndicator::slope() const {
    return (slope_.position(now()) - kCentre) / kFullScale;
}

bool VorIndicator::operate(std::string_view control, int amount) {
    if (control != "obs") {
        return false;
    }
    course_degrees_ = turned_course(course_degrees_, amount);
    return true;
}

Device::Answer VorIndicator::take_command(const Command& command) {
    switch (command.number) {
        case kCommandLoc:
            loc_.move_to(command.value, now());
            return loc_.target() == command.value ? Answer::done : Answer::bad_value;
        case kCommandSlope:
            if (!has_glide_slope()) {
                return Answer::unknown_command;
            }
            slope_.move_to(command.value, now());
            return slope_.target() == command.value ? Answer::done : Answer::bad_value;
        case kCommandFlags: {
            const int flags = command.value - 1;
            to_from_ = flags & kToFromMask;
            slope_valid_ = has_glide_slope() && (flags & kSlopeBit) != 0;
            return flags >= 0 && to_from_ != kToFromMask ? Answer::done : Answer::bad_value;
        }
        case bus::kCommandRecalibrate:
        case bus::kCommandSpeed:
        case 4:  // centring the needles, calibrating the compass and the disk, the disk's speed
        case 9:
        case 10:
        case 11:
        case 13:
        case 14:
            return Answer::done;
        default:
            return Answer::unknown_command;
    }
}

void VorIndicator::fill_report(ReportBytes& report) const {
    report.set_byte(bus::kReportFirstTagByte, 'C');
    report.set_word(kReportDisk, disk_position(course_degrees_));
    report.set_byte(bus::kReportSecondTagByte, 'A');
}

void VorIndicator::show_state(StateSink& sink) const {
    sink.number("loc", loc());
    sink.number("slope", has_glide_slope() ? slope() : 0);
    sink.number("toFrom", to_from_);
    sink.flag("slopeValid", slope_valid_);
    sink.number("course", course_degrees_);
}

void VorIndicator::reset() {
    loc_.place(kCentre);
    slope_.place(kCentre);
    to_from_ = 0;
    slope_valid_ = false;
}

}  // namespace bench
