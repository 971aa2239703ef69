// Altimeter, attitude and heading indicator, VOR, ADF and radio-magnetic indicator: what the simulator shows as frames,
// and what their knobs write.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "run_world.h"

namespace {

using run_test::RunWorld;
using Sent = RunWorld::Sent;

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

void set_word(std::map<int, int>& bytes, int number, int value) {
    bytes[number] = value >> 8;
    bytes[number + 1] = value & 255;
}

std::map<int, int> words(int number, int value, int second_number = 0, int second_value = 0) {
    std::map<int, int> bytes;
    set_word(bytes, number, value);
    if (second_number != 0) {
        set_word(bytes, second_number, second_value);
    }
    return bytes;
}

TEST(Altimeter, each_kind_gets_altitude_and_pressure_and_is_polled_as_it_is_set_up) {
    struct Case {
        const char* what;
        int model, sequence, slave, via_simulator;
        double altitude;
        std::vector<Sent> expected;
    };
    for (const Case& step : {Case{"master", 1, 1, 0, 0, 1234.5, {{5, 4, 1234}, {5, 7, 0}}},
                             Case{"below the sea", 1, 0, 0, 0, -71.6, {{5, 4, -72}, {5, 7, 0}}},
                             Case{"knob mode", 1, 1, 0, 1, 300, {{5, 4, 300}, {5, 12, 2992}, {5, 7, 0}}},
                             Case{"slave, inches", 1, 1, 1, 0, 300, {{5, 4, 300}, {5, 12, 2992}}},
                             Case{"slave, millibar", 2, 1, 1, 1, 300, {{5, 4, 300}, {5, 12, 1013}}},
                             Case{"standby", 1, 2, 0, 0, 300, {{5, 4, 9000}, {5, 7, 0}}},
                             Case{"no altitude", 1, 1, 0, 0, kNotANumber, {{5, 7, 0}}}}) {
        RunWorld world;
        tables::GaugeRow& gauge = world.add_gauge(5, 101, 4);
        gauge.GaugeModel = static_cast<std::uint8_t>(step.model);
        gauge.GaugeSeqNr1 = static_cast<std::uint8_t>(step.sequence);
        gauge.GaugeFunction2 = static_cast<std::int16_t>(step.slave);
        gauge.GaugeSeqNr2 = static_cast<std::uint8_t>(step.via_simulator);
        world.set_value(1, 29.925);
        world.set_value(4, step.altitude);
        world.set_value(4, 9000, 2);
        world.status.cmdRun_Click();
        world.tick(4);
        world.take_frames();
        world.tick();
        EXPECT_EQ(world.take_frames(), step.expected) << step.what;
        EXPECT_TRUE(world.machine.boxes.shown().empty()) << step.what;
    }
}

TEST(Altimeter, the_knob_writes_the_pressure) {
    struct Case {
        const char* what;
        int sequence;
        std::map<int, int> bytes;
        double expected;
    };
    const std::map<int, int> inches = {{4, 1}, {7, 2992 >> 8}, {8, 2992 & 255}};
    const std::map<int, int> millibar = {{4, 2}, {7, 1013 >> 8}, {8, 1013 & 255}};
    for (const Case& step : {Case{"inches", 1, inches, 29.92}, Case{"millibar", 1, millibar, 1013 / 33.86},
                             Case{"standby", 3, inches, 29.92}, Case{"two clicks up", 1, {{10, 1}, {12, 130}}, 30.02},
                             Case{"three down", 1, {{10, 1}, {12, 125}}, 29.97}}) {
        RunWorld world;
        world.add_gauge(5, 101, 4).GaugeSeqNr1 = static_cast<std::uint8_t>(step.sequence);
        world.set_value(1, 30.0);
        world.status.cmdRun_Click();
        world.tick(3);
        world.report(5, 101, step.bytes);
        EXPECT_NEAR(world.value_of(1, step.sequence), step.expected, 1e-4) << step.what;
    }
    RunWorld world;
    world.add_gauge(5, 101, 4);
    world.status.cmdRun_Click();
    world.tick(3);
    world.set_value(1, 25.0);
    world.report(5, 101, {{10, 1}, {12, 128}});
    EXPECT_EQ(world.value_of(1), 25.0) << "no click, nothing written";
}

TEST(AttitudeIndicator, positions_are_limited_to_the_range_of_the_model) {
    RunWorld world;
    tables::GaugeRow& gauge = world.add_gauge(3, 103);
    gauge.GaugePlate1 = 2160;
    gauge.GaugePlate2 = 600;
    world.status.cmdRun_Click();
    struct Case {
        double bank, pitch;
        std::vector<Sent> expected;
    };
    for (const Case& step : {Case{0, 0, {{3, 4, 2160}, {3, 5, 600}}}, Case{180, 30, {{3, 4, 4320}, {3, 5, 1200}}},
                             Case{-180, -22.5, {{3, 4, 0}, {3, 5, 0}}}, Case{30, 10, {{3, 4, 2520}, {3, 5, 867}}},
                             Case{1e9, -1e9, {{3, 4, 4320}, {3, 5, 0}}}, Case{kNotANumber, 0, {{3, 5, 600}}}}) {
        world.set_value(6, step.bank);
        world.set_value(5, step.pitch);
        world.tick(2);
        world.take_frames();
        world.tick();
        EXPECT_EQ(world.take_frames(), step.expected) << step.bank;
    }
    EXPECT_TRUE(world.machine.boxes.shown().empty());
}

TEST(HeadingIndicator, the_card_follows_heading_or_compass_either_way_round) {
    struct Case {
        int flags;
        double heading, compass;
        int expected;
    };
    for (const Case& step : {Case{0, 90, 10, 1080}, Case{8, 90, 10, 120}, Case{16, 90, 10, 3240}, Case{0, 360, 0, 4319},
                             Case{0, -90, 0, 3240}, Case{16, 0, 0, 4319}}) {
        RunWorld world;
        world.add_gauge(8, 105).GaugePlate2 = static_cast<std::int16_t>(step.flags);
        world.set_value(7, step.heading);
        world.set_value(16, step.compass);
        world.status.cmdRun_Click();
        world.tick(3);
        world.take_frames();
        world.tick();
        EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{8, 5, step.expected}})) << "without knobs it is not polled";
    }
}

