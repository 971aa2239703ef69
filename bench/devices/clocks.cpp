#include "bench/devices/clocks.h"

#include <array>
#include <chrono>

namespace bench {

namespace {

constexpr int kSecondsPerMinute = 60;
constexpr int kSecondsPerHour = 3600;
constexpr int kSecondsPerDay = 86400;
constexpr int kLongestWord = 65535;
constexpr int kBlankSecond = 32;
constexpr int kDotSecond = 165;
constexpr int kNightLevel = 0x300;
constexpr int kStartCode = 123;
constexpr int kDeliveredStepTimeUs = 1300;
// A calibration move is 32 plus or minus the steps.
constexpr int kCalibrationMiddle = 32;
constexpr int kLongestCalibrationMove = 31;

constexpr std::array<const char*, 12> kMonths = {"JAN", "FEB", "MAR", "APR", "MAY", "JUN",
                                                 "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

std::string two_digits(std::int64_t number) {
    return {static_cast<char>('0' + number / 10 % 10), static_cast<char>('0' + number % 10)};
}

// A time of day as it comes in a frame: a negative value stands for 65535 and its magnitude more.
int seconds_of(int value) {
    return value < 0 ? kLongestWord - value : value;
}

bool is_time_of_day(int seconds) {
    return seconds >= 0 && seconds < kSecondsPerDay;
}

std::chrono::sys_days first_day() {
    return std::chrono::sys_days{std::chrono::year{2000} / 1 / 1};
}

void fill_hours_minutes_seconds(ReportBytes& report, int first_byte, int seconds) {
    report.set_byte(first_byte, seconds / kSecondsPerHour);
    report.set_byte(first_byte + 1, seconds / kSecondsPerMinute % kSecondsPerMinute);
    report.set_byte(first_byte + 2, seconds % kSecondsPerMinute);
}

}  // namespace

std::int64_t RunningSeconds::at(platform::TimePoint now) const {
    return base_ + std::chrono::duration_cast<std::chrono::seconds>(now - since_).count();
}

// --- Boeing clock -------------------------------------------------------------------------------------------------

BoeingClock::BoeingClock(platform::EventLoop& loop, Identity identity)
    : Device(loop, identity), step_time_us_(kDeliveredStepTimeUs) {
    clock_.set(0, now());
}

void BoeingClock::set_up(Device& device, const tables::GaugeRow& row) {
    constexpr int kRealTime = 32;
    static_cast<BoeingClock&>(device).real_seconds_ = (row.GaugePlate1 & kRealTime) != 0;
}

int BoeingClock::second_of_day() const {
    return static_cast<int>(seconds_now() % kSecondsPerDay);
}

BoeingClock::Date BoeingClock::today() const {
    const std::chrono::year_month_day date{first_day() + std::chrono::days{seconds_now() / kSecondsPerDay}};
    return {int{date.year()}, static_cast<int>(unsigned{date.month()}), static_cast<int>(unsigned{date.day()})};
}

int BoeingClock::elapsed_seconds() const {
    switch (elapsed_state_) {
        case ElapsedState::reset:
            return 0;
        case ElapsedState::stopped:
            return stopped_at_;
        case ElapsedState::running:
            break;
    }
    return static_cast<int>(stop_watch_.at(now()));
}

Device::Answer BoeingClock::take_command(const Command& command) {
    switch (command.number) {
        case bus::kCommandSpeed:
            step_time_us_ = command.value > 0 ? command.value : step_time_us_;
            return command.value > 0 ? Answer::done : Answer::bad_value;
        case 4:
            return set_date(command.value);
        case 5:
            return set_time(command.value);
        case 10:
            calibration_ = 0;
            return command.value == 0 ? Answer::done : Answer::bad_value;
        case bus::kCommandMoveUp: {
            const int move = command.value - kCalibrationMiddle;
            if (move < -kLongestCalibrationMove || move > kLongestCalibrationMove) {
                return Answer::bad_value;
            }
            calibration_ += move;
            return Answer::done;
        }
        case bus::kCommandMoveDown:
            calibration_ = command.value;
            return Answer::done;
        case 13:
            display_level_ = command.value & bus::kLightLevelMask;
            return command.value >= 0 && command.value <= kNightLevel + kHighestLightLevel ? Answer::done
                                                                                           : Answer::bad_value;
        case bus::kCommandExtra:
            real_seconds_ = command.value == 1;
            return command.value == 0 || command.value == 1 ? Answer::done : Answer::bad_value;
        case 15:
            return command.value == kStartCode ? Answer::done : Answer::bad_value;
        default:
            return Answer::unknown_command;
    }
}

Device::Answer BoeingClock::set_time(int value) {
    const int seconds = seconds_of(value);
    if (!is_time_of_day(seconds)) {
        return Answer::bad_value;
    }
    const std::int64_t today_began = seconds_now() - second_of_day();
    clock_.set(today_began + seconds, now());
    return Answer::done;
}

// A program that goes by no date sends a word of 0; the clock then keeps its own.
Device::Answer BoeingClock::set_date(int word) {
    if (word == 0) {
        return Answer::done;
    }
    const std::chrono::year_month_day date{std::chrono::year{2000 + (word >> 10)},
                                           std::chrono::month{static_cast<unsigned>(word >> 6 & 15)},
                                           std::chrono::day{static_cast<unsigned>(word & 31)}};
    if (word < 0 || !date.ok()) {
        return Answer::bad_value;
    }
    const std::int64_t days = (std::chrono::sys_days{date} - first_day()).count();
    if (days != seconds_now() / kSecondsPerDay) {
        clock_.set(days * kSecondsPerDay + second_of_day(), now());
    }
    return Answer::done;
}

void BoeingClock::turn_hands(int seconds) {
    const std::int64_t today_began = seconds_now() - second_of_day();
    const int turned = (second_of_day() + seconds % kSecondsPerDay + kSecondsPerDay) % kSecondsPerDay;
    clock_.set(today_began + turned, now());
}

void BoeingClock::press_elapsed() {
    switch (elapsed_state_) {
        case ElapsedState::reset:
            stop_watch_.set(0, now());
            elapsed_state_ = ElapsedState::running;
            break;
        case ElapsedState::running:
            stopped_at_ = elapsed_seconds();
            elapsed_state_ = ElapsedState::stopped;
            break;
        case ElapsedState::stopped:
            elapsed_state_ = ElapsedState::reset;
            break;
    }
}

bool BoeingClock::operate(std::string_view control, int amount) {
    if (control == "elapsed") {
        press_elapsed();
    } else if (control == "setHour") {
        turn_hands(amount % 24 * kSecondsPerHour);
    } else if (control == "setMinute") {
        turn_hands(amount % (24 * kSecondsPerMinute) * kSecondsPerMinute);
    } else {
        return false;
    }
    return true;
}

void BoeingClock::fill_report(ReportBytes& report) const {
    const Date date = today();
    report.set_byte(7, date.year - 2000);
    report.set_byte(8, date.month);
    report.set_byte(9, date.day);
    fill_hours_minutes_seconds(report, 11, second_of_day());
    fill_hours_minutes_seconds(report, 15, elapsed_seconds());
}

void BoeingClock::show_state(StateSink& sink) const {
    const int second = second_of_day();
    const Date date = today();
    const int hour = second / kSecondsPerHour;
    sink.number("hour", hour);
    sink.number("minute", second / kSecondsPerMinute % kSecondsPerMinute);
    sink.number("second", second % kSecondsPerMinute);
    sink.text("date", shown(two_digits(date.day) + ' ' + kMonths[static_cast<std::size_t>(date.month - 1)] + ' ' +
                            two_digits(date.year)));
    const int elapsed = elapsed_seconds();
    sink.text("elapsed", shown(std::to_string(elapsed / kSecondsPerHour) + ':' +
                               two_digits(elapsed / kSecondsPerMinute % kSecondsPerMinute) + ':' +
                               two_digits(elapsed % kSecondsPerMinute)));
    sink.flag("elapsedRunning", elapsed_state_ == ElapsedState::running);
    sink.text("secondHand", real_seconds_ ? "time" : "elapsed");
    sink.number("displayLevel", display_level_);
}

void BoeingClock::reset() {
    elapsed_state_ = ElapsedState::reset;
}

// --- Cessna clock -------------------------------------------------------------------------------------------------

CessnaClock::CessnaClock(platform::EventLoop& loop, Identity identity) : Device(loop, identity) {
    universal_.set(0, now());
    flight_.set(0, now());
}

int CessnaClock::universal_second_of_day() const {
    return static_cast<int>(universal_.at(now()) % kSecondsPerDay);
}

int CessnaClock::local_hour() const {
    return (universal_second_of_day() / kSecondsPerHour + local_offset_hours_) % 24;
}

int CessnaClock::flight_seconds() const {
    return static_cast<int>(flight_.at(now()) % kSecondsPerDay);
}

Device::Answer CessnaClock::set_local_hour(int hour) {
    if (hour < 0 || hour > 23) {
        return Answer::bad_value;
    }
    local_offset_hours_ = (hour - universal_second_of_day() / kSecondsPerHour + 24) % 24;
    return Answer::done;
}

Device::Answer CessnaClock::take_command(const Command& command) {
    const int seconds = seconds_of(command.value);
    switch (command.number) {
        case 4:
            return set_local_hour(command.value);
        case 5:
        case 6:
            if (!is_time_of_day(seconds)) {
                return Answer::bad_value;
            }
            (command.number == 5 ? universal_ : flight_).set(seconds, now());
            return Answer::done;
        case 9:
            if (command.value < 0 || command.value >> 8 > 99 || (command.value & 255) > 9) {
                return Answer::bad_value;
            }
            volts_tenths_ = (command.value >> 8) * 10 + (command.value & 255);
            return Answer::done;
        case 10:
            sounder_ = command.value != 0;
            return Answer::done;
        case 11:
            celsius_ = command.value;
            return Answer::done;
        case 12:
            fahrenheit_ = command.value;
            return Answer::done;
        case 13:
            if (command.value != 0 && command.value != kDotSecond && command.value != kBlankSecond) {
                return Answer::bad_value;
            }
            blinker_ = command.value == kDotSecond ? '.' : command.value == kBlankSecond ? ' ' : ':';
            return Answer::done;
        default:
            return Answer::unknown_command;
    }
}

bool CessnaClock::operate(std::string_view control, int /*amount*/) {
    if (control == "upper") {
        upper_ = static_cast<Upper>((static_cast<int>(upper_) + 1) % 3);
    } else if (control == "lower") {
        lower_ = static_cast<Lower>((static_cast<int>(lower_) + 1) % 3);
    } else {
        return false;
    }
    return true;
}

void CessnaClock::fill_report(ReportBytes& report) const {
    report.set_byte(7, local_hour());
    fill_hours_minutes_seconds(report, 11, universal_second_of_day());
    fill_hours_minutes_seconds(report, 15, flight_seconds());
}

std::string CessnaClock::upper_text() const {
    switch (upper_) {
        case Upper::volts:
            return std::to_string(volts_tenths_ / 10) + '.' + std::to_string(volts_tenths_ % 10) + " V";
        case Upper::celsius:
            return std::to_string(celsius_) + " C";
        case Upper::fahrenheit:
            break;
    }
    return std::to_string(fahrenheit_) + " F";
}

// The sign between minutes and seconds is the blinker: as set, it changes with a colon every second.
std::string CessnaClock::lower_text() const {
    const int universal = universal_second_of_day();
    int seconds = universal;
    if (lower_ == Lower::local) {
        seconds = local_hour() * kSecondsPerHour + universal % kSecondsPerHour;
    } else if (lower_ == Lower::flight) {
        seconds = flight_seconds();
    }
    const char sign = seconds % 2 == 0 ? blinker_ : ':';
    return two_digits(seconds / kSecondsPerHour) + ':' + two_digits(seconds / kSecondsPerMinute % kSecondsPerMinute) +
           sign + two_digits(seconds % kSecondsPerMinute);
}

void CessnaClock::show_state(StateSink& sink) const {
    constexpr std::array<const char*, 3> kUpperNames = {"V", "C", "F"};
    constexpr std::array<const char*, 3> kLowerNames = {"LT", "UT", "FT"};
    sink.text("upper", shown(upper_text()));
    sink.text("lower", shown(lower_text()));
    sink.text("upperMode", kUpperNames[static_cast<std::size_t>(upper_)]);
    sink.text("lowerMode", kLowerNames[static_cast<std::size_t>(lower_)]);
    sink.flag("sounder", sounder_);
}

void CessnaClock::reset() {
    upper_ = Upper::volts;
    lower_ = Lower::local;
    flight_.set(0, now());
}

}  // namespace bench
