#pragma once

#include "run/run_context.h"

// The Bendix/King COM/NAV radio, type 120: two radios in one unit, each with its active and standby frequency. They go
// to the simulator when they change; the active NAV frequency not while the DME owns it.
namespace run {

void set_up_com_nav_radio(RunContext& run, int Index);
void tick_com_nav_radio(RunContext& run, int Index);
void report_com_nav_radio(RunContext& run, const bus::GaugeReport& report);

}  // namespace run
