#include "bench/devices/autopilot_unit.h"

#include <gtest/gtest.h>

#include <vector>

#include "shown_state.h"

namespace bench {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using Unit = AutopilotUnit;

class AutopilotUnits : public testing::Test {
  protected:
    int byte_of(int number) {
        return static_cast<std::uint8_t>(unit.report(7).view()[static_cast<std::size_t>(number - 1)]);
    }
    // Nobody touches it, and its reports have told all.
    void leave_alone() {
        loop.advance(seconds(2));
        unit.report(7);
        unit.report(7);
    }

    platform::manual::ManualLoop loop;
    Unit unit{loop, {.type = 124}};
};

TEST_F(AutopilotUnits, the_buttons_choose_modes_that_go_together) {
    struct Case {
        const char* button;
        int modes;
    };
    constexpr int kOn = Unit::ap | Unit::vertical_speed_hold;
    for (const Case& one : std::vector<Case>{{"ap", kOn | Unit::rol},
                                             {"hdg", kOn | Unit::hdg},
                                             {"nav", kOn | Unit::nav},
                                             {"apr", kOn | Unit::apr},
                                             {"rev", kOn | Unit::apr | Unit::rev},
                                             {"rev", kOn | Unit::rol},
                                             {"hdg", kOn | Unit::hdg},
                                             {"hdg", kOn | Unit::rol},
                                             {"alt", Unit::ap | Unit::rol | Unit::alt},
                                             {"alt", kOn | Unit::rol},
                                             {"arm", Unit::ap | Unit::rol | Unit::alt},
                                             {"ap", 0}}) {
        EXPECT_TRUE(unit.operate(one.button, 1));
        EXPECT_EQ(unit.modes(), one.modes) << one.button;
        EXPECT_EQ(byte_of(22), one.modes);
    }
    EXPECT_FALSE(unit.operate("fly", 1));
}

TEST_F(AutopilotUnits, it_counts_as_operated_until_its_reports_have_told_what_was_done) {
    EXPECT_EQ(byte_of(24), 0);
    unit.operate("ap", 1);
    EXPECT_EQ(byte_of(24), 1);
    loop.advance(seconds(10));  // a slow poll
    EXPECT_EQ(byte_of(24), 1);
    EXPECT_EQ(byte_of(24), 0);
    unit.operate("coarse", 5);
    for (int poll = 0; poll < 3; ++poll) {
        EXPECT_EQ(byte_of(24), 1);
    }
    loop.advance(milliseconds(1500));
    EXPECT_EQ(byte_of(24), 0);
}

TEST_F(AutopilotUnits, what_comes_from_the_simulator_counts_only_while_nobody_operates_it) {
    unit.operate("ap", 1);
    unit.take({5, 0});
    unit.take({4, 300});
    unit.take({3, 4000});
    EXPECT_NE(unit.modes(), 0);
    EXPECT_EQ(unit.vertical_speed(), 0);
    EXPECT_EQ(unit.altitude_feet(), 0);
    leave_alone();
    unit.take({5, 7 * 256 + 0x83});
    EXPECT_EQ(unit.modes(), Unit::ap | Unit::hdg | Unit::alt);
    EXPECT_EQ(unit.vertical_speed(), 700);
    unit.take({5, -(12 * 256 + 1)});
    EXPECT_EQ(unit.vertical_speed(), -1200);
    unit.take({4, -1250});
    unit.take({5, -(12 * 256 + 1)});
    EXPECT_EQ(unit.vertical_speed(), -1250) << "the hundreds say nothing new";
    unit.take({3, 4321});
    EXPECT_EQ(byte_of(7) * 256 + byte_of(8), 4321);
    EXPECT_EQ(byte_of(10) * 256 + byte_of(11), 65536 - 1250);
    EXPECT_EQ(byte_of(24), 0);
}

TEST_F(AutopilotUnits, the_knobs_set_altitude_or_pressure_and_the_display_follows) {
    unit.operate("coarse", 5);
    unit.operate("fine", -3);
    EXPECT_EQ(unit.altitude_feet(), 4700);
    EXPECT_EQ(unit.display_text(), "4700");
    unit.operate("up", 1);
    unit.operate("up", 1);
    unit.operate("down", 1);
    EXPECT_EQ(unit.vertical_speed(), 100);
    EXPECT_EQ(unit.display_text(), "+100");
    unit.operate("baro", 1);
    unit.operate("fine", 8);
    EXPECT_EQ(unit.display_text(), "30.00");
    EXPECT_EQ(byte_of(19) * 256 + byte_of(20), 3000);
    EXPECT_EQ(byte_of(23), 0);
    loop.advance(seconds(5));
    EXPECT_EQ(unit.display_text(), "4700");
    unit.take({9, 0});
    unit.operate("baro", 1);
    unit.operate("coarse", -1);
    EXPECT_EQ(unit.display_text(), "1006");
    EXPECT_EQ(byte_of(19) * 256 + byte_of(20), 1006);
    EXPECT_EQ(byte_of(23), 1);
    unit.operate("baro", 1);
    EXPECT_EQ(unit.display_text(), "4700");
    unit.operate("coarse", 100);
    EXPECT_EQ(unit.altitude_feet(), 32000);
    unit.take({15, 100 * 256 + 2});
    unit.operate("coarse", -10);
    unit.operate("fine", -1);
    EXPECT_EQ(unit.altitude_feet(), 30980);
    unit.take({8, 64});
    EXPECT_EQ(unit.display_text(), "     ");
}

TEST_F(AutopilotUnits, alert_and_trim_lamps_follow_their_word) {
    unit.take({11, 20});
    unit.take({11, 0});
    loop.advance(milliseconds(3999));
    EXPECT_TRUE(unit.alert()) << "as long as the word has said";
    loop.advance(milliseconds(1));
    EXPECT_FALSE(unit.alert());
    unit.take({11, 16});
    EXPECT_TRUE(unit.alert()) << "test";
    unit.take({11, 0x3000});
    EXPECT_EQ(shown(unit)["trimUp"], "true");
    unit.take({11, 0x6000});
    EXPECT_EQ(shown(unit)["trimUp"], "false");
    EXPECT_EQ(shown(unit)["trimDown"], "true");
    unit.take({11, 0});
    EXPECT_EQ(shown(unit)["trimDown"], "false");
    EXPECT_EQ(unit.bad_values(), 0);
}

TEST_F(AutopilotUnits, initialize_ends_modes_and_targets) {
    unit.operate("ap", 1);
    unit.operate("coarse", 5);
    unit.take({1, 0});
    EXPECT_EQ(unit.modes(), 0);
    EXPECT_EQ(unit.altitude_feet(), 0);
    EXPECT_FALSE(unit.operated());
}

}  // namespace
}  // namespace bench