TEST(HeadingIndicator, its_knobs_write_bug_and_drift_each_with_its_own_turning_point) {
    RunWorld world;
    world.add_gauge(8, 105, 7, 11).GaugePlate2 = 4;
    world.status.cmdRun_Click();
    world.tick(3);
    EXPECT_EQ(world.take_values(8, 7).size(), 3U);
    const auto steps = [](double degrees) { return static_cast<int>(std::lround(degrees * 12)); };
    struct Case {
        double card, bug, drift_written, bug_written;
    };
    for (const Case& step : {Case{10, 20, 10, 20}, Case{179.5, 179, 179.5, 179}, Case{179.25, 179.25, 179.25, -180.75},
                             Case{350, 181, -10, -179}}) {
        world.report(8, 105, words(7, steps(step.card), 10, steps(step.bug)));
        EXPECT_NEAR(world.value_of(15), step.drift_written, 1e-4);
        EXPECT_NEAR(world.value_of(11), step.bug_written, 1e-4);
    }
    world.set_value(15, 0);
    world.report(8, 105, words(7, steps(350), 10, steps(181)));
    EXPECT_EQ(world.value_of(15), 0) << "a drift that has not changed is not written again";
}

TEST(VorIndicators, needles_and_flags_go_out_on_a_change_to_every_indicator_of_the_receiver) {
    RunWorld world;
    for (const int id : {1, 2}) {
        world.add_gauge(id, 106).GaugePlate1 = 1;
    }
    world.add_gauge(3, 107).GaugePlate1 = 1;
    world.set_value(33, 127, 1);
    world.set_value(34, -127);
    world.set_value(35, 1);
    world.set_value(36, 1);
    world.set_value(33, -63.4, 2);
    world.set_value(35, 2, 2);
    world.status.cmdRun_Click();
    world.tick(2);
    EXPECT_EQ(
        world.take_frames(),
        (std::vector<Sent>{
            {1, 5, 772}, {1, 6, 172}, {1, 12, 6}, {2, 5, 772}, {2, 6, 172}, {2, 12, 6}, {3, 5, 323}, {3, 12, 3}}));
    world.tick(3);
    EXPECT_TRUE(world.take_frames().empty());
    world.set_value(36, 0);
    world.set_value(33, kNotANumber, 1);
    world.tick(2);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{1, 12, 2}, {2, 12, 2}}));
    world.status.cmdStop_Click();
    world.status.cmdRun_Click();
    world.tick(2);
    EXPECT_EQ(world.take_values(3, 5), std::vector<int>{323}) << "a new run sends everything again";
    EXPECT_TRUE(world.machine.boxes.shown().empty());
}

