#pragma once

#include "run/run_context.h"

// The altimeter, type 101, digital or with hands: the master shows the aircraft's altitude, the others that of an
// offset of their own; the pressure of their knob goes to the simulator, or the simulator's to them.
namespace run {

// An altimeter beyond the first offset gets ports of its own. Every altimeter gets a poll slot.
void set_up_altimeter(RunContext& run, int Index);

// Sends the altitude at every call. A slave gets the pressure and is never polled; the others are polled, and get the
// pressure when the simulator's is to act on them.
void tick_altimeter(RunContext& run, int Index);

// Takes the knob: the pressure it stands at, or in knob mode the clicks since the last report.
void report_altimeter(RunContext& run, const bus::GaugeReport& report);

}  // namespace run
