#pragma once

#include "run/run_context.h"

// The transponders: CTL30 (type 112), 737 (114) and Bendix/King (122). They own their code; it goes to the simulator
// with every report, and with it, as set up, the mode switch and the ident button.
namespace run {

void set_up_transponder(RunContext& run, int Index);

// Polls. The 737 unit is told with the poll whether the ATC is active, the Bendix/King unit the flight level; both
// answer that frame with their report.
void tick_ctl30_transponder(RunContext& run, int Index);
void tick_737_transponder(RunContext& run, int Index);
void tick_bk_transponder(RunContext& run, int Index);

void report_ctl30_transponder(RunContext& run, const bus::GaugeReport& report);
void report_737_transponder(RunContext& run, const bus::GaugeReport& report);
void report_bk_transponder(RunContext& run, const bus::GaugeReport& report);

}  // namespace run
