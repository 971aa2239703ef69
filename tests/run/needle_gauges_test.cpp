#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "run_world.h"

namespace {

using run_test::RunWorld;
using Sent = RunWorld::Sent;

TEST(NeedleGauges, a_value_moves_both_needles_of_its_gauge_and_a_steady_one_sends_nothing) {
    RunWorld world;
    for (const int type : {3, 5, 6}) {
        world.add_gauge(10 + type, type, 40, 41);
    }
    world.set_value(40, 472.9);
    world.set_value(41, 300);
    world.status.cmdRun_Click();
    world.tick(2);
    // The first tick comes with the second answer of the simulator, so the values are there at once.
    const std::vector<Sent> expected = {{13, 5, 472}, {13, 6, 300}, {15, 5, 472},
                                        {15, 6, 300}, {16, 5, 472}, {16, 6, 300}};
    EXPECT_EQ(world.take_frames(), expected);
    world.set_value(40, 472.1);  // a fraction is no change
    world.tick(5);
    EXPECT_TRUE(world.take_frames().empty());
    world.set_value(41, 299.9);
    world.tick(2);
    EXPECT_EQ(world.take_values(13, 6), std::vector<int>{299});
}

TEST(NeedleGauges, a_position_is_limited_to_a_turn_and_a_value_to_its_plate) {
    RunWorld world;
    const std::int16_t wide = world.add_plate(-2000, 2000);
    world.add_gauge(1, 1, 40).GaugePlate1 = wide;
    world.add_gauge(2, 4, 40);
    world.status.cmdRun_Click();
    struct Case {
        double value;
        int wide_position;
        int position;
    };
    for (const Case& step : {Case{1500, 1079, 1000}, Case{-1500, 0, 0}, Case{500, 500, 500}, Case{1e30, 1079, 1000}}) {
        world.set_value(40, step.value);
        world.tick(2);
        const std::vector<Sent> expected = {{1, 5, step.wide_position}, {2, 5, step.position}};
        EXPECT_EQ(world.take_frames(), expected) << step.value;
    }
}

TEST(NeedleGauges, every_needle_is_sent_once_at_a_run_start) {
    RunWorld world;
    world.add_gauge(1, 3, 40, 41);
    for (int run = 0; run < 2; ++run) {
        world.status.cmdRun_Click();
        world.tick(4);
        EXPECT_EQ(world.take_frames().size(), 2U) << "run " << run;
        world.status.cmdStop_Click();
        world.tick(4);
        EXPECT_TRUE(world.take_frames().empty());
    }
}

TEST(NeedleGauges, a_gauge_without_function_or_plate_stays_still_and_disturbs_nobody) {
    RunWorld world;
    world.set_value(40, 111);
    world.set_value(41, 222);
    world.add_gauge(1, 3, 0, 41);                    // only the second needle is configured, on the first port
    world.add_gauge(2, 3, 40, 41).GaugePlate1 = 99;  // no such plate
    world.add_gauge(3, 2, 40).GaugePlate1 = -1;      // nor this; its display stays too
    world.add_gauge(4, 1);                           // nothing configured
    world.add_gauge(5, 1, 60);                       // an empty function
    world.add_gauge(6, 1, 40);
    world.status.cmdRun_Click();
    EXPECT_EQ(world.times_shown("Program calls an empty function, Function #:  60"), 1);
    world.tick(3);
    const std::vector<Sent> expected = {{1, 6, 222}, {2, 6, 222}, {6, 5, 111}};
    EXPECT_EQ(world.take_frames(), expected);
}

TEST(NeedleGauges, the_display_goes_out_every_tick_with_the_clamped_value) {
    RunWorld world;
    const std::int16_t plate = world.add_plate(0, 100);
    world.add_gauge(7, 2, 40).GaugePlate1 = plate;
    world.set_value(40, 45.6);
    world.status.cmdRun_Click();
    world.tick(3);
    const std::vector<Sent> expected = {{7, 5, 45}, {7, 6, 0x45A6}, {7, 6, 0x45A6}, {7, 6, 0x45A6}};
    EXPECT_EQ(world.take_frames(), expected);
    world.set_value(40, 777);
    world.tick(3);
    EXPECT_EQ(world.take_values(7, 6).back(), 0x100B) << "100.0, the plate's maximum";
}

TEST(NeedleGauges, a_value_that_is_no_number_leaves_the_needle_where_it_is) {
    RunWorld world;
    world.add_gauge(1, 1, 40);
    world.add_gauge(2, 2, 41);
    world.set_value(40, 500);
    world.set_value(41, 50);
    world.status.cmdRun_Click();
    world.tick(2);
    world.take_frames();
    for (const int function : {40, 41}) {
        world.set_value(function, std::numeric_limits<double>::quiet_NaN());
    }
    world.tick(1);
    world.take_frames();
    world.tick(3);
    EXPECT_TRUE(world.take_frames().empty());
    EXPECT_TRUE(world.machine.boxes.shown().empty());
    world.set_value(40, -std::numeric_limits<double>::infinity());
    world.set_value(41, std::numeric_limits<double>::infinity());
    world.tick(2);
    const std::vector<Sent> expected = {{1, 5, 0}, {2, 5, 1000}, {2, 6, 0x999B}};
    std::vector<Sent> sent = world.take_frames();
    ASSERT_GE(sent.size(), expected.size());
    sent.resize(expected.size());
    EXPECT_EQ(sent, expected);
}

TEST(NeedleGauges, the_two_offsets_of_a_function_serve_two_gauges) {
    RunWorld world;
    world.add_gauge(1, 1, 40).GaugeSeqNr1 = 2;
    world.add_gauge(2, 1, 40).GaugeSeqNr1 = 0;  // counts as the first, and is stored so
    world.set_value(40, 100, 1);
    world.set_value(40, 200, 2);
    world.status.cmdRun_Click();
    world.tick(2);
    const std::vector<Sent> expected = {{1, 5, 200}, {2, 5, 100}};
    EXPECT_EQ(world.take_frames(), expected);
    EXPECT_EQ(world.tables.gauges[2].GaugeSeqNr1, 1);
}

}  // namespace
