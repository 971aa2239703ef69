#pragma once

#include "run/run_context.h"

// The attitude indicator, type 103. The simulator counts bank positive to the left and pitch positive nose down; so do
// the indicator's positions above its zero positions.
namespace run {

// Sends bank and pitch at every call, limited to the indicator's range. A value that is not a number sends nothing.
void tick_attitude_indicator(RunContext& run, int Index);

}  // namespace run
