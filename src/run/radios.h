#pragma once

#include <cstdint>

#include "run/run_context.h"

// Radios of one band: the generic radio module (type 110), its CTL30 sibling (111) and the Bendix/King ADF (121). The
// units own their frequencies; what their displays show goes to the simulator with every report, and nothing comes
// back.
namespace run {

void set_up_radio(RunContext& run, int Index);
void tick_radio(RunContext& run, int Index);
void report_radio(RunContext& run, const bus::GaugeReport& report);

// What a COM or NAV frequency of a report is for the simulator: the number leaves out the leading 1 of the frequency,
// the simulator's word the last digit: 18350 (118.350 MHz) gives 11835.
float simulator_frequency(std::uint16_t reported);

}  // namespace run
