// Radios, transponders and the audio panel: what their reports write, and what they are told.

#include <gtest/gtest.h>

#include <limits>

#include "run_world.h"

namespace {

using run_test::RunWorld;
using Sent = RunWorld::Sent;

class RadioWorld : public RunWorld {
  public:
    tables::GaugeRow& add_radio(int id, int type, int model, int function, int number, bool standby) {
        tables::GaugeRow& gauge = add_gauge(id, type, function, function + 1);
        gauge.GaugeModel = static_cast<std::uint8_t>(model);
        gauge.GaugeSeqNr1 = gauge.GaugeSeqNr2 = static_cast<std::uint8_t>(number);
        gauge.GaugePlate2 = standby ? 1 : 0;
        return gauge;
    }
    void report_words(int id, int type, const std::map<int, int>& words, std::map<int, int> bytes = {}) {
        for (const auto& [number, value] : words) {
            bytes[number] = value >> 8;
            bytes[number + 1] = value & 255;
        }
        report(id, type, bytes);
    }
};

TEST(Radios, com_and_nav_frequencies_are_written_with_every_report_the_standby_one_when_asked_for) {
    struct Case {
        int type, model, function, number;
        bool standby;
        int active, standby_number;
        double expected, expected_standby;
    };
    for (const Case& step :
         {Case{110, 0, 20, 1, true, 18350, 21000, 11835, 12100}, Case{111, 0, 20, 2, false, 18350, 21000, 11835, -1},
          Case{110, 1, 22, 1, true, 8000, 17955, 10800, 11795}}) {
        RadioWorld world;
        world.add_radio(7, step.type, step.model, step.function, step.number, step.standby);
        world.status.cmdRun_Click();
        for (int time = 0; time < 2; ++time) {
            world.set_value(step.function, -1, step.number);
            world.set_value(step.function + 1, -1, step.number);
            world.report_words(7, step.type, {{7, step.active}, {10, step.standby_number}});
            EXPECT_EQ(world.value_of(step.function, step.number), step.expected);
            EXPECT_EQ(world.value_of(step.function + 1, step.number), step.expected_standby);
        }
        world.take_frames();
        world.tick();
        EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{7, 7, 0}}));
    }
}

TEST(Radios, an_adf_frequency_goes_to_its_two_words) {
    RadioWorld world;
    world.add_radio(1, 110, 2, 24, 1, false);
    world.add_radio(2, 121, 3, 24, 2, false);
    world.add_radio(3, 110, 4, 22, 1, false);  // no such kind
    world.status.cmdRun_Click();
    world.report_words(1, 110, {{7, 3525}});
    EXPECT_EQ(world.value_of(24, 1), 352);
    EXPECT_EQ(world.value_of(24, 3), 5);
    world.report_words(2, 121, {{7, 13705}});
    EXPECT_EQ(world.value_of(24, 2), 370);
    EXPECT_EQ(world.value_of(24, 4), 105);
    world.set_value(22, -1);
    world.report_words(3, 110, {{7, 18350}});
    EXPECT_EQ(world.value_of(22), -1);
}

TEST(ComNavRadio, a_frequency_is_written_when_it_changes_and_100_mhz_while_the_radio_is_off) {
    RadioWorld world;
    world.add_radio(3, 120, 0, 20, 2, true);
    world.status.cmdRun_Click();
    const std::map<int, int> words = {{7, 18350}, {10, 21000}, {13, 12450}, {16, 8000}};
    const auto values = [&world] {
        return std::vector<double>{world.value_of(20, 2), world.value_of(21, 2), world.value_of(22, 2),
                                   world.value_of(23, 2)};
    };
    const auto forget = [&world] {
        for (int function = 20; function <= 23; ++function) {
            world.set_value(function, -1, 2);
        }
    };
    world.report_words(3, 120, words);
    EXPECT_EQ(values(), (std::vector<double>{11835, 12100, 11245, 10800}));
    forget();
    world.report_words(3, 120, words);
    EXPECT_EQ(values(), (std::vector<double>{-1, -1, -1, -1})) << "nothing has changed";
    for (int time = 0; time < 2; ++time) {
        world.report_words(3, 120, words, {{23, 32}});
        const double off = time == 0 ? 10000 : -1;
        EXPECT_EQ(values(), (std::vector<double>{off, off, off, off}));
        forget();
    }
    world.report_words(3, 120, words);
    EXPECT_EQ(values(), (std::vector<double>{11835, 12100, 11245, 10800}));
}

