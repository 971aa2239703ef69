// The biggest cockpit that the tables hold: 254 devices of all families on one bus.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <iterator>
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
constexpr int kClusterId = 37;

// Units that own the one code of the simulator, by their ids in the demo, and the state that shows it. All their copies
// bear the same code, one is switched on.
struct Transponder {
    int demo_id;
    const char* code;
};
constexpr Transponder kTransponders[] = {{29, "code1"}, {30, "code1"}, {31, "code"}};
constexpr int kOff = 1;
constexpr int kOn = 4;

const Transponder* transponder(int demo_id) {
    const auto* const found = std::find_if(std::begin(kTransponders), std::end(kTransponders),
                                           [demo_id](const Transponder& row) { return row.demo_id == demo_id; });
    return found == std::end(kTransponders) ? nullptr : found;
}

// Units that the program asks for their state, by their ids in the demo: all with a knob or a button but the clocks.
constexpr bool is_polled(int demo_id) {
    return demo_id == 1 || (demo_id >= 4 && demo_id <= 7) || (demo_id >= 12 && demo_id <= 16) ||
           (demo_id >= 29 && demo_id <= 36);
}

// A cockpit of copies: every device of the demo again and again until the ids are used up.
struct FullHouse : testing::Test {
    Rig rig{SimulatorAtStart::up, Instruments::all};
    std::array<int, kLastId + 1> model_of{};  // which device of the demo an id is a copy of
    std::array<int, kLastId + 1> reports{};
    std::uint64_t reports_taken = 0;
    int switched_on = 0;  // the transponder that is
    int reports_before_turn = 0;
    int highest_load = 0;  // bytes a second
    int warned_seconds = 0;

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

    double cluster_error(const ClusterNeedle& needle, const Picture& picture) {
        const tables::CoreTables& tables = rig.cockpit.tables();
        const double value = simulator_value(tables.functions[static_cast<std::size_t>(needle.function)],
                                             needle.sequence_number, rig.sim());
        return std::abs(picture.value(needle.state) -
                        plate_position(tables.plates[static_cast<std::size_t>(needle.plate)], value));
    }

    // Turns the code of all transponders to one that they have not had, and switches another of them on.
    void hand_the_code_over(int turn) {
        const int demo_id = kTransponders[static_cast<std::size_t>(turn) % std::size(kTransponders)].demo_id;
        switched_on = 0;
        for (int id = 1; id <= kLastId; ++id) {
            const int model = model_of[static_cast<std::size_t>(id)];
            if (transponder(model) == nullptr) {
                continue;
            }
            switched_on = switched_on == 0 && model == demo_id ? id : switched_on;
            bench::Device& device = *rig.controller.device(id);
            device.operate("digit4", 1);
            device.operate("rotary", switched_on == id ? kOn : kOff);
        }
        reports_before_turn = reports.at(static_cast<std::size_t>(switched_on));
    }

