#include "bench/devices/yoke.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/manual/manual_loop.h"
#include "tests/bench/shown_state.h"

namespace bench {
namespace {

using std::chrono::milliseconds;
using ::yoke::Axis;

class YokeUnit : public testing::Test {
  protected:
    YokeUnit() {
        unit.on_send = [this](std::string_view bytes) { sent += bytes; };
    }

    // The reply to a command.
    std::string command(int number, int value1 = 0, int value2 = 0, int value3 = 0, int value4 = 0, int device = 15) {
        sent.clear();
        std::string frame;
        ::yoke::append_yoke_command(frame, {device, number, {value1, value2, value3, value4}});
        unit.receive(frame);
        loop.advance(milliseconds(12));
        return sent;
    }
    void motors_on(int maximum = 511) {
        command(13, 1);
        command(14, 1);
        command(10, maximum, 0, maximum, 0);
    }
    double at(Axis axis) const { return unit.position(axis); }
    void wait(int ms) { loop.advance(milliseconds(ms)); }

    platform::manual::ManualLoop loop;
    Yoke unit{loop};
    std::string sent;
};

TEST_F(YokeUnit, pulled_to_the_stop_and_let_go_it_is_back_at_the_centre_within_a_second) {
    motors_on();
    command(11, 512, 256, 512, 256);  // half the sensitivity of Center mode
    unit.push(Axis::elevator, -511);
    wait(1500);
    EXPECT_EQ(at(Axis::elevator), ForceColumn::kLowStop);
    unit.let_go();
    wait(1000);
    EXPECT_NEAR(at(Axis::elevator), 512, 35) << "but for what friction holds";
    EXPECT_NEAR(at(Axis::ailerons), 512, 2);
    wait(3000);
    const double rest = at(Axis::elevator);
    wait(60000);
    EXPECT_EQ(at(Axis::elevator), rest);
}

TEST_F(YokeUnit, a_hand_moves_it_as_far_as_the_spring_lets_it) {
    motors_on();
    double before = 0;
    for (const int force : {1150, 575, 288}) {
        command(11, 512, force, 512, 0);
        unit.push(Axis::ailerons, 100);
        wait(3000);
        const double way = at(Axis::ailerons) - 512;
        EXPECT_NEAR(way, 100.0 * 1150 / force, 0.15 * 100 * 1150 / force) << force;
        EXPECT_GT(way, before) << "half the force, twice the way";
        before = way;
    }
    command(10, 50, 0, 50, 0);
    wait(3000);
    EXPECT_EQ(at(Axis::ailerons), ForceColumn::kHighStop) << "stronger than the motor may be";
    unit.let_go();
    command(13, 0);
    wait(3000);
    EXPECT_EQ(at(Axis::ailerons), ForceColumn::kHighStop) << "without its motor it stays where it is";
}

TEST_F(YokeUnit, the_shaken_stick_moves_by_about_100_eight_times_a_second) {
    motors_on();
    double lowest = 9999, highest = 0;
    int upwards = 0;
    double before = at(Axis::elevator);
    const auto middle = [&] { return (lowest + highest) / 2; };
    constexpr int kRounds = 32, kSettled = 8;
    for (int round = 0; round < kRounds; ++round) {
        for (const int offset : {100, -100, -100}) {
            command(11, 512, 0, 512 + offset, 1150);
            for (int moment = 0; moment < 7; ++moment) {
                wait(4);
                const double place = at(Axis::elevator);
                upwards += round >= kSettled && before < middle() && place >= middle() ? 1 : 0;
                before = place;
                if (round > 3) {
                    lowest = std::min(lowest, place);
                    highest = std::max(highest, place);
                }
            }
        }
    }
    EXPECT_NEAR(highest - lowest, 120, 35);
    EXPECT_EQ(upwards, kRounds - kSettled) << "once in 120 ms";
}

TEST_F(YokeUnit, deadband_threshold_and_a_hand_that_holds) {
    motors_on();
    command(9, 25, 0, 4, 0);
    command(11, 530, 1150, 530, 1150);
    wait(2000);
    EXPECT_LT(at(Axis::ailerons), 520) << "near enough";
    EXPECT_GT(at(Axis::elevator), 515);
    unit.hold(Axis::elevator, 700);
    EXPECT_EQ(at(Axis::elevator), 700);
    EXPECT_NEAR(unit.column(Axis::elevator).measured_force(loop.now()), 170, 1) << "it pushes back";
    command(10, 511, 0, 100, 0);
    EXPECT_NEAR(unit.column(Axis::elevator).measured_force(loop.now()), 100, 1);
    command(10, 511, 0, 100, 101);
    EXPECT_EQ(unit.column(Axis::elevator).measured_force(loop.now()), 0);
}

TEST_F(YokeUnit, a_hand_that_draws_it_feels_the_motor_and_comes_to_rest) {
    motors_on();
    const auto drawn_with = [this](int motor_force) {
        command(11, 512, motor_force, 512, 0);
        unit.draw(Axis::ailerons, 812);
        wait(1000);
        const double place = at(Axis::ailerons);
        wait(5);
        EXPECT_EQ(at(Axis::ailerons), place) << "it does not swing between hand and motor";
        return place;
    };
    const double weak = drawn_with(0), middle = drawn_with(575), strong = drawn_with(1150);
    EXPECT_NEAR(weak, 812, 4);
    EXPECT_NEAR(middle, 512 + 300 * 2 / 2.5, 4);
    EXPECT_NEAR(strong, 512 + 300 * 2 / 3.0, 4);
    EXPECT_NEAR(unit.column(Axis::ailerons).measured_force(loop.now()), 2 * (812 - strong), 1);
    EXPECT_TRUE(unit.operate("drawRoll", 100));
    wait(1000);
    EXPECT_LT(at(Axis::ailerons), 300);
    EXPECT_TRUE(unit.operate("drawRoll", -1));
    wait(1000);
    EXPECT_NEAR(at(Axis::ailerons), 512, 35);
}

TEST_F(YokeUnit, says_where_it_stands_to_every_command_for_it) {
    unit.hold(Axis::ailerons, 300);
    unit.hold(Axis::elevator, 1023);
    unit.set_switch(0, true);
    unit.set_switch(15, true);
    for (const int number : {2, 7, 9, 10, 11, 13, 14, 99}) {
        const std::string status = command(number);
        ASSERT_TRUE(::yoke::is_yoke_status(status)) << number;
        EXPECT_EQ(static_cast<unsigned char>(status[2]), 200);
        EXPECT_EQ(::yoke::raw_position(status, Axis::ailerons), 300);
        EXPECT_EQ(::yoke::raw_position(status, Axis::elevator), 1003) << "the stop";
        EXPECT_EQ(::yoke::closed_switches(status), 0x8001);
    }
    EXPECT_EQ(unit.unknown_commands(), 1);
    EXPECT_EQ(command(7, 0, 0, 0, 0, 14), "");
    unit.set_yoke_type(2);
    unit.set_switch(4, true);
    EXPECT_EQ(::yoke::closed_switches(command(7)), 0b010001);
    EXPECT_FALSE(unit.operate("switch6", 1));
    unit.push(Axis::ailerons, -300);
    EXPECT_EQ(::yoke::measured_force(command(7), Axis::ailerons), -300);
    command(2, 30);
    EXPECT_EQ(unit.standby_s(), 300);
}

TEST_F(YokeUnit, is_back_in_step_after_garbage_and_forgets_without_power) {
    motors_on();
    command(11, 600, 500, 400, 500);
    unit.receive("\x80\x99" + std::string(5, '\0') + "\x0F\x8B");
    EXPECT_EQ(command(7).size(), 25U);
    EXPECT_EQ(unit.statistics().bad_frames, 5U);
    EXPECT_EQ(unit.statistics().stray_bytes, 2U);
    unit.power_cycle();
    EXPECT_FALSE(unit.motor_on(Axis::ailerons));
    EXPECT_EQ(unit.column(Axis::elevator).force(), 0);
    for (const auto& [control, amount] : std::vector<std::pair<const char*, int>>{
             {"pushRoll", 500}, {"pushPitch", -2000}, {"holdRoll", 800}, {"switch3", 1}}) {
        EXPECT_TRUE(unit.operate(control, amount)) << control;
    }
    const auto state = shown(unit);
    EXPECT_EQ(state.at("bank"), "800");
    EXPECT_EQ(state.at("pushPitch"), "-511");
    EXPECT_EQ(state.at("held"), "true");
    EXPECT_EQ(state.at("switches").substr(0, 5), "00010");
    EXPECT_TRUE(unit.operate("letGo", 1));
    for (const char* const control : {"switch16", "switch", "switchx", "push", ""}) {
        EXPECT_FALSE(unit.operate(control, 1)) << control;
    }
}

}  // namespace
}  // namespace bench
