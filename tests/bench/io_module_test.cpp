#include "bench/devices/io_module.h"

#include <gtest/gtest.h>

#include "bench/cockpit_view.h"
#include "bench/device_set.h"
#include "platform/manual/manual_loop.h"
#include "tests/bench/shown_state.h"

namespace bench {
namespace {

using std::chrono::milliseconds;

class Module : public testing::Test {
  protected:
    Module() {
        unit.on_send = [this](std::string_view bytes) { sent += bytes; };
    }

    void command(int number, int value, int device = 10) {
        std::string frame;
        bus::append_frame(frame, device, number, value);
        unit.receive(frame);
    }
    // The answer to a status request.
    std::string telegram() {
        sent.clear();
        command(6, 0);
        loop.advance(milliseconds(12));
        return sent;
    }
    // The switches that the next telegram shows as on.
    std::vector<int> switches_on() {
        const std::string bytes = telegram();
        std::vector<int> on;
        for (int number = 0; bytes.size() == 25 && number < 48; ++number) {
            if (iomodule::switch_on(iomodule::switch_bytes_of(bytes), number)) {
                on.push_back(number);
            }
        }
        return on;
    }
    std::vector<int> leds() const {
        std::vector<int> lit;
        for (int number = 0; number < 32; ++number) {
            if (unit.led_lights(number)) {
                lit.push_back(number);
            }
        }
        return lit;
    }
    using Numbers = std::vector<int>;