    // The values of a device that are looked at, and how many they are.
    int expect_device(int id, const std::string& moment) {
        const int demo_id = model_of[static_cast<std::size_t>(id)];
        Picture picture;
        rig.controller.device(id)->show(picture);
        const std::string who = moment + ": gauge " + std::to_string(id) + " as " + std::to_string(demo_id);
        const Transponder* const unit = transponder(demo_id);
        if (unit != nullptr && id != switched_on) {
            EXPECT_EQ(picture.value(unit->code), -1) << who << " is switched off";
            return 1;
        }
        if (unit != nullptr) {
            EXPECT_GT(reports.at(static_cast<std::size_t>(id)), reports_before_turn) << who;
            EXPECT_EQ(picture.value(unit->code), bcd(rig.sim().read_u16(0x354))) << who;
        }
        int looked_at = unit != nullptr ? 1 : 0;
        for (const Expectation& row : kExpectations) {
            if (row.id == demo_id) {
                ++looked_at;
                EXPECT_LE(deviation(row, picture, rig.sim()), row.tolerance + 1e-6)
                    << who << " shows " << row.state << " " << picture.value(row.state) << " for "
                    << row.expected(rig.sim());
            }
        }
        for (const ClusterNeedle& needle : kClusterNeedles) {
            if (demo_id == kClusterId) {
                ++looked_at;
                EXPECT_LE(cluster_error(needle, picture), 1.0) << who << " " << needle.state;
            }
        }
        const int type = rig.cockpit.tables().gauges[static_cast<std::size_t>(id)].GaugeType;
        for (int needle = 1; needle <= (type == 3 || type == 5 || type == 6 ? 2 : 1) && type <= 6; ++needle) {
            ++looked_at;
            EXPECT_LE(needle_error(id, needle), 1.0) << who << " needle " << needle;
        }
        return looked_at;
    }
    void expect_the_simulator(const std::string& moment) {
        for (int id = 1; id <= kLastId; ++id) {
            EXPECT_GT(expect_device(id, moment), 0) << "nobody looks at gauge " << id;
        }
    }
    void note_bus_load() {
        const std::string load = rig.text("frmStatus", "boxBusLoad");  // advice follows a colon
        highest_load = std::max(highest_load, std::atoi(load.c_str()));
        warned_seconds += load.find(':') != std::string::npos ? 1 : 0;
    }
    // One poll a round; a tick that tells lights polls nobody, nor does one in which the trim wheel has its own word.
    void expect_reports_of_everybody(int ticks) {
        int slots = 0;
        for (int id = 1; id <= kLastId; ++id) {
            slots += is_polled(model_of[static_cast<std::size_t>(id)]) ? 1 : 0;
        }
        const int rounds = ticks / slots;
        for (int id = 1; id <= kLastId; ++id) {
            const int demo_id = model_of[static_cast<std::size_t>(id)];
            const int taken = reports.at(static_cast<std::size_t>(id));
            if (!is_polled(demo_id)) {
                EXPECT_EQ(taken, 0) << "gauge " << id << " as " << demo_id;
            } else if (transponder(demo_id) == nullptr) {
                EXPECT_LE(taken, rounds + 1) << "gauge " << id << " as " << demo_id;
                EXPECT_GE(taken, rounds * 3 / 4) << "gauge " << id << " as " << demo_id;
            }
        }
    }
};

TEST_F(FullHouse, an_hour_of_flight_leaves_every_device_with_the_simulators_values_and_no_report_missed) {
    build();
    rig.machine.boxes.leave_open = true;
    rig.fly();
    rig.advance(1s);
    const std::uint64_t asked_before = rig.controller.statistics().reports_out;
    const std::uint64_t taken_before = reports_taken;
    reports.fill(0);
    // A circuit of the simulator lasts about one and a half of them.
#ifdef NDEBUG
    constexpr int kMoments = 8;
#else
    constexpr int kMoments = 2;  // the builds that look for faults take ten times as long
#endif
    constexpr int kSecondsOfFlight = 400;
    constexpr int kSecondsOfRest = 50;  // a round of polls and of the clocks
    for (int turn = 1; turn <= kMoments; ++turn) {
        const std::string moment = "moment " + std::to_string(turn);
        hand_the_code_over(turn);
        for (int second = 0; second < kSecondsOfFlight; ++second) {
            rig.advance(1s);
            note_bus_load();
        }
        rig.hold();
        rig.advance(std::chrono::seconds(kSecondsOfRest));
        expect_the_simulator(moment);
        rig.fly();
    }
    EXPECT_GE(rig.simulator.model().script().finished_circuits(), kMoments / 2);
    EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
    EXPECT_EQ(rig.text("frmStatus", "boxMissedTicks"), "0");
    EXPECT_EQ(rig.controller.statistics().bad_frames, 0U);
    EXPECT_EQ(rig.controller.frames_for_nobody(), 0U);
    EXPECT_NEAR(static_cast<double>(reports_taken - taken_before),
                static_cast<double>(rig.controller.statistics().reports_out - asked_before), 1.0);
    expect_reports_of_everybody(kMoments * (kSecondsOfFlight + kSecondsOfRest) * 1000 / kIntervalMs);
    // In the air so many needles are now and then more than the line carries. Then the panel says so, and frames come
    // late.
    EXPECT_GT(warned_seconds, 0);
    RecordProperty("highest_bytes_a_second", highest_load);
    RecordProperty("seconds_above_capacity", warned_seconds);
}

}  // namespace
