// Both ends of the demo together: the functions of its configuration, read by the program's own port layer, against the
// truth of the flight model.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <set>

#include "panel/panel_host.h"
#include "platform/manual/manual_platform.h"
#include "simhost/simulator.h"
#include "simhost/units.h"
#include "simlink/ipc_client.h"
#include "simlink/sim_com.h"
#include "tables/configuration_store.h"

namespace {

using simhost::Aircraft;

constexpr std::chrono::milliseconds kCycle{20};
// Space that the simulator keeps for its clients without a meaning of its own.
constexpr int kFreeAreaFirst = 0x66C0;
constexpr int kFreeAreaLast = 0x66FF;
constexpr int kJoystickButtons = 0x3340;

// Places of aircraft with more engines, tanks or surfaces; this one leaves them at 0.
bool is_absent(std::int32_t offset) {
    static const std::set<std::int32_t> kAbsent = {0x0924, 0x0926, 0x0928, 0x092C, 0x092E, 0x0930, 0x0950,
                                                   0x0952, 0x0956, 0x0958, 0x09B0, 0x2500, 0x0B74, 0x0B84,
                                                   0x0B8C, 0x0B9C, 0x0BA4, 0x0BD0, 0x0BD4, 0x0BD8};
    return kAbsent.contains(offset);
}

class DemoFunctions : public testing::Test {
  protected:
    DemoFunctions() {
        machine_.sim_transport.server = [this](std::uint8_t* block, std::size_t size) {
            return simulator_.answer(block, size);
        };
        machine_.boxes.default_answer.answer = platform::Answer::yes;
        std::ifstream file(PROJECT_ROOT "/demo/Default MS-FS.cfg", std::ios::binary);
        const std::string name(tables::kDefaultConfigFileName);
        machine_.files.contents[name] = {std::istreambuf_iterator<char>(file), {}};
        tables_->ProgramName = tables::kProgramName;
        tables_->ConfigFileName = name;
        tables::ConfigurationStore(*tables_, machine_.files, machine_.boxes, machine_.wall_clock).LoadConfiguration();
        EXPECT_EQ(tables_->ConfigError, 0);
        client_.IpcInit();
        EXPECT_TRUE(client_.IpcOpen(0, client_.IpcResult));
        open_all();
        sim_com_.RunSimcom();
    }

    static std::int32_t offset_of(const tables::FunctionRow& row, int sequence) {
        const std::int32_t offsets[] = {row.FunctionOffset1, row.FunctionOffset2, row.FunctionOffset3,
                                        row.FunctionOffset4};
        return offsets[sequence - 1];
    }

    void open_all() {
        for (int number = 1; number < tables::kFunctionRows; ++number) {
            const tables::FunctionRow& row = tables_->functions[static_cast<std::size_t>(number)];
            for (std::uint8_t sequence = 1; sequence <= 4; ++sequence) {
                if (!row.FunctionShortName.empty() && row.FunctionType != tables::kFunctionTypeMacro &&
                    offset_of(row, sequence) != 0) {
                    std::uint8_t opened = sequence;
                    const std::int16_t port = sim_com_.OpenSimPort(static_cast<std::int16_t>(number), opened);
                    sim_com_.EnableReadSimPort(port);
                    ports_[{number, sequence}] = port;
                }
            }
        }
    }

    void fly(std::chrono::milliseconds time) {
        for (std::chrono::milliseconds gone{0}; gone < time; gone += kCycle) {
            simulator_.step(kCycle);
            machine_.loop.advance(kCycle);
        }
    }

    double value(int function, int sequence = 1) {
        float read = -99999;
        sim_com_.GetPort(ports_.at({function, sequence}), read);
        return static_cast<double>(read);
    }

