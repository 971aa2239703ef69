#include "bench/devices/needle_gauges.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/manual/manual_loop.h"

namespace bench {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr int kStepTimeUs = 2000;

class NeedleGauges : public testing::Test {
  protected:
    NeedleGauges() {
        for (NeedleGauge* gauge : {&single, &with_display, &dual}) {
            gauge->take({3, kStepTimeUs});
        }
    }

    platform::manual::ManualLoop loop;
    NeedleGauge single{loop, {.type = 1}};
    NeedleGauge with_display{loop, {.type = 2}};
    NeedleGauge dual{loop, {.type = 5}};
};

TEST_F(NeedleGauges, a_needle_travels_at_its_own_speed) {
    single.take({5, 400});
    EXPECT_EQ(single.needle_steps(1), 0);
    loop.advance(milliseconds(200));
    EXPECT_DOUBLE_EQ(single.needle_steps(1), 100);
    EXPECT_TRUE(single.moving(1));
    single.take({3, kStepTimeUs / 2});  // twice as fast from where it is
    loop.advance(milliseconds(100));
    EXPECT_DOUBLE_EQ(single.needle_steps(1), 200);
    single.take({5, 150});  // and back, before it has arrived
    loop.advance(milliseconds(20));
    EXPECT_DOUBLE_EQ(single.needle_steps(1), 180);
    loop.advance(seconds(1));
    EXPECT_EQ(single.needle_steps(1), 150);
    EXPECT_FALSE(single.moving(1));
}

TEST_F(NeedleGauges, an_hour_of_small_moves_loses_no_step) {
    for (int tick = 0; tick < 90000; ++tick) {
        single.take({5, (tick * 7) % 1000});
        loop.advance(milliseconds(40));
    }
    loop.advance(seconds(3));
    EXPECT_EQ(single.needle_steps(1), (89999 * 7) % 1000);
}

TEST_F(NeedleGauges, positions_count_in_the_resolution_in_force) {
    struct Case {
        int resolution;
        int value;
        double steps;
        int bad_values;
    };
    const std::vector<Case> cases = {
        {0, 0, 0, 0},        {0, 540, 540, 0},      {0, 1079, 1079, 0},    {0, 1080, 1079, 1},
        {0, 65535, 1079, 2}, {0, -1, 0, 3},         {1, 0, 0, 3},          {1, 1, 0.25, 3},
        {1, 2160, 540, 3},   {1, 4319, 1079.75, 3}, {1, 4320, 1079.75, 4}, {0, 1079, 1079, 4},
    };
    for (const Case& one : cases) {
        single.take({9, one.resolution});
        single.take({5, one.value});
        loop.advance(seconds(5));
        EXPECT_EQ(single.needle_steps(1), one.steps) << one.value << " in resolution " << one.resolution;
        EXPECT_EQ(single.bad_values(), one.bad_values);
    }
}

TEST_F(NeedleGauges, only_a_gauge_with_two_needles_moves_a_second_one) {
    dual.take({6, 300});
    single.take({6, 300});
    with_display.take({6, 300});
    loop.advance(seconds(5));
    EXPECT_EQ(dual.needle_steps(1), 0);
    EXPECT_EQ(dual.needle_steps(2), 300);
    EXPECT_EQ(single.needle_steps(2), 0);
    EXPECT_EQ(single.unknown_commands(), 1);
    EXPECT_EQ(with_display.needle_steps(2), 0);
    EXPECT_EQ(with_display.display_word(), 300);
    for (const int type : {1, 2, 3, 4, 5, 6}) {
        const NeedleGauge gauge(loop, {.type = type});
        EXPECT_EQ(gauge.needle_count(), type == 3 || type == 5 || type == 6 ? 2 : 1) << "type " << type;
        EXPECT_EQ(gauge.has_display(), type == 2) << "type " << type;
    }
}

TEST_F(NeedleGauges, the_display_shows_nibbles_while_it_has_power) {
    EXPECT_EQ(with_display.display_text(), "    ");
    with_display.take({6, 0x45A6});
    EXPECT_EQ(with_display.display_text(), "45.6");
    with_display.take({6, 0x123B});
    EXPECT_EQ(with_display.display_text(), "123 ");
    with_display.take({6, 0x999B});
    EXPECT_EQ(with_display.display_text(), "999 ");
    with_display.take({6, 0x0CDF});
    EXPECT_EQ(with_display.display_text(), "0---");
    with_display.take({8, 64});
    EXPECT_EQ(with_display.display_text(), "    ");
    with_display.take({8, 128});
    EXPECT_EQ(with_display.display_text(), "0---");
    with_display.take({6, -1});
    EXPECT_EQ(with_display.bad_values(), 1);
}

TEST_F(NeedleGauges, the_pointer_of_a_reversed_needle_turns_the_other_way) {
    dual.take({4, 2});
    dual.take({5, 90});
    dual.take({6, 60});
    loop.advance(seconds(5));
    EXPECT_EQ(dual.pointer_steps(1), 90);
    EXPECT_EQ(dual.pointer_steps(2), -60);
    dual.take({4, 4});
    single.take({4, 2});
    EXPECT_EQ(dual.bad_values(), 1);
    EXPECT_EQ(single.bad_values(), 1);
}

TEST_F(NeedleGauges, the_calibration_point_moves_the_pointer_and_is_stored) {
    single.take({5, 100});
    loop.advance(seconds(1));
    single.take({11, 40});
    single.take({11, 4});
    EXPECT_EQ(single.pointer_steps(1), 111);
    single.take({12, 4});
    EXPECT_EQ(single.pointer_steps(1), 110);
    single.power_on();  // not stored yet
    EXPECT_EQ(single.calibration_point(), 0);
    single.take({13, 400});
    EXPECT_EQ(single.stored_calibration_point(), 400);
    single.take({12, 440});  // below the zero mark it counts on from the top
    EXPECT_EQ(single.calibration_point(), 4320 - 40);
    single.power_on();
    EXPECT_EQ(single.calibration_point(), 400);
    single.take({13, 0});
    EXPECT_EQ(single.stored_calibration_point(), 0);
    single.take({13, 4320});
    EXPECT_EQ(single.bad_values(), 1);
}

TEST_F(NeedleGauges, recalibration_runs_to_the_zero_mark_and_finds_lost_steps) {
    single.take({5, 100});
    loop.advance(seconds(1));
    single.lose_steps(1, -30);
    EXPECT_EQ(single.pointer_steps(1), 70);
    single.take({1, 0});
    EXPECT_TRUE(single.calibrating());
    single.take({5, 50});  // waits until the zero mark is found
    loop.advance(milliseconds(100 * kStepTimeUs / 1000 - 2));
    EXPECT_TRUE(single.calibrating());
    EXPECT_DOUBLE_EQ(single.needle_steps(1), 1);
    loop.advance(milliseconds(2 + 50 * kStepTimeUs / 1000));
    EXPECT_FALSE(single.calibrating());
    EXPECT_EQ(single.needle_steps(1), 50);
    EXPECT_EQ(single.pointer_steps(1), 50);
    single.take({1, 0});
    loop.advance(seconds(5));
    EXPECT_EQ(single.pointer_steps(1), 0);
}

TEST_F(NeedleGauges, the_light_bits_do_what_they_say) {
    struct Case {
        int bits;
        bool lit;
        bool displays;
        int level;
        int stored_level;
    };
    const std::vector<Case> cases = {
        {64, true, false, 15, 15},   // on at the level that it has
        {15, false, false, 15, 15},  // off; the level is not taken
        {192, true, true, 15, 15},   // on, with power
        {64 + 16 + 5, true, false, 5, 15},
        {64 + 16 + 32 + 7, true, false, 7, 7},
        {128, false, true, 7, 7},
        {64 + 3, true, false, 7, 7},
        {0, false, false, 7, 7},
        {256 + 15, true, false, 7, 7},  // always on
        {0, true, false, 7, 7},
        {1024, false, false, 7, 7},  // no longer always on
        {64 + 16 + 2, true, false, 2, 7},
    };
    for (const Case& one : cases) {
        single.take({8, one.bits});
        EXPECT_EQ(single.lights().lit(), one.lit) << one.bits;
        EXPECT_EQ(single.lights().displays_on(), one.displays) << one.bits;
        EXPECT_EQ(single.lights().level(), one.level) << one.bits;
        EXPECT_EQ(single.lights().stored_level(), one.stored_level) << one.bits;
    }
    single.power_on();
    EXPECT_FALSE(single.lights().lit());  // off at power-on was the last behaviour stored
    EXPECT_EQ(single.lights().level(), 7);
    single.take({8, 512});
    EXPECT_FALSE(single.lights().lit());
    single.power_on();
    EXPECT_TRUE(single.lights().lit());
}

TEST_F(NeedleGauges, speed_and_direction_outlive_a_loss_of_power_and_resolution_does_not) {
    single.take({4, 1});
    single.take({9, 1});
    single.take({5, 400});
    single.take({14, 3});
    EXPECT_EQ(single.last_extra_command(), 3);
    single.power_on();
    EXPECT_EQ(single.step_time_us(), kStepTimeUs);
    EXPECT_EQ(single.direction(1), NeedleGauge::Direction::counterclockwise);
    EXPECT_EQ(single.resolution(), NeedleGauge::Resolution::low);
    loop.advance(seconds(5));
    EXPECT_EQ(single.needle_steps(1), 0);
    single.take({3, 0});
    single.take({14, 4});
    EXPECT_EQ(single.bad_values(), 2);
    single.take({10, 1});
    EXPECT_EQ(single.unknown_commands(), 1);
}

}  // namespace
}  // namespace bench
