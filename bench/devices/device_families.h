#pragma once

#include <memory>
#include <span>

#include "bench/devices/bus_controller.h"
#include "bench/devices/device.h"

namespace bench {

// One type of device on the bus: what the bench makes for it, and which face the virtual cockpit draws.
struct DeviceFamily {
    int type;
    const char* face;  // name of a face of the page
    std::unique_ptr<Device> (*create)(platform::EventLoop& loop, Identity identity);
    // Gives a new device the set-up that its owner has stored in it, as the gauge's row tells; null for none.
    void (*set_up)(Device& device, const tables::GaugeRow& row) = nullptr;
};

// All simulated types, in ascending order.
std::span<const DeviceFamily> device_families();

// Gives a new device the set-up of its gauge's row.
void set_up_device(Device& device, const tables::GaugeRow& row);

// Hangs a device on the bus for every gauge row, with its set-up. Several transponders would each write their own code:
// of those only the last one is switched on.
void add_gauges(BusController& bus, const tables::CoreTables& tables);

// The row of a type. A type without a row gets a device that says who it is and does nothing else.
const DeviceFamily& device_family(int type);

}  // namespace bench
