#pragma once

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bus/frames.h"
#include "bus/gauge_bus.h"
#include "bus/port_set.h"
#include "panel/panel_host.h"
#include "panel/placeholder_panel.h"
#include "platform/manual/manual_platform.h"
#include "run/frm_status.h"
#include "run/instrument_table.h"
#include "simhost/block_server.h"
#include "simhost/offset_space.h"
#include "simlink/ipc_client.h"
#include "simlink/sim_com.h"
#include "tables/core_tables.h"

namespace run_test {

using std::chrono::milliseconds;

inline constexpr int kWire = 3;

// The run panel on a manual machine, with a simulator whose offsets a test sets and a wire whose frames it reads.
// Functions hold 64-bit floats without scaling; plate 0 gives a value 0..1000 as the position of the same number.
struct RunWorld {
    platform::manual::ManualPlatform machine;
    platform::Platform platform = machine.platform();
    std::unique_ptr<tables::CoreTables> held_tables = std::make_unique<tables::CoreTables>();
    tables::CoreTables& tables = *held_tables;
    std::unique_ptr<simhost::OffsetSpace> space = std::make_unique<simhost::OffsetSpace>();
    simhost::BlockServer server{*space};
    simlink::IpcClient client{machine.sim_transport};
    panel::PanelHost panels;
    simlink::SimCom sim_com{tables, client, platform, panels};
    bus::GaugeBus gauge_bus{platform, tables};
    bus::PortSet ports{machine.boxes, tables};
    run::frmStatus status{{platform, tables, sim_com, gauge_bus, ports, panels}};
    platform::manual::Wire& wire = machine.serial_ports.wire(kWire);

    RunWorld() {
        machine.sim_transport.server = [this](std::uint8_t* block, std::size_t size) {
            return server.answer(block, size).value;
        };
        client.IpcInit();
        client.IpcOpen(0, client.IpcResult);
        panels.add(sim_com);
        panels.add(status);
        for (int function = 1; function <= 50; ++function) {
            define_function(function);
        }
        add_plate(0, 1000);
        tables.GaugeBusPort1 = kWire;
        panels.show(status);
    }

    void define_function(int function) {
        tables::FunctionRow& row = tables.functions[static_cast<std::size_t>(function)];
        row.FunctionShortName = "f" + std::to_string(function);
        row.FunctionDataType = tables::kDouble;
        row.FunctionMultiplier = 1;
        row.FunctionDivider = 1;
        row.FunctionOffset1 = 0x4000 + function * 32;
        row.FunctionOffset2 = row.FunctionOffset1 + 8;
        row.FunctionOffset3 = row.FunctionOffset1 + 16;
        row.FunctionOffset4 = row.FunctionOffset1 + 24;
    }

    // What the simulator shows for a function.
    void set_value(int function, double value, int sequence_number = 1) {
        space->write_f64(offset(tables.functions[static_cast<std::size_t>(function)], sequence_number), value);
    }
    static std::uint32_t offset(const tables::FunctionRow& row, int sequence_number) {
        const std::int32_t offsets[] = {row.FunctionOffset1, row.FunctionOffset2, row.FunctionOffset3,
                                        row.FunctionOffset4};
        return static_cast<std::uint32_t>(offsets[sequence_number - 1]);
    }

    // A straight plate of values and positions lowest..highest; returns its number.
    std::int16_t add_plate(int lowest, int highest) {
        tables::Plate plate;
        plate.PlateValue[1] = plate.PlatePosition[1] = 2;
        plate.PlateValue[2] = plate.PlatePosition[2] = static_cast<std::int16_t>(lowest);
        plate.PlateValue[3] = plate.PlatePosition[3] = static_cast<std::int16_t>(highest);
        plate.PlateValue[4] = plate.PlatePosition[4] = plate.PlatePosition[2];
        plate.PlateValue[5] = plate.PlatePosition[5] = plate.PlatePosition[3];
        tables.plates.push_back(plate);
        return static_cast<std::int16_t>(tables.plates.size() - 1);
    }

