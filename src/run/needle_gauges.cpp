#include "run/needle_gauges.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "bus/frames.h"
#include "run/instrument_values.h"
#include "run/plate_lookup.h"
#include "support/rounding.h"

namespace run {

namespace {

constexpr int kTypeWithDisplay = 2;

enum class NeedleState { shown, unknown };

// The whole needle position of GaugeValue, which is clamped in place to the plate's range.
std::optional<int> needle_position(RunContext& run, const tables::Plate& plate) {
    double value = run.GaugeValue;
    const std::optional<double> position = plate_position(plate, value);
    if (!position) {
        return std::nullopt;
    }
    if (value != static_cast<double>(run.GaugeValue)) {
        run.GaugeValue = support::narrow_to_f32(value);
    }
    return static_cast<int>(std::floor(std::clamp(*position, 0.0, static_cast<double>(kHighestNeedlePosition))));
}

NeedleState serve_needle(RunContext& run, int Index, std::int16_t port, int plate_number, float& last, int command) {
    const tables::Plate* const plate = find_plate(run.tables, plate_number);
    if (port < 0 || plate == nullptr) {
        return NeedleState::unknown;
    }
    std::optional<int> position;
    run.steps.attempt([&] {
        // Without a value of its own the needle must not follow the one that an earlier gauge has left in GaugeValue.
        if (run.sim_com.GetPort(port, run.GaugeValue)) {
            position = needle_position(run, *plate);
        }
    });
    if (!position) {
        return NeedleState::unknown;
    }
    if (static_cast<float>(*position) != last) {
        last = static_cast<float>(*position);
        run.steps.attempt([&] { run.QueueFrame(run.entry(Index).ActiveGaugeId, command, *position); });
    }
    return NeedleState::shown;
}

void send_display(RunContext& run, int Index) {
    const double reading_tenths = support::round_half_even(10.0 * static_cast<double>(run.GaugeValue));
    run.QueueFrame(run.entry(Index).ActiveGaugeId, bus::kCommandDisplay, bus::display_word(reading_tenths));
}

}  // namespace

void set_up_needle_gauge(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    tables::GaugeRow& gauge = run.gauge(Index);
    // NOTE: a needle without a function is marked by -1, not by 0: 0 is the number of the first simulator port.
    entry.Port1 = kNoSimPort;
    entry.Port2 = kNoSimPort;
    if (gauge.GaugeFunction1 != 0) {
        entry.Port1 = open_reading_port(run, gauge.GaugeFunction1, gauge.GaugeSeqNr1);
    }
    if (gauge.GaugeFunction2 != 0) {
        entry.Port2 = open_reading_port(run, gauge.GaugeFunction2, gauge.GaugeSeqNr2);
    }
    forget_needle_gauge(run, Index);
}

void tick_needle_gauge(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const tables::GaugeRow& gauge = run.gauge(Index);
    const NeedleState first =
        serve_needle(run, Index, entry.Port1, gauge.GaugePlate1, entry.Last1, bus::kCommandNeedle1);
    if (gauge.GaugeType == kTypeWithDisplay && first == NeedleState::shown) {
        run.steps.attempt([&] { send_display(run, Index); });
    }
    serve_needle(run, Index, entry.Port2, gauge.GaugePlate2, entry.Last2, bus::kCommandNeedle2);
}

void forget_needle_gauge(RunContext& run, int Index) {
    run.entry(Index).Last1 = kNothingSent;
    run.entry(Index).Last2 = kNothingSent;
}

}  // namespace run
