#include "bench/devices/radios.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "bench/devices/adf_radio.h"
#include "bench/devices/com_nav_radio.h"
#include "platform/manual/manual_loop.h"

namespace bench {
namespace {

using std::chrono::milliseconds;

constexpr int kId = 33;
constexpr int kComKind = 0;
constexpr int kNavKind = 1;
constexpr int kAdfKind = 2;
constexpr int kWideAdfKind = 3;

// What the page is told, by name.
class States : public StateSink {
  public:
    explicit States(const Device& device) { device.show(*this); }
    void number(std::string_view name, double value) override { texts_[std::string(name)] = std::to_string(value); }
    void text(std::string_view name, std::string_view value) override { texts_[std::string(name)] = value; }
    void flag(std::string_view name, bool value) override { texts_[std::string(name)] = value ? "yes" : "no"; }
    std::string operator[](const std::string& name) const { return texts_.at(name); }

  private:
    std::map<std::string, std::string> texts_;
};

int word(Device& device, int byte_number) {
    const ReportBytes report = device.report(kId);
    const auto byte = [&report](int number) {
        return static_cast<int>(static_cast<unsigned char>(report.view()[static_cast<std::size_t>(number - 1)]));
    };
    return byte(byte_number) * 256 + byte(byte_number + 1);
}

struct Radios : testing::Test {
    platform::manual::ManualLoop loop;

