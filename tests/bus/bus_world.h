#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bus/gauge_bus.h"
#include "bus/port_set.h"
#include "platform/manual/manual_platform.h"
#include "tables/core_tables.h"

namespace bus_test {

inline constexpr int kWire = 3;

// The gauge bus on a manual machine, with its controller on COM3.
struct BusWorld {
    platform::manual::ManualPlatform machine;
    std::unique_ptr<tables::CoreTables> held_tables = std::make_unique<tables::CoreTables>();
    tables::CoreTables& tables = *held_tables;
    bus::GaugeBus gauge_bus{machine.platform(), tables};
    bus::PortSet ports{machine.boxes, tables};
    platform::manual::Wire& wire = machine.serial_ports.wire(kWire);

    BusWorld() {
        tables.GaugeBusPort1 = kWire;
        ports.set_owner(bus::PortPlace::gauge_bus, &gauge_bus);
    }

    void advance(int milliseconds) { machine.loop.advance(std::chrono::milliseconds(milliseconds)); }
    const std::vector<std::string>& shown() const { return machine.boxes.shown(); }
};

inline std::string bytes_of(const std::vector<int>& values) {
    std::string bytes;
    for (const int value : values) {
        bytes.push_back(static_cast<char>(value));
    }
    return bytes;
}

}  // namespace bus_test
