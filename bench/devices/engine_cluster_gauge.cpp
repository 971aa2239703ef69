#include "bench/devices/engine_cluster_gauge.h"

#include <algorithm>

#include "bench/devices/needle_gauges.h"
#include "run/engine_cluster_gauge.h"

namespace bench {

namespace {

// Report bytes behind the common ones.
constexpr char kClusterTag = 'E';
constexpr int kTagByte = 6;
constexpr int kFirstPositionByte = 7;  // 7, 8 to 21, 22
constexpr int kLightsByte = 23;        // the level, plus 64 lit, plus 128 power

}  // namespace

EngineClusterGauge::EngineClusterGauge(platform::EventLoop& loop, Identity identity)
    : Device(loop, identity), needles_{Stepper(kDefaultStepTimeUs), Stepper(kDefaultStepTimeUs),
                                       Stepper(kDefaultStepTimeUs), Stepper(kDefaultStepTimeUs),
                                       Stepper(kDefaultStepTimeUs), Stepper(kDefaultStepTimeUs),
                                       Stepper(kDefaultStepTimeUs), Stepper(kDefaultStepTimeUs)} {}

double EngineClusterGauge::target_steps(int needle) const {
    return static_cast<double>(stepper(needle).target()) / kQuartersPerStep;
}

double EngineClusterGauge::pointer_steps(int needle) const {
    return (stepper(needle).position(now()) + stepper(needle).lost_steps(now())) / kQuartersPerStep;
}

bool EngineClusterGauge::calibrating() const {
    return std::any_of(needles_.begin(), needles_.end(),
                       [this](const Stepper& needle) { return needle.finding_zero(now()); });
}

bool EngineClusterGauge::knock(int needle, int steps) {
    if (needle < 1 || needle > kNeedleCount) {
        return false;
    }
    stepper(needle).lose_steps(steps * kQuartersPerStep);
    return true;
}

Device::Answer EngineClusterGauge::take_command(const Command& command) {
    if (command.number == bus::kCommandRecalibrate) {
        find_zero();
        return Answer::done;
    }
    if (command.number == bus::kCommandSpeed) {
        return set_speed(command.value);
    }
    const auto& commands = run::kClusterGaugeCommands;
    const auto found = std::find(commands.begin(), commands.end(), command.number);
    return found == commands.end() ? Answer::unknown_command
                                   : move_needle(static_cast<int>(found - commands.begin()) + 1, command.value);
}

Device::Answer EngineClusterGauge::set_speed(int value) {
    if (value <= 0) {
        return Answer::bad_value;
    }
    for (Stepper& needle : needles_) {
        needle.set_step_time(std::max(value, kShortestStepTimeUs), now());
    }
    return Answer::done;
}

Device::Answer EngineClusterGauge::move_needle(int needle, int value) {
    const int steps = std::clamp(value, 0, kStepsPerTurn - 1);
    stepper(needle).move_to(steps * kQuartersPerStep, now());
    return steps == value ? Answer::done : Answer::bad_value;
}

void EngineClusterGauge::find_zero() {
    for (Stepper& needle : needles_) {
        needle.find_zero(now());
    }
}

void EngineClusterGauge::fill_report(ReportBytes& report) const {
    report.set_byte(kTagByte, kClusterTag);
    for (int needle = 1; needle <= kNeedleCount; ++needle) {
        report.set_word(kFirstPositionByte + (needle - 1) * 2, static_cast<int>(stepper(needle).position(now())));
    }
    report.set_byte(kLightsByte, lights().level() | (lights().lit() ? bus::kLightOn : 0) |
                                     (lights().displays_on() ? bus::kLightPower : 0));
}

void EngineClusterGauge::show_state(StateSink& sink) const {
    sink.number("fuelLeft", pointer_steps(fuel_left));
    sink.number("fuelRight", pointer_steps(fuel_right));
    sink.number("egt", pointer_steps(egt));
    sink.number("fuelFlow", pointer_steps(fuel_flow));
    sink.number("oilTemperature", pointer_steps(oil_temperature));
    sink.number("oilPressure", pointer_steps(oil_pressure));
    sink.number("vacuum", pointer_steps(vacuum));
    sink.number("ampere", pointer_steps(ampere));
    sink.flag("calibrating", calibrating());
}

// The speed is stored; the needles run to their zero marks from where they stand.
void EngineClusterGauge::reset() {
    find_zero();
}

}  // namespace bench
