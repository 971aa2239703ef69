#pragma once

#include "bus/frames.h"
#include "run/run_context.h"

namespace run {

// The gauge table row that a report speaks for; null when the id has no gauge of the report's type, as after noise on
// the line.
inline tables::GaugeRow* reporting_gauge(RunContext& run, const bus::GaugeReport& report) {
    tables::GaugeRow& gauge = run.tables.gauges[static_cast<std::size_t>(report.gauge_id())];
    return gauge.GaugeType == report.GaugeType() ? &gauge : nullptr;
}

}  // namespace run
