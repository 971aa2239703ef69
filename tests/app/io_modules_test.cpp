// The demo's IO modules in the whole program: what a hand does on the boards, and what their LEDs show.
#include <gtest/gtest.h>

#include "simlink/sim_offsets.h"
#include "tests/support/rig.h"

namespace {

using namespace rig;
using simhost::Phase;

constexpr int signal(const char* label) {
    return (label[0] - 'A') * 8 + label[1] - '1';
}

struct IoModules : testing::Test {
    Rig rig{SimulatorAtStart::up, Instruments::needles_and_io_modules};
    platform::manual::Wire& line1 = rig.machine.serial_ports.wire(3);
    platform::manual::Wire& line2 = rig.machine.serial_ports.wire(4);

    void set(const char* label, bool closed) {
        rig.module1.set_contact(signal(label), closed);
        rig.advance(150ms);
    }
    void press(bench::IoModule& module, const char* label) {
        module.set_contact(signal(label), true);
        rig.advance(150ms);
        module.set_contact(signal(label), false);
        rig.advance(150ms);
    }
    double value(int function, int sequence_number = 1) {
        return simulator_value(rig.cockpit.tables().functions[static_cast<std::size_t>(function)], sequence_number,
                               rig.sim());
    }
    bool lights(const char* label) { return rig.module1.led_lights(signal(label)); }
};

TEST_F(IoModules, hands_on_the_boards_move_the_aircraft) {
    rig.start_run();
    rig.hold();
    rig.simulator.jump_to(Phase::cruise);
    rig.advance(200ms);
    set("A1", true);
    EXPECT_EQ(value(103), 1);
    EXPECT_EQ(rig.sim().read_u16(0x0D0C), 1) << "every light switch has acted as it stands";
    set("A3", true);
    set("A1", false);
    EXPECT_EQ(rig.sim().read_u16(0x0D0C), 4);

    const double battery = value(112);
    press(rig.module1, "B2");
    EXPECT_EQ(value(112), 1 - battery);
    press(rig.module1, "B2");
    EXPECT_EQ(value(112), battery);
    press(rig.module1, "B1");
    EXPECT_EQ(value(116), 1) << "a momentary switch stays on";
    press(rig.module1, "B1");
    EXPECT_EQ(value(116), 0);

    const double altitude = value(120);
    const int dimmer = rig.cockpit.tables().MacroValue;
    rig.module1.turn_encoder(signal("C1"), 3);
    rig.module1.turn_encoder(signal("C3"), -5);
    rig.advance(1500ms);
    EXPECT_NEAR(rig.cockpit.tables().MacroValue, (dimmer + 3 * 64) % 1024, 64) << "round its end";
    EXPECT_NEAR(value(120), altitude - 500, 5);

    rig.module1.set_pot(0, 512);
    rig.module1.set_pot(3, 256);
    rig.advance(200ms);
    EXPECT_NEAR(value(57), 50, 0.2);
    EXPECT_NEAR(value(17), -8191, 2);

    press(rig.module1, "D3");
    EXPECT_EQ(rig.sim().read_u32(simlink::kOffsetControlParameter), 0x800U + 'G');
    EXPECT_EQ(rig.window("frmStatus"), panel::WindowState::minimised);
    press(rig.module1, "D5");
    press(rig.module1, "D6");
    EXPECT_EQ(rig.machine.key_delivery.sent, (std::vector<std::string>{"A", "+B"}));

    const double hold = value(119, 4);
    press(rig.module2, "A4");
    EXPECT_EQ(value(119, 4), 1 - hold);
    EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
}

TEST_F(IoModules, leds_show_what_the_aircraft_does) {
    rig.start_run();
    const auto expect_leds = [this](const std::string& moment) {
        rig.hold();
        rig.advance(200ms);
        const std::vector<std::pair<const char*, bool>> leds = {
            {"A1", value(72, 1) == 100},
            {"A4", value(72, 1) == 0},
            {"A5", value(100) != 0},
            {"A7", value(102) != 0},
            {"A8", value(95) == 1},
            {"B1", value(123, 1) != 0},
            {"B4", value(118) != 0},
            {"B5", value(119, 1) != 0},
            {"B8", value(119, 4) != 0},
            {"C1", value(66) <= 24.5},
            {"C2", value(62) <= 23},
            {"C5", value(30) == 1},
            {"C7", (rig.sim().read_u16(0x0D0C) & 1) != 0},
            {"C8", (rig.sim().read_u16(0x0D0C) & 4) != 0},
            {"D1", value(117) == 3},
            {"D2", value(71) != 0},
            {"D3", value(49) == 0},
        };
        const bool power = value(9) > 8;
        int lit = 0;
        for (const auto& [label, on] : leds) {
            EXPECT_EQ(lights(label), on && power) << moment << ": " << label;
            lit += lights(label) ? 1 : 0;
        }
        rig.fly();
        return lit;
    };
    int most = 0;
    for (const Phase phase : {Phase::taxi_out, Phase::cruise, Phase::final_approach}) {
        rig.simulator.jump_to(phase);
        rig.advance(2s);
        most = std::max(most, expect_leds(std::string(simhost::phase_name(phase))));
    }
    EXPECT_GE(most, 6);
    EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
}

TEST_F(IoModules, a_module_that_storms_or_goes_disturbs_nobody_and_is_back_by_itself) {
    rig.start_run();
    rig.hold();
    rig.simulator.jump_to(Phase::cruise);
    rig.advance(200ms);
    set("A1", true);
    for (int burst = 0; burst < 300; ++burst) {
        line1.deliver(std::string("\x00\x7F\xFF\x00\x91", 5) + std::string(static_cast<std::size_t>(burst % 37), '\0'));
        if (burst % 40 == 0) {
            line1.send_break();
            line1.send_framing_error();
        }
        rig.advance(10ms);
    }
    const double hold = value(119, 4);
    press(rig.module2, "A4");
    EXPECT_EQ(value(119, 4), 1 - hold);
    EXPECT_TRUE(rig.needles_settle_right());
    EXPECT_LE(rig.machine.boxes.shown().size(), 1U) << rig.boxes_shown();

    rig.machine.boxes.forget_shown();
    rig.hold();
    line1.unplug();
    rig.advance(3s);
    EXPECT_EQ(rig.text("frmStatusIOM", "boxPort"), "COM3 unplugged");
    press(rig.module2, "A4");
    EXPECT_EQ(value(119, 4), hold);
    rig.module1.power_cycle();
    rig.module1.set_contact(signal("A1"), false);
    rig.module1.set_contact(signal("A2"), true);
    line1.plug();
    rig.advance(2s);
    EXPECT_EQ(rig.sim().read_u16(0x0D0C), 2);
    EXPECT_TRUE(rig.module1.led_lights(signal("D3"))) << "in the air";
    EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
    EXPECT_TRUE(rig.running());
}

}  // namespace
