#include "bench/devices/dme_indicators.h"

namespace bench {

namespace {

// Words of a display: BCD digits, and in the highest nibble the place of the point; any other highest nibble is dark.
constexpr int kNoPoint = 0;
constexpr int kPointBehindSecond = 2;
constexpr int kPointBehindFirst = 4;
constexpr int kBlankTime = 0x99;

constexpr int kNightLevel = 0x300;

constexpr int kLowestMhz = 108;
constexpr int kMegahertz = 10;  // the range, 108 to 117
constexpr int kChannels = 20;   // of a MHz
constexpr int kChannelKhz = 50;
constexpr int kKhzPerMhz = 1000;
constexpr int kReportedBaseKhz = 100000;

constexpr int kRotaryByte = 17;
constexpr int kFrequencyLowByte = 19;
constexpr int kFrequencyHighByte = 20;
constexpr int kSettingByte = 24;

int wrapped(int number, int count) {
    const int rest = number % count;
    return rest < 0 ? rest + count : rest;
}

}  // namespace

bool DmeIndicator::powered() const {
    return testing_ || !external_power_ || lights().displays_on();
}

std::string DmeIndicator::display(std::uint16_t word, std::size_t places) const {
    const int point = word >> 12;
    if (!powered() || (point != kNoPoint && point != kPointBehindSecond && point != kPointBehindFirst)) {
        return std::string(places, ' ');
    }
    std::string text;
    for (std::size_t place = 0; place < places; ++place) {
        const int digit = word >> (4 * (places - 1 - place)) & 15;
        text.push_back(digit <= 9 ? static_cast<char>('0' + digit) : '-');
        if ((point == kPointBehindSecond && place == 1) || (point == kPointBehindFirst && place == 0)) {
            text.push_back('.');
        }
    }
    return text;
}

std::string DmeIndicator::speed() const {
    return shows_speed_and_time() ? display(speed_word_, 3) : std::string(3, ' ');
}

std::string DmeIndicator::time() const {
    return shows_speed_and_time() && time_word_ != kBlankTime ? display(time_word_, 2) : std::string(2, ' ');
}

Device::Answer DmeIndicator::take_command(const Command& command) {
    const auto word = static_cast<std::uint16_t>(command.value);
    switch (command.number) {
        case 3:
            speed_word_ = word;
            break;
        case 4:
            distance_word_ = word;
            break;
        case 5:
            time_word_ = word;
            break;
        case 6:
            external_power_ = command.value != 0;
            break;
        case 10:
            testing_ = command.value != 0;
            break;
        case 11:
            return command.value == 0 || command.value == 1 ? Answer::done : Answer::bad_value;
        case 13:
            display_level_ = command.value & bus::kLightLevelMask;
            return command.value >= 0 && command.value <= kNightLevel + kHighestLightLevel ? Answer::done
                                                                                           : Answer::bad_value;
        default:
            return Answer::unknown_command;
    }
    return command.value >= 0 ? Answer::done : Answer::bad_value;
}

bool DmeIndicator::operate(std::string_view control, int amount) {
    if (control != "rotary") {
        return false;
    }
    if (amount >= 1 && amount <= highest_position()) {
        rotary_ = amount;
    }
    return true;
}

void DmeIndicator::fill_report(ReportBytes& report) const {
    report.set_byte(bus::kReportFirstTagByte, 'S');
    report.set_byte(bus::kReportSecondTagByte, 'D');
    report.set_byte(kRotaryByte, rotary_);
}

void DmeIndicator::show_state(StateSink& sink) const {
    sink.text("distance", distance());
    sink.text("speed", speed());
    sink.text("time", time());
    sink.number("rotary", rotary_);
    sink.flag("test", testing_);
    sink.number("displayLevel", display_level_);
}

void DmeIndicator::reset() {
    distance_word_ = speed_word_ = time_word_ = kDark;
    testing_ = false;
}

bool BkDmeIndicator::operate(std::string_view control, int amount) {
    const int mhz = frequency_khz_ / kKhzPerMhz - kLowestMhz;
    const int channel = frequency_khz_ % kKhzPerMhz / kChannelKhz;
    if (control == "coarse") {
        frequency_khz_ += (wrapped(mhz + amount % kMegahertz, kMegahertz) - mhz) * kKhzPerMhz;
    } else if (control == "fine") {
        frequency_khz_ += (wrapped(channel + amount % kChannels, kChannels) - channel) * kChannelKhz;
    } else {
        return DmeIndicator::operate(control, amount);
    }
    return true;
}

void BkDmeIndicator::fill_report(ReportBytes& report) const {
    DmeIndicator::fill_report(report);
    const int reported = frequency_khz_ - kReportedBaseKhz;
    report.set_byte(kFrequencyHighByte, reported >> 8);
    report.set_byte(kFrequencyLowByte, reported);
    report.set_byte(kSettingByte, rotary());
}

void BkDmeIndicator::show_state(StateSink& sink) const {
    DmeIndicator::show_state(sink);
    std::string text = std::to_string(frequency_khz_);
    text.insert(3, 1, '.');
    sink.text("frequency", powered() ? text : std::string(text.size(), ' '));
}

}  // namespace bench