TEST(ComNavRadio, the_active_nav_frequency_waits_while_the_dme_owns_it) {
    RadioWorld world;
    world.add_radio(3, 120, 0, 20, 1, false);
    world.status.cmdRun_Click();
    world.status.context().radios.NavHold1 = 1;
    world.set_value(22, -1);
    world.report_words(3, 120, {{13, 12450}});
    EXPECT_EQ(world.value_of(22), -1);
    world.status.context().radios.NavHold1 = 0;
    world.status.context().radios.NavHold2 = 1;
    world.report_words(3, 120, {{13, 12450}});
    EXPECT_EQ(world.value_of(22), 11245);
}

TEST(ComNavRadio, a_unit_that_is_not_in_the_list_leaves_what_others_have_sent_alone) {
    RadioWorld world;
    world.add_radio(3, 120, 0, 20, 1, true);
    world.status.cmdRun_Click();
    world.report_words(3, 120, {{7, 18350}});
    for (const double stale : {0.0, 1.0, 200.0, -1.0}) {
        world.tables.gauges[9].GaugeRunIndex = static_cast<float>(stale);
        world.report_words(9, 120, {{7, 24000}, {13, 12450}});
        EXPECT_EQ(world.status.context().entry(0).Last1, 11835) << "run index " << stale;
    }
    EXPECT_EQ(world.value_of(20), 11835);
}

TEST(Transponders, code_switch_and_ident_are_written_as_the_unit_is_set_up) {
    struct Case {
        const char* what;
        int type, flags;
        std::map<int, int> bytes;
        double code, position, mode, ident;
    };
    const std::map<int, int> emergency = {{7, 0x77}, {8, 0x00}, {10, 0x12}, {11, 0x34}, {13, 1}, {15, 1}, {17, 5}};
    std::map<int, int> second = emergency;
    second[15] = 2;
    std::map<int, int> on = emergency;
    on[17] = 3;
    std::map<int, int> bk_on = emergency;
    bk_on[17] = 4;
    for (const Case& step :
         {Case{"bare", 112, 0, emergency, 7700, 4, -1, -1}, Case{"CTL30", 112, 3, emergency, 7700, 4, 1, 1},
          Case{"second code", 112, 0, second, 1234, 4, -1, -1}, Case{"737", 114, 3, emergency, 7700, 4, 3, 1},
          Case{"737 on", 114, 3, on, 7700, 2, 0, 1}, Case{"BK", 122, 3, second, 7700, 4, 1, 1},
          Case{"BK on", 122, 1, bk_on, 7700, 3, 0, -1}}) {
        RadioWorld world;
        world.add_gauge(9, step.type, 26).GaugePlate1 = static_cast<std::int16_t>(step.flags);
        for (const int function : {26, 47}) {
            world.set_value(function, -1, 1);
            world.set_value(function, -1, 2);
        }
        world.status.cmdRun_Click();
        world.report(9, step.type, step.bytes);
        EXPECT_EQ(world.value_of(26), step.code) << step.what;
        EXPECT_EQ(world.value_of(26, 2), step.position) << step.what;
        EXPECT_EQ(world.value_of(47), step.mode) << step.what;
        EXPECT_EQ(world.value_of(47, 2), step.ident) << step.what;
        world.set_value(47, -1);
        world.report(9, step.type, step.bytes);
        EXPECT_EQ(world.value_of(47), -1) << step.what << ": only a turn of the switch is written";
    }
    RadioWorld world;
    world.tables.functions[26].FunctionOffset2 = 0;
    world.add_gauge(9, 112, 26);
    world.set_value(26, -1, 2);
    world.status.cmdRun_Click();
    world.report(9, 112, emergency);
    EXPECT_EQ(world.value_of(26), 7700) << "without a place for the switch";
}

