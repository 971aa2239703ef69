#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "run_world.h"

namespace {

using run_test::RunWorld;
using Sent = RunWorld::Sent;

// A plate whose range no 32-bit float can hold, so that every look-up on it fails.
std::int16_t add_impossible_plate(RunWorld& world) {
    const std::int16_t number = world.add_plate(0, 100);
    tables::Plate& plate = world.tables.plates[static_cast<std::size_t>(number)];
    plate.PlateValue[2] = plate.PlateValue[3] = 1e300;
    return number;
}

TEST(ProcessTick, system_values_show_one_tick_behind_with_their_formats) {
    RunWorld world;
    const std::vector<std::pair<int, double>> values = {{1, 29.92},  {2, 95.04}, {3, -512.25}, {4, 4999.6},
                                                        {5, -3.456}, {6, 12.3},  {7, -90.25},  {8, 1},
                                                        {9, 27.95},  {14, 0},    {16, 271.5}};
    for (const auto& [function, value] : values) {
        world.set_value(function, value);
    }
    world.status.cmdRun_Click();
    world.tick();
    EXPECT_EQ(world.status.boxVoltage.text.get(), "27.95") << "shown in the tick that reads it";
    EXPECT_EQ(world.status.boxBank.text.get(), "000.00") << "shown by the next tick";
    world.tick();  // tells the devices that the bus has power
    world.tick();
    const run::frmStatus& status = world.status;
    EXPECT_EQ(status.BoxAirPressHg.text.get(), "29.92");
    EXPECT_EQ(status.BoxAirPressmBar.text.get(), "1013");
    EXPECT_EQ(status.BoxIAS.text.get(), "95.0");
    EXPECT_EQ(status.BoxVS.text.get(), "-512.3");
    EXPECT_EQ(status.boxAltitude.text.get(), "5000");
    EXPECT_EQ(status.boxPitch.text.get(), "-003.46");
    EXPECT_EQ(status.boxBank.text.get(), "012.30");
    EXPECT_EQ(status.BoxHea.text.get(), "269.75") << "a negative heading gets a turn added";
    EXPECT_EQ(status.boxCompass.text.get(), "271.50");
    EXPECT_EQ(status.BoxInstrLights.text.get(), "OFF");
    EXPECT_EQ(status.boxNavLights.text.get(), "ON");
    EXPECT_EQ(world.tables.LightSwitches, 1);
    world.set_value(14, 1);
    world.tick(2);
    EXPECT_EQ(world.tables.LightSwitches, 33);
    EXPECT_EQ(status.BoxInstrLights.text.get(), "ON");
}

TEST(ProcessTick, a_light_tick_serves_nobody_and_does_not_count) {
    RunWorld world;
    world.add_gauge(4, 1, 40);
    world.add_gauge(9, 110);  // a radio: on the avionics bus
    world.set_value(40, 300);
    world.status.cmdRun_Click();
    world.tick();
    EXPECT_EQ(world.take_frames_beside_polls(), (std::vector<Sent>{{4, 5, 300}}));
    EXPECT_EQ(world.status.TickCount(), 1);
    // The voltage is read in one tick, acted on in the next, and the needle goes on in the one after.
    world.set_value(9, 28);
    world.set_value(40, 400);
    world.tick();
    EXPECT_EQ(world.take_frames_beside_polls(), (std::vector<Sent>{{4, 5, 400}}));
    world.set_value(40, 500);
    world.tick();
    EXPECT_EQ(world.take_frames_beside_polls(), (std::vector<Sent>{{4, 8, 128}, {9, 8, 0}}));
    EXPECT_EQ(world.status.TickCount(), 2);
    EXPECT_EQ(world.status.context().cluster.ClusterPower, 1);
    EXPECT_EQ(world.status.context().cluster.ClusterLights, 0);
    world.tick();
    EXPECT_EQ(world.take_frames_beside_polls(), (std::vector<Sent>{{4, 5, 500}}));
    // Avionics on, instrument lights on, dimmer to level 10.
    world.set_value(9, 28, 2);
    world.set_value(14, 1);
    world.tables.MacroValue = 640;
    world.tick();
    EXPECT_EQ(world.take_frames_beside_polls(), (std::vector<Sent>{{4, 8, 128 + 26}, {9, 8, 0 + 26}}));
    world.tick(2);
    EXPECT_EQ(world.take_frames_beside_polls(), (std::vector<Sent>{{4, 8, 192 + 26}, {9, 8, 192 + 26}}));
    EXPECT_EQ(world.status.context().cluster.ClusterLights, 1);
    EXPECT_EQ(world.status.context().cluster.ClusterBrightness, 160);
}

TEST(ProcessTick, lights_that_are_always_on_are_sent_once_for_the_lists) {
    RunWorld world;
    world.tables.LightMode = 1;
    world.add_gauge(4, 1, 40);
    world.add_gauge(9, 110);
    world.status.cmdRun_Click();
    EXPECT_EQ(world.tables.LightMask, 32);
    world.tick();
    EXPECT_EQ(world.take_frames_beside_polls(), (std::vector<Sent>{{4, 8, 192}, {9, 8, 192}}));
    world.tick(20);
    EXPECT_EQ(world.take_frames_beside_polls(), (std::vector<Sent>{{4, 5, 0}}));
    world.status.cmdStop_Click();
    world.status.cmdRun_Click();
    world.tick(20);
    EXPECT_EQ(world.take_frames_beside_polls(), (std::vector<Sent>{{4, 5, 0}}));
}

TEST(ProcessTick, lights_that_are_always_off_are_never_sent) {
    RunWorld world;
    world.tables.LightMode = 2;
    world.tables.LightChange = 1;  // left over from another configuration
    world.add_gauge(4, 1, 40);
    world.set_value(9, 28);
    world.set_value(14, 1);
    world.status.cmdRun_Click();
    world.tick(20);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{4, 5, 0}}));
}

