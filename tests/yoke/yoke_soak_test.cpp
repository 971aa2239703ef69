// Hours with two yokes: random hands, modes, simulator values and line faults. Whatever happens, no command may ask for
// more than the mode allows, forces rise from nothing after every restart, and a dead link is never told as a live one.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "bench/devices/connect.h"
#include "bench/devices/yoke.h"
#include "tests/yoke/yoke_world.h"

namespace {

using yoke::Axis;
using yoke::YokeCommand;
using yoke_test::YokeWorld;

#ifdef NDEBUG
constexpr double kHours = 5;
#else
constexpr double kHours = 0.1;
#endif

// A line between a panel and its yoke that looks at every command.
struct Watched {
    Watched(YokeWorld& world_used, yoke::frmConfigYoke& panel_used, bench::Yoke& unit_used,
            platform::manual::Wire& line_used)
        : world(world_used), panel(panel_used), unit(unit_used), line(line_used) {
        line.record = false;
        bench::connect(unit, line);
        line.to_device = [this](std::string_view bytes) {
            look(bytes);
            unit.receive(bytes);
        };
    }

    void look(std::string_view bytes) {
        for (std::size_t at = 0; at + 13 <= bytes.size(); at += 13) {
            const auto command = yoke::decode_yoke_command(bytes.substr(at, 12));
            if (command) {
                ++commands;
                check(*command);
            }
        }
    }
    void check(const YokeCommand& command) {
        if (command.command == yoke::kCommandRun) {
            for (const std::size_t axis : {0U, 1U}) {
                const int target = command.values[2 * axis];
                const int force = command.values[2 * axis + 1];
                // Two deflections of the shaker and the weight reach beyond the sensor's range, nothing further.
                expect(target <= 1600, command);
                expect(force <= 2000, command);
                // Up to nine ticks of the ramp may have gone to motor commands.
                const bool shocked = force == 200 || force == 120;
                expect(!expects_rise || force <= 0.1 * 2000 || shocked, command);
            }
            expects_rise = false;
        } else if (command.command == yoke::kCommandForceLimits) {
            expect(command.values[0] <= yoke::kFullForce && command.values[2] <= yoke::kFullForce, command);
            // A mode chosen while the command was on the line has a start of its own to come.
            const bool off = panel.state().YokeMode == yoke::kOff && panel.state().StartupStep == 0;
            expect(!off || command.values[0] + command.values[2] == 0, command);
        } else if (command.command == yoke::kCommandDeadbands) {
            expects_rise = true;  // a start: the next run command has nothing of a force yet
            ++starts;
        }
    }

    void expect(bool holds, const YokeCommand& command) {
        EXPECT_TRUE(holds) << panel.name() << " in mode " << panel.state().YokeMode << ": " << command;
        bad += holds ? 0 : 1;
    }

    YokeWorld& world;
    yoke::frmConfigYoke& panel;
    bench::Yoke& unit;
    platform::manual::Wire& line;
    std::uint64_t commands = 0;
    int starts = 0;
    int bad = 0;
    bool expects_rise = false;
};

struct Soak : YokeWorld {
    bench::Yoke unit1{machine.loop};
    bench::Yoke unit2{machine.loop};
    Watched watched1{*this, yoke1, unit1, line1};
    Watched watched2{*this, yoke2, unit2, line2};
    std::mt19937 random{20260117};

    Soak() {
        tables.YokePort2 = yoke_test::kSecondWire;
        wire.record = false;
        tables.yoke_common.AutoSwitchEnabled = 1;
        for (tables::YokeSettings& one : tables.yokes) {
            one.AutoSwitchFFBAP = one.ShakerAtStall = one.ShakerAtOverspeed = 1;
            one.EnableAPOverrule = 1;
            one.TurbulenceAilerons = one.TurbulenceElevator = 80;
            one.WheelsShockForce = 60;
            one.WheelsShockFrequency = 70;
            one.ElevatorCorrection = -30;
            one.CenterCorrectionAilerons = -90;  // a target below 0, if nobody held it
            one.StandbyTime = 20;
            one.EnableSwitchesAsSlave = 1;
            for (std::size_t number = 1; number <= 16; ++number) {
                one.YokeSwitchFunctions[number] = static_cast<std::uint8_t>(number + 2);
            }
        }
    }

