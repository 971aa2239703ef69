#include <gtest/gtest.h>

#include "run_world.h"

namespace {

using run_test::RunWorld;
using Sent = RunWorld::Sent;

// A running cockpit with power and two gauges whose pictures stand.
struct GaugePortOutage : testing::Test {
    RunWorld world;

    GaugePortOutage() {
        world.add_gauge(1, 1, 40);
        world.add_gauge(2, 3, 40, 41);
        world.set_value(9, 28);
        world.set_value(40, 300);
        world.set_value(41, 400);
        world.status.cmdRun_Click();
        world.tick(5);
        world.take_frames();
    }
    // The needle moves, so that every tick has something to send.
    void move(int ticks) {
        for (int tick = 0; tick < ticks; ++tick) {
            world.set_value(40, 300 + ++moved % 7);
            world.tick();
        }
    }
    int moved = 0;
};

TEST_F(GaugePortOutage, an_unplugged_controller_is_asked_about_once_and_heals_when_it_comes_back) {
    world.machine.boxes.leave_open = true;  // an unattended cockpit
    world.wire.unplug();
    world.machine.loop.post_after(std::chrono::seconds(5), [this] {
        EXPECT_EQ(world.machine.boxes.open_boxes().size(), 1U);
        EXPECT_EQ(world.status.boxGaugePort.text.get(), "COM3 unplugged");
        world.set_value(40, 500);
        world.wire.plug();
    });
    move(1);  // waits in the question until the controller is back
    EXPECT_EQ(
        world.machine.boxes.shown(),
        std::vector<std::string>{"Error 13: Error Writing to Gauges. \r\nError Description: Port COM3 has gone\r\n"
                                 "Check Virtual/USB comport gauges for CIM(s). "});
    world.tick(3);
    EXPECT_TRUE(world.machine.boxes.open_boxes().empty()) << "the question goes with its cause";
    EXPECT_TRUE(world.status.running());
    // The restarted bus gets the lights and every needle, moved or not.
    const std::vector<Sent> expected = {{1, 8, 128}, {2, 8, 128}, {1, 5, 500}, {2, 5, 500}, {2, 6, 400}};
    EXPECT_EQ(world.take_frames(), expected);
    world.tick(5);
    EXPECT_TRUE(world.take_frames().empty());
}

TEST_F(GaugePortOutage, after_a_yes_the_rest_of_the_outage_is_silent_and_the_next_one_is_told_again) {
    for (int outage = 1; outage <= 2; ++outage) {
        world.wire.unplug();
        move(30);
        EXPECT_EQ(world.times_shown("Error 13"), outage);
        EXPECT_TRUE(world.status.running());
        world.wire.plug();
        move(5);
        EXPECT_EQ(world.times_shown("Error 13"), outage);
        EXPECT_FALSE(world.take_frames().empty());
    }
}

TEST_F(GaugePortOutage, a_no_stops_the_run) {
    world.machine.boxes.default_answer = {platform::Answer::no, "", false};
    world.wire.unplug();
    move(3);
    EXPECT_EQ(world.times_shown("Error 13"), 1);
    EXPECT_FALSE(world.status.running());
    EXPECT_EQ(world.status.BoxRun.text.get(), "Halted");
}

TEST_F(GaugePortOutage, a_port_that_is_opened_anew_gets_the_whole_picture) {
    world.status.cmdStop_Click();
    world.ports.CloseAllComPorts();
    world.status.cmdRun_Click();
    world.tick(3);
    const std::vector<Sent> expected = {{1, 8, 128}, {2, 8, 128}, {1, 5, 300}, {2, 5, 300}, {2, 6, 400}};
    EXPECT_EQ(world.take_frames(), expected);
}

TEST_F(GaugePortOutage, lights_that_are_always_off_stay_untold_after_an_outage) {
    world.tables.LightMode = 2;
    world.wire.unplug();
    world.tick();
    world.wire.plug();
    world.tick(3);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{1, 5, 300}, {2, 5, 300}, {2, 6, 400}}));
}

TEST(GaugePort, a_first_opening_adds_no_light_frames_of_its_own) {
    RunWorld world;
    world.add_gauge(1, 1, 40);
    world.status.RefreshConfig();
    world.ports.OpenAllPorts();
    world.status.cmdRun_Click();
    world.tick(3);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{1, 5, 0}}));
}

}  // namespace
