// What happens to hardware and simulators at home, and that a run gets over it without a hand.
#include <gtest/gtest.h>

#include <functional>

#include "tests/support/rig.h"

namespace {

using namespace std::chrono_literals;
using rig::Rig;
using simhost::Phase;

// A run in flight with nobody at the page: boxes stay open until their cause has gone.
void fly_unattended(Rig& rig) {
    rig.machine.boxes.leave_open = true;
    rig.machine.random = platform::manual::ManualRandom(20240517);
    rig.gauge_wire().faults.random = &rig.machine.random;
    rig.start_run();
    rig.simulator.jump_to(Phase::climbing_turn);
    rig.fly();
    rig.advance(5s);
    ASSERT_TRUE(rig.needles_settle_right()) << "before the fault";
}

struct FaultCase {
    const char* name;
    std::function<void(Rig&)> begin;
    platform::Duration lasts;
    std::function<void(Rig&)> end;
    // How long the cockpit may take to be right again.
    platform::Duration heals_within;
};

// The end comes out of the loop: a handler that waits in a box lets no test go on before its cause has gone.
void suffer(Rig& rig, const FaultCase& fault) {
    rig.machine.loop.post_after(fault.lasts, [&] { fault.end(rig); });
    fault.begin(rig);
    rig.advance(fault.lasts);
    rig.advance(fault.heals_within);
}

std::vector<FaultCase> simulator_faults() {
    using simhost::ServerFault;
    const auto set = [](ServerFault fault) {
        return [fault](Rig& rig) { rig.simulator.server().set_fault(fault, true); };
    };
    const auto clear = [](Rig& rig) { rig.simulator.server().clear_faults(); };
    const auto leave = [](Rig& rig) {
        rig.hold();
        rig.stop_simulator();
    };
    const auto come_back = [](Rig& rig) {
        rig.start_simulator();
        rig.simulator.jump_to(Phase::cruise);
        rig.fly();
    };
    return {
        {"hangs for a moment", [](Rig& rig) { rig.hang_simulator(); }, 3s, [](Rig& rig) { rig.wake_simulator(); }, 3s},
        {"hangs for minutes", [](Rig& rig) { rig.hang_simulator(); }, 5min, [](Rig& rig) { rig.wake_simulator(); }, 5s},
        {"is slow", [](Rig& rig) { rig.slow_simulator(15ms); }, 1min, [](Rig& rig) { rig.slow_simulator(0ms); }, 1s},
        {"is very slow", [](Rig& rig) { rig.slow_simulator(1500ms); }, 1min, [](Rig& rig) { rig.slow_simulator(0ms); },
         3s},
        {"is restarted at once", leave, 0s, come_back, 3s},
        {"is restarted", leave, 40s, come_back, 3s},
        {"is away for an hour", leave, 1h, come_back, 3s},
        {"tells a wrong version", set(ServerFault::wrong_server_version), 10s, clear, 1s},
        {"tells no version", set(ServerFault::zero_versions), 10s, clear, 1s},
        {"answers with a bad reply value", set(ServerFault::bad_reply), 10s, clear, 1s},
        {"destroys the records", set(ServerFault::wrong_record_ids), 10s, clear, 1s},
        {"comes back with a wrong version first", leave, 10s,
         [come_back](Rig& rig) {
             rig.simulator.server().set_fault(ServerFault::wrong_server_version, true);
             come_back(rig);
             rig.machine.loop.post_after(5s, [&rig] { rig.simulator.server().clear_faults(); });
         },
         8s},
    };
}

TEST(Faults, a_run_gets_over_whatever_its_simulator_does) {
    for (const FaultCase& fault : simulator_faults()) {
        SCOPED_TRACE(std::string("a simulator that ") + fault.name);
        Rig rig;
        fly_unattended(rig);
        suffer(rig, fault);
        EXPECT_TRUE(rig.running());
        EXPECT_TRUE(rig.cockpit.sim_com().link_alive()) << rig.story();
        EXPECT_TRUE(rig.needles_settle_right());
        EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
        rig.advance(2s);
        EXPECT_EQ(rig.text("frmStatus", "frmXferCount"), "20");
    }
}

TEST(Faults, needles_stand_still_while_the_simulator_is_away) {
    Rig rig;
    fly_unattended(rig);
    rig.hold();
    const double before = rig.gauge(17).needle_steps(1);
    EXPECT_GT(before, 0.0);
    rig.stop_simulator();
    rig.advance(10min);
    EXPECT_EQ(rig.gauge(17).needle_steps(1), before) << rig.story();
}

std::string half_report() {
    std::string report(25, '\x01');
    report.front() = '\0';
    report.back() = '\xFF';
    return report.substr(0, 12);
}

std::vector<FaultCase> line_faults() {
    const auto plug = [](Rig& rig) { rig.gauge_wire().plug(); };
    const auto heal = [](Rig& rig) {
        auto* const random = rig.gauge_wire().faults.random;
        rig.gauge_wire().faults = {};
        rig.gauge_wire().faults.random = random;
        rig.set_gauges_up();
    };
    return {
        {"is unplugged for a moment", [](Rig& rig) { rig.gauge_wire().unplug(); }, 20ms, plug, 1s},
        {"is unplugged for an hour",
         [](Rig& rig) {
             rig.gauge_wire().unplug();
             rig.hold();
         },
         1h,
         [](Rig& rig) {
             rig.gauge_wire().plug();
             rig.fly();
         },
         1s},
        {"loses its supply and its plug",
         [](Rig& rig) {
             rig.gauge_wire().unplug();
             rig.controller.power_cycle();
         },
         30s, plug, 1s},
        {"loses its plug time and again",
         [](Rig& rig) {
             for (int time = 0; time < 50; ++time) {
                 rig.machine.loop.post_after(time * 200ms, [&rig] { rig.gauge_wire().unplug(); });
                 rig.machine.loop.post_after(time * 200ms + 130ms, [&rig] { rig.gauge_wire().plug(); });
             }
         },
         10s, [](Rig&) {}, 1s},
        {"carries garbage to the program",
         [](Rig& rig) {
             for (int time = 0; time < 200; ++time) {
                 std::string garbage(rig.machine.random.next() % 60, '\0');
                 for (char& byte : garbage) {
                     byte = static_cast<char>(rig.machine.random.next() & 0xFFU);
                 }
                 rig.gauge_wire().deliver(garbage);
                 rig.advance(50ms);
             }
         },
         0s, [](Rig&) {}, 0s},
        {"carries half reports, breaks and framing errors",
         [](Rig& rig) {
             for (int time = 0; time < 100; ++time) {
                 rig.gauge_wire().deliver(half_report());
                 rig.gauge_wire().send_break();
                 rig.gauge_wire().send_framing_error();
                 rig.advance(90ms);
             }
         },
         0s, [](Rig&) {}, 0s},
        // A frame that was lost shows until its value moves on, as the bus has it.
        {"loses bytes to the gauges", [](Rig& rig) { rig.gauge_wire().faults.loss_to_device = 0.05; }, 1min, heal, 0s},
        {"has noise to the gauges", [](Rig& rig) { rig.gauge_wire().faults.noise_to_device = 0.05; }, 1min, heal, 0s},
    };
}

TEST(Faults, a_run_gets_over_whatever_its_line_does) {
    for (const FaultCase& fault : line_faults()) {
        SCOPED_TRACE(std::string("a line that ") + fault.name);
        Rig rig;
        fly_unattended(rig);
        suffer(rig, fault);
        if (fault.heals_within == 0s) {
            rig.move_every_needle();
        }
        EXPECT_TRUE(rig.running());
        EXPECT_TRUE(rig.needles_settle_right());
        EXPECT_TRUE(rig.machine.boxes.open_boxes().empty()) << rig.boxes_shown();
        EXPECT_LE(rig.machine.boxes.shown().size(), 50U) << rig.boxes_shown();
        rig.advance(2s);
        EXPECT_EQ(rig.text("frmStatus", "frmXferCount"), "20");
    }
}

TEST(Faults, an_unplugged_line_is_told_once_and_the_question_goes_when_it_is_back) {
    Rig rig;
    fly_unattended(rig);
    int looks = 0;
    rig.machine.loop.post_after(59min, [&] {
        ++looks;
        EXPECT_EQ(rig.machine.boxes.open_boxes().size(), 1U) << rig.boxes_shown();
        EXPECT_TRUE(rig.machine.boxes.has_shown("Error 13: Error Writing to Gauges. "));
        EXPECT_EQ(rig.text("frmStatus", "boxGaugePort"), "COM1 unplugged");
    });
    rig.machine.loop.post_after(1h, [&] { rig.gauge_wire().plug(); });
    rig.gauge_wire().unplug();
    rig.hold();
    rig.advance(1h);
    rig.fly();
    rig.advance(1s);
    EXPECT_EQ(looks, 1);
    EXPECT_TRUE(rig.machine.boxes.open_boxes().empty());
    EXPECT_EQ(rig.machine.boxes.shown().size(), 1U) << rig.boxes_shown();
    EXPECT_TRUE(rig.needles_settle_right());
}

TEST(Faults, a_line_that_is_missing_at_the_start_is_told_and_the_run_starts_with_the_answer) {
    Rig rig;
    rig.gauge_wire().faults.missing = true;
    rig.start_run();
    EXPECT_TRUE(rig.machine.boxes.has_shown("Commmunicaton error COM port(s)")) << rig.boxes_shown();
    rig.advance(10s);
    EXPECT_TRUE(rig.running());
}

// Builds for debugging are slow; they fly an hour.
#ifdef NDEBUG
constexpr platform::Duration kSoakTime = 10h;
#else
constexpr platform::Duration kSoakTime = 1h;
#endif

TEST(Faults, one_fault_after_the_other_for_ten_hours_leaves_every_needle_right) {
    Rig rig;
    fly_unattended(rig);
    std::vector<FaultCase> faults = simulator_faults();
    for (FaultCase& fault : line_faults()) {
        faults.push_back(std::move(fault));
    }
    const auto end = rig.machine.loop.now() + kSoakTime;
    int happened = 0;
    while (rig.machine.loop.now() < end) {
        rig.hold();  // flying costs most of the time
        rig.advance(std::chrono::milliseconds(1000 + rig.machine.random.next() % 600000));
        rig.fly();
        rig.advance(5s);
        const FaultCase& fault = faults[rig.machine.random.next() % faults.size()];
        suffer(rig, fault);
        rig.move_every_needle();
        ++happened;
        ASSERT_TRUE(rig.running()) << fault.name << rig.story();
        ASSERT_TRUE(rig.needles_settle_right()) << "after fault " << happened << ": " << fault.name;
        ASSERT_TRUE(rig.machine.boxes.open_boxes().empty()) << fault.name << rig.boxes_shown();
    }
    EXPECT_GT(happened, kSoakTime / 30min);
}

}  // namespace
