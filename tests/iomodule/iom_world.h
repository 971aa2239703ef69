#pragma once

#include <map>

#include "iomodule/frm_status_iom.h"
#include "iomodule/iom_rows.h"
#include "iomodule/led_output.h"
#include "iomodule/switch_action.h"
#include "simlink/sim_offsets.h"
#include "tests/run/run_world.h"

namespace iom_test {

inline constexpr int kFirstWire = 5;
inline constexpr int kSecondWire = 6;

// A run panel with both modules beside it, whose ends of the lines are in the test's hand. Functions 1 to 50 as in
// RunWorld, with a range of 0 to 100.
struct IomWorld : run_test::RunWorld {
    platform::manual::Wire& line1 = machine.serial_ports.wire(kFirstWire);
    platform::manual::Wire& line2 = machine.serial_ports.wire(kSecondWire);
    iomodule::frmStatusIOM module1{{platform, tables, sim_com, gauge_bus, ports, panels}};
    iomodule::frmstatusIOM2 module2{{platform, tables, sim_com, gauge_bus, ports, panels}};

    IomWorld() {
        panels.add(module1);
        panels.add(module2);
        status.set_participant(run::ParticipantPlace::iom1, &module1);
        status.set_participant(run::ParticipantPlace::iom2, &module2);
        tables.IomPort1 = kFirstWire;
        tables.iom.resize(1);
        for (int function = 1; function <= 50; ++function) {
            set_range(function, 0, 100);
        }
    }
    ~IomWorld() {
        status.set_participant(run::ParticipantPlace::iom1, nullptr);
        status.set_participant(run::ParticipantPlace::iom2, nullptr);
    }

    tables::FunctionRow& function(int number) { return tables.functions[static_cast<std::size_t>(number)]; }
    void set_range(int number, float lowest, float highest) {
        function(number).FunctionMinimum = lowest;
        function(number).FunctionMaximum = highest;
    }

    // Adds a row of module 1; the caller fills in the rest.
    tables::IomRow& add_row(int type, int signal, int function_number, int device = 1000) {
        tables::IomRow& row = tables.iom.emplace_back();
        row.IomDeviceId = static_cast<std::int16_t>(device);
        row.IomSignalType = static_cast<std::int16_t>(type);
        row.IomSignalNumber = static_cast<std::int16_t>(signal);
        row.IomFunction = static_cast<std::int16_t>(function_number);
        row.IomSeqNr = 1;
        tables.IomRowCount = static_cast<std::int16_t>(tables.iom.size());
        return row;
    }
    // On writes `on` percent of the function, off `off` percent.
    tables::IomRow& add_switch(int signal, int function_number, float on = 100, float off = 0, int device = 1000) {
        tables::IomRow& row = add_row(iomodule::kSignalSwitch, signal, function_number, device);
        row.IomValueA = on;
        row.IomValueB = off;
        return row;
    }
    tables::IomRow& add_led(int signal, int function_number, unsigned conditions = iomodule::kLedOnAtMaximum) {
        tables::IomRow& row = add_row(iomodule::kSignalLed, signal, function_number);
        row.IomKeyOffOn = static_cast<std::int16_t>(conditions);
        return row;
    }
    tables::IomRow& add_input(int signal, int function_number, int lowest, int centre, int highest, int deadband = 0) {
        tables::IomRow& row = add_row(iomodule::kSignalAnalogue, signal, function_number);
        row.IomValueA = static_cast<float>(lowest);
        row.IomValueB = static_cast<float>(centre);
        row.IomValueC = static_cast<std::int16_t>(highest);
        row.IomKeyOnOff = static_cast<std::int16_t>(deadband);
        return row;
    }

    void start() {
        status.cmdRun_Click();
        advance(100);
        line1.written.clear();
        line2.written.clear();
    }

    // A telegram with these switches on and these raw values of inputs.
    static std::string telegram(const std::vector<int>& on = {}, const std::map<int, int>& inputs = {}) {
        std::string bytes(iomodule::kTelegramLength, '\0');
        bytes.back() = '\xFF';
        for (const int number : on) {
            bytes[static_cast<std::size_t>(5 + number / 8)] |= static_cast<char>(128 >> number % 8);
        }
        for (const auto& [number, value] : inputs) {
            bytes[static_cast<std::size_t>(12 + number / 2)] |=
                static_cast<char>(value / 256 << (number % 2 == 0 ? 4 : 0));
            bytes[static_cast<std::size_t>(16 + number)] = static_cast<char>(value % 256);
        }
        return bytes;
    }
    // Sends a telegram right behind a cycle, as a module does, and gives the simulator time to take what comes of it.
    void send(const std::string& bytes) { send_to(line1, bytes); }
    void send_to(platform::manual::Wire& line, const std::string& bytes) {
        const int writes = line.writes;
        for (int wait = 0; wait < 45 && line.writes == writes; ++wait) {
            advance(1);
        }
        line.deliver(bytes);
        advance(60);
    }
    void show(const std::vector<int>& on, const std::map<int, int>& inputs = {}) { send(telegram(on, inputs)); }

    // The commands on a line since the last call, as (command, value); one that goes to another device than 10 counts
    // as command -1.
    using Commands = std::vector<std::pair<int, int>>;
    Commands take_commands(platform::manual::Wire& line) {
        Commands commands;
        const std::string bytes = std::exchange(line.written, {});
        for (std::size_t at = 0; at + bus::kFrameLength <= bytes.size();) {
            const bus::DecodedFrame decoded = bus::decode_frame(std::string_view(bytes).substr(at, bus::kFrameLength));
            if (decoded.error == bus::FrameError::none) {
                commands.emplace_back(decoded.frame.gauge_id == iomodule::kCommandDevice ? decoded.frame.command : -1,
                                      decoded.frame.value);
                at += bus::kFrameLength;
            } else {
                ++at;
            }
        }
        return commands;
    }
    // The LED commands alone.
    Commands take_leds() {
        Commands commands = take_commands(line1);
        std::erase_if(commands, [](const auto& command) { return command.first != iomodule::kCommandLed; });
        return commands;
    }
};

}  // namespace iom_test
