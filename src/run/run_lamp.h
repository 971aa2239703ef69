#pragma once

#include "panel/control.h"

namespace run {

// "Running" on red, where only a stop is left to do; "Halted" on green, where only a start is.
inline void show_running(panel::Indicator& BoxRun, panel::CommandButton& cmdRun, panel::CommandButton& cmdStop) {
    BoxRun.text = "Running";
    BoxRun.colour = panel::kRed;
    cmdRun.enabled = false;
    cmdStop.enabled = true;
}
inline void show_halted(panel::Indicator& BoxRun, panel::CommandButton& cmdRun, panel::CommandButton& cmdStop) {
    BoxRun.text = "Halted";
    BoxRun.colour = panel::kGreen;
    cmdRun.enabled = true;
    cmdStop.enabled = false;
}

}  // namespace run