    platform::manual::ManualLoop loop;
    IoModule unit{loop};
    std::string sent;
};

TEST_F(Module, answers_a_status_request_with_all_its_inputs) {
    for (const int number : {0, 9, 47}) {
        unit.set_contact(number, true);
    }
    for (int number = 0; number < 8; ++number) {
        unit.set_pot(number, 0x101 * (number % 4) + number);
    }
    loop.advance(milliseconds(5));
    EXPECT_EQ(telegram(), std::string("\x00\x0A\x0A\x03\x01\x80\x40\x00\x00\x00\x01\x00\x01\x23\x01\x23"
                                      "\x00\x02\x04\x06\x04\x06\x08\x0A\xFF",
                                      25));
    sent.clear();
    command(6, 0, 15);
    command(10, 1);
    unit.receive("\x17\xFF garbage");
    unit.receive(std::string("\0\x0A", 2));
    loop.advance(milliseconds(100));
    EXPECT_EQ(sent, "") << "it speaks only when it is asked";
    EXPECT_EQ(telegram().size(), 25U) << "and is back in step at once";
}

TEST_F(Module, a_contact_counts_when_it_has_stood_still_for_the_debounce_time) {
    struct Case {
        int debounce;
        int closed_ms;
        bool seen;
    };
    int number = 0;
    for (const Case& one :
         {Case{3, 2, false}, Case{3, 3, true}, Case{20, 19, false}, Case{20, 21, true}, Case{0, 0, true}}) {
        command(14, one.debounce * 257);
        unit.set_contact(number, true);
        loop.advance(milliseconds(one.closed_ms));
        EXPECT_EQ(!switches_on().empty(), one.seen) << one.debounce << " ms, " << one.closed_ms;
        unit.set_contact(number, false);
        loop.advance(milliseconds(30));
        switches_on();
    }
    command(14, 21 * 257);
    command(14, 5 * 256 + 4);
    EXPECT_EQ(unit.switches().debounce_ms(), 0) << "what makes no sense changes nothing";
    command(14, 3 * 257);
    command(13, 6 + 256);
    for (int bounce = 0; bounce < 9; ++bounce) {
        unit.set_contact(5, bounce % 2 == 0);
        loop.advance(milliseconds(1));
    }
    loop.advance(milliseconds(5));
    EXPECT_EQ(switches_on(), Numbers{5}) << "a bouncing contact toggles once";
}

TEST_F(Module, a_momentary_switch_goes_on_and_off_in_turn) {
    command(13, 4 + 256);
    const auto press = [this] {
        unit.set_contact(3, true);
        loop.advance(milliseconds(10));
        unit.set_contact(3, false);
        loop.advance(milliseconds(10));
    };
    for (const bool on : {true, false, true}) {
        press();
        EXPECT_EQ(switches_on(), on ? Numbers{3} : Numbers{});
    }
    unit.power_cycle();
    EXPECT_EQ(switches_on(), Numbers{});
    press();
    EXPECT_EQ(switches_on(), Numbers{3}) << "its type is stored";
}

TEST_F(Module, every_click_of_an_encoder_is_on_in_one_telegram_and_off_in_the_next) {
    command(13, 9 + 512);
    command(13, 10 + 768);
    EXPECT_FALSE(unit.set_contact(8, true));
    EXPECT_FALSE(unit.turn_encoder(9, 1)) << "it is turned by its A switch";
    EXPECT_FALSE(unit.turn_encoder(3, 1));
    EXPECT_TRUE(unit.turn_encoder(8, 3));
    std::vector<Numbers> seen;
    for (int telegram_number = 0; telegram_number < 4; ++telegram_number) {
        seen.push_back(switches_on());
    }
    EXPECT_TRUE(unit.turn_encoder(8, -2));
    for (int telegram_number = 0; telegram_number < 5; ++telegram_number) {
        seen.push_back(switches_on());
    }
    EXPECT_EQ(seen, (std::vector<Numbers>{{8}, {}, {8}, {}, {9}, {}, {}, {}, {}})) << "one of each way cancel out";
    unit.turn_encoder(8, 100);
    EXPECT_EQ(unit.switches().waiting_clicks(), IoModuleSwitches::kMostWaitingClicks);
    unit.power_cycle();
    EXPECT_EQ(switches_on(), Numbers{});
}

TEST_F(Module, leds_light_by_power_wish_masters_and_tests) {
    command(10, 2 * 256 + 1);
    command(10, 5 * 256 + 1);
    command(10, 6 * 256 + 1);
    command(11, 5 + 256 * 1);
    command(11, 6 + 256 * 3);
    EXPECT_EQ(leds(), Numbers{}) << "without power";
    command(8, 128);
    EXPECT_EQ(leds(), (Numbers{2, 5, 6}));
    unit.set_master(1, false);
    EXPECT_EQ(leds(), (Numbers{2, 6})) << "either master is enough";
    unit.set_master(2, false);
    EXPECT_EQ(leds(), Numbers{2});
    command(8, 192);
    EXPECT_EQ(leds(), (Numbers{2, 5, 6}));
    command(10, 5 * 256);
    EXPECT_EQ(leds(), (Numbers{2, 6}));

    command(9, 48);
    unit.set_contact(47, true);
    loop.advance(milliseconds(5));
    EXPECT_EQ(leds().size(), 32U);
    EXPECT_EQ(switches_on(), Numbers{}) << "the test switch is the module's own";
    command(8, 0);
    EXPECT_EQ(leds(), Numbers{});
    command(8, 128);
    command(9, 0);
    EXPECT_EQ(leds(), Numbers{2});
    EXPECT_EQ(switches_on(), Numbers{47});

    unit.power_cycle();
    command(8, 128);
    EXPECT_EQ(leds(), Numbers{}) << "wishes are gone without power";
    unit.set_master(2, true);
    command(10, 6 * 256 + 1);
    EXPECT_EQ(leds(), Numbers{6}) << "masters are stored";
    command(10, 32 * 256 + 1);
    command(11, 32);
    command(13, 49);
    command(13, 0);
    command(9, 49);
    command(3, 0);
    EXPECT_EQ(unit.unknown_commands(), 1);
}

TEST_F(Module, a_command_with_a_sign_changes_nothing) {
    command(8, 128);
    command(10, 2 * 256 + 1);
    command(11, 3 + 256 * 2);
    command(13, 1 + 256 * 1);
    const std::map<std::string, std::string> before = shown(unit);
    for (const auto& [number, value] : std::vector<std::pair<int, int>>{
             {8, -128}, {9, -5}, {10, -2 * 256}, {11, -256}, {11, -253}, {13, -255}, {14, -257}}) {
        command(number, value);
        EXPECT_EQ(shown(unit), before) << number << ", " << value;
    }
}

TEST_F(Module, noise_stays_within_its_bounds_and_the_range) {
    unit.set_pot(0, 500);
    unit.set_pot(1, 3);
    unit.set_pot(2, 1020);
    unit.set_noise(10);
    int lowest = 9999, highest = 0;
    for (int sample = 0; sample < 300; ++sample) {
        const std::string bytes = telegram();
        const auto value = [&bytes](int number) {
            return iomodule::analogue_value(iomodule::analogue_bytes_of(bytes), number);
        };
        lowest = std::min<int>(lowest, value(0));
        highest = std::max<int>(highest, value(0));
        EXPECT_LE(value(1), 13);
        EXPECT_GE(value(2), 1010);
        EXPECT_LE(value(2), 1023);
    }
    EXPECT_EQ(lowest, 490);
    EXPECT_EQ(highest, 510);
}

TEST_F(Module, is_worked_by_hand_and_shows_what_it_does) {
    command(13, 1 + 512);
    command(13, 2 + 768);
    EXPECT_TRUE(unit.operate("encoder0", -4));
    EXPECT_TRUE(unit.operate("switch2", 1));
    EXPECT_TRUE(unit.operate("pot7", 2000));
    EXPECT_TRUE(unit.operate("noise", 5));
    EXPECT_TRUE(unit.operate("master2", 0));
    for (const char* const control : {"switch0", "switch48", "switch", "encoder2", "pot8", "pot-1", "master3", "lever1",
                                      "switch2x", "switch99999999999", ""}) {
        EXPECT_FALSE(unit.operate(control, 1)) << control;
    }
    loop.advance(milliseconds(5));
    telegram();
    const auto state = shown(unit);
    EXPECT_EQ(state.at("contacts").substr(0, 4), "0010");
    EXPECT_EQ(state.at("switches").substr(0, 4), "0110");
    EXPECT_EQ(state.at("types").substr(0, 4), "2300");
    EXPECT_EQ(state.at("pot7"), "1023");
    EXPECT_EQ(state.at("clicks"), "3");
    EXPECT_EQ(state.at("master2"), "false");
    EXPECT_EQ(state.at("power"), "false");
}

TEST_F(Module, is_set_up_and_labelled_as_the_configuration_expects) {
    tables::CoreTables tables;
    tables.IomPort2 = 4;
    tables.functions[7].FunctionShortName = "Heading";
    tables.iom = {{},
                  {.IomDeviceId = 2000,
                   .IomSignalType = 1,
                   .IomSignalNumber = 3,
                   .IomFunction = 7,
                   .IomSeqNr = 1,
                   .IomValueC = 1},
                  {.IomDeviceId = 2000,
                   .IomSignalType = 7,
                   .IomSignalNumber = 4,
                   .IomSeqNr = 100,
                   .IomValueC = 0,
                   .IomKeyOffOn = static_cast<std::int16_t>(0x8000 | 'G')},
                  {.IomDeviceId = 2000,
                   .IomSignalType = 3,
                   .IomSignalNumber = 31,
                   .IomFunction = 7,
                   .IomSeqNr = 1,
                   .IomKeyOnOff = 2},
                  {.IomDeviceId = 1000,
                   .IomSignalType = 1,
                   .IomSignalNumber = 5,
                   .IomFunction = 7,
                   .IomSeqNr = 1,
                   .IomValueC = 2},
                  {.IomDeviceId = 2000, .IomSignalType = 2, .IomSignalNumber = 77, .IomFunction = 7, .IomSeqNr = 1}};
    const DeviceSet devices(loop, tables);
    ASSERT_EQ(devices.lines().size(), 1U);
    const auto state = shown(*devices.line(4)->instrument);
    EXPECT_EQ(state.at("types").substr(0, 8), "00010000");
    EXPECT_EQ(state.at("masters").back(), '2');
    const FacePrint& print = devices.print_of(*devices.line(4)->instrument);
    EXPECT_EQ(print.switch_labels[3], "Heading");
    EXPECT_EQ(print.switch_labels[4], "<Ctrl+G>");
    EXPECT_EQ(print.switch_labels[5], "");
    EXPECT_EQ(print.led_labels[31], "Heading");
    CockpitView view(devices, [](int) { return true; });
    EXPECT_NE(view.everything().find(R"("board":{"switches":["","","","Heading","<Ctrl+G>","")"), std::string::npos);
}

}  // namespace
}  // namespace bench
