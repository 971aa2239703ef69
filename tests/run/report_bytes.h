#pragma once

#include <string>
#include <utility>
#include <vector>

#include "bus/frames.h"
#include "run_world.h"

namespace run_test {

// A report of a gauge with its tags (0 = none); `bytes` are pairs of byte number (from 1) and value.
inline std::string report_bytes(int id, int type, char first_tag, char second_tag,
                                const std::vector<std::pair<int, int>>& bytes) {
    std::string report(bus::kReportLength, '\0');
    const auto set = [&report](int number, int value) {
        report[static_cast<std::size_t>(number - 1)] = static_cast<char>(value);
    };
    set(bus::kReportGaugeIdByte, id);
    set(bus::kReportTypeByte, type);
    set(bus::kReportFirstTagByte, first_tag);
    set(bus::kReportSecondTagByte, second_tag);
    for (const auto& [number, value] : bytes) {
        set(number, value);
    }
    set(static_cast<int>(bus::kReportLength), bus::kReportEnd);
    return report;
}

// Lets a report come in, and one tick pass behind it.
inline void send_report(RunWorld& world, const std::string& report) {
    world.wire.deliver(report);
    world.tick();
}

}  // namespace run_test
