#pragma once

#include "run/run_context.h"

namespace run {

// Type 10: tells the user that the bus variant of the IO module does not work with this program; the gauge is skipped.
void set_up_bus_io_module(RunContext& run, int Index);

}  // namespace run
