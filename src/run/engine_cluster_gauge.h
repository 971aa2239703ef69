#pragma once

#include <array>

#include "run/run_context.h"

// The engine cluster on the gauge bus, type 8: eight needles with fixed functions, two of them served in each tick.
namespace run {

// The commands that move its needles, in the order fuel left, fuel right, exhaust gas temperature, fuel flow, oil
// temperature, oil pressure, vacuum, ampere.
inline constexpr std::array kClusterGaugeCommands = {4, 5, 6, 9, 10, 11, 12, 13};

// One needle: the function that it shows, and its plate, which the gauge record keeps wherever it has room.
struct ClusterGaugeNeedle {
    std::int16_t function = 0;
    std::uint8_t sequence_number = 1;
    int plate = 0;
};

// The needles of a gauge record, in the order of the commands.
std::array<ClusterGaugeNeedle, kClusterGaugeCommands.size()> cluster_gauge_needles(const tables::GaugeRow& gauge);

// Opens the simulator ports of all eight functions, one behind the other. A function that does not exist is told by
// a message; its needle stays still.
void set_up_engine_cluster_gauge(RunContext& run, int Index);

// Sends two of the eight needles, changed or not; four calls serve all of them. A needle without a value, or whose
// plate does not exist, stays where it is.
void tick_engine_cluster_gauge(RunContext& run, int Index);

}  // namespace run
