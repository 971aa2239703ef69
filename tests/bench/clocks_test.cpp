#include "bench/devices/clocks.h"

#include <gtest/gtest.h>

#include <vector>

#include "shown_state.h"

namespace bench {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class Clocks : public testing::Test {
  protected:
    static int byte_of(Device& device, int number) {
        return static_cast<std::uint8_t>(device.report(7).view()[static_cast<std::size_t>(number - 1)]);
    }
    static std::vector<int> bytes_of(Device& device, int first) {
        return {byte_of(device, first), byte_of(device, first + 1), byte_of(device, first + 2)};
    }

    platform::manual::ManualLoop loop;
    BoeingClock boeing{loop, {.type = 104}};
    CessnaClock cessna{loop, {.type = 109}};
};

TEST_F(Clocks, the_boeing_clock_runs_by_itself_past_midnight_and_the_end_of_the_year) {
    boeing.take({15, 123});
    boeing.take({5, -20864});  // 23:59:59
    boeing.take({4, 26 * 1024 + 12 * 64 + 31});
    EXPECT_EQ(shown(boeing)["date"], "31 DEC 26");
    EXPECT_EQ(bytes_of(boeing, 7), (std::vector<int>{26, 12, 31}));
    EXPECT_EQ(bytes_of(boeing, 11), (std::vector<int>{23, 59, 59}));
    loop.advance(milliseconds(999));
    EXPECT_EQ(boeing.second_of_day(), 86399);
    loop.advance(milliseconds(1));
    EXPECT_EQ(boeing.second_of_day(), 0);
    EXPECT_EQ(shown(boeing)["date"], "01 JAN 27");
    loop.advance(seconds(3661));
    auto state = shown(boeing);
    EXPECT_EQ(state["hour"], "1");
    EXPECT_EQ(state["minute"], "1");
    EXPECT_EQ(state["second"], "1");
    boeing.power_on();
    EXPECT_EQ(boeing.second_of_day(), 3661) << "its battery";
}

TEST_F(Clocks, a_date_does_not_disturb_the_seconds_and_an_impossible_one_is_refused) {
    boeing.take({5, 100});
    loop.advance(milliseconds(600));
    for (int pass = 0; pass < 5; ++pass) {
        boeing.take({4, 26 * 1024 + 11 * 64 + 22});
        loop.advance(milliseconds(240));
    }
    EXPECT_EQ(boeing.second_of_day(), 101);
    boeing.take({4, 0});  // "no date"
    EXPECT_EQ(boeing.bad_values(), 0);
    for (const int word : {26 * 1024 + 13 * 64 + 1, 26 * 1024 + 2 * 64 + 30, 64, -5}) {
        boeing.take({4, word});
        EXPECT_EQ(boeing.day(), 22);
    }
    EXPECT_EQ(boeing.bad_values(), 4);
    boeing.take({5, -20865});  // 24:00:00
    EXPECT_EQ(boeing.bad_values(), 5);
}

TEST_F(Clocks, the_stop_watch_starts_stops_and_returns_to_zero) {
    boeing.operate("elapsed", 1);
    loop.advance(seconds(3909));
    EXPECT_EQ(shown(boeing)["elapsed"], "1:05:09");
    EXPECT_EQ(shown(boeing)["elapsedRunning"], "true");
    boeing.operate("elapsed", 1);
    loop.advance(seconds(100));
    EXPECT_EQ(bytes_of(boeing, 15), (std::vector<int>{1, 5, 9}));
    boeing.operate("elapsed", 1);
    EXPECT_EQ(shown(boeing)["elapsed"], "0:00:00");
    EXPECT_EQ(shown(boeing)["elapsedRunning"], "false");
}

TEST_F(Clocks, the_boeing_clocks_hands_are_set_by_hand_within_the_day) {
    boeing.take({4, 26 * 1024 + 11 * 64 + 22});
    boeing.operate("setHour", -1);
    boeing.operate("setMinute", -1);
    EXPECT_EQ(boeing.second_of_day(), 22 * 3600 + 59 * 60);
    EXPECT_EQ(boeing.day(), 22);
    boeing.operate("setHour", 25);
    EXPECT_EQ(boeing.second_of_day(), 23 * 3600 + 59 * 60);
    EXPECT_FALSE(boeing.operate("knob", 1));
}

TEST_F(Clocks, the_boeing_clock_takes_the_commands_of_its_dialog) {
    for (const Command& command : std::vector<Command>{{11, 33}, {11, 42}, {11, 31}, {13, 0x305}, {14, 1}, {3, 1300}}) {
        boeing.take(command);
    }
    EXPECT_EQ(boeing.calibration(), 10);
    EXPECT_TRUE(boeing.second_hand_shows_real_time());
    boeing.take({12, 77});
    EXPECT_EQ(boeing.calibration(), 77);
    boeing.take({10, 0});
    EXPECT_EQ(boeing.calibration(), 0);
    EXPECT_EQ(boeing.bad_values() + boeing.unknown_commands(), 0);
    boeing.take({9, 0});
    boeing.take({15, 1});
    boeing.take({14, 2});
    EXPECT_EQ(boeing.unknown_commands(), 1);
    EXPECT_EQ(boeing.bad_values(), 2);
}

TEST_F(Clocks, the_cessna_clock_shows_three_values_above_and_three_times_below) {
    cessna.take({5, 8 * 3600 + 31 * 60 + 7});
    cessna.take({4, 9});
    cessna.take({6, 61});
    cessna.take({9, 24 * 256 + 5});
    cessna.take({11, 15});
    cessna.take({12, 59});
    auto state = shown(cessna);
    EXPECT_EQ(state["upper"], "24.5 V");
    EXPECT_EQ(state["lower"], "09:31:07");
    EXPECT_EQ(state["lowerMode"], "LT");
    for (const char* const text : {"15 C", "59 F", "24.5 V"}) {
        cessna.operate("upper", 1);
        EXPECT_EQ(shown(cessna)["upper"], text);
    }
    for (const char* const text : {"08:31:07", "00:01:01", "09:31:07"}) {
        cessna.operate("lower", 1);
        EXPECT_EQ(shown(cessna)["lower"], text);
    }
    loop.advance(seconds(16 * 3600));
    EXPECT_EQ(shown(cessna)["lower"], "01:31:07") << "local time goes on with universal time";
    EXPECT_EQ(byte_of(cessna, 7), 1);
    EXPECT_EQ(bytes_of(cessna, 11), (std::vector<int>{0, 31, 7}));
    EXPECT_EQ(bytes_of(cessna, 15), (std::vector<int>{16, 1, 1}));
    cessna.take({8, 64});
    EXPECT_EQ(shown(cessna)["lower"], "        ");
    EXPECT_EQ(shown(cessna)["upper"], "      ");
}

TEST_F(Clocks, the_cessna_clock_refuses_what_it_cannot_show) {
    for (const Command& bad :
         std::vector<Command>{{4, 24}, {4, -1}, {5, -30000}, {9, 24 * 256 + 10}, {9, -1}, {13, 7}}) {
        cessna.take(bad);
    }
    EXPECT_EQ(cessna.bad_values(), 6);
    cessna.take({11, -40});
    cessna.take({13, 32});
    cessna.take({10, 0});
    EXPECT_FALSE(cessna.sounder_enabled());
    EXPECT_EQ(cessna.bad_values(), 6);
    EXPECT_EQ(shown(cessna)["lower"], "00:00 00");
}

}  // namespace
}  // namespace bench