    tables::GaugeRow& add_gauge(int id, int type, int function1 = 0, int function2 = 0) {
        tables::GaugeRow& row = tables.gauges[static_cast<std::size_t>(id)];
        row.GaugeType = static_cast<std::uint8_t>(type);
        row.GaugeFunction1 = static_cast<std::int16_t>(function1);
        row.GaugeSeqNr1 = 1;
        row.GaugeFunction2 = static_cast<std::int16_t>(function2);
        row.GaugeSeqNr2 = 1;
        return row;
    }

    void advance(int milliseconds_) { machine.loop.advance(milliseconds(milliseconds_)); }
    void tick(int count = 1) { advance(40 * count); }

    // The frames written since the last call: (id, command) and value, in order; empty text marks bytes that are no
    // frame.
    struct Sent {
        int id;
        int command;
        int value;
        bool operator==(const Sent&) const = default;
    };
    std::vector<Sent> take_frames() {
        std::vector<Sent> sent;
        const std::string bytes = std::exchange(wire.written, {});
        for (std::size_t at = 0; at + bus::kFrameLength <= bytes.size();) {
            const bus::DecodedFrame decoded = bus::decode_frame(std::string_view(bytes).substr(at, bus::kFrameLength));
            if (decoded.error == bus::FrameError::none) {
                sent.push_back({decoded.frame.gauge_id, decoded.frame.command, decoded.frame.value});
                at += bus::kFrameLength;
            } else {
                ++at;
            }
        }
        return sent;
    }
    // Without the polls, which come on most ticks.
    std::vector<Sent> take_frames_beside_polls() {
        std::vector<Sent> sent = take_frames();
        std::erase_if(sent, [](const Sent& frame) { return frame.command == bus::kCommandStatus; });
        return sent;
    }
    // Those of one gauge and command only.
    std::vector<int> take_values(int id, int command) {
        std::vector<int> values;
        for (const Sent& sent : take_frames()) {
            if (sent.id == id && sent.command == command) {
                values.push_back(sent.value);
            }
        }
        return values;
    }

    // A report of a device, with the tags of its type and the bytes given by their numbers; all others are 0.
    void report(int id, int type, const std::map<int, int>& bytes) {
        std::string telegram(bus::kReportLength, '\0');
        const run::InstrumentRow* const row = run::find_instrument(type);
        const auto set = [&telegram](int number, int value) {
            telegram[static_cast<std::size_t>(number - 1)] = static_cast<char>(value);
        };
        set(bus::kReportGaugeIdByte, id);
        set(bus::kReportTypeByte, type);
        set(bus::kReportFirstTagByte, row->first_tag);
        set(bus::kReportSecondTagByte, row->second_tag);
        set(static_cast<int>(bus::kReportLength), bus::kReportEnd);
        for (const auto& [number, value] : bytes) {
            set(number, value);
        }
        gauge_bus.on_report(bus::GaugeReport(telegram));
        advance(40);  // the simulator's next cycles take what was written
    }
    // What the simulator has for a function.
    double value_of(int function, int sequence_number = 1) const {
        const tables::FunctionRow& row = tables.functions[static_cast<std::size_t>(function)];
        return space->read_f64(offset(row, sequence_number));
    }

    std::string last_shown() const { return machine.boxes.shown().empty() ? "" : machine.boxes.shown().back(); }
    std::ptrdiff_t times_shown(const std::string& part) const {
        const auto& shown = machine.boxes.shown();
        return std::count_if(shown.begin(), shown.end(),
                             [&part](const std::string& text) { return text.find(part) != std::string::npos; });
    }
};

inline std::ostream& operator<<(std::ostream& out, const RunWorld::Sent& sent) {
    return out << "id " << sent.id << " command " << sent.command << " value " << sent.value;
}

}  // namespace run_test
