#pragma once

#include "bus/frames.h"
#include "run/run_context.h"

// The DME indicator (type 113) and the Bendix/King DME (123). Their displays are served in a cycle of five ticks,
// counted in Last1: choice of the station, a pause for its values to arrive, distance, speed, time.
namespace run {

// Packs the digits of a number as the indicators take it: BCD, plus 0x2000 for a decimal point behind the second digit
// or 0x4000 for one behind the first. `text` is digits and at most one point.
std::uint16_t pack_digits(std::string_view text);

void set_up_dme(RunContext& run, int Index);
void tick_dme(RunContext& run, int Index);
// The rotary switch chooses the station: of this unit when it is dual, of all others when it is single.
void report_dme(RunContext& run, const bus::GaugeReport& report);

void set_up_bk_dme(RunContext& run, int Index);
void tick_bk_dme(RunContext& run, int Index);
// The switch chooses the station and, where it is set up so, takes the frequency of a NAV radio into the unit's hand.
void report_bk_dme(RunContext& run, const bus::GaugeReport& report);

}  // namespace run
