#include "bench/devices/dme_indicators.h"

#include <gtest/gtest.h>

#include <vector>

#include "shown_state.h"

namespace bench {
namespace {

class DmeIndicators : public testing::Test {
  protected:
    static int byte_of(Device& device, int number) {
        return static_cast<std::uint8_t>(device.report(7).view()[static_cast<std::size_t>(number - 1)]);
    }

    platform::manual::ManualLoop loop;
    DmeIndicator dme{loop, {.type = 113}};
    BkDmeIndicator bk{loop, {.type = 123}};
};

TEST_F(DmeIndicators, the_words_show_as_digits_with_their_point_and_without_a_signal_as_nothing) {
    struct Case {
        int word;
        const char* text;
    };
    for (const Case& one : {Case{0x0123, "123"}, Case{0x2123, "12.3"}, Case{0x4123, "1.23"}, Case{0x2050, "05.0"},
                            Case{0x3000, "   "}, Case{0x5123, "   "}, Case{0x3123, "   "}, Case{0x7123, "   "}}) {
        for (DmeIndicator* const unit : {&dme, static_cast<DmeIndicator*>(&bk)}) {
            unit->take({4, one.word});
            unit->take({3, one.word});
            EXPECT_EQ(unit->distance(), one.text);
            EXPECT_EQ(unit->speed(), one.text);
        }
    }
    for (const Case& one : {Case{0x07, "07"}, Case{153, "  "}, Case{0x3000, "  "}}) {
        dme.take({5, one.word});
        EXPECT_EQ(dme.time(), one.text);
    }
}

TEST_F(DmeIndicators, the_displays_have_power_from_the_bus_or_of_their_own) {
    dme.take({4, 0x2123});
    dme.take({8, 64});
    EXPECT_EQ(dme.distance(), "   ");
    dme.take({10, 1});
    EXPECT_EQ(dme.distance(), "12.3") << "test";
    dme.take({10, 0});
    EXPECT_EQ(dme.distance(), "   ");
    dme.take({6, 0});
    EXPECT_EQ(dme.distance(), "12.3");
    dme.power_on();
    EXPECT_EQ(dme.distance(), "   ") << "nothing received since";
}

TEST_F(DmeIndicators, the_rotary_switch_is_reported) {
    EXPECT_EQ(byte_of(dme, 6), 'S');
    EXPECT_EQ(byte_of(dme, 9), 'D');
    dme.operate("rotary", 4);
    EXPECT_EQ(byte_of(dme, 17), 4);
    dme.operate("rotary", 5);
    EXPECT_EQ(dme.rotary(), 4) << "there is no such position";
    bk.operate("rotary", 3);
    bk.operate("rotary", 4);
    EXPECT_EQ(byte_of(bk, 17), 3);
    EXPECT_FALSE(dme.operate("coarse", 1));
}

TEST_F(DmeIndicators, the_bk_dme_tunes_its_frequency_and_shows_it_instead_of_speed_and_time) {
    struct Case {
        const char* knob;
        int clicks;
        int frequency_khz;
    };
    for (const Case& one : {Case{"coarse", 4, 112000}, Case{"fine", 9, 112450}, Case{"fine", -10, 112950},
                            Case{"coarse", 6, 108950}, Case{"coarse", -1, 117950}, Case{"fine", 21, 117000}}) {
        bk.operate(one.knob, one.clicks);
        EXPECT_EQ(bk.frequency_khz(), one.frequency_khz) << one.knob << one.clicks;
    }
    EXPECT_EQ(byte_of(bk, 20) * 256 + byte_of(bk, 19), 17000);
    bk.take({3, 0x0150});
    bk.take({5, 0x12});
    bk.operate("rotary", BkDmeIndicator::freq);
    auto state = shown(bk);
    EXPECT_EQ(state["frequency"], "117.000");
    EXPECT_EQ(state["speed"], "   ");
    EXPECT_EQ(state["time"], "  ");
    bk.operate("rotary", BkDmeIndicator::ground_speed_time);
    EXPECT_EQ(bk.speed(), "150");
    EXPECT_EQ(bk.time(), "12");
    bk.take({8, 0});
    EXPECT_EQ(shown(bk)["frequency"], "       ");
}

TEST_F(DmeIndicators, other_commands_are_counted) {
    dme.take({9, 1});
    dme.take({4, -1});
    dme.take({11, 2});
    dme.take({13, 0x30F});
    EXPECT_EQ(dme.unknown_commands(), 1);
    EXPECT_EQ(dme.bad_values(), 2);
}

}  // namespace
}  // namespace bench
