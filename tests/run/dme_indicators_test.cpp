#include "run/dme_indicators.h"

#include <gtest/gtest.h>

#include <limits>

#include "run_world.h"
#include "simlink/sim_offsets.h"

namespace {

using run_test::RunWorld;
using Sent = RunWorld::Sent;

constexpr int kDistance = 27;
constexpr int kSpeed = 28;
constexpr int kMinutes = 29;
constexpr int kSelect = 30;

TEST(DmeDigits, are_packed_with_the_place_of_the_point) {
    struct Case {
        const char* text;
        int word;
    };
    for (const Case& one : {Case{"12.3", 0x2123}, Case{"1.23", 0x4123}, Case{"123", 0x0123}, Case{"05.0", 0x2050},
                            Case{"07", 0x07}, Case{"-01.0", 0x10}, Case{"12345", 0x2345}, Case{"", 0}}) {
        EXPECT_EQ(run::pack_digits(one.text), one.word) << one.text;
    }
}

struct Dme : testing::Test {
    RunWorld world;

    Dme() { world.tables.functions[kDistance].FunctionOffset4 = 0; }
    // The three words of one cycle: distance, speed, time.
    std::vector<int> words(int id) {
        world.tick(5);
        world.take_frames();
        world.tick(5);
        std::vector<int> found(3, -1);
        for (const Sent& sent : world.take_frames()) {
            if (sent.id == id && sent.command >= 3 && sent.command <= 5) {
                found[static_cast<std::size_t>(sent.command == 4 ? 0 : sent.command == 3 ? 1 : 2)] = sent.value;
            }
        }
        return found;
    }
    void set_station(double distance, double speed, double minutes, int number = 1) {
        world.set_value(kDistance, distance, number);
        world.set_value(kSpeed, speed, number);
        world.set_value(kMinutes, minutes, number);
    }
    void set_signal(double value) {
        world.tables.functions[kDistance].FunctionOffset4 = 0x3F00;
        world.space->write_f64(0x3F00, value);
    }
    void rotary(int id, int position) { world.report(id, 113, {{17, position}}); }
    void bk_report(int id, int position, int frequency_khz = 0) {
        world.report(id, 123, {{17, position}, {19, frequency_khz & 255}, {20, frequency_khz >> 8}});
    }
};

TEST_F(Dme, an_indicator_shows_distance_speed_and_time) {
    world.add_gauge(4, 113, kDistance);
    world.status.cmdRun_Click();
    struct Case {
        double distance, speed, minutes;
        int distance_word, speed_word, time_word;
    };
    const double infinite = std::numeric_limits<double>::infinity();
    const double no_number = std::numeric_limits<double>::quiet_NaN();
    const std::vector<Case> cases = {
        {123.4, 250, 29.9, 0x0123, 0x0250, 0x29}, {12.3, 45.6, 0, 0x2123, 0x2456, 0x00},
        {0, 0, 99, 0x2000, 0x2000, 0x99},         {99.9, 99.94, 7, 0x2999, 0x2999, 0x07},
        {99.96, 100, 7, 0x0100, 0x0100, 0x07},    {4321, 1200, 240, 0x4321, 0x1200, 0x240},
        {5, -12, -8, 0x2050, 0x0120, 0x08},       {no_number, infinite, -infinite, -1, -1, -1},
    };
    for (const Case& one : cases) {
        set_station(one.distance, one.speed, one.minutes);
        EXPECT_EQ(words(4), (std::vector<int>{one.distance_word, one.speed_word, one.time_word})) << one.distance;
    }
    EXPECT_TRUE(world.machine.boxes.shown().empty());
}

TEST_F(Dme, without_a_signal_an_indicator_goes_dark) {
    set_signal(1);
    world.add_gauge(4, 113, kDistance);
    world.add_gauge(5, 113, kDistance).GaugeSeqNr1 = 2;
    set_station(12.3, 150, 5);
    world.status.cmdRun_Click();
    EXPECT_EQ(words(4), (std::vector<int>{0x2123, 0x0150, 0x05}));
    set_signal(0);
    EXPECT_EQ(words(4), (std::vector<int>{0x5123, 0x3150, 153}));
}

TEST_F(Dme, a_negative_distance_means_no_station_where_the_simulator_tells_no_signal) {
    world.add_gauge(4, 113, kDistance);
    set_station(-1, 0, 0);
    world.status.cmdRun_Click();
    EXPECT_EQ(words(4), (std::vector<int>{0x0010 + 0x3000, 0x2000 + 0x3000, 153}));
}

TEST_F(Dme, a_single_indicator_tells_the_simulator_which_station_it_shows) {
    world.add_gauge(4, 113, kDistance);
    set_station(12.3, 150, 5);
    set_station(45.6, 160, 6, 2);
    world.status.cmdRun_Click();
    EXPECT_EQ(words(4), (std::vector<int>{0x2123, 0x0150, 0x05}));
    rotary(4, 4);
    EXPECT_EQ(words(4), (std::vector<int>{0x2456, 0x0160, 0x06}));
    EXPECT_EQ(world.space->read_f64(0x4000 + kSelect * 32), 2);
    rotary(4, 3);  // no choice
    EXPECT_EQ(words(4), (std::vector<int>{0x2456, 0x0160, 0x06}));
    rotary(4, 2);
    EXPECT_EQ(words(4), (std::vector<int>{0x2123, 0x0150, 0x05}));
    EXPECT_EQ(world.space->read_f64(0x4000 + kSelect * 32), 1);
}

TEST_F(Dme, two_dual_indicators_choose_each_for_itself) {
    for (const int id : {4, 5}) {
        tables::GaugeRow& row = world.add_gauge(id, 113, kDistance);
        row.GaugePlate1 = 1;
        row.GaugeSeqNr1 = static_cast<std::uint8_t>(id - 3);
    }
    set_station(12.3, 150, 5);
    set_station(45.6, 160, 6, 2);
    world.status.cmdRun_Click();
    EXPECT_EQ(words(4).front(), 0x2123);
    EXPECT_EQ(words(5).front(), 0x2456);
    rotary(4, 4);
    rotary(5, 2);
    EXPECT_EQ(words(4).front(), 0x2456);
    EXPECT_EQ(words(5).front(), 0x2123);
    EXPECT_EQ(world.space->read_f64(0x4000 + kSelect * 32), 0) << "nothing goes to the simulator";
}

TEST_F(Dme, every_tick_has_a_poll) {
    world.add_gauge(4, 113, kDistance);
    world.add_gauge(5, 123, kDistance);
    world.status.cmdRun_Click();
    world.tick(10);
    std::vector<int> polled;
    for (const Sent& sent : world.take_frames()) {
        if (sent.command == 7) {
            polled.push_back(sent.id);
        }
    }
    EXPECT_EQ(polled, (std::vector<int>{4, 5, 4, 5, 4, 5, 4, 5, 4, 5}));
}

TEST_F(Dme, a_bk_dme_shows_only_what_a_good_station_gives) {
    tables::GaugeRow& row = world.add_gauge(6, 123, kDistance);
    row.GaugePlate1 = 4;  // the switch's "RMT" follows NAV 2
    set_station(12.3, 99.6, 5.9);
    set_station(123.4, 160, 6, 2);
    world.status.cmdRun_Click();
    const std::vector<int> dark(3, 0x3000);
    EXPECT_EQ(words(6), dark);
    world.space->write_u16(simlink::kOffsetRadioFlags, 1U << 1);  // NAV 1 good
    EXPECT_EQ(words(6), (std::vector<int>{0x2123, 0x0100, 0x05}));
    bk_report(6, 1);
    EXPECT_EQ(words(6), dark) << "NAV 2 is not good";
    world.space->write_u16(simlink::kOffsetRadioFlags, 1U << 2);
    EXPECT_EQ(words(6), (std::vector<int>{0x0123, 0x0160, 0x06}));
}

TEST_F(Dme, a_bk_dme_holds_a_nav_radio_and_writes_its_frequency_when_it_changes) {
    tables::GaugeRow& row = world.add_gauge(6, 123, kDistance);
    world.status.cmdRun_Click();
    struct Case {
        int use;
        std::uint32_t offset;
        std::uint8_t hold1, hold2;
    };
    for (const Case& one :
         {Case{2, simlink::kOffsetNav1Frequency, 1, 0}, Case{3, simlink::kOffsetNav2Frequency, 0, 1}}) {
        row.GaugePlate1 = static_cast<std::int16_t>(one.use);
        bk_report(6, 2, 12450);
        EXPECT_EQ(world.space->read_u16(one.offset), 0x1245);
        EXPECT_EQ(world.status.context().radios.NavHold1, one.hold1);
        EXPECT_EQ(world.status.context().radios.NavHold2, one.hold2);
        world.space->write_u16(one.offset, 0);
        bk_report(6, 3, 12450);
        EXPECT_EQ(world.space->read_u16(one.offset), 0) << "no change";
        bk_report(6, 3, 8000);
        EXPECT_EQ(world.space->read_u16(one.offset), 0x0800);
        world.space->write_u16(one.offset, 0);
        bk_report(6, 1, 8000);
        EXPECT_EQ(world.status.context().radios.NavHold1 + world.status.context().radios.NavHold2, 0);
        EXPECT_EQ(world.space->read_u16(one.offset), 0);
        bk_report(6, 2, 8000);
        EXPECT_EQ(world.space->read_u16(one.offset), 0);
        bk_report(6, 2, 17950);
        EXPECT_EQ(world.space->read_u16(one.offset), 0x1795);
        bk_report(6, 1);
    }
    for (const int use : {0, 1}) {
        row.GaugePlate1 = static_cast<std::int16_t>(use);
        bk_report(6, 2, 11111);
        EXPECT_EQ(world.status.context().radios.DmeSelected, use + 1);
        EXPECT_EQ(world.status.context().radios.NavHold1 + world.status.context().radios.NavHold2, 0);
    }
    EXPECT_EQ(world.space->read_u16(simlink::kOffsetNav1Frequency), 0x1795);
}

}  // namespace
