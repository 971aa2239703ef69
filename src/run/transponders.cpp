#include "run/transponders.h"

#include <cmath>

#include "bus/frames.h"
#include "run/instrument_values.h"
#include "support/rounding.h"

namespace run {

namespace {

constexpr int kCodeFunction = 26;  // offset 1 the code, offset 2 the switch position less 1
constexpr int kAtcStateFunction = 46;
constexpr int kModeFunction = 47;      // offset 1 standby/on, offset 2 ident
constexpr std::int32_t kNoOffset = 1;  // 0 and 1 stand in functions that have no such offset

// Flags of GaugePlate1.
constexpr int kUseStandby = 1;
constexpr int kUseIdent = 2;
constexpr int kShowAtc = 4;  // 737 unit

constexpr int k737Type = 114;

constexpr int kCommandAtc = 12;  // 737 unit
constexpr int kAtcActive = 256;
constexpr int kCommandFlightLevel = 5;  // Bendix/King unit
constexpr double kFeetPerFlightLevel = 100;

// Bytes of the reports.
constexpr int kReportCode1 = 7;   // 7, 8: four octal digits in nibbles
constexpr int kReportCode2 = 10;  // 10, 11
constexpr int kReportIdent = 13;
constexpr int kReportActive = 15;  // 1 = the first transponder
constexpr int kReportSwitch = 17;

// How the mode switch goes to the simulator: one position gives 0, all others the other value.
struct ModeSwitch {
    int position_of_zero;
    float other_value;
};
constexpr ModeSwitch kCtl30Switch = {3, 1};
constexpr ModeSwitch k737Switch = {3, 3};
constexpr ModeSwitch kBkSwitch = {4, 1};

float code_of(std::uint16_t nibbles) {
    constexpr unsigned kOctal = 7;
    unsigned code = 0;
    for (int shift = 12; shift >= 0; shift -= 4) {
        code = code * 10 + (static_cast<unsigned>(nibbles >> shift) & kOctal);
    }
    return static_cast<float>(code);
}

std::uint16_t active_code(const bus::GaugeReport& report) {
    return report.word(report.byte(kReportActive) == 1 ? kReportCode1 : kReportCode2);
}

void put(RunContext& run, std::uint16_t port, float value) {
    if (port != tables::kNoWritePort) {
        run.sim_com.PutPort(port, value);
    }
}

void take_report(RunContext& run, const bus::GaugeReport& report, std::uint16_t code, const ModeSwitch& mode_switch) {
    tables::GaugeRow& gauge = run.tables.gauges[static_cast<std::size_t>(report.gauge_id())];
    put(run, gauge.GaugeWritePort1, code_of(code));
    const int position = report.byte(kReportSwitch);
    put(run, gauge.GaugeWritePort2, static_cast<float>(position - 1));
    if (gauge.GaugeWritePort3 != tables::kNoWritePort && gauge.GaugeRunIndex != static_cast<float>(position)) {
        gauge.GaugeRunIndex = static_cast<float>(position);
        put(run, gauge.GaugeWritePort3, position == mode_switch.position_of_zero ? 0 : mode_switch.other_value);
    }
    put(run, gauge.GaugeWritePort4, report.byte(kReportIdent));
}

}  // namespace

void set_up_transponder(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    tables::GaugeRow& gauge = run.gauge(Index);
    const int flags = gauge.GaugePlate1;
    entry.Port1 = open_writing_port(run, kCodeFunction, 1);
    gauge.GaugeWritePort1 = write_port(entry.Port1);
    if (run.tables.functions[kCodeFunction].FunctionOffset2 > kNoOffset) {
        entry.Port2 = open_writing_port(run, kCodeFunction, 2);
        gauge.GaugeWritePort2 = write_port(entry.Port2);
    }
    if ((flags & kUseStandby) != 0) {
        entry.Port3 = open_writing_port(run, kModeFunction, 1);
        gauge.GaugeWritePort3 = write_port(entry.Port3);
    }
    if ((flags & kUseIdent) != 0) {
        gauge.GaugeWritePort4 = write_port(open_writing_port(run, kModeFunction, 2));
    }
    if (gauge.GaugeType == k737Type) {
        entry.Port3 = kNoSimPort;
        if ((flags & kShowAtc) != 0) {
            entry.Port3 = open_reading_port(run, kAtcStateFunction, 1);
        }
    }
    gauge.GaugeRunIndex = 0;
    run.AssignPollSlot(Index);
}

void tick_ctl30_transponder(RunContext& run, int Index) {
    run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
}

void tick_737_transponder(RunContext& run, int Index) {
    run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
    const std::int16_t atc_port = run.entry(Index).Port3;
    if (atc_port <= 0) {
        return;
    }
    float state = 0;
    if (run.sim_com.GetPort(atc_port, state)) {
        // In place of the poll; the unit answers it with its report too.
        run.PollFrame(Index, kCommandAtc, state > 0 ? kAtcActive : 0);
    }
}

void tick_bk_transponder(RunContext& run, int Index) {
    const double altitude = run.tables.CurrentAltitude;
    if (std::isfinite(altitude)) {
        run.PollFrame(Index, kCommandFlightLevel, std::floor(support::round_half_even(altitude) / kFeetPerFlightLevel));
    } else {
        run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
    }
}

void report_ctl30_transponder(RunContext& run, const bus::GaugeReport& report) {
    take_report(run, report, active_code(report), kCtl30Switch);
}

void report_737_transponder(RunContext& run, const bus::GaugeReport& report) {
    take_report(run, report, active_code(report), k737Switch);
}

void report_bk_transponder(RunContext& run, const bus::GaugeReport& report) {
    take_report(run, report, report.word(kReportCode1), kBkSwitch);
}

}  // namespace run
