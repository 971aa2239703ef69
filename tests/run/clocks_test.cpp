#include "run/clocks.h"

#include <gtest/gtest.h>

#include <limits>

#include "run_world.h"
#include "simlink/sim_offsets.h"

namespace {

using run_test::RunWorld;
using Sent = RunWorld::Sent;

constexpr int kAlone = 0;
constexpr int kFromPc = 1;
constexpr int kFromSimulator = 2;
constexpr int kToSimulator = 3;

struct Clocks : testing::Test {
    RunWorld world;

    void add_clock(int id, int type, int mode, int utc = 0) {
        tables::GaugeRow& row = world.add_gauge(id, type, 10);
        row.GaugePlate1 = static_cast<std::int16_t>(mode + 32);  // the seconds hand's choice is the clock's own
        row.GaugePlate2 = static_cast<std::int16_t>(utc);
    }
    void set_time(int hour, int minute, int second, int zulu_hour) {
        world.space->write_u8(simlink::kOffsetHour, static_cast<std::uint8_t>(hour));
        world.space->write_u8(simlink::kOffsetMinute, static_cast<std::uint8_t>(minute));
        world.space->write_u8(simlink::kOffsetSecond, static_cast<std::uint8_t>(second));
        world.space->write_u8(simlink::kOffsetZuluHour, static_cast<std::uint8_t>(zulu_hour));
    }
    void set_date(int year, int day_of_year) {
        world.space->write_i16(simlink::kOffsetYear, static_cast<std::int16_t>(year));
        world.space->write_i16(simlink::kOffsetDayOfYear, static_cast<std::int16_t>(day_of_year));
    }
};

TEST_F(Clocks, a_boeing_clock_by_the_simulator_is_set_at_once_and_then_at_each_full_minute) {
    add_clock(7, 104, kFromSimulator);
    add_clock(8, 104, kFromSimulator, 1);
    set_time(9, 31, 7, 23);
    set_date(2026, 327);  // the first day has number 2
    world.status.cmdRun_Click();
    world.tick(6);
    const int date = 26 * 1024 + 11 * 64 + 22;
    const std::vector<Sent> expected = {
        {7, 5, 9 * 3600 + 31 * 60 + 7}, {8, 5, 65535 - (23 * 3600 + 31 * 60 + 7)}, {7, 4, date}, {8, 4, date}};
    EXPECT_EQ(world.take_frames(), expected);
    set_time(9, 31, 8, 23);
    world.tick(6);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{7, 4, date}, {8, 4, date}})) << "between full minutes";
    set_time(9, 32, 0, 23);
    world.tick(12);
    EXPECT_EQ(world.take_values(7, 5), std::vector<int>{9 * 3600 + 32 * 60});
}

TEST_F(Clocks, the_time_of_day_stays_within_16_bits) {
    struct Case {
        int hour, minute, second, sent;
    };
    for (const Case& one :
         {Case{0, 0, 0, 0}, Case{18, 12, 15, 65535}, Case{18, 12, 16, -1}, Case{23, 59, 59, -20864}}) {
        RunWorld fresh;
        tables::GaugeRow& row = fresh.add_gauge(7, 104, 10);
        row.GaugePlate1 = kFromPc;
        fresh.machine.wall_clock.time = {2026, 1, 1, one.hour, one.minute, one.second};
        fresh.status.cmdRun_Click();
        fresh.tick(6);
        EXPECT_EQ(fresh.take_values(7, 5), std::vector<int>{one.sent}) << one.hour << ':' << one.minute;
    }
}

