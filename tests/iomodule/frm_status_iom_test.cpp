#include "iomodule/frm_status_iom.h"

#include <gtest/gtest.h>

#include "iomodule/switch_setup.h"
#include "tests/iomodule/iom_world.h"

namespace {

using iom_test::IomWorld;
using iom_test::kSecondWire;
using Commands = IomWorld::Commands;

constexpr int kStatus = 6;
constexpr int kPower = 8;
constexpr int kLed = 10;

std::string question(const std::string& section, const std::string& error, int signal, const std::string& dump) {
    return "Error IO Module: An error has occured processing: " + section + "\r\nError: " + error +
           "\r\nSignal number:" + std::to_string(signal) + "\r\nMessage dump:" + dump +
           "\r\nCheck gauge and/or assigned function.\r\nContinue?";
}

// --- The cycle
// --------------------------------------------------------------------------------------------------------

TEST(IomCycle, the_first_one_sends_every_led_the_request_and_the_power_state_and_the_next_only_what_changed) {
    IomWorld world;
    world.add_led(0, 20);
    world.add_led(31, 21);
    world.add_led(8, 22).IomMode = 1;
    world.set_value(21, 100);
    world.set_value(9, 28);  // the bus has power
    world.status.cmdRun_Click();
    world.line1.written.clear();
    world.tick();
    EXPECT_EQ(world.line1.written.substr(0, 8), std::string("\xFF\0\x0A\xA8\x01\x02\xFF\xFF", 8)) << "as bytes";
    EXPECT_EQ(world.take_commands(world.line1),
              (Commands{{kLed, 0}, {kLed, 8 * 256 + 1}, {kLed, 31 * 256 + 1}, {kStatus, 0}, {kPower, 128}}));
    world.tick();
    EXPECT_EQ(world.take_commands(world.line1), (Commands{{kStatus, 0}}));
    world.set_value(20, 100);
    world.set_value(21, 50);
    world.tick(2);
    EXPECT_EQ(world.take_leds(), (Commands{{kLed, 1}, {kLed, 31 * 256}}));
    EXPECT_EQ(world.module1.boxLedIndicator[0].colour, panel::kRed);
    EXPECT_EQ(world.module1.boxLedIndicator[31].colour, iomodule::kLedDark);
    world.set_value(21, 40);
    world.tick(2);
    EXPECT_EQ(world.take_leds(), (Commands{{kLed, 31 * 256}})) << "a change that leaves the state alike goes out again";
}

TEST(IomCycle, the_power_state_follows_the_main_bus_from_above_eight_volts) {
    IomWorld world;
    world.set_value(9, 8);
    world.start();
    const auto powers = [&world] {
        Commands commands = world.take_commands(world.line1);
        std::erase_if(commands, [](const auto& command) { return command.first != kPower; });
        return commands;
    };
    for (const auto& [volts, sent] : std::vector<std::pair<double, Commands>>{
             {8.01, {{kPower, 128}}}, {28, {}}, {8, {{kPower, 0}}}, {0, {}}, {24, {{kPower, 128}}}}) {
        world.set_value(9, volts);
        world.tick(4);
        EXPECT_EQ(powers(), sent) << volts;
    }
}

TEST(IomCycle, a_start_tells_every_led_again_and_a_stop_ends_everything) {
    IomWorld world;
    world.add_led(3, 20);
    world.start();
    EXPECT_EQ(world.module1.BoxRun.text.get(), "Running");
    EXPECT_EQ(world.module1.BoxRun.colour, panel::kRed);
    world.advance(2000);
    EXPECT_EQ(world.module1.boxNrOfUpdates.text.get(), "25");
    world.status.cmdStop_Click();
    EXPECT_EQ(world.module1.BoxRun.text.get(), "Halted");
    EXPECT_EQ(world.module1.BoxRun.colour, panel::kGreen);
    world.line1.written.clear();
    world.advance(500);
    EXPECT_EQ(world.line1.written, "");
    world.status.cmdRun_Click();
    world.tick(2);
    EXPECT_EQ(world.take_leds(), (Commands{{kLed, 3 * 256}}));
}

TEST(IomCycle, a_stop_during_the_start_ends_the_start) {
    IomWorld world;
    world.machine.loop.post_after(std::chrono::milliseconds(300), [&world] { world.status.cmdStop_Click(); });
    world.status.cmdRun_Click();
    world.advance(2000);
    EXPECT_FALSE(world.module1.running());
    EXPECT_FALSE(world.module1.ProcessTimer.enabled());
    EXPECT_EQ(world.line1.written, "");
}

TEST(IomCycle, a_led_that_cannot_be_worked_out_stops_its_module_and_no_other) {
    IomWorld world;
    world.tables.IomPort2 = kSecondWire;
    world.function(20).FunctionMask = 1;
    world.add_led(0, 20);
    world.start();
    world.set_value(20, 1e20);
    world.tick(3);
    EXPECT_EQ(world.last_shown(), "Error at processing IO module #1:Overflow\r\nProcess is stopped");
    EXPECT_FALSE(world.module1.running());
    EXPECT_TRUE(world.module2.running());
    EXPECT_TRUE(world.status.running());
}

// --- Telegrams
// --------------------------------------------------------------------------------------------------------

TEST(IomTelegrams, with_all_switches_off_nothing_acts_and_the_first_one_on_makes_every_one_act) {
    IomWorld world;
    for (int signal = 0; signal < 3; ++signal) {
        world.add_switch(signal * 20, 10 + signal, 100, 30);
    }
    world.start();
    world.show({});
    EXPECT_EQ(world.value_of(10), 0);
    world.show({20});
    EXPECT_EQ(world.value_of(10), 30) << "off, and it acts once as it stands";
    EXPECT_EQ(world.value_of(11), 100);
    EXPECT_EQ(world.value_of(12), 30);
    EXPECT_EQ(world.module1.boxSwitchIndicator[20].colour, panel::kRed);
    EXPECT_EQ(world.module1.boxSwitchIndicator[21].colour, panel::kBrightGreen);
    for (int function = 10; function < 13; ++function) {
        world.set_value(function, 1);
    }
    world.show({20, 0});
    EXPECT_EQ(world.value_of(10), 100);
    EXPECT_EQ(world.value_of(11), 1) << "it has not changed";
    EXPECT_EQ(world.value_of(12), 1);
    world.show({});
    EXPECT_EQ(world.value_of(10), 30);
    EXPECT_EQ(world.value_of(11), 30);
}

TEST(IomTelegrams, switches_act_in_the_order_of_their_numbers) {
    IomWorld world;
    world.add_switch(7, 10, 70, -1);
    world.add_switch(8, 10, 80, -1);
    world.add_switch(47, 10, 47, -1);
    world.start();
    world.show({47, 7, 8});
    EXPECT_EQ(world.value_of(10), 47) << "the last one wins";
    world.show({});
    world.show({8, 7});
    EXPECT_EQ(world.value_of(10), 80);
}

TEST(IomTelegrams, an_encoder_on_two_rows_steps_once_a_click) {
    IomWorld world;
    for (const auto& [signal, step] : std::vector<std::pair<int, float>>{{4, 1.0F}, {5, -1.0F}}) {
        world.add_switch(signal, 10, step, 0).IomMode = 5;
    }
    world.set_range(10, 0, 9);
    world.set_value(10, 7);
    world.start();
    world.show({40});
    EXPECT_EQ(world.value_of(10), 7) << "both at rest";
    std::vector<double> values;
    for (const int signal : {4, 4, 4, 5, 5}) {
        world.show({40, signal});
        world.show({40});
        values.push_back(world.value_of(10));
    }
    EXPECT_EQ(values, (std::vector<double>{8, 9, 0, 9, 8}));
}

TEST(IomTelegrams, inputs_are_written_when_they_move_and_a_new_start_does_not_repeat_them) {
    IomWorld world;
    world.add_input(0, 10, 0, 0, 1000);
    world.add_input(7, 11, 0, 512, 1023, 20);
    world.set_range(11, -100, 100);
    world.start();
    world.show({}, {{0, 250}, {7, 10}, {3, 900}});
    EXPECT_EQ(world.value_of(10), 25);
    EXPECT_EQ(world.value_of(11), 0) << "within the deadband of 0";
    EXPECT_EQ(world.module1.SLiderAnalogue[3].value, 900) << "shown without a row too";
    world.show({}, {{0, 500}, {7, 1023}});
    EXPECT_EQ(world.value_of(10), 50);
    EXPECT_EQ(world.value_of(11), 100);
    for (int value = 1003; value > 600; value -= 20) {
        world.show({}, {{0, 500}, {7, value}});
    }
    EXPECT_EQ(world.value_of(11), 100) << "every telegram replaces the last value";
    world.set_value(10, 1);
    world.status.cmdStop_Click();
    world.start();
    world.show({}, {{0, 500}, {7, 603}});
    EXPECT_EQ(world.value_of(10), 1);
}

TEST(IomTelegrams, both_modules_work_at_once_each_on_its_own_rows) {
    IomWorld world;
    world.tables.IomPort2 = kSecondWire;
    world.add_switch(5, 10, 100, 0, 1000);
    world.add_switch(5, 11, 50, 0, 2000);
    tables::IomRow& led = world.add_led(1, 20);
    led.IomDeviceId = 2000;
    world.set_value(20, 100);
    world.start();
    world.advance(40);
    EXPECT_EQ(world.module2.boxLedIndicator[1].colour, panel::kRed);
    EXPECT_EQ(world.module1.boxLedIndicator[1].colour, iomodule::kLedDark);
    world.send_to(world.line2, IomWorld::telegram({5}));
    EXPECT_EQ(world.value_of(10), 0);
    EXPECT_EQ(world.value_of(11), 50);
    world.send(IomWorld::telegram({5}));
    EXPECT_EQ(world.value_of(10), 100);
}

TEST(IomTelegrams, what_is_no_telegram_is_dropped_and_a_short_one_is_asked_about_once) {
    IomWorld world;
    world.add_switch(0, 10, 100, 0);
    world.start();
    const std::string good = IomWorld::telegram({0});
    const auto spoilt = [&good](std::size_t at, char byte) {
        std::string bytes = good;
        bytes[at] = byte;
        return bytes;
    };
    platform::SerialPort& port = world.module1.serial_port();

    for (const std::string& bytes :
         {spoilt(0, 1), spoilt(24, '\xFE'), std::string(25, '\0'), std::string(25, '\xFF')}) {
        const int clears = world.line1.input_clears;
        world.send(bytes);
        EXPECT_GT(world.line1.input_clears, clears + 1) << "beside the cycle's own";
    }
    EXPECT_EQ(world.module1.InputSeen, 0);
    EXPECT_TRUE(world.machine.boxes.shown().empty());

    port.set_receive_threshold(19);
    world.send(good.substr(0, 19));
    EXPECT_EQ(world.module1.LastInput.size(), 19U);
    EXPECT_TRUE(world.machine.boxes.shown().empty());

    port.set_receive_threshold(20);
    world.send(std::string("\0\x0A\xFF", 3) + std::string(17, '\x10'));
    std::string dump = "0.A.FF.";
    for (int byte = 0; byte < 17; ++byte) {
        dump += "10.";
    }
    EXPECT_EQ(world.last_shown(), question("the input from the IO module", "The telegram has no byte 25", 0, dump));
    port.set_receive_threshold(24);
    world.send(good.substr(0, 24));
    EXPECT_EQ(world.machine.boxes.shown().size(), 1U) << "once in a run";
    EXPECT_EQ(world.value_of(10), 0);

    port.set_receive_threshold(25);
    world.send(good + "\x01");  // the byte too many goes with the next cycle
    EXPECT_EQ(world.value_of(10), 100);
    EXPECT_EQ(world.module1.InputSeen, 1);
    world.show({});
    EXPECT_EQ(world.value_of(10), 0);
    EXPECT_TRUE(world.status.running());
}

TEST(IomTelegrams, while_halted_they_are_kept_and_not_acted_on) {
    IomWorld world;
    world.add_switch(0, 10, 100, 0);
    world.start();
    world.status.cmdStop_Click();
    world.send(IomWorld::telegram({0}));
    EXPECT_EQ(world.module1.LastInput, IomWorld::telegram({0}));
    EXPECT_EQ(world.module1.InputSeen, 1);
    EXPECT_FALSE(world.module1.switch_state(0));
}

TEST(IomTelegrams, an_input_without_a_range_is_asked_about_once_in_a_run_and_the_others_go_on) {
    IomWorld world;
    world.add_input(2, 10, 0, 500, 500);
    world.add_input(3, 11, 0, 0, 1000);
    world.start();
    world.show({}, {{2, 700}, {3, 300}});
    ASSERT_EQ(world.machine.boxes.shown().size(), 1U);
    EXPECT_NE(
        world.last_shown().find("processing: the analogue inputs\r\nError: Division by zero\r\nSignal number:2\r\n"),
        std::string::npos);
    EXPECT_EQ(world.value_of(11), 30);
    world.show({}, {{2, 710}, {3, 400}});
    EXPECT_EQ(world.machine.boxes.shown().size(), 1U);
    EXPECT_EQ(world.value_of(11), 40);
}

TEST(IomTelegrams, no_to_the_question_ends_the_program) {
    IomWorld world;
    world.add_input(2, 10, 0, 500, 500);
    world.start();
    world.machine.boxes.default_answer.answer = platform::Answer::no;
    world.show({}, {{2, 700}});
    EXPECT_FALSE(world.module1.running());
    EXPECT_TRUE(world.machine.loop.stopped());
}

// --- The port
// ---------------------------------------------------------------------------------------------------------

TEST(IomPort, a_module_that_comes_back_gets_its_leds_again_and_what_was_switched_meanwhile_acts) {
    IomWorld world;
    world.add_switch(0, 10, 100, 0);
    world.add_switch(1, 11, 100, 0);
    world.add_led(4, 20);
    world.set_value(20, 100);
    world.set_value(9, 28);
    world.start();
    world.show({0, 1});
    world.set_value(11, 55);
    world.line1.unplug();
    world.advance(5000);
    EXPECT_TRUE(world.module1.running());
    EXPECT_EQ(world.module1.boxPort.text.get(), "COM5 unplugged");
    EXPECT_EQ(world.module1.boxReply.text.get(), "Silent");
    world.line1.plug();
    world.line1.written.clear();
    world.advance(75);
    EXPECT_EQ(world.take_commands(world.line1),
              (Commands{{kLed, 4 * 256 + 1}, {kStatus, 0}, {kPower, 128}, {kStatus, 0}}));
    world.show({1});
    EXPECT_EQ(world.value_of(10), 0);
    EXPECT_EQ(world.value_of(11), 55) << "it stands as it stood";
    EXPECT_TRUE(world.machine.boxes.shown().empty());
}

TEST(IomPort, a_module_that_is_missing_is_told_once_and_found_when_it_is_there) {
    IomWorld world;
    world.line1.faults.missing = true;
    world.add_led(4, 20);
    world.status.cmdRun_Click();
    EXPECT_EQ(world.times_shown("Error opening Com Port for IO Module #1."), 1);
    world.advance(3000);
    EXPECT_TRUE(world.module1.running());
    world.line1.faults.missing = false;
    world.advance(2000);
    EXPECT_EQ(world.take_leds(), (Commands{{kLed, 4 * 256}}));
    EXPECT_EQ(world.module1.boxPort.text.get(), "COM5 open");
    EXPECT_EQ(world.times_shown("IO Module"), 1);
}

TEST(IomPort, a_module_without_a_port_is_left_alone) {
    IomWorld world;
    world.tables.IomPort1 = 0;
    world.add_led(4, 20);
    world.start();
    EXPECT_FALSE(world.module1.running());
    EXPECT_EQ(world.line1.opens, 0);
    EXPECT_EQ(world.module1.boxPort.text.get(), "None");
    for (const simlink::SimPort& port : world.sim_com.ports()) {
        EXPECT_NE(port.FxNumber, 20);
    }
}

// --- Single commands
// --------------------------------------------------------------------------------------------------

TEST(IomCommands, single_ones_go_out_one_after_the_other_while_halted) {
    IomWorld world;
    world.status.RefreshConfig();
    world.line1.written.clear();
    world.gauge_bus.SendGauge(1000, 11, 5 + 256 * 3);
    world.gauge_bus.SendGauge(1000, 10, -3);
    world.gauge_bus.SendGauge(2000, 13, 1);  // a module without a port: nothing, and nobody waits for ever
    world.gauge_bus.SendGauge(2000, 13, 1);
    world.advance(30);
    EXPECT_EQ(world.line1.written, std::string("\0\x0A\xBB\x05\x03\xFF\xFF\0\x0A\xAD\x03\x02\xFF\xFF", 14));
    EXPECT_EQ(world.line2.opens, 0);
    world.start();
    world.gauge_bus.SendGauge(1000, 10, 1);
    EXPECT_EQ(world.take_leds(), Commands{}) << "a run sends no single commands";
}

TEST(IomCommands, debounce_time_and_test_switch_are_told_to_the_module_alone) {
    IomWorld world;
    world.status.RefreshConfig();
    iomodule::SwitchSetup setup(world.machine.boxes, world.gauge_bus);
    struct Case {
        const char* text;
        int time;  // -1 = refused
    };
    for (const Case& one :
         {Case{"3", 3}, Case{"20", 20}, Case{"21", -1}, Case{"-1", -1}, Case{"5 ms", 5}, Case{"x", 0}}) {
        world.line1.written.clear();
        world.machine.boxes.forget_shown();
        setup.cmdSetDebounceTime(1000, one.text);
        world.advance(20);
        if (one.time < 0) {
            EXPECT_EQ(world.last_shown(), "A debounce time must be between 0 and 20") << one.text;
            EXPECT_EQ(world.line1.written, "");
        } else {
            EXPECT_EQ(setup.DebounceTime, one.time);
            EXPECT_EQ(world.take_commands(world.line1), (Commands{{14, one.time * 257}})) << one.text;
        }
    }
    tables::IomRow& row = world.add_switch(7, 10);
    setup.CmdSetAsTestSwitch(1000, 7, &row);
    world.advance(20);
    EXPECT_EQ(world.take_commands(world.line1), (Commands{{9, 8}}));
    EXPECT_EQ(world.last_shown(), "Switch is cleared and cannot be used for other functions");
    EXPECT_EQ(row.IomDeviceId, 0);
    setup.CmdResetAsTestswitch(1000, nullptr);
    world.advance(20);
    EXPECT_EQ(world.take_commands(world.line1), (Commands{{9, 0}}));
    EXPECT_EQ(world.last_shown(), "Switch can be used to assign function (again).");
}

}  // namespace
