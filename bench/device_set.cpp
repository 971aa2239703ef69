#include "bench/device_set.h"

#include <algorithm>
#include <array>

#include "bench/devices/device_families.h"
#include "bench/devices/engine_cluster.h"
#include "bench/devices/io_module.h"
#include "bench/devices/yoke.h"
#include "bus/gauge_bus.h"
#include "iomodule/iom_rows.h"

namespace bench {

namespace {

using tables::CoreTables;

struct PortRole {
    std::int16_t CoreTables::*number;
    const char* role;
};

// Lines whose devices are not simulated yet; they take everything and say nothing.
constexpr std::array<PortRole, 3> kSilentPorts = {{
    {&CoreTables::GaugeBusPort2, "Gauge bus 2"},
    {&CoreTables::GaugeBusPort3, "Gauge bus 3"},
    {&CoreTables::GaugeBusPort4, "Gauge bus 4"},
}};

struct ModuleRole {
    std::int16_t CoreTables::*port;
    const char* role;
    int device_id;
};
constexpr std::array<ModuleRole, 2> kModules = {{
    {&CoreTables::IomPort1, "IO module 1", bus::kIoModule1Id},
    {&CoreTables::IomPort2, "IO module 2", bus::kIoModule2Id},
}};

constexpr std::array<PortRole, 2> kYokes = {{{&CoreTables::YokePort1, "Yoke 1"}, {&CoreTables::YokePort2, "Yoke 2"}}};

}  // namespace

void set_up_io_module(IoModule& module, const CoreTables& tables, int device_id) {
    for (const tables::IomRow& row : tables.iom) {
        if (row.IomDeviceId != device_id || row.IomSignalNumber < 0) {
            continue;
        }
        if (row.IomSignalType == iomodule::kSignalLed && row.IomSignalNumber < iomodule::kLeds) {
            module.set_masters(row.IomSignalNumber, row.IomKeyOnOff);
        } else if ((row.IomSignalType == iomodule::kSignalSwitch ||
                    row.IomSignalType == iomodule::kSignalSwitchOfOld) &&
                   row.IomSignalNumber < iomodule::kSwitches) {
            module.set_type(row.IomSignalNumber, row.IomValueC);
        }
    }
}

DeviceSet::DeviceSet(platform::EventLoop& loop, const CoreTables& tables, ReplyTiming timing) {
    if (tables.GaugeBusPort1 > 0) {
        auto controller = std::make_unique<BusController>(loop, timing);
        BusController& bus = *controller;
        add_gauges(bus, tables);
        print_faces(tables, bus);
        add_line(tables.GaugeBusPort1, "Gauge bus", std::move(controller), &bus);
    }
    if (tables.ClusterPort > 0 && line(tables.ClusterPort) == nullptr) {
        add_instrument(tables.ClusterPort, "Engine cluster", std::make_unique<EngineCluster>(loop, timing),
                       print_engine_cluster(tables));
    }
    for (const ModuleRole& place : kModules) {
        const int port = tables.*place.port;
        if (port > 0 && line(port) == nullptr) {
            auto module = std::make_unique<IoModule>(loop, timing);
            set_up_io_module(*module, tables, place.device_id);
            add_instrument(port, place.role, std::move(module), print_io_module(tables, place.device_id, place.role));
        }
    }
    for (const PortRole& place : kYokes) {
        const int port = tables.*place.number;
        if (port > 0 && line(port) == nullptr) {
            add_instrument(port, place.role, std::make_unique<Yoke>(loop, timing), print_yoke(place.role));
        }
    }
    for (const PortRole& place : kSilentPorts) {
        const int port = tables.*place.number;
        if (port > 0 && line(port) == nullptr) {
            add_line(port, place.role, std::make_unique<SilentDevice>(loop), nullptr);
        }
    }
}

void DeviceSet::add_line(int port, const char* role, std::unique_ptr<LineDevice> device, BusController* bus) {
    lines_.push_back({port, role, std::move(device), bus});
}

void DeviceSet::add_instrument(int port, const char* role, std::unique_ptr<LineInstrument> instrument,
                               FacePrint print) {
    LineInstrument* const shown = instrument.get();
    prints_[shown] = std::move(print);
    lines_.push_back({port, role, std::move(instrument), nullptr, shown});
}

void DeviceSet::print_faces(const CoreTables& tables, BusController& bus) {
    for (int id = 1; id < tables::kGaugeRows; ++id) {
        if (const Device* device = bus.device(id)) {
            prints_[device] = print_face(tables, tables.gauges[static_cast<std::size_t>(id)]);
        }
    }
}

const BenchLine* DeviceSet::line(int port) const {
    const auto found =
        std::find_if(lines_.begin(), lines_.end(), [port](const BenchLine& line) { return line.port == port; });
    return found == lines_.end() ? nullptr : &*found;
}

BusController* DeviceSet::bus_with(int id) const {
    for (const BenchLine& line : lines_) {
        if (line.bus != nullptr && line.bus->device(id) != nullptr) {
            return line.bus;
        }
    }
    return nullptr;
}

const FacePrint& DeviceSet::print_at(const void* device) const {
    const auto found = prints_.find(device);
    return found == prints_.end() ? blank_print_ : found->second;
}

std::uint64_t DeviceSet::layout_version() const {
    std::uint64_t version = 0;
    for (const BenchLine& line : lines_) {
        version += line.bus == nullptr ? 0 : line.bus->layout_version();
    }
    return version;
}

void fill_standard_tables(CoreTables& tables) {
    constexpr int kStandardFunction = 51;
    constexpr std::int16_t kScaleEnd = 945;  // 315 degrees
    tables::SetConstants(tables);
    tables.GaugeBusPort1 = 1;
    tables.functions[kStandardFunction].FunctionShortName = "Percent";
    tables::Plate plate;
    plate.PlateName = "0-100 %";
    plate.PlateValue[1] = 1;
    for (const std::size_t item : {3U, 5U}) {
        plate.PlateValue[item] = 100;
        plate.PlatePosition[item] = kScaleEnd;
    }
    tables.plates = {plate};
    for (std::uint8_t type = 1; type <= 6; ++type) {
        tables::GaugeRow& row = tables.gauges[type];
        row.GaugeType = type;
        row.GaugeModel = 1;
        row.GaugeVersion = 1;
        row.GaugeFunction1 = kStandardFunction;
        row.GaugeSeqNr1 = 1;
        row.GaugeFunction2 = kStandardFunction;
        row.GaugeSeqNr2 = 2;
    }
}

}  // namespace bench
