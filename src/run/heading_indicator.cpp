#include "run/heading_indicator.h"

#include <algorithm>
#include <cmath>

#include "bus/frames.h"
#include "run/instrument_values.h"

namespace run {

namespace {

// Flags of GaugePlate2. The two lowest are the unit's own.
constexpr int kSendGyroDrift = 4;
constexpr int kShowCompass = 8;
constexpr int kReverseCard = 16;

constexpr int kGyroDriftFunction = 15;

constexpr int kCommandHeading = 5;

constexpr double kFullTurn = 360;
constexpr int kStepsPerTurn = 4320;
// The two knobs turn negative at different angles.
constexpr double kHighestBugDegrees = 179.0;
constexpr double kHighestDriftDegrees = 179.5;

// Bytes of the report.
constexpr int kReportCard = 7;  // 7, 8
constexpr int kReportBug = 10;  // 10, 11

float knob_degrees(std::uint16_t steps, double highest_degrees) {
    const double degrees = static_cast<double>(steps) / kStepsPerTurn * kFullTurn;
    return static_cast<float>(degrees > highest_degrees ? degrees - kFullTurn : degrees);
}

}  // namespace

void set_up_heading_indicator(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    tables::GaugeRow& gauge = run.gauge(Index);
    entry.Port1 = kNoSimPort;
    entry.Port2 = kNoSimPort;
    if (gauge.GaugeFunction2 != 0) {
        entry.Port1 = open_writing_port(run, gauge.GaugeFunction2, gauge.GaugeSeqNr2);
        gauge.GaugeWritePort1 = write_port(entry.Port1);
    }
    if ((gauge.GaugePlate2 & kSendGyroDrift) != 0) {
        entry.Port2 = open_writing_port(run, kGyroDriftFunction, 1);
        gauge.GaugeWritePort2 = write_port(entry.Port2);
    }
    if (entry.Port1 != kNoSimPort || entry.Port2 != kNoSimPort) {
        run.AssignPollSlot(Index);
    }
}

void tick_heading_indicator(RunContext& run, int Index) {
    const ActiveGauge& entry = run.entry(Index);
    const int flags = run.gauge(Index).GaugePlate2;
    double degrees = (flags & kShowCompass) != 0 ? run.tables.AircraftCompass : run.tables.AircraftHeading;
    if ((flags & kReverseCard) != 0) {
        degrees = kFullTurn - degrees;
    }
    if (std::isfinite(degrees)) {
        run.steps.attempt([&] {
            const int position = std::clamp<int>(position_of_degrees(degrees, kStepsPerTurn), 0, kStepsPerTurn - 1);
            run.QueueFrame(entry.ActiveGaugeId, kCommandHeading, position);
        });
    }
    if (entry.Port1 != kNoSimPort || entry.Port2 != kNoSimPort) {
        run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
    }
}

void report_heading_indicator(RunContext& run, const bus::GaugeReport& report) {
    const tables::GaugeRow& gauge = run.tables.gauges[static_cast<std::size_t>(report.gauge_id())];
    if (gauge.GaugeFunction2 > 0) {
        float bug = knob_degrees(report.word(kReportBug), kHighestBugDegrees);
        run.sim_com.PutPort(gauge.GaugeWritePort1, bug);
    }
    if (gauge.GaugeWritePort2 == tables::kNoWritePort) {
        return;
    }
    float drift = knob_degrees(report.word(kReportCard), kHighestDriftDegrees);
    if (drift != run.navigation.gyro_drift) {
        run.navigation.gyro_drift = drift;
        run.sim_com.PutPort(gauge.GaugeWritePort2, drift);
    }
}

}  // namespace run
