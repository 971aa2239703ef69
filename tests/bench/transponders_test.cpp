#include "bench/devices/transponders.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bench/devices/audio_panel.h"
#include "bench/devices/bus_controller.h"
#include "platform/manual/manual_loop.h"

namespace bench {
namespace {

using std::chrono::milliseconds;

int byte_of(const ReportBytes& report, int number) {
    return static_cast<unsigned char>(report.view()[static_cast<std::size_t>(number - 1)]);
}
int reported(Device& device, int number) {
    return byte_of(device.report(1), number);
}

struct Transponders : testing::Test {
    platform::manual::ManualLoop loop;
    Transponder ctl30{loop, {.type = 112}};
    Transponder boeing{loop, {.type = 114}};
    BkTransponder king{loop, {.type = 122}};
};

TEST_F(Transponders, digits_are_octal_and_turn_alone) {
    struct Case {
        int from;
        const char* knob;
        int clicks;
        const char* to;
    };
    for (const Case& one : std::vector<Case>{{07700, "digit1", 1, "0700"},
                                             {07700, "digit2", 3, "7200"},
                                             {01200, "digit4", -1, "1207"},
                                             {01200, "digit3", 8, "1200"},
                                             {01200, "digit3", -17, "1270"}}) {
        ctl30.take({4, one.from});
        EXPECT_TRUE(ctl30.operate(one.knob, one.clicks));
        EXPECT_EQ(ctl30.code(1).text(), one.to) << one.knob << ' ' << one.clicks;
    }
    for (const char* const nothing : {"digit0", "digit5", "digit", "digit11", "vfr", ""}) {
        EXPECT_FALSE(ctl30.operate(nothing, 1)) << nothing;
    }
}

TEST_F(Transponders, codes_are_reported_in_nibbles_and_defaults_come_with_the_power) {
    for (const Command& command : std::vector<Command>{{10, 04321}, {4, 07700}, {11, 02345}, {5, 00012}}) {
        ctl30.take(command);
    }
    EXPECT_EQ(reported(ctl30, 7), 0x77);
    EXPECT_EQ(reported(ctl30, 8), 0x00);
    EXPECT_EQ(reported(ctl30, 10), 0x00);
    EXPECT_EQ(reported(ctl30, 11), 0x12);
    EXPECT_EQ(reported(ctl30, 15), 1);
    ctl30.operate("select", 2);
    ctl30.operate("digit1", 1);
    EXPECT_EQ(reported(ctl30, 10), 0x10) << "the knobs turn the active code";
    EXPECT_EQ(reported(ctl30, 15), 2);
    ctl30.operate("rotary", 1);
    EXPECT_FALSE(ctl30.answers({bus::kCommandStatus, 0})) << "switched off";
    ctl30.operate("rotary", 5);
    EXPECT_TRUE(ctl30.answers({bus::kCommandStatus, 0}));
    ctl30.power_on();
    EXPECT_EQ(ctl30.code(1).text(), "4321");
    EXPECT_EQ(ctl30.code(2).text(), "2345");
    EXPECT_EQ(reported(ctl30, 17), 5) << "a switch stands where it stood";
    ctl30.take({4, 010000});
    ctl30.take({4, -1});
    ctl30.take({13, 0x30F});
    ctl30.take({6, 1});
    EXPECT_EQ(ctl30.bad_values(), 2);
    EXPECT_EQ(ctl30.code(1).text(), "4321");
}

TEST_F(Transponders, ident_lasts_a_moment_and_until_a_report_has_told_it) {
    ctl30.operate("ident", 1);
    loop.advance(milliseconds(5000));
    EXPECT_EQ(reported(ctl30, 13), 1) << "nobody has asked for so long";
    EXPECT_EQ(reported(ctl30, 13), 0);
    king.operate("ident", 1);
    EXPECT_EQ(reported(king, 13), 1);
    EXPECT_EQ(reported(king, 13), 1) << "asked again at once";
    loop.advance(milliseconds(1000));
    EXPECT_EQ(reported(king, 13), 0);
}

TEST_F(Transponders, the_lamp_and_the_flight_level_are_answered_with_the_report) {
    platform::manual::ManualLoop bus_loop;
    BusController controller(bus_loop);
    std::string sent;
    controller.on_send = [&sent](std::string_view bytes) { sent += bytes; };
    auto& with_lamp = controller.add_device<Transponder>(4, {.type = 114});
    auto& without = controller.add_device<Transponder>(5, {.type = 112});
    auto& with_level = controller.add_device<BkTransponder>(6, {.type = 122});
    const auto answered = [&](int id, int command, int value) {
        std::string frame;
        bus::append_frame(frame, id, command, value);
        sent.clear();
        controller.receive(frame);
        bus_loop.advance(milliseconds(50));
        return sent.size() == bus::kReportLength && sent[1] == static_cast<char>(id);
    };
    EXPECT_TRUE(answered(4, 12, 256));
    EXPECT_TRUE(with_lamp.atc());
    EXPECT_TRUE(answered(4, 12, 0));
    EXPECT_FALSE(with_lamp.atc());
    EXPECT_FALSE(answered(5, 12, 256));
    EXPECT_EQ(without.unknown_commands(), 1);
    EXPECT_TRUE(answered(6, 5, 85));
    EXPECT_EQ(with_level.flight_level_text(), "085");
    EXPECT_FALSE(answered(6, 12, 1)) << "there it is the way to show no flight level";
    EXPECT_FALSE(answered(4, 4, 01200));
}

TEST_F(Transponders, the_bendix_king_displays_follow_the_switch) {
    king.take({12, 1});
    EXPECT_EQ(king.flight_level_text(), "---");
    king.take({12, 0});
    EXPECT_EQ(king.flight_level_text(), "000");
    king.take({5, -1});
    EXPECT_EQ(king.flight_level_text(), "-01");
    struct Case {
        int position;
        const char* code;
        const char* level;
    };
    king.take({5, 123});
    for (const Case& one : std::vector<Case>{{BkTransponder::off, "    ", "   "},
                                             {BkTransponder::standby, "1200", "   "},
                                             {BkTransponder::test, "8888", "888"},
                                             {BkTransponder::on, "1200", "123"},
                                             {BkTransponder::altitude, "1200", "123"}}) {
        king.operate("rotary", one.position);
        EXPECT_EQ(king.code_text(), one.code) << one.position;
        EXPECT_EQ(king.flight_level_text(), one.level) << one.position;
        EXPECT_EQ(reported(king, 17), one.position);
    }
    king.take({8, 0});
    EXPECT_EQ(king.code_text() + king.flight_level_text(), "       ") << "without power";
    king.take({8, 128});
    king.operate("rotary", BkTransponder::off);
    king.take({6, 1});
    EXPECT_EQ(king.code_text(), "1200") << "switched from outside";
}

TEST_F(Transponders, the_vfr_button_brings_its_code) {
    king.take({10, 07000});
    king.operate("digit4", 5);
    EXPECT_EQ(king.code().text(), "1205");
    king.operate("vfr", 1);
    EXPECT_EQ(king.code().text(), "7000");
    EXPECT_EQ(reported(king, 15), 1);
    loop.advance(milliseconds(1500));
    EXPECT_EQ(reported(king, 15), 0);
}

TEST(AudioPanels, buttons_lamps_and_switch_are_reported_and_lit) {
    platform::manual::ManualLoop loop;
    AudioPanel panel(loop, {.type = 125});
    EXPECT_EQ(reported(panel, 7), 32) << "the first radio is on from the start";
    panel.operate("com1", 1);
    struct Case {
        const char* button;
        int byte7;
        int byte8;
    };
    for (const Case& one : std::vector<Case>{{"com1", 32, 0},
                                             {"com2", 1, 0},
                                             {"nav1", 0, 1},
                                             {"nav2", 2, 0},
                                             {"mkr", 0, 2},
                                             {"dme", 0, 8},
                                             {"adf", 0, 4},
                                             {"ics", 4, 0},
                                             {"aux", 8, 0},
                                             {"spkr", 16, 0}}) {
        EXPECT_TRUE(panel.operate(one.button, 1));
        EXPECT_EQ(reported(panel, 7), one.byte7) << one.button;
        EXPECT_EQ(reported(panel, 8), one.byte8) << one.button;
        panel.operate(one.button, 1);
        EXPECT_EQ(reported(panel, 7) + reported(panel, 8), 0) << one.button;
    }
    EXPECT_FALSE(panel.operate("com3", 1));
    panel.operate("rotary", 9);
    EXPECT_EQ(reported(panel, 10), AudioPanel::kRotaryPositions);
    panel.take({6, 5});
    EXPECT_TRUE(panel.marker_lamp(AudioPanel::outer));
    EXPECT_FALSE(panel.marker_lamp(AudioPanel::middle));
    EXPECT_TRUE(panel.marker_lamp(AudioPanel::inner));
    panel.take({6, 8});
    EXPECT_EQ(panel.bad_values(), 1);
    panel.take({8, 64});
    EXPECT_FALSE(panel.marker_lamp(AudioPanel::outer)) << "without power";
}

}  // namespace
}  // namespace bench
