#include "run/attitude_indicator.h"

#include <algorithm>
#include <cmath>

#include "support/rounding.h"

namespace run {

namespace {

constexpr int kCommandBank = 4;
constexpr int kCommandPitch = 5;

constexpr double kHalfTurn = 180;     // degrees of bank from level to the end of the range
constexpr double kQuarterTurn = 90;   // the same of pitch, were it not for the factor
constexpr double kPitchFactor = 4.0;  // the drum's range ends at 22.5 degrees

// `zero_position` is where the indicator stands level, half of its range.
void send_position(RunContext& run, int Index, int command, double share, int zero_position) {
    if (!std::isfinite(share)) {
        return;
    }
    const double position = zero_position + share * zero_position;
    run.QueueFrame(run.entry(Index).ActiveGaugeId, command,
                   support::round_half_even(std::clamp(position, 0.0, 2.0 * std::max(zero_position, 0))));
}

}  // namespace

void tick_attitude_indicator(RunContext& run, int Index) {
    const tables::GaugeRow& gauge = run.gauge(Index);
    send_position(run, Index, kCommandBank, run.tables.AircraftBank / kHalfTurn, gauge.GaugePlate1);
    send_position(run, Index, kCommandPitch, run.tables.AircraftPitch / kQuarterTurn * kPitchFactor, gauge.GaugePlate2);
}

}  // namespace run
