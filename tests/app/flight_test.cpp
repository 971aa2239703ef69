// The whole road: simulator values, request blocks, ticks, frames on the line, needles.
#include <gtest/gtest.h>

#include <cmath>

#include "tests/support/rig.h"

namespace {

using namespace std::chrono_literals;
using rig::Rig;
using simhost::Phase;

TEST(Flight, every_needle_stands_where_its_plate_puts_the_value_in_every_phase_of_the_circuit) {
    Rig rig;
    rig.start_run();
    rig.fly();
    for (const Phase phase : {Phase::power_up, Phase::engine_start, Phase::run_up, Phase::take_off,
                              Phase::climbing_turn, Phase::cruise, Phase::turbulence, Phase::fast_descent,
                              Phase::stall_recovery, Phase::final_approach, Phase::landing, Phase::shut_down}) {
        rig.simulator.jump_to(phase);
        rig.advance(7s);
        EXPECT_TRUE(rig.needles_settle_right()) << "in phase " << simhost::phase_name(phase);
    }
    EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
}

TEST(Flight, a_moving_needle_is_never_further_behind_than_its_speed_and_two_cycles_explain) {
    Rig rig;
    rig.start_run();
    rig.simulator.jump_to(Phase::cruise);
    rig.fly();
    rig.advance(10s);
    // What a gust of some knots moves while block, tick, line and needle follow, and no more.
    for (int second = 0; second < 20; ++second) {
        rig.advance(1s);
        EXPECT_TRUE(rig.needles_are_right(30.0)) << "in second " << second;
    }
}

TEST(Flight, a_whole_circuit_passes_without_a_question_and_with_every_tick) {
    Rig rig;
    rig.machine.boxes.leave_open = true;
    rig.start_run();
    rig.fly();
    rig.advance(2s);
    int minutes = 0;
    while (rig.simulator.model().script().finished_circuits() == 0 && minutes < 40) {
        rig.advance(60s);
        ++minutes;
        EXPECT_EQ(rig.text("frmStatus", "frmXferCount"), "20") << "in minute " << minutes;
        EXPECT_TRUE(rig.needles_settle_right()) << "in minute " << minutes;
    }
    EXPECT_EQ(rig.simulator.model().script().finished_circuits(), 1);
    EXPECT_EQ(rig.text("frmStatus", "boxMissedTicks"), "0");
    EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
    EXPECT_EQ(rig.controller.statistics().bad_frames, 0U);
    EXPECT_EQ(rig.controller.statistics().stray_bytes, 0U);
    EXPECT_EQ(rig.controller.frames_for_nobody(), 0U);
    EXPECT_EQ(rig.simulator.server().bad_blocks(), 0U);
}

TEST(Flight, the_run_panel_shows_what_the_simulator_says) {
    Rig rig;
    rig.start_run();
    rig.simulator.jump_to(Phase::climbing_turn);
    rig.fly();
    rig.advance(10s);
    rig.hold();
    rig.advance(1s);
    const auto shown = [&](const char* box) { return std::stod(rig.text("frmStatus", box)); };
    EXPECT_NEAR(shown("BoxIAS"), rig.simulator.aircraft().indicated_airspeed_knots(), 0.6) << rig.story();
    EXPECT_NEAR(shown("boxBank"), -rig.simulator.aircraft().airframe.bank_deg(), 0.1);
    EXPECT_NEAR(shown("boxVoltage"), rig.sim().read_f64(0x2840), 0.01);
    EXPECT_EQ(shown("BoxAirPressmBar"), std::round(rig.sim().read_u16(0x330) / 16.0));
    EXPECT_EQ(rig.text("frmStatus", "BoxRun"), "Running");
}

TEST(Flight, gauges_are_lit_as_the_switch_and_the_bus_say) {
    Rig rig;
    rig.start_run();
    const auto lights_after = [&](std::uint16_t lights, double volts) {
        rig.sim().write_u16(0xD0C, lights);
        rig.sim().write_f64(0x2840, volts);
        rig.advance(1s);
        return rig.gauge(17).lights().lit();
    };
    EXPECT_TRUE(lights_after(simhost::kInstrumentLights, 24.0)) << rig.story();
    EXPECT_FALSE(lights_after(0, 24.0)) << rig.story();
    EXPECT_TRUE(lights_after(simhost::kInstrumentLights, 24.0)) << rig.story();
    EXPECT_FALSE(lights_after(simhost::kInstrumentLights, 4.0)) << rig.story();
}

TEST(Flight, a_display_shows_the_value_that_its_needle_shows) {
    Rig rig;
    rig.start_run();
    rig.simulator.jump_to(Phase::cruise);
    rig.fly();
    rig.advance(10s);
    rig.hold();
    rig.advance(1s);
    int displays = 0;
    for (int id = 1; id < 256; ++id) {
        const tables::GaugeRow& row = rig.cockpit.tables().gauges[static_cast<std::size_t>(id)];
        if (row.GaugeType != 2) {
            continue;
        }
        const double value = rig::simulator_value(
            rig.cockpit.tables().functions[static_cast<std::size_t>(row.GaugeFunction1)], row.GaugeSeqNr1, rig.sim());
        EXPECT_NEAR(std::stod(rig.gauge(id).display_text()), value, value < 100 ? 0.051 : 1.0) << rig.story();
        ++displays;
    }
    EXPECT_GT(displays, 0);
}

TEST(Flight, two_cockpits_fly_in_one_process_and_do_not_touch_each_other) {
    Rig one;
    Rig two;
    one.start_run();
    two.start_run();
    one.fly();
    two.fly();
    one.simulator.jump_to(Phase::cruise);
    two.simulator.jump_to(Phase::stall_recovery);
    for (int turn = 0; turn < 10; ++turn) {
        one.advance(500ms);
        two.advance(700ms);
    }
    one.cockpit.panels().show("frmStatus");
    one.click("frmStatus", "cmdStop");
    EXPECT_FALSE(one.running());
    EXPECT_TRUE(two.running());
    two.advance(5s);
    EXPECT_TRUE(two.needles_settle_right());
}

}  // namespace
