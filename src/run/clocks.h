#pragma once

#include "bus/frames.h"
#include "run/run_context.h"

// The clocks: Boeing clock (type 104) and Cessna clock (109). They run by themselves; the program sets them now and
// then. A time of day travels as its seconds; a sum above 65535 as 65535 minus the sum.
namespace run {

// --- Boeing clock. It works in a cycle of six ticks, counted in Port1; Last1 is the second (local time) or the seconds
// of the day (UTC) last seen, -1 = the time has to go out.

void set_up_boeing_clock(RunContext& run, int Index);
// One step of the cycle. Asks the simulator for its time (and waits for the answer) once per cycle, in simulator mode
// only; the date goes out once per cycle in all modes.
void tick_boeing_clock(RunContext& run, int Index);
// Makes the next cycle set the clock.
void forget_boeing_clock(RunContext& run, int Index);
// The clock's own time goes to the simulator.
void report_boeing_clock(RunContext& run, const bus::GaugeReport& report);

// --- Cessna clock. It works in a cycle of 101 ticks, counted in Port1; Last1 is the outside temperature in degrees C
// that this cycle shows.

void set_up_cessna_clock(RunContext& run, int Index);
// Asks the simulator for its time once per cycle, in simulator mode only.
void tick_cessna_clock(RunContext& run, int Index);
// Makes the clock's time go out soon.
void forget_cessna_clock(RunContext& run, int Index);

}  // namespace run
