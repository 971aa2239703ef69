#include <gtest/gtest.h>

#include "run_world.h"

namespace {

using run_test::RunWorld;

constexpr int kSecondMs = 1000;

std::string bus_load(RunWorld& world, int seconds) {
    world.advance(seconds * kSecondMs);
    return world.status.boxBusLoad.text.get();
}

TEST(BusLoad, the_run_panel_shows_what_the_line_carries_against_what_it_could) {
    RunWorld world;
    world.add_gauge(1, 2, 40);  // a display: 7 bytes at every tick
    world.status.cmdRun_Click();
    EXPECT_EQ(bus_load(world, 3), "175 of 3840");
    EXPECT_EQ(world.status.boxBusLoad.colour.get(), panel::kGreen);
    world.status.cmdStop_Click();
    EXPECT_EQ(bus_load(world, 1), "Halted");
}

// 7 bytes a display and tick: 22 of them just fit into 40 ms at 3840 bytes a second, 30 do not.
TEST(BusLoad, a_configuration_that_cannot_fit_its_interval_is_told_together_with_one_that_fits) {
    RunWorld world;
    for (int id = 1; id <= 30; ++id) {
        world.add_gauge(id, 2, 40);
    }
    world.status.cmdRun_Click();
    const std::string after_a_moment = bus_load(world, 2);
    EXPECT_EQ(after_a_moment.find("set"), std::string::npos) << "a run's start fills the line for a moment";
    EXPECT_EQ(bus_load(world, 3), "5250 of 3840: set 60 ms");
    EXPECT_EQ(world.status.boxBusLoad.colour.get(), panel::kRed);

    world.status.SliderXferTimer.value = 60;
    world.status.SliderXferTimer.on_change();
    world.advance(3 * kSecondMs);
    const std::string at_the_proposed_interval = bus_load(world, 3);
    EXPECT_EQ(at_the_proposed_interval.find("set"), std::string::npos) << at_the_proposed_interval;
}

TEST(BusLoad, no_interval_is_proposed_when_none_is_long_enough) {
    RunWorld world;
    for (int id = 1; id <= 200; ++id) {
        world.add_gauge(id, 2, 40);
    }
    world.status.cmdRun_Click();
    EXPECT_EQ(bus_load(world, 6), "35000 of 3840: too many gauges");
}

}  // namespace