    static void tune(Radio& radio, int active, int standby) {
        radio.take({12, standby});
        radio.power_on();
        radio.operate("swap", 1);
        radio.take({12, active});
    }
};

TEST_F(Radios, a_knob_wraps_at_the_limits_and_carries_nothing) {
    struct Case {
        int kind;
        int from;
        const char* knob;
        int clicks;
        int to;
    };
    const std::vector<Case> cases = {
        {kComKind, 18350, "coarse", 1, 19350},    {kComKind, 18350, "coarse", -1, 38350},
        {kComKind, 38975, "coarse", 1, 18975},    {kComKind, 18350, "fine", 1, 18375},
        {kComKind, 18975, "fine", 1, 18000},      {kComKind, 18000, "fine", -1, 18975},
        {kComKind, 18350, "fine", 40, 18350},     {kComKind, 18350, "fine", 0, 18350},
        {kNavKind, 17950, "fine", 1, 17000},      {kNavKind, 17000, "fine", -1, 17950},
        {kNavKind, 8000, "coarse", -1, 17000},    {kAdfKind, 3520, "fine", 1, 3525},
        {kAdfKind, 9999, "coarse", 1, 1099},      {kAdfKind, 1000, "coarse", -1, 9900},
        {kWideAdfKind, 17000, "fine", 1, 17000},  {kWideAdfKind, 17000, "coarse", 1, 1000},
        {kWideAdfKind, 3520, "coarse", 10, 4520},
    };
    for (const Case& one : cases) {
        Radio radio(loop, {.type = 110, .model = one.kind});
        tune(radio, one.from, one.from);
        const int active = radio.tuner().active();
        EXPECT_TRUE(radio.operate(one.knob, one.clicks));
        EXPECT_EQ(radio.tuner().standby(), one.to) << one.from << ' ' << one.knob << ' ' << one.clicks;
        EXPECT_EQ(radio.tuner().active(), active) << "only the standby frequency is tuned";
        EXPECT_EQ(radio.bad_values(), 0);
    }
}

TEST_F(Radios, a_thousand_turns_of_any_knob_stay_within_the_limits) {
    for (const int kind : {kComKind, kNavKind, kAdfKind, kWideAdfKind}) {
        Radio radio(loop, {.type = 110, .model = kind});
        radio.take({5, 7 * 256 + 3});
        for (int turn = 0; turn < 1000; ++turn) {
            radio.operate(turn % 3 == 0 ? "coarse" : "fine", (turn * 37) % 23 - 11);
            const Tuner& tuner = radio.tuner();
            const bool adf = tuner.is_adf();
            const int lowest = adf ? 1000 : kind == kNavKind ? 8000 : 18000;
            const int highest = kind == kAdfKind ? 9999 : adf ? 17000 : kind == kNavKind ? 17950 : 38975;
            ASSERT_TRUE(tuner.standby() >= lowest && tuner.standby() <= highest) << kind << ": " << tuner.standby();
        }
    }
}

TEST_F(Radios, the_set_up_of_the_dialog_is_obeyed_and_outlives_the_power) {
    Radio radio(loop, {.type = 110, .model = kNavKind, .version = 6});
    for (const Command command : std::vector<Command>{{13, 2},
                                                      {9, kComKind + 6 * 256},
                                                      {10, 36975},
                                                      {11, 20000},
                                                      {12, 22500},
                                                      {5, 1 * 256 + 2},
                                                      {4, -1},
                                                      {13, 2},
                                                      {14, 2 * 256 + 3}}) {
        radio.take(command);
    }
    EXPECT_EQ(radio.unknown_commands() + radio.bad_values(), 0);
    radio.power_on();
    EXPECT_EQ(radio.identity().model, kComKind);
    EXPECT_EQ(word(radio, 7), 22500);
    EXPECT_EQ(word(radio, 10), 21000);
    radio.operate("coarse", 1);
    EXPECT_EQ(radio.tuner().standby(), 21000) << "half of two clicks";
    radio.operate("coarse", 1);
    radio.operate("fine", 4);
    EXPECT_EQ(radio.tuner().standby(), 22025) << "one step of three clicks, one left";
    radio.operate("coarse", -6);
    EXPECT_EQ(radio.tuner().standby(), 36025) << "from the new minimum to the new maximum";
    radio.take({10, 30000});
    EXPECT_EQ(radio.tuner().standby(), 30000) << "a new limit holds at once";
    for (const Command& wrong :
         std::vector<Command>{{9, 4}, {9, -1}, {5, 256}, {5, 2}, {10, -1}, {13, 0x100}, {6, 1}}) {
        radio.take(wrong);
    }
    EXPECT_EQ(radio.bad_values(), 7);
    radio.take({15, 0});
    EXPECT_EQ(radio.unknown_commands(), 1);
}

TEST_F(Radios, a_report_bears_the_numbers_and_the_displays_show_them) {
    struct Case {
        int kind;
        int frequency;
        const char* name;
        const char* shown;
    };
    for (const Case& one : std::vector<Case>{{kComKind, 18350, "COM", "118.350"},
                                             {kNavKind, 8000, "NAV", "108.000"},
                                             {kAdfKind, 3520, "ADF", "352.0"},
                                             {kWideAdfKind, 13705, "ADF", "1370.5"}}) {
        Radio radio(loop, {.type = 110, .model = one.kind});
        radio.take({12, one.frequency});
        radio.power_on();
        EXPECT_EQ(word(radio, 7), one.frequency);
        EXPECT_EQ(States(radio)["kind"], one.name);
        EXPECT_EQ(States(radio)["active"], one.shown);
        radio.operate("swap", 1);
        EXPECT_EQ(word(radio, 10), one.frequency);
        EXPECT_EQ(States(radio)["standby"], one.shown);
        radio.take({8, 64});
        EXPECT_EQ(States(radio)["standby"], std::string(std::string(one.shown).size(), ' ')) << "without power";
        EXPECT_EQ(word(radio, 10), one.frequency);
    }
}

TEST_F(Radios, fast_clicks_of_the_fine_knob_count_ten_times_when_set_up_so) {
    Radio radio(loop, {.type = 110, .model = kWideAdfKind});
    radio.take({4, 10});  // a tenth of a second
    loop.advance(milliseconds(1000));
    radio.operate("fine", 1);
    EXPECT_EQ(radio.tuner().standby(), 8505);
    loop.advance(milliseconds(99));
    radio.operate("fine", 1);
    EXPECT_EQ(radio.tuner().standby(), 8555);
    loop.advance(milliseconds(100));
    radio.operate("fine", 1);
    EXPECT_EQ(radio.tuner().standby(), 8560);
}

TEST_F(Radios, the_rotary_of_the_ctl30_unit_is_reported_and_switches_it_off_unless_that_is_done_outside) {
    Radio radio(loop, {.type = 111, .model = kComKind});
    EXPECT_EQ(word(radio, 23), 2);
    EXPECT_TRUE(radio.operate("rotary", 1));
    EXPECT_EQ(word(radio, 23), 1);
    EXPECT_EQ(States(radio)["active"], "       ");
    radio.take({6, 1});
    EXPECT_EQ(States(radio)["active"], "121.000");
    radio.operate("rotary", 99);
    EXPECT_EQ(radio.rotary(), Radio::kLastRotaryPosition);
    Radio generic(loop, {.type = 110, .model = kAdfKind});
    EXPECT_FALSE(generic.operate("rotary", 3));
    generic.take({6, 9});
    EXPECT_EQ(generic.indicators(), 9) << "here the command sets the indicators";
}

TEST_F(Radios, units_come_with_the_frequencies_of_their_radio_number) {
    const auto row = [](int model, int number) {
        tables::GaugeRow gauge;
        gauge.GaugeModel = static_cast<std::uint8_t>(model);
        gauge.GaugeSeqNr1 = static_cast<std::uint8_t>(number);
        return gauge;
    };
    Radio nav(loop, {.type = 110, .model = kComKind});
    Radio::set_up(nav, row(kNavKind, 1));
    EXPECT_EQ(word(nav, 7), 11100);
    EXPECT_EQ(word(nav, 10), 12450);
    nav.power_on();
    EXPECT_EQ(word(nav, 7), 11100);
    AdfRadio adf(loop, {.type = 121});
    AdfRadio::set_up(adf, row(kWideAdfKind, 2));
    EXPECT_EQ(word(adf, 7), 4180);
    ComNavRadio both(loop, {.type = 120});
    ComNavRadio::set_up(both, row(0, 2));
    EXPECT_EQ(word(both, 7), 24800);
    EXPECT_EQ(word(both, 16), 12450);
}

TEST_F(Radios, the_adf_unit_has_its_two_buttons) {
    AdfRadio radio(loop, {.type = 121});
    EXPECT_EQ(radio.identity().model, kWideAdfKind);
    EXPECT_EQ(word(radio, 12) & 255, 1);
    radio.operate("mode", 1);
    radio.operate("bfo", 1);
    EXPECT_EQ(word(radio, 12) & 255, 0);
    EXPECT_EQ(word(radio, 14) & 255, 1);
    radio.operate("coarse", -1);
    radio.operate("fine", 1);
    EXPECT_EQ(States(radio)["standby"], "751.0");
    radio.operate("swap", 1);
    EXPECT_EQ(word(radio, 7), 7510);
    radio.take({13, 0x305});
    EXPECT_EQ(radio.unknown_commands() + radio.bad_values(), 0);
}

TEST_F(Radios, both_halves_of_a_com_nav_radio_are_tuned_apart_and_its_switch_is_told) {
    ComNavRadio radio(loop, {.type = 120});
    for (const Command& command : std::vector<Command>{
             {5, 2}, {10, 20000}, {11, 36975}, {12, 22000}, {3, 9000}, {4, 16950}, {9, 10500}, {6, 0}, {13, 9}}) {
        radio.take(command);
    }
    EXPECT_EQ(radio.unknown_commands() + radio.bad_values(), 0);
    radio.power_on();
    EXPECT_EQ(word(radio, 7), 22000);
    EXPECT_EQ(word(radio, 10), 21000);
    EXPECT_EQ(word(radio, 13), 10500);
    EXPECT_EQ(word(radio, 16), 13000);
    radio.operate("comCoarse", -2);
    radio.operate("navCoarse", 4);
    radio.operate("navFine", -1);
    EXPECT_EQ(radio.com().standby(), 36000);
    EXPECT_EQ(radio.nav().standby(), 9950);
    radio.operate("navSwap", 1);
    EXPECT_EQ(States(radio)["navActive"], "109.950");
    EXPECT_EQ(States(radio)["comActive"], "122.000");
    radio.operate("on", 0);
    EXPECT_EQ(word(radio, 22) & 255, 32);
    EXPECT_EQ(States(radio)["comActive"], "       ");
    radio.take({6, 1});
    EXPECT_EQ(word(radio, 22) & 255, 0) << "switched from outside";
}

}  // namespace
}  // namespace bench