    simhost::Simulator simulator_;
    platform::manual::ManualPlatform machine_;
    platform::Platform platform_ = machine_.platform();
    std::unique_ptr<tables::CoreTables> tables_ = std::make_unique<tables::CoreTables>();
    simlink::IpcClient client_{machine_.sim_transport};
    panel::PanelHost panels_;
    simlink::SimCom sim_com_{*tables_, client_, platform_, panels_};
    std::map<std::pair<int, int>, std::int16_t> ports_;
};

// What the port layer must give for a function, worked out from the aircraft alone.
struct Truth {
    int function;
    int sequence;
    const char* what;
    double tolerance;
    double (*value)(const Aircraft& aircraft);
};

constexpr Truth kTruths[] = {
    {1, 1, "pressure, inHg", 0.01,
     [](const Aircraft& a) { return a.instruments.altimeter_setting_mb / simhost::kMillibarPerInHg; }},
    {2, 1, "airspeed, kt", 0.02, [](const Aircraft& a) { return a.indicated_airspeed_knots(); }},
    {3, 1, "climb, ft/min", 2, [](const Aircraft& a) { return a.instruments.variometer_mps() / simhost::kMpsPerFpm; }},
    {4, 1, "altitude, ft", 1.5,
     [](const Aircraft& a) {
         const double error_mb = a.instruments.altimeter_setting_mb - a.weather.sea_level_pressure_mb();
         return a.airframe.altitude_m() / simhost::kMetresPerFoot + 27.3 * error_mb;
     }},
    {5, 1, "pitch, nose down", 0.01, [](const Aircraft& a) { return -a.airframe.pitch_deg(); }},
    {6, 1, "bank, to the left", 0.01, [](const Aircraft& a) { return -a.airframe.bank_deg(); }},
    {7, 1, "heading", 0.01, [](const Aircraft& a) { return simhost::wrap180(a.airframe.heading_deg()); }},
    {9, 1, "main bus, V", 0.001, [](const Aircraft& a) { return a.electrical.main_bus_volts(); }},
    {9, 2, "avionics bus, V", 0.001, [](const Aircraft& a) { return a.electrical.avionics_bus_volts(); }},
    {11, 1, "heading bug", 0.02, [](const Aircraft& a) { return simhost::wrap180(a.autopilot.heading_bug_deg); }},
    {13, 1, "outside air, C", 0.02, [](const Aircraft& a) { return a.weather.temperature_c(a.airframe.altitude_m()); }},
    {16, 1, "compass", 0.01, [](const Aircraft& a) { return a.instruments.compass_deg(); }},
    {17, 1, "elevator trim", 1, [](const Aircraft& a) { return a.controls.elevator_trim * 16383; }},
    {20, 1, "COM1", 0, [](const Aircraft& a) { return double{1.0} * simhost::bcd_number(a.radios.com1_active); }},
    {22, 1, "NAV1", 0, [](const Aircraft& a) { return double{1.0} * simhost::bcd_number(a.radios.nav1_active); }},
    {26, 1, "transponder", 0,
     [](const Aircraft& a) { return double{1.0} * simhost::bcd_number(a.radios.transponder); }},
    {27, 1, "DME1, nm", 0.06, [](const Aircraft& a) { return a.navigation.nav1.dme_nm; }},
    {28, 2, "DME2, kt", 0.06, [](const Aircraft& a) { return a.navigation.nav2.dme_knots; }},
    {29, 2, "DME2, min", 0.01, [](const Aircraft& a) { return a.navigation.nav2.dme_seconds / 60; }},
    {31, 1, "ADF1 bearing", 0.01, [](const Aircraft& a) { return a.navigation.adf1.relative_bearing_deg; }},
    {31, 2, "ADF2 bearing", 0.01, [](const Aircraft& a) { return a.navigation.adf2.relative_bearing_deg; }},
    // A negative byte reads one too high by the rule for bytes.
    {33, 1, "localizer needle", 1.6, [](const Aircraft& a) { return a.navigation.nav1.needle; }},
    {34, 1, "slope needle", 1.6, [](const Aircraft& a) { return a.navigation.nav1.slope_needle; }},
    {35, 1, "to or from", 0, [](const Aircraft& a) { return double{1.0} * a.navigation.nav1.to_from; }},
    {39, 1, "bearing to VOR1", 1, [](const Aircraft& a) { return a.navigation.nav1.relative_bearing_deg - 0.5; }},
    {40, 1, "EGT, C", 0.06, [](const Aircraft& a) { return a.engine.exhaust_c(); }},
    {41, 1, "fuel flow, gal/h", 0.01, [](const Aircraft& a) { return a.engine.fuel_flow_gph(); }},
    {42, 1, "oil, C", 0.02, [](const Aircraft& a) { return a.engine.oil_temperature_c(); }},
    {43, 1, "oil, psi", 0.02, [](const Aircraft& a) { return a.engine.oil_pressure_psi(); }},
    {44, 1, "suction", 0.001, [](const Aircraft& a) { return a.engine.vacuum_in_hg(); }},
    {46, 1, "left tank, %", 0.001, [](const Aircraft& a) { return a.tanks.left_gal / 0.28; }},
    {46, 2, "right tank, %", 0.001, [](const Aircraft& a) { return a.tanks.right_gal / 0.28; }},
    {49, 1, "on ground", 0, [](const Aircraft& a) { return a.airframe.on_ground() ? 1.0 : 0.0; }},
    {50, 1, "radio altitude, ft", 0.01,
     [](const Aircraft& a) { return std::max(0.0, a.airframe.height_m()) / simhost::kMetresPerFoot; }},
    {51, 1, "RPM, hundreds", 0.001, [](const Aircraft& a) { return a.engine.rpm() / 100; }},
    {53, 1, "manifold, inHg", 0.002, [](const Aircraft& a) { return a.engine.manifold_in_hg(); }},
    {61, 1, "oil, F", 0.04, [](const Aircraft& a) { return a.engine.oil_temperature_c() * 1.8 + 32; }},
    {70, 1, "flaps, %", 0.02, [](const Aircraft& a) { return a.controls.flaps * 100; }},
    {72, 1, "gear, %", 0.02, [](const Aircraft& a) { return a.controls.gear * 100; }},
    {78, 1, "ground speed, kt", 0.01,
     [](const Aircraft& a) { return a.airframe.ground_speed_mps() / simhost::kMpsPerKnot; }},
    {86, 1, "g", 0.002, [](const Aircraft& a) { return a.airframe.load_factor(); }},
    {194, 1, "elevator", 1, [](const Aircraft& a) { return a.controls.elevator * 16383; }},
    {207, 1, "ground speed, kt", 0.01,
     [](const Aircraft& a) { return a.airframe.ground_speed_mps() / simhost::kMpsPerKnot; }},
};

TEST_F(DemoFunctions, scaled_values_tell_the_truth_about_the_aircraft_in_every_phase) {
    for (const simhost::PhaseRow& phase : simhost::phase_table()) {
        simulator_.jump_to(phase.phase);
        fly(std::chrono::milliseconds(4000));
        // One more cycle without a step, so that the answers are those of this moment.
        machine_.loop.advance(kCycle);
        for (const Truth& truth : kTruths) {
            EXPECT_NEAR(value(truth.function, truth.sequence), truth.value(simulator_.aircraft()),
                        truth.tolerance + 1e-4)
                << truth.what << ", function " << truth.function << " in " << phase.name;
        }
    }
    EXPECT_TRUE(machine_.boxes.shown().empty());
}

TEST_F(DemoFunctions, every_function_reads_a_value_of_the_simulator_or_of_its_free_area) {
    std::set<std::uint32_t> known;
    for (const simhost::OffsetRow& row : simulator_.map().rows()) {
        known.insert(row.offset);
        if (row.kind == simhost::OffsetKind::fixed32_32) {
            known.insert(row.offset + 4);  // the whole units alone
        }
    }
    for (const auto& [key, port] : ports_) {
        const tables::FunctionRow& row = tables_->functions[static_cast<std::size_t>(key.first)];
        const std::int32_t offset = offset_of(row, key.second);
        const bool free = (offset >= kFreeAreaFirst && offset <= kFreeAreaLast) || offset == kJoystickButtons;
        EXPECT_TRUE(free || is_absent(offset) || known.contains(static_cast<std::uint32_t>(offset)))
            << row.FunctionShortName << " " << key.second << " at " << std::hex << offset;
    }
}

TEST_F(DemoFunctions, values_keep_to_the_limits_that_the_functions_name_over_a_circuit) {
    std::map<std::pair<int, int>, std::pair<double, double>> seen;
    while (simulator_.model().script().finished_circuits() == 0) {
        simulator_.step(std::chrono::milliseconds(480));
        fly(2 * kCycle);
        for (const auto& [key, port] : ports_) {
            const double now = value(key.first, key.second);
            auto& range = seen.try_emplace(key, now, now).first->second;
            range = {std::min(range.first, now), std::max(range.second, now)};
        }
    }
    for (const auto& [key, range] : seen) {
        const tables::FunctionRow& row = tables_->functions[static_cast<std::size_t>(key.first)];
        if (row.FunctionMinimum == 0 && row.FunctionMaximum == 0) {
            continue;
        }
        // A missing station gives a distance of -1; functions with a mask give whole bytes.
        const bool apart = row.FunctionMask != 0 || key.first == 27 || is_absent(offset_of(row, key.second));
        EXPECT_TRUE(apart || range.first >= static_cast<double>(row.FunctionMinimum) - 0.01)
            << row.FunctionShortName << " " << key.second << " fell to " << range.first;
        EXPECT_TRUE(apart || range.second <= static_cast<double>(row.FunctionMaximum) + 0.01)
            << row.FunctionShortName << " " << key.second << " rose to " << range.second;
    }
    // The fixed functions that an instrument shows have all moved, but for knobs that the script leaves alone.
    const std::set<int> standing = {10, 12, 19, 25, 32, 37, 48, 202, 203, 204, 205, 206};
    for (int function = 1; function <= 50; ++function) {
        if (ports_.contains({function, 1}) && !standing.contains(function)) {
            const auto range = seen.at({function, 1});
            EXPECT_LT(range.first, range.second) << "function " << function;
        }
    }
}

}  // namespace
