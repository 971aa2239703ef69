#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/devices/bus_controller.h"
#include "bench/devices/line_instrument.h"
#include "bench/face_print.h"
#include "tables/core_tables.h"

namespace bench {

class IoModule;

// One serial line with what hangs on it.
struct BenchLine {
    int port = 0;
    std::string role;  // "Gauge bus", "Engine cluster", ...
    std::unique_ptr<LineDevice> device;
    BusController* bus = nullptr;          // the device, when it is a controller with gauges
    LineInstrument* instrument = nullptr;  // the device, when it is an instrument itself
};

// All simulated hardware of one cockpit: a line for every port number of its configuration, and on the gauge bus a
// device for every gauge row, so that the bench is always what the configuration expects.
class DeviceSet {
  public:
    DeviceSet(platform::EventLoop& loop, const tables::CoreTables& tables, ReplyTiming timing = {});

    const std::vector<BenchLine>& lines() const { return lines_; }
    // Null when no line has the number.
    const BenchLine* line(int port) const;
    // The controller that has a device under this id, or null.
    BusController* bus_with(int id) const;
    // What is printed on a device's face; it stays with the device when its id changes.
    const FacePrint& print_of(const Device& device) const { return print_at(&device); }
    const FacePrint& print_of(const LineInstrument& instrument) const { return print_at(&instrument); }
    // Changes whenever devices come, go or change their id.
    std::uint64_t layout_version() const;

  private:
    void add_line(int port, const char* role, std::unique_ptr<LineDevice> device, BusController* bus);
    void add_instrument(int port, const char* role, std::unique_ptr<LineInstrument> instrument, FacePrint print);
    const FacePrint& print_at(const void* device) const;
    void print_faces(const tables::CoreTables& tables, BusController& bus);

    std::vector<BenchLine> lines_;
    std::map<const void*, FacePrint> prints_;
    FacePrint blank_print_;
};

// Stores in a module what its configuration expects of it: the types of its switches and the masters of its LEDs.
void set_up_io_module(IoModule& module, const tables::CoreTables& tables, int device_id);

// A small cockpit for a folder without a configuration: port 1 with one gauge of each type 1 to 6, ids 1 to 6.
void fill_standard_tables(tables::CoreTables& tables);

}  // namespace bench
