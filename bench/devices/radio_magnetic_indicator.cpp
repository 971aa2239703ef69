#include "bench/devices/radio_magnetic_indicator.h"

namespace bench {

namespace {

constexpr int kModelWithDualNeedles = 3;

constexpr double kCardSteps = 4608;
constexpr double kNeedleSteps = 4320;
constexpr double kFullTurn = 360;
constexpr double kTurnsPerSecond = 0.3;
constexpr double kParkedAt = kNeedleSteps / 4;

constexpr int kCommandCard = 5;
constexpr int kCommandBearing = 9;
constexpr int kCommandSettings = 13;
constexpr int kShowDmeInAdfMode = 1024;
constexpr int kHideDmeInAdfMode = 1280;
constexpr int kCommandFlag = 14;
constexpr int kCommandDme = 15;

// Bits of a bearing.
constexpr int kPlaceBit1 = 0x2000;
constexpr int kPlaceBit2 = 0x4000;
constexpr int kBearingMask = 0x1FFF;
// Bits of a distance.
constexpr int kPointBit = 0x2000;
constexpr int kSecondDisplayBit = 0x4000;
constexpr int kDigitsMask = 0x0FFF;

constexpr int kReportSource1 = 7;
constexpr int kReportSource2 = 8;

}  // namespace

RadioMagneticIndicator::RadioMagneticIndicator(platform::EventLoop& loop, Identity identity)
    : Device(loop, identity),
      card_(Motor::Travel::round, 0, kCardSteps, kCardSteps * kTurnsPerSecond),
      needles_{Needle{Motor(Motor::Travel::round, 0, kNeedleSteps, kNeedleSteps * kTurnsPerSecond)},
               Needle{Motor(Motor::Travel::round, 0, kNeedleSteps, kNeedleSteps * kTurnsPerSecond)}} {
    RadioMagneticIndicator::reset();
}

void RadioMagneticIndicator::set_up(Device& device, const tables::GaugeRow& row) {
    constexpr int kHasDme = 1;
    constexpr int kShowsInAdfMode = 2;
    auto& indicator = static_cast<RadioMagneticIndicator&>(device);
    indicator.has_dme_ = (row.GaugePlate1 & kHasDme) != 0;
    indicator.shows_dme_in_adf_mode_ = (row.GaugePlate1 & kShowsInAdfMode) != 0;
}

double RadioMagneticIndicator::card_degrees() const {
    return card_.position(now()) / kCardSteps * kFullTurn;
}

double RadioMagneticIndicator::needle_degrees(int needle) const {
    return needles_[index(needle)].motor.position(now()) / kNeedleSteps * kFullTurn;
}

int RadioMagneticIndicator::bearing(int needle) const {
    const Needle& which = needles_[index(needle)];
    return which.source == Source::vor ? which.vor_bearing : which.adf_bearing;
}

void RadioMagneticIndicator::point(int needle) {
    needles_[index(needle)].motor.move_to(parked(needle) ? kParkedAt : bearing(needle), now());
}

std::string RadioMagneticIndicator::dme_text(int display) const {
    const bool on_vor = source(display) == Source::vor;
    if (!has_dme_) {
        return {};
    }
    if (!on_vor && !shows_dme_in_adf_mode_) {
        return "   ";
    }
    const int word = dme_words_[index(display)];
    std::string text;
    for (int shift = 8; shift >= 0; shift -= 4) {
        const int digit = (word >> shift) & 15;
        text.push_back(digit > 9 ? '-' : static_cast<char>('0' + digit));
        if (shift == 4 && (word & kPointBit) != 0) {
            text.push_back('.');
        }
    }
    return shown(text);
}

bool RadioMagneticIndicator::operate(std::string_view control, int amount) {
    if ((control != "source1" && control != "source2") || amount < 0 || amount > 1) {
        return false;
    }
    const int needle = control == "source1" ? 1 : 2;
    needles_[index(needle)].source = amount == 0 ? Source::vor : Source::adf;
    point(needle);
    return true;
}

Device::Answer RadioMagneticIndicator::take_bearing(int value) {
    const int place = value & (kPlaceBit1 | kPlaceBit2);
    const int bearing = value & kBearingMask;
    Needle& first = needles_[0];
    Needle& second = needles_[1];
    if (identity().model == kModelWithDualNeedles) {
        Needle& needle = (place & kPlaceBit2) != 0 ? second : first;
        ((place & kPlaceBit1) != 0 ? needle.adf_bearing : needle.vor_bearing) = bearing;
    } else if (place == kPlaceBit2) {
        first.vor_bearing = bearing;
    } else if (place == kPlaceBit1) {
        second.vor_bearing = bearing;
    } else {
        first.adf_bearing = second.adf_bearing = bearing;
    }
    point(1);
    point(2);
    return value >= 0 ? Answer::done : Answer::bad_value;
}

Device::Answer RadioMagneticIndicator::take_distance(int value) {
    dme_words_[(value & kSecondDisplayBit) != 0 ? 1 : 0] = value & (kDigitsMask | kPointBit);
    return Answer::done;
}

Device::Answer RadioMagneticIndicator::take_command(const Command& command) {
    switch (command.number) {
        case kCommandCard:
            card_.move_to(command.value, now());
            return command.value >= 0 && command.value <= static_cast<int>(kCardSteps) ? Answer::done
                                                                                       : Answer::bad_value;
        case kCommandBearing:
            return take_bearing(command.value);
        case kCommandFlag:
            flag_shows_ = command.value != 0;
            return Answer::done;
        case kCommandDme:
            return take_distance(command.value);
        case kCommandSettings:
            if (command.value == kShowDmeInAdfMode || command.value == kHideDmeInAdfMode) {
                shows_dme_in_adf_mode_ = command.value == kShowDmeInAdfMode;
            }
            return Answer::done;
        case bus::kCommandRecalibrate:
        case bus::kCommandSpeed:
        case 4:  // speed of the needles, their test and trim, calibration
        case 6:
        case 10:
        case 11:
        case 12:
            return Answer::done;
        default:
            return Answer::unknown_command;
    }
}

void RadioMagneticIndicator::fill_report(ReportBytes& report) const {
    report.set_byte(kReportSource1, source(1) == Source::adf ? 1 : 0);
    report.set_byte(kReportSource2, source(2) == Source::adf ? 1 : 0);
}

void RadioMagneticIndicator::show_state(StateSink& sink) const {
    sink.number("card", card_degrees());
    sink.number("needle1", needle_degrees(1));
    sink.number("needle2", needle_degrees(2));
    sink.flag("parked1", parked(1));
    sink.flag("parked2", parked(2));
    sink.text("source1", source(1) == Source::vor ? "VOR" : "ADF");
    sink.text("source2", source(2) == Source::vor ? "VOR" : "ADF");
    sink.flag("inop", flag_shows_);
    sink.text("dme1", dme_text(1));
    sink.text("dme2", dme_text(2));
}

void RadioMagneticIndicator::reset() {
    card_.place(0);
    for (Needle& needle : needles_) {
        needle.vor_bearing = needle.adf_bearing = kParkedBearing;
        needle.motor.place(kParkedAt);
    }
    dme_words_.fill(0x0AAA);
    flag_shows_ = true;
}

}  // namespace bench
