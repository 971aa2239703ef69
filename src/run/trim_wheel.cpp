#include "run/trim_wheel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "run/instrument_values.h"
#include "support/rounding.h"

namespace run {

namespace {

constexpr std::int16_t kElevatorTrimFunction = 17;

constexpr int kCommandPosition = 5;  // 0..1023
constexpr int kCommandMotorMode = 9;

enum MotorMode : int {
    kMotorOff = 0,
    kMotorSwitch1 = 1,
    kMotorSwitch2 = 2,
    kMotorAutopilot = 4,
};

constexpr double kNeutral = 512;
constexpr double kHighestPosition = 1023;
constexpr double kStepsFromNeutral = 511;
constexpr double kFullTrim = 16383;
constexpr int kTrimSwitchMask = 3;
constexpr int kLeastChange = 3;  // a report that differs by less is the wheel's own unrest

constexpr int kReportPosition = 7;  // 7, 8
constexpr int kReportMotorMode = 13;

void send_mode(RunContext& run, int Index, MotorMode mode) {
    run.entry(Index).Last4 = mode;
    run.QueueFrame(run.entry(Index).ActiveGaugeId, kCommandMotorMode, mode);
}

void send_mode_of_autopilot(RunContext& run, int Index, float autopilot) {
    send_mode(run, Index, autopilot < 1.0F ? kMotorOff : kMotorAutopilot);
}

// The autopilot switch, a whole number; 0 without a function. Not finite when the simulator gives nothing of use.
float autopilot_switch(RunContext& run, int Index) {
    const std::int16_t port = run.entry(Index).Port2;
    if (port == kNoSimPort) {
        return 0;
    }
    const std::optional<double> value = finite_value(run, port);
    return value ? static_cast<float>(support::round_half_even(*value)) : std::nanf("");
}

int trim_switch(const RunContext& run, const tables::GaugeRow& gauge) {
    const TrimSwitches& switches = run.trim_switches;
    return (gauge.GaugeFunction1 == kElevatorTrimFunction ? switches.TrimMotorElevator : switches.TrimMotorAilerons) &
           kTrimSwitchMask;
}

// By hand or by switch: the wheel trims the simulator.
// NOTE: not before the wheel has told where it stands.
void trim_simulator(RunContext& run, int Index) {
    const std::uint16_t position = run.gauge(Index).GaugeWritePort2;
    if (position == tables::kNoWritePort) {
        return;
    }
    auto trim = static_cast<float>((position - kNeutral) / kNeutral * kFullTrim);
    run.sim_com.PutPort(run.entry(Index).Port1, trim);
}

// The autopilot moves the wheel.
void move_wheel(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const std::optional<double> trim = finite_value(run, entry.Port1);
    if (!trim) {
        return;
    }
    const double steps = support::round_half_even(*trim / kFullTrim * kStepsFromNeutral);
    const double position = std::clamp(steps + kNeutral, 0.0, kHighestPosition);
    if (std::fabs(double{entry.Last2} - position) > 1.0) {
        // Last2 holds the autopilot switch too, so the next tick sends the motor mode again: the two frames alternate.
        entry.Last2 = static_cast<float>(position);
        run.QueueFrame(entry.ActiveGaugeId, kCommandPosition, position);
    }
}

void follow_trim_switch(RunContext& run, int Index, int trim_switch_now, float autopilot) {
    run.entry(Index).Last3 = static_cast<float>(trim_switch_now);
    if (trim_switch_now == 0) {
        send_mode_of_autopilot(run, Index, autopilot);
    } else if (trim_switch_now == 1) {
        send_mode(run, Index, kMotorSwitch1);
    } else if (trim_switch_now == 2) {
        send_mode(run, Index, kMotorSwitch2);
    }
}

}  // namespace

// NOTE: the function behind the trim (GaugeFunction1 + 1) is not opened; nothing would use its value.
void set_up_trim_wheel(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    tables::GaugeRow& gauge = run.gauge(Index);
    entry.Port1 = kNoSimPort;
    entry.Port2 = kNoSimPort;
    if (gauge.GaugeFunction1 != 0) {
        entry.Port1 = open_reading_port(run, gauge.GaugeFunction1, gauge.GaugeSeqNr1);
        gauge.GaugeWritePort1 = write_port(entry.Port1);
        entry.Last4 = kNothingSent;
    }
    if (gauge.GaugeFunction2 != 0) {
        entry.Port2 = open_reading_port(run, gauge.GaugeFunction2, gauge.GaugeSeqNr2);
        entry.Last2 = kNothingSent;
    }
    gauge.GaugeWritePort2 = tables::kNoWritePort;  // where it stands is not known yet
    gauge.GaugeWritePort3 = kMotorOff;
    run.AssignPollSlot(Index);
}

void tick_trim_wheel(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const tables::GaugeRow& gauge = run.gauge(Index);
    const float autopilot = autopilot_switch(run, Index);
    if (std::isfinite(autopilot)) {
        if (autopilot != entry.Last2) {
            entry.Last2 = autopilot;
            send_mode_of_autopilot(run, Index, autopilot);
            return;
        }
        const int switch_now = trim_switch(run, gauge);
        if (static_cast<float>(switch_now) != entry.Last3 || static_cast<float>(gauge.GaugeWritePort3) != entry.Last4) {
            follow_trim_switch(run, Index, switch_now, autopilot);
        } else if (autopilot < 1.0F || switch_now != 0) {
            trim_simulator(run, Index);
        } else {
            move_wheel(run, Index);
        }
    }
    run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
}

void forget_trim_wheel(RunContext& run, int Index) {
    run.entry(Index).Last2 = kNothingSent;
    run.entry(Index).Last4 = kNothingSent;
}

void report_trim_wheel(RunContext& run, const bus::GaugeReport& report) {
    tables::GaugeRow& gauge = run.tables.gauges[static_cast<std::size_t>(report.gauge_id())];
    // In the row of another gauge these fields are the numbers of its ports.
    if (gauge.GaugeType != report.GaugeType()) {
        return;
    }
    gauge.GaugeWritePort3 = report.byte(kReportMotorMode);
    const int position = report.word(kReportPosition);
    if (position <= static_cast<int>(kHighestPosition) && std::abs(position - gauge.GaugeWritePort2) >= kLeastChange) {
        gauge.GaugeWritePort2 = static_cast<std::uint16_t>(position);
    }
}

}  // namespace run