TEST(ProcessTick, the_poll_frame_of_the_slot_that_is_due_goes_last) {
    RunWorld world;
    world.add_gauge(1, 1, 40);
    world.add_gauge(2, 1, 40);
    world.add_gauge(3, 1, 40);
    world.status.RefreshConfig();
    run::RunContext& context = world.status.context();
    context.AssignPollSlot(1);
    context.AssignPollSlot(2);
    context.LastSlot = static_cast<std::int16_t>(context.next_poll_slot - 1);
    EXPECT_EQ(context.entry(0).PollSlot, run::kNeverPolled);
    EXPECT_EQ(context.entry(2).PollSlot, 1);

    context.CurrentSlot = 1;
    context.PollFrame(0, 7, 0);
    context.PollFrame(1, 7, 0);
    EXPECT_EQ(context.PollText, "");
    context.PollFrame(2, 7, 0);
    context.PollFrame(2, 12, 256);  // takes the place of the one before
    EXPECT_EQ(context.PollText, std::string("\xFF\x00\x03\xC8\x01\x03\xFF", 7));

    world.status.cmdRun_Click();
    std::vector<int> slots;
    for (int tick = 0; tick < 5; ++tick) {
        slots.push_back(context.CurrentSlot);
        world.tick();
    }
    EXPECT_EQ(slots, (std::vector<int>{0, 1, 0, 1, 0}));
}

TEST(ProcessTick, each_tick_is_one_write_with_a_gap_byte_before_each_frame) {
    RunWorld world;
    world.add_gauge(1, 3, 40, 41);
    world.set_value(40, 300);
    world.status.cmdRun_Click();
    world.tick();
    EXPECT_EQ(world.wire.written, std::string("\xFF\x00\x01\x58\x2D\x03\xFF\xFF\x00\x01\x68\x01\x02\xFF", 14));
    EXPECT_EQ(world.wire.writes, 1);
    world.tick(3);
    EXPECT_EQ(world.wire.writes, 1);
    EXPECT_GE(world.wire.input_clears, 4) << "each tick drops what has not made a report";
}

