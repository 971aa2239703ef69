#include "run/engine_cluster_gauge.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "run_world.h"

namespace {

using run_test::RunWorld;
using Sent = RunWorld::Sent;

constexpr int kId = 9;

struct ClusterGauge : testing::Test {
    RunWorld world;

    // Needle k of the order of the commands gets plate k + 1, which adds 10 * k to the value: a plate that is mixed up
    // shows.
    ClusterGauge() {
        for (int needle = 0; needle < 8; ++needle) {
            const std::int16_t number = world.add_plate(0, 500);
            for (const std::size_t item : {2U, 3U, 4U, 5U}) {
                world.tables.plates[static_cast<std::size_t>(number)].PlatePosition[item] =
                    static_cast<std::int16_t>(world.tables.plates.back().PlatePosition[item] + 10 * needle);
            }
        }
        tables::GaugeRow& row = world.add_gauge(kId, 8, 299);
        row.GaugeClass1 = 1;
        row.GaugeSeqNr1 = 2;
        row.GaugePlate1 = 3 * 256 + 4;
        row.GaugeClass2 = 5;
        row.GaugeSeqNr2 = 6;
        row.GaugePlate2 = 7 * 256 + 8;
        world.set_value(46, 100, 1);
        world.set_value(46, 110, 2);
        for (int function = 40; function <= 45; ++function) {
            world.set_value(function, 120 + 10 * (function - 40));
        }
    }
};

TEST_F(ClusterGauge, four_ticks_serve_the_eight_needles_with_their_plates) {
    world.status.cmdRun_Click();
    world.tick(4);
    const std::vector<Sent> expected = {
        {kId, 6, 120 + 20},  {kId, 9, 130 + 30},  {kId, 10, 140 + 40}, {kId, 11, 150 + 50},
        {kId, 12, 160 + 60}, {kId, 13, 170 + 70}, {kId, 4, 100},       {kId, 5, 110 + 10},
    };
    EXPECT_EQ(world.take_frames(), expected);
    world.tick(4);
    EXPECT_EQ(world.take_frames(), expected) << "changed or not";
    world.set_value(44, 10000);
    world.tick(4);
    const std::vector<Sent> sent = world.take_frames();
    EXPECT_EQ(sent[4], (Sent{kId, 12, 500 + 60})) << "limited to the plate";
}

TEST_F(ClusterGauge, an_oil_pressure_below_zero_is_read_as_an_unsigned_word_and_nothing_else_is) {
    world.tables.plates[6].PlateValue = {0, 2, 0, 65535, 0, 65535};
    world.tables.plates[6].PlatePosition = {0, 2, 0, 655, 0, 655};
    world.set_value(43, -32768);
    world.set_value(42, -1);
    world.status.cmdRun_Click();
    world.tick(1);
    world.take_frames();
    world.tick(1);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{kId, 10, 40}, {kId, 11, 327}}));
}

TEST_F(ClusterGauge, a_needle_without_a_value_or_a_plate_stays_and_its_neighbours_go_on) {
    world.tables.functions[41].FunctionShortName = "";  // no such function
    world.tables.functions[46].FunctionShortName = "";
    world.tables.gauges[kId].GaugeSeqNr2 = 200;  // no such plate
    world.tables.gauges[kId].GaugePlate2 = static_cast<std::int16_t>(200 * 256 + 8);
    world.set_value(40, std::nan(""));
    world.set_value(45, std::numeric_limits<double>::infinity());
    world.status.cmdRun_Click();
    EXPECT_EQ(world.times_shown("empty function, Function #:  41"), 1);
    world.machine.boxes.forget_shown();
    world.tick(4);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{kId, 10, 140 + 40}, {kId, 13, 500 + 70}}));
    EXPECT_TRUE(world.machine.boxes.shown().empty()) << world.last_shown();
}

TEST_F(ClusterGauge, a_position_that_no_frame_can_carry_asks_and_the_second_needle_goes_on) {
    world.tables.plates[5].PlateValue = {0, 21, 0, 500};  // its points end in an endless slope
    for (std::size_t item = 4; item <= 24; ++item) {
        world.tables.plates[5].PlateValue[item] = static_cast<double>(item) - 4;
    }
    world.tables.plates[5].PlatePosition[24] = -32768;
    world.tables.plates[5].PlatePosition[25] = 32767;
    world.status.cmdRun_Click();
    world.tick(1);
    world.take_frames();
    world.tick(1);
    EXPECT_EQ(world.times_shown("Error 10"), 1);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{kId, 11, 150 + 50}}));
}

TEST_F(ClusterGauge, its_lights_follow_the_main_bus) {
    world.set_value(9, 28);
    world.status.cmdRun_Click();
    world.tick(4);
    EXPECT_EQ(world.take_values(kId, 8), std::vector<int>{128});
}

}  // namespace