    int pick(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }
    double share() { return static_cast<double>(random()) / 4294967296.0; }
    bench::Yoke& any_unit() { return pick(2) == 0 ? unit1 : unit2; }
    Watched& any_line() { return pick(2) == 0 ? watched1 : watched2; }

    void do_something() {
        const Axis axis = pick(2) == 0 ? Axis::ailerons : Axis::elevator;
        switch (pick(16)) {
            case 0:
            case 1:
                return any_unit().push(axis, 1022 * share() - 511);
            case 2:
                return any_unit().hold(axis, 1023 * share());
            case 3:
            case 4:
                return any_unit().let_go();
            case 5:
                return any_unit().set_switch(pick(16), pick(2) == 0);
            case 6:
                return set_value(2, 450 * share());
            case 7:
                return set_value(190 + pick(18), pick(2));
            case 8:
                return set_value(196 + pick(2), 180 * share() - 90);
            case 9:
                return set_value(200 + pick(2), 2 * share() - 1);
            case 10:
                return any_line().panel.select_mode(pick(5));
            case 11:
                return pick(2) == 0 ? both.cmdSetYoke1Master_Click() : both.cmdSetYoke2Master_Click();
            case 12:
                any_line().line.unplug();
                return;
            case 13:
                any_unit().set_fault(static_cast<bench::Fault>(pick(9)), 1 + pick(40));
                return;
            case 14:
                any_line().line.deliver(
                    std::string(static_cast<std::size_t>(1 + pick(60)), static_cast<char>(pick(256))));
                return;
            default:
                any_unit().power_cycle();
                return;
        }
    }
    void mend() {
        for (Watched* const one : {&watched1, &watched2}) {
            one->line.plug();
            one->unit.set_fault(bench::Fault::none);
        }
    }
    // What the panel says of a yoke whose link is known to be dead or well.
    void check_what_is_told(const Watched& one) {
        const std::string& told = one.panel.boxMotors.text;
        if (!one.line.plugged()) {
            EXPECT_EQ(told.substr(0, 7), "Unknown") << told;
        }
    }
};

TEST(YokeSoak, hours_of_hands_modes_and_faults_ask_for_nothing_that_may_not_be) {
    Soak soak;
    soak.status.cmdRun_Click();
    const char* const asked = std::getenv("YOKE_SOAK_HOURS");
    const double hours = asked != nullptr ? std::atof(asked) : kHours;
    const auto seconds = static_cast<int>(hours * 3600);
    int told_dead = 0;
    for (int second = 0; second < seconds; ++second) {
        for (int moment = 0; moment < 4; ++moment) {
            soak.do_something();
            soak.advance(250);
        }
        if (second % 20 == 19) {
            soak.advance(600);
            for (const Watched* const one : {&soak.watched1, &soak.watched2}) {
                told_dead += one->line.plugged() ? 0 : 1;
                soak.check_what_is_told(*one);
            }
            soak.mend();
            soak.advance(2500);
            for (const Watched* const one : {&soak.watched1, &soak.watched2}) {
                const std::string told = one->panel.boxMotors.text;
                EXPECT_NE(told.substr(0, 7), "Unknown") << told << " in second " << second;
            }
        }
        if (second % 600 == 599) {
            soak.status.cmdStop_Click();
            soak.advance(500);
            soak.status.cmdRun_Click();
        }
        ASSERT_EQ(soak.watched1.bad + soak.watched2.bad, 0) << "in second " << second;
    }
    EXPECT_GT(told_dead, 0);
    EXPECT_GT(soak.watched1.commands + soak.watched2.commands, 20ULL * static_cast<unsigned>(seconds));
    EXPECT_GT(soak.watched1.starts, seconds / 60);
    EXPECT_TRUE(soak.machine.boxes.shown().empty()) << soak.machine.boxes.shown().front();
    EXPECT_TRUE(soak.status.running());
    std::cout << soak.watched1.commands + soak.watched2.commands << " commands, "
              << soak.watched1.starts + soak.watched2.starts << " starts, " << told_dead << " dead links told\n";
}

}  // namespace
