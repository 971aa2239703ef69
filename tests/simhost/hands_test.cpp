#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "simhost/simulator.h"
#include "simhost/units.h"

namespace {

using simhost::Phase;
using simhost::Simulator;

constexpr std::chrono::milliseconds kTick{40};  // a yoke writes its position once in a tick

// Flies on for some seconds while a yoke writes its two positions in every tick.
void fly(Simulator& simulator, double seconds, double elevator, double aileron) {
    for (double gone_s = 0; gone_s < seconds; gone_s += 0.04) {
        simulator.set_value("elevator", elevator);
        simulator.set_value("aileron", aileron);
        simulator.step(kTick);
    }
}

void autopilot_off(Simulator& simulator) {
    simulator.set_value("ap_master", 0);
}

TEST(Hands, a_deflected_yoke_flies_the_aircraft_its_way) {
    struct Case {
        double elevator;
        double aileron;
        const char* value;
        double more_than_deg;  // of its change within two seconds; below 0 the change is to the other side
    };
    // Of the pitch a positive value is nose down, of the bank a positive one is left wing down; hands count otherwise.
    const Case cases[] = {{0, 0.4, "bank", 15}, {0, -0.4, "bank", -15}, {0.2, 0, "pitch", 4}, {-0.2, 0, "pitch", -4}};
    for (const Case& c : cases) {
        Simulator simulator;
        simulator.jump_to(Phase::cruise);
        autopilot_off(simulator);
        fly(simulator, 1, 0, 0);
        const double before_deg = simulator.value(c.value);
        fly(simulator, 2, c.elevator, c.aileron);
        const double change_deg = simulator.value(c.value) - before_deg;
        EXPECT_GT(change_deg / c.more_than_deg, 1) << c.elevator << " " << c.aileron << " changed " << change_deg;
        EXPECT_NEAR(simulator.value("elevator"), c.elevator, c.elevator == 0 ? 0.3 : 0.01);
    }
}

TEST(Hands, a_yoke_that_nobody_touches_changes_nothing_of_the_circuit) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> wobble(-0.03, 0.03);
    Simulator alone;
    Simulator with_yoke;
    while (alone.model().script().finished_circuits() == 0) {
        fly(with_yoke, 0.04, wobble(random), wobble(random));
        alone.step(kTick);
        ASSERT_EQ(alone.aircraft().airframe.place().north_m, with_yoke.aircraft().airframe.place().north_m);
        ASSERT_EQ(alone.value("bank"), with_yoke.value("bank"));
    }
}

TEST(Hands, the_autopilot_is_not_disturbed_until_it_is_overruled_and_the_script_leaves_it_off_for_a_while) {
    Simulator alone;
    Simulator pushed;
    alone.jump_to(Phase::cruise);
    pushed.jump_to(Phase::cruise);
    for (int tick = 0; tick < 200; ++tick) {
        alone.step(kTick);
        fly(pushed, 0.04, -0.5, 0.5);
        ASSERT_EQ(alone.value("bank"), pushed.value("bank"));
    }
    const double before_deg = pushed.value("bank");
    autopilot_off(pushed);
    fly(pushed, 1.5, 0, 0.5);
    EXPECT_GT(pushed.value("bank") - before_deg, 10);
    fly(pushed, 35, 0, 0);
    EXPECT_EQ(pushed.value("ap_master"), 0);
    for (int second = 0; second < 300 && pushed.value("ap_master") == 0; ++second) {
        fly(pushed, 1, 0, 0);
    }
    EXPECT_EQ(pushed.value("ap_master"), 1);
}

TEST(Hands, whatever_the_hands_have_done_the_script_comes_back_to_a_sane_flight_and_ends_its_circuit) {
    for (unsigned seed = 1; seed <= 6; ++seed) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<double> position(-1, 1);
        Simulator simulator;
        simulator.jump_to(static_cast<Phase>(static_cast<unsigned>(Phase::take_off) + random() % 12));
        autopilot_off(simulator);
        for (int move = 0; move < 30; ++move) {
            fly(simulator, 1.5, position(random), position(random));
        }
        fly(simulator, 30, 0, 0);  // still hands
        const simhost::Airframe& airframe = simulator.aircraft().airframe;
        EXPECT_LT(std::abs(airframe.bank_deg()), 35) << seed;
        EXPECT_LT(std::abs(airframe.pitch_deg()), 20) << seed;
        for (int second = 0; second < 2400 && simulator.model().script().finished_circuits() == 0; ++second) {
            fly(simulator, 1, 0, 0);
        }
        EXPECT_EQ(simulator.model().script().finished_circuits(), 1) << seed;
    }
}

TEST(Hands, the_demands_of_the_autopilot_have_the_sign_and_the_size_that_move_a_yoke) {
    Simulator simulator;
    simulator.jump_to(Phase::cruise);
    simulator.set_value("ap_heading", 1);  // the client has the autopilot
    for (const double side : {1.0, -1.0}) {
        const double heading_deg = simulator.aircraft().airframe.heading_deg() - simhost::kMagneticVariationDeg;
        simulator.set_value("heading_bug", simhost::wrap360(heading_deg));
        fly(simulator, 4, 0, 0);
        simulator.set_value("heading_bug", simhost::wrap360(heading_deg + 60 * side));
        double demand_rad = 0;
        for (int tick = 0; tick < 50; ++tick) {
            fly(simulator, 0.04, 0, 0);
            demand_rad = std::max(demand_rad, side * simulator.value("aileron_deflection") * 0.30);
        }
        EXPECT_GT(demand_rad, 0.05) << side;  // at a swing of 50 percent this is a quarter of the travel
        EXPECT_LT(demand_rad, 0.20) << side;
    }
    // Slower at the same height takes more elevator, which the autopilot trims.
    const double fast_rad = simulator.value("elevator_trim_deflection") * 0.22;
    simulator.set_value("throttle", 0.3);
    fly(simulator, 20, 0, 0);
    const double slow_rad = simulator.value("elevator_trim_deflection") * 0.22;
    EXPECT_GT(slow_rad - fast_rad, 0.008);
    EXPECT_LT(slow_rad - fast_rad, 0.10);
}

TEST(Hands, turbulence_moves_the_attitude_between_two_ticks_and_calm_air_hardly_does) {
    const auto roughness = [](Phase phase) {
        Simulator simulator;
        simulator.jump_to(phase);
        fly(simulator, 6, 0, 0);
        double sum_deg = 0;
        for (int tick = 0; tick < 200; ++tick) {
            const double before_deg = simulator.value("bank");
            fly(simulator, 0.04, 0, 0);
            sum_deg += std::abs(simulator.value("bank") - before_deg);
        }
        return sum_deg / 200;
    };
    EXPECT_GT(roughness(Phase::turbulence), 0.15);
    EXPECT_LT(roughness(Phase::cruise), 0.03);
}

TEST(Hands, trim_that_a_client_turns_lifts_the_nose) {
    Simulator simulator;
    simulator.jump_to(Phase::cruise);
    autopilot_off(simulator);
    fly(simulator, 1, 0.2, 0);  // the client has the elevator, and then leaves it alone
    fly(simulator, 1, 0, 0);
    const double before_deg = simulator.aircraft().airframe.pitch_deg();
    simulator.set_value("elevator_trim", simulator.value("elevator_trim") + 0.3);
    fly(simulator, 2, 0, 0);
    EXPECT_GT(simulator.aircraft().airframe.pitch_deg() - before_deg, 3);
}

}  // namespace