TEST_F(Clocks, a_boeing_clock_by_the_pc_takes_the_time_once_a_run_and_passes_midnight) {
    add_clock(7, 104, kFromPc);
    add_clock(9, 104, kFromSimulator);  // must not disturb the other one
    set_time(1, 2, 0, 1);
    set_date(2011, 100);
    world.machine.wall_clock.time = {2026, 12, 31, 23, 59, 59};
    world.status.cmdRun_Click();
    world.tick(6);
    const std::vector<Sent> frames = world.take_frames();
    EXPECT_EQ(std::count(frames.begin(), frames.end(), Sent{7, 5, -20864}), 1);
    EXPECT_EQ(std::count(frames.begin(), frames.end(), Sent{7, 4, 26 * 1024 + 12 * 64 + 31}), 1);
    world.machine.wall_clock.time = {2027, 1, 1, 0, 0, 1};
    set_time(1, 3, 0, 1);
    world.tick(12);
    for (const Sent& sent : world.take_frames()) {
        EXPECT_TRUE(sent.id == 9 || sent == (Sent{7, 4, 27 * 1024 + 64 + 1})) << sent;
    }
    world.status.cmdStop_Click();
    world.status.cmdRun_Click();
    world.tick(6);
    EXPECT_EQ(world.take_values(7, 5), std::vector<int>{1});
}

TEST_F(Clocks, a_boeing_clock_that_stands_alone_gets_its_date_word_every_six_ticks_and_no_time) {
    add_clock(7, 104, kAlone);
    set_time(9, 31, 0, 8);
    world.status.cmdRun_Click();
    world.tick(60);
    EXPECT_EQ(world.take_frames(), std::vector<Sent>(10, Sent{7, 4, 0}));
}

TEST_F(Clocks, a_boeing_clock_sets_the_simulator_at_the_start) {
    add_clock(7, 104, kToSimulator);
    world.status.cmdRun_Click();
    world.tick();
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{7, 7, 0}}));
    const auto report = [this](int hour, int minute, int second) {
        world.report(7, 104, {{7, 26}, {8, 11}, {9, 22}, {11, hour}, {12, minute}, {13, second}, {15, 1}, {16, 5}});
    };
    report(24, 0, 0);  // no time of day
    EXPECT_EQ(world.space->read_u8(simlink::kOffsetHour), 0);
    report(17, 45, 30);
    world.tick();
    EXPECT_EQ(world.space->read_u8(simlink::kOffsetHour), 17);
    EXPECT_EQ(world.space->read_u8(simlink::kOffsetMinute), 45);
    EXPECT_EQ(world.space->read_u8(simlink::kOffsetSecond), 30);
    world.tick(60);
    EXPECT_EQ(world.take_values(7, 7), std::vector<int>{}) << "asked once";
}

TEST_F(Clocks, a_boeing_clock_keeps_its_own_date_when_it_sets_the_simulator) {
    add_clock(7, 104, kToSimulator);
    world.status.cmdRun_Click();
    world.tick();
    world.report(7, 104, {{7, 26}, {8, 11}, {9, 22}, {11, 1}});
    world.tick(6);
    EXPECT_EQ(world.take_values(7, 4), (std::vector<int>{26 * 1024 + 11 * 64 + 22}));
}

TEST_F(Clocks, the_clock_is_asked_once_and_not_before_the_run) {
    add_clock(7, 104, kToSimulator);
    world.status.RefreshConfig();
    world.tick(5);
    EXPECT_TRUE(world.take_frames().empty());
    world.status.cmdRun_Click();
    world.tick(60);
    EXPECT_EQ(world.take_values(7, 7), std::vector<int>{0});
}

TEST_F(Clocks, a_cessna_clock_by_the_pc_gets_the_time_once_at_the_first_tick) {
    add_clock(5, 109, kFromPc);
    world.machine.wall_clock.time = {2026, 11, 22, 9, 31, 7};
    world.status.RefreshConfig();
    world.tick(50);
    world.machine.wall_clock.time = {2026, 11, 22, 9, 31, 9};  // the run starts later
    world.status.cmdRun_Click();
    world.tick();
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{5, 5, 9 * 3600 + 31 * 60 + 9}, {5, 4, 9}}));
    world.tick(500);
    EXPECT_TRUE(world.take_values(5, 5).empty());
}

