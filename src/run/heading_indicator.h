#pragma once

#include "run/run_context.h"

// The heading indicator or directional gyro, type 105: shows the heading; its knobs set the autopilot's heading bug and
// the drift of the gyro.
namespace run {

void set_up_heading_indicator(RunContext& run, int Index);

// Sends the heading at every call; polls when one of the knobs has a port.
void tick_heading_indicator(RunContext& run, int Index);

// Takes both knobs: the bug at every report, the drift when it differs from the last one written.
void report_heading_indicator(RunContext& run, const bus::GaugeReport& report);

}  // namespace run
