#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "simhost/simulator.h"
#include "simhost/units.h"
#include "support/bytes.h"

namespace {

using simhost::Phase;
using simhost::Simulator;

// Writes bytes the way a client does, through a request block.
void client_writes(Simulator& simulator, std::uint32_t offset, std::uint64_t value, std::uint32_t size) {
    std::vector<std::uint8_t> block(12 + size + 4);
    support::put_u32le(&block[0], 2);
    support::put_u32le(&block[4], offset);
    support::put_u32le(&block[8], size);
    for (std::uint32_t i = 0; i < size; ++i) {
        block[12 + i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
    ASSERT_EQ(simulator.answer(block.data(), block.size()), 1U);
}

void fly(Simulator& simulator, double seconds) {
    for (double gone = 0; gone < seconds; gone += 0.02) {
        simulator.step(std::chrono::milliseconds(20));
    }
}

TEST(ClientWrites, what_a_client_sets_stands_and_shows_at_the_next_step) {
    struct Case {
        std::uint32_t offset;
        std::uint32_t size;
        std::uint64_t value;
        const char* name;
        double shown;
    };
    const Case cases[] = {
        {0x034E, 2, 0x2345, "com1", 0x2345},
        {0x3118, 2, 0x1975, "com2", 0x1975},
        {0x311E, 2, 0xFFFF, "nav1_standby", 0xFFFF},  // no digits, kept all the same
        {0x0354, 2, 0x7700, "transponder", 0x7700},
        {0x7B91, 1, 0, "transponder_standby", 0},
        {0x034C, 2, 0x0123, "adf1", 0x0123},
        {0x0356, 2, 0x0105, "adf1_extended", 0x0105},
        {0x0C4E, 2, 123, "obs1", 123},
        {0x0C5E, 2, 359, "obs2", 359},
        {0x0C6C, 2, 45, "adf_card", 45},
        {0x0378, 2, 2, "dme_selected", 2},
        {0x3122, 1, 0x55, "sound_selector", 0x55},
        {0x0330, 2, 1000 * 16, "altimeter_setting", 1000},
        {0x0C3E, 2, 0x0400, "gyro_drift", 5.625},
        {0x07CC, 2, 0x4000, "heading_bug", 90},
        {0x07D4, 4, 800 * 65536, "ap_altitude_value", 800},
        {0x07F2, 2, 0xFE0C, "ap_vertical_speed_value", -500},
        {0x07BC, 4, 1, "ap_master", 1},
        {0x0804, 4, 1, "ap_back_course", 1},
        {0x0BC0, 2, 0x0FFF, "elevator_trim", 4095.0 / 16383},
        {0x0C02, 2, 0xF001, "aileron_trim", -4095.0 / 16383},
        {0x0D0C, 2, 0x0155, "lights", 0x155},
        {0x281C, 4, 1, "battery_switch", 1},
        {0x2E80, 4, 1, "avionics_switch_byte", 1},
        {0x3104, 1, 1, "fuel_pump", 1},
        {0x088C, 2, 8192, "throttle", 0.5},
        {0x0BDC, 4, 16383, "flaps_lever", 1},
        {0x0B7C, 4, 4194304, "fuel_left", 50},
        {0x0238, 1, 23, "hour", 23},
        {0x0239, 1, 5, "minute", 5},
        {0x023E, 2, 100, "day_of_year", 100},
        {0x66E0, 2, 512, "dimmer", 512.0 / 1023},
    };
    Simulator simulator;
    for (const Case& c : cases) {
        client_writes(simulator, c.offset, c.value, c.size);
    }
    simulator.step(std::chrono::milliseconds(10));
    for (const Case& c : cases) {
        EXPECT_NEAR(simulator.value(c.name), c.shown, 0.006) << c.name;
    }
}

TEST(ClientWrites, a_read_only_value_is_the_simulators_own_again_at_the_next_step) {
    Simulator simulator;
    client_writes(simulator, 0x02BC, 12800, 4);
    EXPECT_EQ(simulator.value("indicated_airspeed"), 100);
    simulator.step(std::chrono::milliseconds(10));
    EXPECT_NEAR(simulator.value("indicated_airspeed"), 0, 1);
}

TEST(ClientWrites, memory_without_a_meaning_keeps_what_clients_put_there) {
    Simulator simulator;
    client_writes(simulator, 0x66C8, 1, 1);
    client_writes(simulator, 0x3340, 0x80000001, 4);
    fly(simulator, 0.1);
    EXPECT_EQ(simulator.space().read_u8(0x66C8), 1);
    EXPECT_EQ(simulator.space().read_u32(0x3340), 0x80000001U);
}

TEST(ClientWrites, the_autopilot_flies_the_heading_and_the_altitude_that_a_client_sets) {
    Simulator simulator;
    simulator.jump_to(Phase::cruise);
    client_writes(simulator, 0x07CC, 0x2000, 2);           // 45 degrees
    client_writes(simulator, 0x07D4, 1000ULL * 65536, 4);  // 1000 m, from about 710
    client_writes(simulator, 0x07F2, 700, 2);
    for (int i = 0; i < 40; ++i) {  // the client keeps its hands on the autopilot
        fly(simulator, 5);
        client_writes(simulator, 0x07C8, 1, 4);
        client_writes(simulator, 0x07D0, 1, 4);
        client_writes(simulator, 0x07BC, 1, 4);
        if (simulator.model().script().phase() >= Phase::fast_descent) {
            simulator.set_value("throttle", 0.9);
        }
    }
    EXPECT_NEAR(simulator.aircraft().airframe.heading_deg(), 45 + simhost::kMagneticVariationDeg, 4);
    EXPECT_NEAR(simulator.aircraft().airframe.altitude_m(), 1000, 25);
}

// A heading indicator tells its bug all the time, turned or not.
TEST(ClientWrites, a_bug_in_other_hands_leaves_the_circuit_to_the_turn_knob_until_heading_mode_follows_it) {
    Simulator simulator;
    simulator.jump_to(Phase::climbing_turn);
    const auto tell_bug = [&](std::uint64_t bug, int times) {
        for (int i = 0; i < times; ++i) {
            client_writes(simulator, 0x07CC, bug, 2);
            fly(simulator, 0.5);
        }
    };
    while (simulator.model().script().phase() == Phase::climbing_turn) {
        tell_bug(0x2000, 1);
    }
    EXPECT_EQ(simulator.value("ap_wing_leveler"), 1);
    EXPECT_EQ(simulator.value("ap_heading"), 0);
    EXPECT_NEAR(simulator.aircraft().airframe.heading_deg(), simhost::kRunwayHeadingDeg - 180.0, 10);
    EXPECT_NEAR(simulator.value("heading_bug"), 45, 0.01);

    client_writes(simulator, 0x07C8, 1, 4);
    tell_bug(0x1000, 30);
    EXPECT_NEAR(simulator.aircraft().airframe.heading_deg(), 22.5 + simhost::kMagneticVariationDeg, 5);
}

TEST(ClientWrites, an_ident_goes_out_although_the_unit_tells_that_its_button_is_up_again) {
    Simulator simulator;
    fly(simulator, 0.1);
    client_writes(simulator, 0x7B93, 1, 1);
    fly(simulator, 0.5);
    client_writes(simulator, 0x7B93, 0, 1);
    fly(simulator, 5);
    EXPECT_EQ(simulator.value("transponder_ident"), 1);
    fly(simulator, 20);
    EXPECT_EQ(simulator.value("transponder_ident"), 0);
}

TEST(ClientWrites, a_tuned_station_brings_the_needles_to_life_and_another_frequency_flags_them) {
    Simulator simulator;
    simulator.jump_to(Phase::final_approach);
    fly(simulator, 30);
    EXPECT_EQ(simulator.value("nav1_to_from"), 1);
    EXPECT_EQ(simulator.value("nav1_slope_signal"), 1);
    EXPECT_EQ(simulator.space().read_u32(0x3000), 0x46535749U);  // "IWSF"
    client_writes(simulator, 0x0350, 0x0875, 2);
    fly(simulator, 0.02);
    EXPECT_EQ(simulator.value("nav1_to_from"), 0);
    EXPECT_EQ(simulator.value("nav1_slope_signal"), 0);
    EXPECT_EQ(simulator.value("dme1_distance"), -1);
    EXPECT_EQ(static_cast<int>(simulator.value("radio_flags")) & 2, 0);
    client_writes(simulator, 0x311E, 0x1110, 2);
    client_writes(simulator, 0x3123, 2, 1);  // swap
    fly(simulator, 0.02);
    EXPECT_EQ(simulator.value("nav1"), 0x1110);
    EXPECT_EQ(simulator.value("nav1_standby"), 0x0875);
    EXPECT_EQ(simulator.value("nav1_to_from"), 1);
}

TEST(ClientWrites, a_millibar_on_the_altimeter_is_worth_about_27_feet) {
    Simulator simulator;
    simulator.set_value("altimeter_setting", 1013);
    simulator.step(std::chrono::milliseconds(10));
    const double low = simulator.value("indicated_altitude");
    simulator.set_value("altimeter_setting", 1023);
    simulator.step(std::chrono::milliseconds(10));
    EXPECT_NEAR(simulator.value("indicated_altitude") - low, 273, 10);
}

TEST(ClientWrites, a_keystroke_arrives_with_the_parameter_that_was_written_before_it) {
    Simulator simulator;
    client_writes(simulator, 0x3114, 0xA45, 4);
    client_writes(simulator, 0x3110, 1070, 4);
    client_writes(simulator, 0x3114, 7, 4);
    client_writes(simulator, 0x3110, 65570, 4);
    fly(simulator, 0.1);
    const auto& controls = simulator.aircraft().sent_controls;
    ASSERT_EQ(controls.size(), 2U);
    EXPECT_EQ(controls[0].number, 1070);
    EXPECT_EQ(controls[0].parameter, 0xA45);
    EXPECT_EQ(controls[1].number, 65570);
    EXPECT_EQ(controls[1].parameter, 7);
}

TEST(ClientWrites, pause_holds_the_flight_and_its_end_goes_on_without_a_jump) {
    Simulator simulator;
    simulator.jump_to(Phase::cruise);
    const double before_s = simulator.model().time_s();
    client_writes(simulator, 0x0262, 1, 2);
    fly(simulator, 5);
    EXPECT_EQ(simulator.model().time_s(), before_s);
    EXPECT_EQ(simulator.value("paused"), 1);
    client_writes(simulator, 0x0262, 0, 2);
    fly(simulator, 1);
    EXPECT_NEAR(simulator.model().time_s(), before_s + 1, 0.05);
    EXPECT_EQ(simulator.value("paused"), 0);
}

TEST(ClientWrites, a_yoke_that_is_moved_flies_the_aircraft_and_gives_it_back_when_let_go) {
    Simulator simulator;
    simulator.jump_to(Phase::cruise);
    client_writes(simulator, 0x07BC, 0, 4);  // the autopilot would not let the yoke fly
    const double course_deg = simhost::kRunwayHeadingDeg - 180.0;
    const double before_deg = simulator.value("bank");
    double banked_deg = before_deg;
    for (int i = 0; i < 60; ++i) {  // a good second of right aileron
        client_writes(simulator, 0x0BB6, 5000, 2);
        fly(simulator, 0.02);
        banked_deg = std::max(banked_deg, simulator.value("bank"));
    }
    EXPECT_NEAR(simulator.value("aileron"), 5000.0 / 16383, 0.02);
    EXPECT_GT(banked_deg - before_deg, 10);
    for (int i = 0; i < 600; ++i) {  // the yoke rests in the middle
        client_writes(simulator, 0x0BB6, 0, 2);
        fly(simulator, 0.02);
    }
    EXPECT_NEAR(simulator.aircraft().airframe.heading_deg(), course_deg, 8);
    EXPECT_LT(std::abs(simulator.value("bank")), 12);
}

TEST(ClientWrites, the_pilot_keeps_off_what_a_client_has_in_its_hands) {
    Simulator simulator;
    simulator.jump_to(Phase::engine_start);
    for (int i = 0; i < 30; ++i) {  // over the begin of the taxi, where the pilot switches lights
        client_writes(simulator, 0x0D0C, 0x0200, 2);
        client_writes(simulator, 0x0330, 990 * 16, 2);
        fly(simulator, 1);
    }
    EXPECT_EQ(simulator.model().script().phase(), Phase::taxi_out);
    EXPECT_EQ(simulator.value("lights"), 0x0200);
    EXPECT_EQ(simulator.value("altimeter_setting"), 990);
}

TEST(ClientWrites, a_dead_battery_switch_takes_the_buses_down_and_back_up) {
    Simulator simulator;
    simulator.jump_to(Phase::cruise);
    EXPECT_GT(simulator.value("main_bus_volts"), 27);
    client_writes(simulator, 0x281C, 0, 4);
    fly(simulator, 3);
    EXPECT_LT(simulator.value("main_bus_volts"), 1);
    EXPECT_LT(simulator.value("avionics_bus_volts"), 1);
    EXPECT_EQ(simulator.value("radio_flags"), 0);
    client_writes(simulator, 0x281C, 1, 4);
    fly(simulator, 3);
    EXPECT_GT(simulator.value("main_bus_volts"), 20);
}

// Flies until a circuit is finished while a client does something every second; how many times the flight had to start
// again from the apron, or -1 when the circuit never ended.
int restarts_of_a_circuit(Simulator& simulator, const std::function<void(Phase phase)>& client) {
    int restarts = 0;
    for (int second = 0; second < 2400; ++second) {
        const Phase before = simulator.model().script().phase();
        client(before);
        fly(simulator, 1);
        restarts += simulator.model().script().phase() < before && before != Phase::shut_down ? 1 : 0;
        if (simulator.model().script().finished_circuits() > 0) {
            return restarts;
        }
    }
    return -1;
}

TEST(ClientWrites, the_circuit_is_flown_to_its_end_whatever_a_client_does_with_autopilot_and_radios) {
    struct Case {
        const char* what;
        void (*client)(Simulator& simulator, Phase phase);
    };
    const Case cases[] = {
        {"the autopilot is kept off", [](Simulator& simulator, Phase) { client_writes(simulator, 0x07BC, 0, 4); }},
        {"the landing system is kept away",
         [](Simulator& simulator, Phase) { client_writes(simulator, 0x0350, 0x0875, 2); }},
        {"the autopilot is sent off to the north",
         [](Simulator& simulator, Phase phase) {
             if (phase >= Phase::cruise && phase < Phase::final_approach) {
                 client_writes(simulator, 0x07CC, 0, 2);
                 client_writes(simulator, 0x07D4, 1200ULL * 65536, 4);
             }
         }},
        {"trims and throttle are turned now and then",
         [](Simulator& simulator, Phase phase) {
             if (phase == Phase::cruise) {
                 client_writes(simulator, 0x0BC0, 0x1000, 2);
                 client_writes(simulator, 0x088C, 12000, 2);
             }
         }},
    };
    for (const Case& c : cases) {
        Simulator simulator;
        EXPECT_EQ(restarts_of_a_circuit(simulator, [&](Phase phase) { c.client(simulator, phase); }), 0) << c.what;
        EXPECT_NEAR(simulator.aircraft().airframe.runway_place().along_m, simhost::kParkingPlace.along_m, 5) << c.what;
    }
}

TEST(ClientWrites, an_aircraft_that_a_client_has_flown_into_the_ground_stands_on_the_runway_again) {
    Simulator simulator;
    simulator.jump_to(Phase::climb);
    for (int i = 0; i < 60 && simulator.model().script().phase() != Phase::take_off; ++i) {
        for (int j = 0; j < 50; ++j) {
            client_writes(simulator, 0x0BB2, static_cast<std::uint16_t>(-12000), 2);  // stick forward
            fly(simulator, 0.02);
        }
    }
    EXPECT_EQ(simulator.model().script().phase(), Phase::take_off);
    EXPECT_TRUE(simulator.aircraft().airframe.on_ground());
    EXPECT_NEAR(simulator.aircraft().airframe.runway_place().across_m, 0, 5);
}

TEST(ClientWrites, any_writes_at_all_leave_finite_values_and_a_simulator_that_goes_on) {
    std::mt19937 random(11);
    Simulator simulator;
    simulator.jump_to(Phase::climb);
    const auto& rows = simulator.map().rows();
    for (int i = 0; i < 6000; ++i) {
        const simhost::OffsetRow& row = rows[random() % rows.size()];
        const std::uint64_t value = (static_cast<std::uint64_t>(random()) << 32) | random();
        const auto size = static_cast<std::uint32_t>(1 + random() % 8);
        // Mostly at the begin of a value, sometimes across its edges.
        const auto offset = static_cast<std::uint32_t>(row.offset + (random() % 4 == 0 ? random() % 3 : 0));
        if (offset != 0x0262) {
            client_writes(simulator, offset, value, size);
        }
        simulator.aircraft().paused = false;
        fly(simulator, 0.02);
    }
    for (const simhost::OffsetRow& row : rows) {
        if (row.get != nullptr) {
            EXPECT_TRUE(std::isfinite(row.get(simulator.aircraft()))) << row.name;
        }
    }
    const double before_s = simulator.model().time_s();
    fly(simulator, 1);
    EXPECT_GT(simulator.model().time_s(), before_s);
}

}  // namespace