TEST(Transponders, each_is_polled_with_the_frame_that_it_answers) {
    RadioWorld world;
    world.tables.LightMode = 2;
    world.add_gauge(1, 112, 26);
    world.add_gauge(2, 114, 26).GaugePlate1 = 4;
    world.add_gauge(3, 122, 26);
    world.set_value(4, 12399);
    world.set_value(46, 1);
    world.status.cmdRun_Click();
    world.tick(6);
    world.take_frames();
    world.tick(3);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{1, 7, 0}, {2, 12, 256}, {3, 5, 123}}));
    world.set_value(46, 0);
    world.set_value(4, -20);
    world.tick(3);
    world.take_frames();
    world.tick(3);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{1, 7, 0}, {2, 12, 0}, {3, 5, -1}}));
}

TEST(Transponders, values_that_are_no_numbers_ask_nothing_and_every_unit_is_polled_on) {
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    for (const double value : {std::numeric_limits<double>::quiet_NaN(), kEndless, -kEndless, 1e30, -1e30}) {
        RadioWorld world;
        world.tables.LightMode = 2;
        world.add_gauge(1, 114, 26).GaugePlate1 = 7;
        world.add_gauge(2, 122, 26);
        world.add_gauge(3, 125, 38);
        world.status.cmdRun_Click();
        world.tick(4);
        for (const int function : {4, 38, 46}) {
            for (const int sequence_number : {1, 2, 3}) {
                world.set_value(function, value, sequence_number);
            }
        }
        world.tick(9);
        world.take_frames();
        world.tick(3);
        std::vector<int> polled;
        for (const Sent& sent : world.take_frames()) {
            polled.push_back(sent.id);
        }
        for (const int id : {1, 2, 3}) {
            EXPECT_EQ(std::count(polled.begin(), polled.end(), id), 1) << "unit " << id << " with " << value;
        }
        EXPECT_TRUE(world.machine.boxes.shown().empty()) << value << ": " << world.last_shown();
    }
}

TEST(AudioPanel, marker_lamps_go_out_on_a_change) {
    RadioWorld world;
    world.tables.LightMode = 2;
    world.add_gauge(1, 125, 38);
    world.status.cmdRun_Click();
    world.tick(8);
    EXPECT_EQ(world.take_values(1, 6), std::vector<int>{0});
    world.set_value(38, 1, 1);
    world.set_value(38, 1, 3);
    world.tick(8);
    EXPECT_EQ(world.take_values(1, 6).back(), 5);
    world.set_value(38, -1, 1);
    world.tick(8);
    EXPECT_EQ(world.take_values(1, 6).back(), 4);
    world.tick(8);
    EXPECT_TRUE(world.take_values(1, 6).empty());
}

TEST(AudioPanel, the_buttons_make_the_sound_selector) {
    RadioWorld world;
    world.add_gauge(1, 125, 38);
    world.status.cmdRun_Click();
    struct Case {
        int byte7, byte8, selector;
    };
    for (const Case& step :
         {Case{1, 0, 64}, Case{2, 0, 8}, Case{32, 0, 128}, Case{33, 0, 128 + 64 + 32}, Case{0, 1, 16}, Case{0, 2, 4},
          Case{0, 4, 1}, Case{0, 8, 2}, Case{28, 0xF0, 0}, Case{35, 15, 255}}) {
        world.space->write_u8(0x3122, 0xEE);
        world.report(1, 125, {{7, step.byte7}, {8, step.byte8}});
        EXPECT_EQ(world.space->read_u8(0x3122), step.selector);
        world.space->write_u8(0x3122, 0xEE);
        world.report(1, 125, {{7, step.byte7}, {8, step.byte8}});
        EXPECT_EQ(world.space->read_u8(0x3122), 0xEE) << "not written again";
    }
}

TEST(Radios, reports_of_units_that_are_not_set_up_write_nothing_and_break_nothing) {
    RadioWorld world;
    world.add_gauge(1, 1, 40);
    world.status.cmdRun_Click();
    world.set_value(40, 5);
    for (const int type : {101, 105, 106, 107, 108, 110, 111, 112, 114, 120, 121, 122, 125}) {
        for (const int id : {0, 2, 255}) {
            world.report(id, type, {{4, 255}, {7, 255}, {8, 255}, {10, 255}, {17, 255}});
        }
    }
    EXPECT_EQ(world.value_of(40), 5);
    EXPECT_TRUE(world.machine.boxes.shown().empty());
    EXPECT_TRUE(world.status.running());
}

}  // namespace
