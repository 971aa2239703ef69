#pragma once

#include "bus/frames.h"
#include "run/run_context.h"

// The motorised trim wheel (type 140). Moved by hand or by a trim switch it trims the simulator; while the autopilot
// flies it follows the simulator's trim.
namespace run {

// Port1 = trim (read and written), Port2 = autopilot switch. Of the gauge row, GaugeWritePort2 and GaugeWritePort3
// remember the wheel's position (0..1023) and motor mode by its latest report. Last2 = the autopilot switch or the
// position that was sent last, Last3 = the trim switch, Last4 = the motor mode that was sent last.
void set_up_trim_wheel(RunContext& run, int Index);

void tick_trim_wheel(RunContext& run, int Index);

// Makes the next tick send the motor mode.
void forget_trim_wheel(RunContext& run, int Index);

void report_trim_wheel(RunContext& run, const bus::GaugeReport& report);

}  // namespace run
