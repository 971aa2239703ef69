#pragma once

#include "run/run_context.h"

// The ADF direction indicator, type 108: its needle shows the bearing to the station, its card is set by hand and goes
// to the simulator.
namespace run {

void set_up_adf_indicator(RunContext& run, int Index);

// Sends the bearing when it has changed, and polls.
void tick_adf_indicator(RunContext& run, int Index);

// Makes the next tick send the bearing.
void forget_adf_indicator(RunContext& run, int Index);

// Writes the card's position at every report.
void report_adf_indicator(RunContext& run, const bus::GaugeReport& report);

}  // namespace run
