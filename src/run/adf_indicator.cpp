#include "run/adf_indicator.h"

#include <algorithm>
#include <limits>

#include "bus/frames.h"
#include "run/instrument_values.h"
#include "run/vor_indicators.h"

namespace run {

namespace {

constexpr int kBearingFunction = 31;
constexpr int kCardFunction = 32;

constexpr int kCommandNeedle = 5;

constexpr double kFullTurn = 360;
constexpr int kStepsPerTurn = 4320;

void send_bearing(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const std::optional<double> value = finite_value(run, entry.Port1);
    if (!value || *value == static_cast<double>(entry.Last1)) {
        return;
    }
    entry.Last1 = static_cast<float>(*value);
    const double degrees = *value < 0 ? *value + kFullTurn : *value;
    const int position = std::clamp<int>(position_of_degrees(degrees, kStepsPerTurn), 0, kStepsPerTurn - 1);
    run.QueueFrame(entry.ActiveGaugeId, kCommandNeedle, position);
}

}  // namespace

void set_up_adf_indicator(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    entry.Port1 = open_reading_port(run, kBearingFunction, 1);
    entry.Port2 = open_writing_port(run, kCardFunction, 1);
    run.gauge(Index).GaugeWritePort2 = write_port(entry.Port2);
    run.AssignPollSlot(Index);
}

void tick_adf_indicator(RunContext& run, int Index) {
    run.steps.attempt([&] { send_bearing(run, Index); });
    run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
}

void forget_adf_indicator(RunContext& run, int Index) {
    run.entry(Index).Last1 = std::numeric_limits<float>::quiet_NaN();
}

void report_adf_indicator(RunContext& run, const bus::GaugeReport& report) {
    auto degrees = static_cast<float>(course_of_disk(report.word(kReportDisk)));
    run.sim_com.PutPort(run.tables.gauges[static_cast<std::size_t>(report.gauge_id())].GaugeWritePort2, degrees);
}

}  // namespace run