TEST(VorIndicators, the_course_counts_against_the_disk_and_is_written_when_it_changes) {
    RunWorld world;
    world.add_gauge(1, 106);
    world.add_gauge(2, 107);
    world.add_gauge(3, 108);
    world.status.cmdRun_Click();
    world.tick(3);
    struct Case {
        int raw;
        double course;
    };
    for (const Case& step : {Case{0, 0}, Case{1084, 0}, Case{1083, 0}, Case{1, 0}, Case{813, 90}, Case{2, 359}}) {
        for (const int type : {106, 107}) {
            const int receiver = type - 105;
            world.set_value(37, -5, receiver);
            world.report(receiver, type, words(7, 500));
            world.report(receiver, type, words(7, step.raw));
            EXPECT_EQ(world.value_of(37, receiver), step.course) << step.raw;
            world.set_value(37, -5, receiver);
            world.report(receiver, type, words(7, step.raw));
            EXPECT_EQ(world.value_of(37, receiver), -5) << "not written again";
        }
        world.set_value(32, -5);
        world.report(3, 108, words(7, step.raw));
        EXPECT_EQ(world.value_of(32), step.course) << "the card is written at every report";
    }
    world.status.cmdStop_Click();
    world.set_value(32, -5);
    world.report(3, 108, words(7, 813));
    EXPECT_EQ(world.value_of(32), -5) << "halted";
}

TEST(AdfIndicator, the_needle_turns_to_the_bearing_when_it_changes) {
    RunWorld world;
    world.add_gauge(6, 108);
    world.status.cmdRun_Click();
    for (const auto& [bearing, position] :
         std::map<double, int>{{-90, 3240}, {45, 540}, {359.99, 4319}, {-0.01, 4319}}) {
        world.set_value(31, bearing);
        world.tick(4);
        EXPECT_EQ(world.take_frames_beside_polls(), (std::vector<Sent>{{6, 5, position}})) << bearing;
    }
}

TEST(RadioMagneticIndicator, the_standard_unit_gets_one_value_a_tick_and_its_flag_with_the_bus) {
    RunWorld world;
    tables::GaugeRow& gauge = world.add_gauge(4, 130, 39, 31);
    gauge.GaugePlate1 = 4;
    gauge.GaugePlate2 = 2;
    world.tables.LightMode = 2;  // no light frames here
    world.set_value(16, 90);
    world.set_value(39, 180, 1);
    world.set_value(39, 270, 2);
    world.set_value(31, -90);
    world.set_value(9, 28, 2);
    world.status.cmdRun_Click();
    world.tick(6);
    world.take_frames();
    // The voltage that the first round has not seen yet brings everything once more.
    world.tick(8);
    world.take_frames();
    world.set_value(9, 5, 2);
    world.tick(8);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{4, 14, 1}}));
    world.set_value(9, 12, 2);
    world.tick(8);
    EXPECT_EQ(
        world.take_frames(),
        (std::vector<Sent>{{4, 14, 0}, {4, 5, 1152}, {4, 9, 2160 | 0x4000}, {4, 9, 3240 | 0x2000}, {4, 9, 3240}}));
    world.set_value(31, 45);
    world.tick(8);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{4, 9, 540}}));
}

TEST(RadioMagneticIndicator, model_3_gets_four_needles_and_parks_those_without_a_station) {
    RunWorld world;
    tables::GaugeRow& gauge = world.add_gauge(4, 130);
    gauge.GaugeModel = 3;
    gauge.GaugePlate1 = 8 + 16;
    world.tables.LightMode = 2;
    world.space->write_u16(0x3300, 2 | 8);  // NAV1 and ADF1 are good
    world.space->write_u16(0xC56, 90);
    world.space->write_u16(0xC6A, 0xC000);
    world.status.cmdRun_Click();
    world.tick(20);
    std::map<int, int> last_by_place;
    for (const int value : world.take_values(4, 9)) {
        last_by_place[value & 0x6000] = value & ~0x6000;
    }
    const std::map<int, int> expected = {{0, 1080}, {0x4000, 5000}, {0x2000, 3240}, {0x6000, 5000}};
    EXPECT_EQ(last_by_place, expected);
}

TEST(RadioMagneticIndicator, distances_show_on_every_indicator_that_has_dme) {
    RunWorld world;
    world.tables.LightMode = 2;
    for (const int id : {1, 2}) {
        tables::GaugeRow& gauge = world.add_gauge(id, 130, 39, 31);
        gauge.GaugePlate1 = 1;
        gauge.GaugePlate2 = 2;
    }
    world.status.cmdRun_Click();
    struct Case {
        double first, second;
        int first_word, second_word;
    };
    for (const Case& step : {Case{12.34, 100.4, 0x2123, 0x4100}, Case{-1, 99.9, 0x0AAA, 0x6999},
                             Case{5.06, 0, 0x2051, 0x6000}, Case{999, -0.5, 0x0999, 0x4AAA}}) {
        world.set_value(27, step.first, 1);
        world.set_value(27, step.second, 2);
        world.tick(10);
        const std::vector<Sent> sent = world.take_frames();
        for (const int id : {1, 2}) {
            EXPECT_EQ(std::count(sent.begin(), sent.end(), Sent{id, 15, step.first_word}), 1) << step.first;
            EXPECT_EQ(std::count(sent.begin(), sent.end(), Sent{id, 15, step.second_word}), 1) << step.second;
        }
    }
}

}  // namespace