TEST_F(Clocks, a_cessna_clock_by_the_simulator_gets_the_time_once_every_101_ticks) {
    add_clock(5, 109, kFromSimulator);
    add_clock(6, 109, kAlone);
    set_time(9, 31, 7, 23);
    world.status.cmdRun_Click();
    world.tick(303);
    int times = 0;
    int hours = 0;
    for (const Sent& sent : world.take_frames()) {
        times += sent == (Sent{5, 5, 65535 - (23 * 3600 + 31 * 60 + 7)}) ? 1 : 0;
        hours += sent == (Sent{5, 4, 9}) ? 1 : 0;
        EXPECT_FALSE(sent.id == 6 && sent.command <= 5) << sent;
    }
    EXPECT_EQ(times, 3);
    EXPECT_EQ(hours, 3);
}

TEST_F(Clocks, a_cessna_clock_shows_volts_and_both_temperatures) {
    struct Case {
        double volts;
        int volts_word;
        double celsius;
        int celsius_word;
        int fahrenheit_word;
    };
    const std::vector<Case> cases = {
        {24.5, 24 * 256 + 5, 15, 15, 59}, {0, 0, 0, 0, 32},
        {28.04, 28 * 256, -40, -40, -40}, {9.96, 10 * 256, -17.5, -18, 0},
        {150, 99 * 256 + 9, 2.5, 2, 36},  {-3, 0, 36.6, 37, 98},
    };
    for (const Case& one : cases) {
        RunWorld fresh;
        fresh.add_gauge(5, 109, 10);
        fresh.add_gauge(7, 104, 10).GaugePlate1 = kFromSimulator;  // reads an unscaled temperature all the time
        fresh.space->write_i16(simlink::kOffsetOutsideTemperature, 25600);
        fresh.set_value(9, one.volts);
        fresh.set_value(13, one.celsius);
        fresh.status.cmdRun_Click();
        fresh.tick(70);
        std::vector<Sent> shown = fresh.take_frames();
        std::erase_if(shown, [](const Sent& sent) { return sent.id != 5 || sent.command == 8; });
        EXPECT_EQ(shown,
                  (std::vector<Sent>{{5, 9, one.volts_word}, {5, 11, one.celsius_word}, {5, 12, one.fahrenheit_word}}))
            << one.volts << " V";
    }
}

TEST_F(Clocks, values_that_are_no_numbers_leave_the_cessna_clock_alone) {
    add_clock(5, 109, kAlone);
    world.set_value(9, std::numeric_limits<double>::infinity());
    world.set_value(13, std::numeric_limits<double>::quiet_NaN());
    world.status.cmdRun_Click();
    world.tick(110);
    EXPECT_TRUE(world.machine.boxes.shown().empty());
    std::vector<Sent> shown = world.take_frames();
    std::erase_if(shown, [](const Sent& sent) { return sent.command == 8; });
    EXPECT_TRUE(shown.empty());
}

TEST_F(Clocks, after_an_outage_of_the_bus_the_clocks_are_set_again) {
    add_clock(5, 109, kFromPc);
    add_clock(6, 104, kFromPc);
    add_clock(7, 104, kFromSimulator);
    set_time(9, 31, 7, 9);
    world.status.cmdRun_Click();
    world.tick(20);
    world.wire.unplug();
    world.tick();
    world.wire.plug();
    world.take_frames();
    world.tick(8);
    int set[8] = {};
    for (const Sent& sent : world.take_frames()) {
        set[sent.id] += sent.command == 5 ? 1 : 0;
    }
    EXPECT_EQ(set[5], 1);
    EXPECT_EQ(set[6], 1);
    EXPECT_EQ(set[7], 1);
}

TEST_F(Clocks, while_the_simulator_is_silent_no_clock_is_set_and_when_it_is_back_they_are_at_once) {
    add_clock(7, 104, kFromSimulator);
    add_clock(5, 109, kFromSimulator);
    set_time(9, 31, 7, 9);
    const auto server = world.machine.sim_transport.server;
    world.machine.sim_transport.server = [](std::uint8_t*, std::size_t) { return std::uint32_t{0}; };
    world.status.cmdRun_Click();
    world.tick(110);
    for (const Sent& sent : world.take_frames()) {
        EXPECT_NE(sent.command, 5) << sent;
    }
    world.machine.sim_transport.server = server;
    world.tick(40);
    EXPECT_EQ(world.take_values(7, 5), std::vector<int>{9 * 3600 + 31 * 60 + 7});
}

}  // namespace
