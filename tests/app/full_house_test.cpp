// The biggest cockpit that the tables hold: 254 devices of all families on one bus.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <string>

#include "bench/devices/device_families.h"
#include "tests/app/cockpit_expectations.h"

namespace {

using namespace rig;

constexpr int kLastId = 254;
constexpr int kDemoIds = 37;
// Devices that get values at every tick and leave no room for many of their kind, by their ids in the demo.
constexpr bool talks_at_every_tick(int demo_id) {
    return demo_id <= 4 || demo_id == 34 || demo_id == 37;
}
constexpr int kMostTalkers = 3;  // of a kind
constexpr int kIntervalMs = 200;

// A cockpit of copies: every device of the demo again and again until the ids are used up.
struct FullHouse : testing::Test {
    Rig rig{SimulatorAtStart::up, Instruments::all};
    std::array<int, kLastId + 1> model_of{};  // which device of the demo an id is a copy of
    std::array<int, kLastId + 1> reports{};
    std::uint64_t reports_taken = 0;

    void build() {
        rig.start_run();
        rig.cockpit.panels().show("frmStatus");
        rig.click("frmStatus", "cmdStop");
        tables::CoreTables& tables = rig.cockpit.tables();
        std::map<int, int> count;
        for (int id = 1, demo_id = 1; id <= kLastId; demo_id = demo_id % kDemoIds + 1) {
            if (talks_at_every_tick(demo_id) && count[demo_id] == kMostTalkers) {
                continue;
            }
            ++count[demo_id];
            model_of[static_cast<std::size_t>(id)] = demo_id;
            tables.gauges[static_cast<std::size_t>(id)] = tables.gauges[static_cast<std::size_t>(demo_id)];
            ++id;
        }
        bench::add_gauges(rig.controller, tables);
        tables.ProcessInterval = kIntervalMs;
        auto& bus = rig.cockpit.gauge_bus();
        bus.on_report = [this, handled = bus.on_report](const bus::GaugeReport& report) {
            ++reports_taken;
            ++reports.at(static_cast<std::size_t>(report.gauge_id()));
            handled(report);
        };
        rig.cockpit.sim_com().CloseAllPorts();  // as the configuration panels do
        rig.cockpit.ports().OpenAllPorts();
        auto& run_panel = rig.cockpit.run_panel();
        run_panel.SliderXferTimer.value = kIntervalMs;
        run_panel.SliderXferTimer.on_change();
        rig.click("frmStatus", "cmdRun");
    }

    double needle_error(int id, int needle) {
        const tables::CoreTables& tables = rig.cockpit.tables();
        const tables::GaugeRow& row = tables.gauges[static_cast<std::size_t>(id)];
        const int function = needle == 1 ? row.GaugeFunction1 : row.GaugeFunction2;
        const int plate = needle == 1 ? row.GaugePlate1 : row.GaugePlate2;
        if (function == 0) {
            return 0;
        }
        const double value = simulator_value(tables.functions[static_cast<std::size_t>(function)],
                                             needle == 1 ? row.GaugeSeqNr1 : row.GaugeSeqNr2, rig.sim());
        return std::abs(rig.gauge(id).needle_steps(needle) -
                        plate_position(tables.plates[static_cast<std::size_t>(plate)], value));
    }

    int expect_the_simulator(const std::string& moment) {
        int looked_at = 0;
        for (int id = 1; id <= kLastId; ++id) {
            const int demo_id = model_of[static_cast<std::size_t>(id)];
            Picture picture;
            rig.controller.device(id)->show(picture);
            for (const Expectation& row : kExpectations) {
                const bool spare = demo_id == 31 && picture.value("rotary") == 1;  // a transponder switched off
                if (row.id == demo_id && !spare) {
                    ++looked_at;
                    EXPECT_LE(deviation(row, picture, rig.sim()), row.tolerance + 1e-6)
                        << moment << ": gauge " << id << " (" << demo_id << ") shows " << row.state << " "
                        << picture.value(row.state) << " for " << row.expected(rig.sim());
                }
            }
            const int type = rig.cockpit.tables().gauges[static_cast<std::size_t>(id)].GaugeType;
            for (int needle = 1; needle <= (type == 3 || type == 5 || type == 6 ? 2 : 1) && type <= 6; ++needle) {
                ++looked_at;
                EXPECT_LE(needle_error(id, needle), 1.0) << moment << ": gauge " << id << " needle " << needle;
            }
        }
        return looked_at;
    }
};

TEST_F(FullHouse, an_hour_of_flight_leaves_every_device_with_the_simulators_values_and_no_report_missed) {
    build();
    rig.machine.boxes.leave_open = true;
    rig.fly();
    const std::uint64_t asked_before = rig.controller.statistics().reports_out;
    const std::uint64_t taken_before = reports_taken;
    constexpr int kMoments = 8;
    for (int moment = 1; moment <= kMoments; ++moment) {
        rig.advance(400s);
        rig.hold();
        rig.advance(50s);  // a round of polls and of the clocks
        EXPECT_GT(expect_the_simulator("moment " + std::to_string(moment)), 400);
        rig.fly();
    }
    EXPECT_GE(rig.simulator.model().script().finished_circuits(), 4);
    EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
    EXPECT_EQ(rig.text("frmStatus", "boxMissedTicks"), "0");
    EXPECT_EQ(rig.controller.statistics().bad_frames, 0U);
    EXPECT_EQ(rig.controller.frames_for_nobody(), 0U);
    EXPECT_NEAR(static_cast<double>(reports_taken - taken_before),
                static_cast<double>(rig.controller.statistics().reports_out - asked_before), 1.0);
    const std::string load = rig.text("frmStatus", "boxBusLoad");
    EXPECT_EQ(load.find("set"), std::string::npos) << load;
    RecordProperty("bus_load", load);
    // Everybody who is polled had a turn in every round.
    int polled = 0;
    for (int id = 1; id <= kLastId; ++id) {
        polled += reports.at(static_cast<std::size_t>(id)) > 0 ? 1 : 0;
    }
    EXPECT_GT(polled, 80);
    const double rounds = 3600.0 * 1000 / kIntervalMs / polled;
    for (int id = 1; id <= kLastId; ++id) {
        const int taken = reports.at(static_cast<std::size_t>(id));
        EXPECT_TRUE(taken == 0 || taken > rounds / 3) << "gauge " << id << " reported " << taken << " of " << rounds;
    }
}

}  // namespace
