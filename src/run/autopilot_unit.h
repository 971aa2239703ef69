#pragma once

#include "bus/frames.h"
#include "run/run_context.h"

// The Bendix/King autopilot (type 124). The unit holds modes, target altitude and vertical speed of its own; while it
// is being operated its values go to the simulator, otherwise the simulator's go to it.
namespace run {

void set_up_autopilot(RunContext& run, int Index);

// At a run start: nothing that an earlier run has read counts.
void start_autopilot(RunContext& run, int Index);

// Asks for the unit's report and, unless it is being operated, sends what has changed, and the lamps at every tick
// that has nothing more urgent.
void tick_autopilot(RunContext& run, int Index);

// Makes the next ticks send modes and vertical speed.
void forget_autopilot(RunContext& run, int Index);

// Takes the unit's values; they go to the simulator while the unit is being operated.
void report_autopilot(RunContext& run, const bus::GaugeReport& report);

}  // namespace run
