#pragma once

#include "run/run_context.h"

// The Bendix/King audio panel, type 125: shows the marker lamps; its buttons choose what the pilot hears.
namespace run {

void set_up_audio_panel(RunContext& run, int Index);

// One marker a tick; in the fourth tick the lamps go out if they have changed. Polls.
void tick_audio_panel(RunContext& run, int Index);

// Makes the next round send the lamps.
void forget_audio_panel(RunContext& run, int Index);

// Writes the sound selector when the buttons have changed.
void report_audio_panel(RunContext& run, const bus::GaugeReport& report);

}  // namespace run
