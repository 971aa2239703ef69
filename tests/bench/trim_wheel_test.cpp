#include "bench/devices/trim_wheel.h"

#include <gtest/gtest.h>

#include "shown_state.h"

namespace bench {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class TrimWheels : public testing::Test {
  protected:
    TrimWheels() {
        wheel.take({3, 2000});
        wheel.take({4, 5000});
    }
    int reported() {
        const auto report = wheel.report(7);
        const auto byte = [&report](std::size_t number) {
            return static_cast<std::uint8_t>(report.view()[number - 1]);
        };
        EXPECT_EQ(byte(6), 'P');
        EXPECT_EQ(byte(9), 'T');
        EXPECT_EQ(byte(13), static_cast<int>(wheel.motor()));
        return byte(7) * 256 + byte(8);
    }

    platform::manual::ManualLoop loop;
    TrimWheel wheel{loop, {.type = 140}};
};

TEST_F(TrimWheels, the_autopilot_moves_the_wheel_at_its_speed) {
    EXPECT_EQ(wheel.wheel(), 512);
    wheel.take({5, 100});
    loop.advance(seconds(5));
    EXPECT_EQ(wheel.wheel(), 512) << "the motor is off";
    wheel.take({9, 4});
    wheel.take({5, 612});
    loop.advance(milliseconds(100));
    EXPECT_DOUBLE_EQ(wheel.wheel(), 562);
    EXPECT_EQ(reported(), 562);
    wheel.take({9, 4});  // comes again and again; it goes on
    wheel.take({5, 612});
    loop.advance(milliseconds(100));
    EXPECT_DOUBLE_EQ(wheel.wheel(), 612);
    wheel.take({5, 2000});
    loop.advance(seconds(5));
    EXPECT_EQ(reported(), 1023);
    EXPECT_EQ(wheel.bad_values(), 1);
    EXPECT_EQ(shown(wheel)["motor"], "autopilot");
}

TEST_F(TrimWheels, a_trim_switch_runs_the_wheel_until_it_is_let_go) {
    wheel.take({9, 1});
    EXPECT_EQ(shown(wheel)["motor"], "switch 1");
    loop.advance(milliseconds(500));
    wheel.take({9, 0});
    loop.advance(seconds(5));
    EXPECT_EQ(wheel.wheel(), 612);
    wheel.take({9, 2});
    loop.advance(seconds(10));
    EXPECT_EQ(reported(), 0);
    wheel.take({9, 4});
    loop.advance(seconds(10));
    EXPECT_EQ(reported(), 0) << "it waits for a position";
    wheel.take({9, 3});
    EXPECT_EQ(wheel.bad_values(), 1);
}

TEST_F(TrimWheels, a_hand_turns_the_wheel_and_a_running_motor_turns_it_back) {
    wheel.operate("wheel", -4);
    EXPECT_EQ(reported(), 480);
    wheel.operate("wheel", 1000);
    EXPECT_EQ(reported(), 1023);
    wheel.take({9, 4});
    wheel.take({5, 1000});
    loop.advance(seconds(1));
    wheel.operate("wheel", -1);
    EXPECT_EQ(reported(), 992);
    loop.advance(seconds(1));
    EXPECT_EQ(reported(), 1000);
    EXPECT_FALSE(wheel.operate("lever", 1));
}

TEST_F(TrimWheels, the_dead_band_keeps_the_motor_quiet) {
    wheel.take({13, 5});
    wheel.take({9, 4});
    wheel.take({5, 516});
    loop.advance(seconds(1));
    EXPECT_EQ(reported(), 512);
    wheel.take({5, 517});
    loop.advance(seconds(1));
    EXPECT_EQ(reported(), 517);
    wheel.power_on();
    EXPECT_EQ(reported(), 517);
    EXPECT_EQ(wheel.motor(), TrimWheel::Motor::off);
}

}  // namespace
}  // namespace bench
