#include "run/altimeter.h"

#include <cmath>

#include "bus/frames.h"
#include "run/instrument_values.h"
#include "run/system_ports.h"
#include "support/rounding.h"

namespace run {

namespace {

constexpr std::uint8_t kStandbyAltimeter = 2;  // GaugeSeqNr1; the one before is the master
constexpr int kPressureFunction = 1;
constexpr std::uint8_t kUnitIsInHg = 1;  // GaugeModel

constexpr int kCommandAltitude = 4;  // feet
constexpr int kCommandPressure = 12;

constexpr double kHundredths = 100;
constexpr double kMillibarPerInchHg = 33.86;
constexpr float kInchHgPerClick = 0.01F;

// Bytes of the report.
constexpr int kReportUnit = 4;      // 1 = hundredths of an inch of mercury, else millibar
constexpr int kReportPressure = 7;  // 7, 8
constexpr int kReportKnobMode = 10;
constexpr int kReportClicks = 12;
constexpr int kNoClicks = 128;

bool has_own_ports(const tables::GaugeRow& gauge) {
    return gauge.GaugeSeqNr1 >= kStandbyAltimeter;
}

// Whole feet; nothing while the simulator gives no number.
std::optional<double> altitude_feet(RunContext& run, int Index) {
    if (has_own_ports(run.gauge(Index))) {
        const std::optional<double> altitude = finite_value(run, run.entry(Index).Port1);
        return altitude ? std::optional<double>(support::round_to_i32(*altitude)) : std::nullopt;
    }
    const double altitude = run.tables.CurrentAltitude;
    return std::isfinite(altitude) ? std::optional<double>(support::round_half_even(altitude)) : std::nullopt;
}

void send_pressure(RunContext& run, int Index) {
    const double pressure = run.tables.AirPressureHg;
    if (!std::isfinite(pressure)) {
        return;
    }
    const double factor = run.gauge(Index).GaugeModel == kUnitIsInHg ? kHundredths : kMillibarPerInchHg;
    run.QueueFrame(run.entry(Index).ActiveGaugeId, kCommandPressure, std::floor(pressure * factor));
}

}  // namespace

void set_up_altimeter(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    tables::GaugeRow& gauge = run.gauge(Index);
    if (has_own_ports(gauge)) {
        entry.Port1 = open_reading_port(run, gauge.GaugeFunction1, gauge.GaugeSeqNr1);
        entry.Last1 = kNothingSent;
        gauge.GaugeWritePort2 = write_port(open_writing_port(run, kPressureFunction, gauge.GaugeSeqNr1));
    }
    run.AssignPollSlot(Index);
}

void tick_altimeter(RunContext& run, int Index) {
    const tables::GaugeRow& gauge = run.gauge(Index);
    run.steps.attempt([&] {
        if (const std::optional<double> feet = altitude_feet(run, Index)) {
            run.QueueFrame(run.entry(Index).ActiveGaugeId, kCommandAltitude, *feet);
        }
    });
    const bool slave = gauge.GaugeFunction2 != 0;
    const bool simulator_sets_pressure = gauge.GaugeSeqNr2 != 0;
    if (slave || simulator_sets_pressure) {
        send_pressure(run, Index);
    }
    if (!slave) {
        run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
    }
}

void report_altimeter(RunContext& run, const bus::GaugeReport& report) {
    float pressure = 0;
    if (report.byte(kReportKnobMode) == 1) {
        const int clicks = report.byte(kReportClicks) - kNoClicks;
        if (clicks == 0) {
            return;
        }
        run.tables.AirPressureHg += static_cast<float>(clicks) * kInchHgPerClick;
        pressure = run.tables.AirPressureHg;
    } else {
        const double divider = report.byte(kReportUnit) == 1 ? kHundredths : kMillibarPerInchHg;
        pressure = static_cast<float>(report.word(kReportPressure) / divider);
    }
    const tables::GaugeRow& gauge = run.tables.gauges[static_cast<std::size_t>(report.gauge_id())];
    run.sim_com.PutPort(has_own_ports(gauge) ? gauge.GaugeWritePort2 : run.SystemPort[kAirPressurePort], pressure);
}

}  // namespace run