TEST(ProcessTick, a_failure_names_the_gauge_and_goes_on_behind_the_failed_step) {
    RunWorld world;
    const std::int16_t impossible = add_impossible_plate(world);
    world.add_gauge(5, 3, 40, 41).GaugePlate1 = impossible;
    world.add_gauge(6, 1, 41);
    world.set_value(40, 1.5);
    world.set_value(41, 77);
    world.status.cmdRun_Click();
    world.tick();
    ASSERT_EQ(world.machine.boxes.shown().size(), 1U);
    EXPECT_EQ(world.last_shown(),
              "Error 10: An error has occured processing GaugeID:5\r\n"
              "Gaugetype: 3 , Process State: 4\r\n"
              "Gauge value: 1.5\r\n"
              "Comm Port status: Open\r\n"
              "Error: Overflow\r\n"
              "Check gauge and/or assigned function.\r\n"
              "Continue?");
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{5, 6, 77}, {6, 5, 77}}));
    EXPECT_TRUE(world.status.running());
    world.machine.boxes.default_answer = {platform::Answer::no, "", false};
    world.tick();
    EXPECT_FALSE(world.status.running());
    EXPECT_EQ(world.times_shown("Error 10"), 2);
}

TEST(ProcessTick, an_open_question_of_the_tick_leaves_the_rest_of_the_cockpit_alive) {
    RunWorld world;
    const std::int16_t impossible = add_impossible_plate(world);
    world.add_gauge(5, 1, 40).GaugePlate1 = impossible;
    world.machine.boxes.answer_after = std::chrono::seconds(3);
    world.status.cmdRun_Click();
    const auto answered = world.server.answered_blocks();
    world.advance(3500);
    EXPECT_GE(world.server.answered_blocks() - answered, 150U) << "the simulator cycle goes on";
    EXPECT_EQ(world.times_shown("Error 10"), 2) << "the tick that waits is not entered again";
}

TEST(ProcessTick, lists_that_could_not_be_built_are_told_as_such) {
    struct BrokenModule : run::RunParticipant {
        bool hasPort() const override { return true; }
        void OpenCommPort() override { throw support::Failure("no such board"); }
        void OpenPorts() override {}
        void cmdRun_Click() override {}
        void cmdStop_Click() override {}
    } broken;
    RunWorld world;
    world.tables.ConfigFileName = "my.cfg";
    world.add_gauge(1, 1, 40);
    world.status.set_participant(run::ParticipantPlace::iom1, &broken);
    world.machine.boxes.answers = {{platform::Answer::yes, "", false}, {platform::Answer::no, "", false}};
    world.status.cmdRun_Click();
    EXPECT_EQ(world.last_shown(), "Error 9: An error occured trying to open Comm Port(s)");
    world.tick(3);
    EXPECT_EQ(world.last_shown(),
              "Error 11: Incorrect or empty configuration file. \r\n"
              "Error Description: The list of gauges could not be built\r\n"
              "Filename= my.cfg\r\n"
              "Continue?: ");
    EXPECT_FALSE(world.status.running());
}

TEST(ProcessTick, a_system_value_that_is_no_number_does_no_harm) {
    RunWorld world;
    world.add_gauge(1, 1, 40);
    for (int function = 1; function <= 16; ++function) {
        world.set_value(function, std::numeric_limits<double>::quiet_NaN());
        world.set_value(function, std::numeric_limits<double>::infinity(), 2);
    }
    world.status.cmdRun_Click();
    world.tick(50);
    EXPECT_TRUE(world.status.running());
    EXPECT_TRUE(world.machine.boxes.shown().empty());
}

TEST(ProcessTick, plate_look_up_of_the_instruments_leaves_clamped_value_and_position) {
    RunWorld world;
    world.add_plate(-50, 2000);
    run::RunContext& context = world.status.context();
    context.GaugeValue = 1500.75F;
    EXPECT_TRUE(context.PlateLookup(1));
    EXPECT_EQ(context.LookupPosition, 1500) << "not limited to a turn";
    context.GaugeValue = -60;
    EXPECT_TRUE(context.PlateLookup(1));
    EXPECT_EQ(context.LookupPosition, -50);
    EXPECT_EQ(context.GaugeValue, -50);
    context.GaugeValue = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(context.PlateLookup(1));
    EXPECT_FALSE(context.PlateLookup(2));
    EXPECT_EQ(context.LookupPosition, -50);
}

}  // namespace
