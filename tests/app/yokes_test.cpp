// The demo's two yokes in the whole program, against columns with mass and hands on them.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/rig.h"

namespace {

using namespace rig;
using simhost::Phase;
using ::yoke::Axis;

struct Yokes : testing::Test {
    Rig rig{SimulatorAtStart::up, Instruments::needles_and_yokes};

    double function(int number) {
        return simulator_value(rig.cockpit.tables().functions[static_cast<std::size_t>(number)], 1, rig.sim());
    }
    void start_at(Phase phase) {
        rig.start_run();
        rig.fly();
        rig.simulator.jump_to(phase);
        rig.advance(6s);
    }
    // How far a push of that force moves yoke 1's ailerons from their centre.
    double way_of_push(double force) {
        rig.yoke1.push(Axis::ailerons, force);
        rig.advance(1500ms);
        const double way = std::fabs(rig.yoke1.position(Axis::ailerons) - 512);
        rig.yoke1.let_go();
        rig.advance(1500ms);
        return way;
    }
};

TEST_F(Yokes, a_hand_on_the_master_flies_the_aircraft_and_the_slave_goes_with_it) {
    start_at(Phase::cruise);
    rig.yoke1.hold(Axis::ailerons, 640);
    rig.advance(1s);
    EXPECT_NEAR(function(195), 16383 * 128 / 512.0, 200);
    EXPECT_NEAR(rig.yoke2.position(Axis::ailerons), 640, 40);
    const double bank = function(6);
    rig.advance(1500ms);
    EXPECT_LT(function(6), bank - 2) << "it rolls right, which is negative";
    rig.yoke1.let_go();
    rig.advance(1s);
    EXPECT_NEAR(rig.yoke1.position(Axis::ailerons), 512, 45);
    EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
}

TEST_F(Yokes, the_spring_is_stiffer_the_faster_it_flies) {
    start_at(Phase::climb);
    const double fast = way_of_push(60);
    const double fast_airspeed = rig.cockpit.tables().AircraftIAS;
    rig.simulator.jump_to(Phase::run_up);
    rig.advance(5s);
    const double slow = way_of_push(60);
    EXPECT_GT(fast_airspeed, 65);
    EXPECT_GT(slow, 2 * fast) << "at " << rig.cockpit.tables().AircraftIAS << " against " << fast_airspeed;
}

TEST_F(Yokes, the_stick_shakes_at_the_stall_and_the_autopilot_flies_by_itself_until_it_is_overruled) {
    start_at(Phase::slow_flight);
    double lowest = 9999, highest = 0;
    int shaken_s = 0;
    for (int second = 0; second < 90 && shaken_s < 2; ++second) {
        lowest = 9999, highest = 0;
        for (int moment = 0; moment < 100; ++moment) {
            rig.advance(10ms);
            lowest = std::min(lowest, rig.yoke1.position(Axis::elevator));
            highest = std::max(highest, rig.yoke1.position(Axis::elevator));
        }
        shaken_s = function(198) != 0 ? shaken_s + 1 : 0;
    }
    ASSERT_EQ(shaken_s, 2) << "no stall";
    EXPECT_GT(highest - lowest, 40);
    EXPECT_LT(highest - lowest, 300);

    rig.simulator.jump_to(Phase::cruise);
    for (int second = 0; second < 60 && function(191) == 0; ++second) {
        rig.advance(1s);
    }
    rig.advance(6s);
    ASSERT_EQ(function(191), 1);
    EXPECT_EQ(rig.text("frmStatusFFB", "boxY1Mode"), "Follow AP mode");
    rig.yoke1.push(Axis::elevator, 150);
    rig.advance(500ms);
    rig.yoke1.let_go();
    EXPECT_EQ(function(191), 0);
    EXPECT_EQ(rig.text("frmStatusFFB", "boxY1Mode"), "Force Feedback Mode");
}

TEST_F(Yokes, the_pilot_who_pushes_the_slave_becomes_master) {
    start_at(Phase::cruise);
    EXPECT_EQ(rig.text("frmStatusFFB", "boxAssignmentY2"), "Slave");
    rig.yoke2.push(Axis::elevator, -400);
    rig.advance(1s);
    rig.yoke2.let_go();
    rig.advance(200ms);
    EXPECT_EQ(rig.text("frmStatusFFB", "boxAssignmentY2"), "Master");
    EXPECT_EQ(rig.text("frmStatusFFB", "boxAssignmentY1"), "Slave");
    rig.advance(5s);
    rig.yoke2.hold(Axis::ailerons, 400);
    rig.advance(1s);
    EXPECT_NEAR(function(195), -16383 * 112 / 512.0, 200);
    EXPECT_NEAR(rig.yoke1.position(Axis::ailerons), 400, 40);
}

TEST_F(Yokes, a_yoke_that_is_pulled_out_comes_back_by_itself_with_its_forces_from_nothing) {
    start_at(Phase::cruise);
    platform::manual::Wire& line = rig.machine.serial_ports.wire(5);
    line.unplug();
    rig.advance(2s);
    EXPECT_EQ(rig.text("frmStatusFFB", "boxMotorsY1"), "Unknown: the yoke is not connected");
    rig.yoke1.power_cycle();
    line.plug();
    rig.advance(600ms);
    EXPECT_EQ(rig.text("frmStatusFFB", "boxMotorsY1"), "Yes: forces are rising");
    EXPECT_LT(rig.yoke1.column(Axis::ailerons).force(), 150);
    rig.advance(5s);
    EXPECT_EQ(rig.text("frmStatusFFB", "boxMotorsY1"), "Yes");
    EXPECT_TRUE(rig.yoke1.motor_on(Axis::elevator));
    EXPECT_GT(rig.yoke1.column(Axis::ailerons).force(), 200);
    EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
}

}  // namespace
