#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/rig.h"

namespace {

using namespace rig;

constexpr int kClusterPort = 9;

// The whole program with a twin-engine cluster: the functions of the engine and the fuel, each on a straight plate of
// its own from the function's minimum to its maximum.
struct ClusterFlight : testing::Test {
    Rig rig;
    static constexpr std::array<std::int16_t, 5> kFunctions = {40, 41, 42, 43, 46};  // both offsets

    ClusterFlight() {
        rig.connect_cluster(kClusterPort);
        rig.start_run();
        rig.cockpit.panels().show("frmStatus");
        rig.click("frmStatus", "cmdStop");
        tables::CoreTables& tables = rig.cockpit.tables();
        tables.ClusterPort = kClusterPort;
        tables.cluster = {};
        tables.cluster[9].ClusterSetting1 = 2;
        for (std::size_t row = 0; row < kFunctions.size(); ++row) {
            const auto number = static_cast<std::int16_t>(tables.plates.size());
            const tables::FunctionRow& function = tables.functions[static_cast<std::size_t>(kFunctions[row])];
            tables::Plate plate;
            plate.PlateValue = {0,
                                1,
                                function.FunctionMinimum,
                                function.FunctionMaximum,
                                function.FunctionMinimum,
                                function.FunctionMaximum};
            plate.PlatePosition = {0, 1, 20, 945, 20, 945};
            tables.plates.push_back(plate);
            tables.cluster[row] = {row < 2 ? std::int16_t{1} : std::int16_t{0}, kFunctions[row], number};
        }
        rig.cockpit.sim_com().CloseAllPorts();  // as the configuration panels do
        rig.cockpit.ports().OpenAllPorts();
        rig.click("frmStatus", "cmdRun");
    }

    double value(std::size_t row, int engine) {
        const auto number = static_cast<std::size_t>(rig.cockpit.tables().cluster[row].ClusterSetting2);
        return simulator_value(rig.cockpit.tables().functions[number], engine, rig.sim());
    }
    // Whether every needle shows the simulator's value of now within one step.
    void expect_the_simulator(const std::string& moment) {
        for (std::size_t row = 0; row < kFunctions.size(); ++row) {
            for (const int engine : {1, 2}) {
                const int needle = static_cast<int>(row) + (engine == 2 ? 8 : 0);
                const auto plate = static_cast<std::size_t>(rig.cockpit.tables().cluster[row].ClusterSetting3);
                const double expected = plate_position(rig.cockpit.tables().plates[plate], value(row, engine));
                EXPECT_NEAR(rig.cluster.pointer_steps(needle), expected, 1.0)
                    << moment << ": needle " << needle << " for " << value(row, engine) << "\n"
                    << rig.story();
            }
        }
    }
};

TEST_F(ClusterFlight, needles_and_displays_show_the_simulator_and_survive_a_pulled_plug) {
    rig.fly();
    rig.advance(60s);
    rig.hold();
    rig.advance(3s);
    expect_the_simulator("in flight");
    EXPECT_EQ(rig.text("frmStatusEC", "boxUnitReply"), "Version: 2.1");
    EXPECT_EQ(rig.text("frmStatusEC", "boxNrOfUpdates"), "25");
    EXPECT_TRUE(rig.cluster.lights().displays_on());
    const std::string shown = rig.cluster.display_text(1);
    EXPECT_NEAR(std::atof(shown.c_str()), std::min(value(0, 1), 999.0), 1.0) << shown;

    // Every value moves while the plug is out; the unit loses its supply too.
    rig.machine.boxes.leave_open = true;
    rig.machine.serial_ports.wire(kClusterPort).unplug();
    rig.machine.loop.post_after(10s, [this] {
        rig.cluster.power_cycle();
        rig.machine.serial_ports.wire(kClusterPort).plug();
    });
    rig.fly();
    rig.advance(30s);
    rig.hold();
    rig.advance(3s);
    EXPECT_EQ(rig.machine.boxes.shown().size(), 1U) << rig.boxes_shown();
    EXPECT_TRUE(rig.machine.boxes.open_boxes().empty());
    expect_the_simulator("after the outage");
    EXPECT_TRUE(rig.needles_settle_right());

    rig.machine.boxes.leave_open = false;
    rig.click("frmStatus", "cmdShowECStatus");
    EXPECT_EQ(rig.window("frmStatusEC"), panel::WindowState::shown);
    rig.cluster.knock(1, 40);
    rig.cockpit.cluster_panel().Recalibrate();
    rig.advance(4s);
    EXPECT_EQ(rig.cluster.recalibrations(), 1U);
    expect_the_simulator("after a recalibration");
}

}  // namespace
