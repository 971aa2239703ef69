#pragma once

#include "run/run_context.h"

// Plain needle gauges, types 1 to 6: one or two needles, each with its plate; type 2 has one needle and a display.
namespace run {

// Opens the simulator ports of both functions. A needle without a function has no port (kNoSimPort) and stays still.
void set_up_needle_gauge(RunContext& run, int Index);

// Sends each needle whose position has changed, and the display of type 2 at every call. A needle without a port, with
// a plate that does not exist, or whose value is not a number stays where it is; the display stays with it.
void tick_needle_gauge(RunContext& run, int Index);

// Makes the next tick send both needles.
void forget_needle_gauge(RunContext& run, int Index);

}  // namespace run
