#pragma once

#include "run/run_context.h"

// The radio-magnetic indicator, type 130: a heading card, two needles that each stand on a VOR or an ADF station by a
// switch of the unit, an INOP flag, and with some units two DME displays. The standard unit takes its bearings from
// functions; model 3 takes them from GetRMIdata. One value goes out per tick, and only when it has changed, so that the
// unit is not overrun. It is never polled.
namespace run {

void set_up_radio_magnetic_indicator(RunContext& run, int Index);
void tick_radio_magnetic_indicator(RunContext& run, int Index);

// Makes the next round send everything.
void forget_radio_magnetic_indicator(RunContext& run, int Index);

// The word of a DME display: three digits of the distance, with a decimal point up to 99.9; dashes when it is negative.
int rmi_dme_word(double distance_nm);

}  // namespace run
