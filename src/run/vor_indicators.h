#pragma once

#include "run/run_context.h"

// The indicators of VOR1 with glide slope (type 106) and VOR2 (type 107). What the simulator shows goes out when it
// changes; the course of the OBS knob comes back.
namespace run {

void set_up_vor1_indicator(RunContext& run, int Index);
void set_up_vor2_indicator(RunContext& run, int Index);

void tick_vor1_indicator(RunContext& run, int Index);
void tick_vor2_indicator(RunContext& run, int Index);

// Make the next tick send needles and flags.
void forget_vor1_indicator(RunContext& run, int Index);
void forget_vor2_indicator(RunContext& run, int Index);

// Take the course when it differs from the last one written for the receiver.
void report_vor1_indicator(RunContext& run, const bus::GaugeReport& report);
void report_vor2_indicator(RunContext& run, const bus::GaugeReport& report);

// The course in whole degrees, 0..359, of an OBS disk or ADF card that stands `steps` (0..1084) against the course.
int course_of_disk(std::uint16_t steps);

// Bytes 7, 8 of the reports of VOR and ADF indicators: the position of the disk or card.
inline constexpr int kReportDisk = 7;

}  // namespace run
