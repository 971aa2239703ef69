#include <gtest/gtest.h>

#include <set>

#include "simhost/units.h"
#include "tests/simhost/recorded_flight.h"

namespace {

using simhost::FlightModel;
using simhost::Phase;

// One circuit, flown once for all tests of this file.
const RecordedFlight& flight() {
    static const RecordedFlight kFlight(1);
    return kFlight;
}

TEST(Circuit, all_phases_come_in_their_order_and_a_circuit_takes_about_ten_minutes) {
    const std::vector<Phase>& phases = flight().phases;
    ASSERT_GE(phases.size(), std::size_t{simhost::kPhases});
    for (std::size_t i = 0; i < phases.size(); ++i) {
        EXPECT_EQ(static_cast<std::size_t>(phases[i]), i % simhost::kPhases) << "at " << i;
    }
    EXPECT_EQ(flight().simulator.model().script().finished_circuits(), 1);
    EXPECT_GT(flight().simulator.model().time_s(), 480.0);
    EXPECT_LT(flight().simulator.model().time_s(), 640.0);
}

TEST(Circuit, it_lands_once_on_the_runway_softly_and_ends_where_it_began) {
    ASSERT_EQ(flight().touchdowns.size(), 1U);
    for (const simhost::RunwayPlace& place : flight().touchdowns) {
        EXPECT_GT(place.along_m, 100.0);
        EXPECT_LT(place.along_m, 600.0);
        EXPECT_LT(std::abs(place.across_m), 8.0);
    }
    EXPECT_GT(flight().trace("touchdown_vertical_speed").least, -350.0);
    const simhost::Airframe& airframe = flight().simulator.aircraft().airframe;
    EXPECT_NEAR(airframe.runway_place().along_m, simhost::kParkingPlace.along_m, 5.0);
    EXPECT_NEAR(airframe.runway_place().across_m, simhost::kParkingPlace.across_m, 5.0);
    EXPECT_NEAR(airframe.heading_deg(), simhost::kParkingHeadingDeg, 8.0);
    EXPECT_LT(airframe.ground_speed_mps(), 0.1);
}

// Limits of each value over the circuit, and the largest change between two looks, 20 ms apart.
struct Limits {
    const char* name;
    double least;
    double most;
    double largest_step;
};

const Limits kLimits[] = {
    {"indicated_airspeed", 0, 150, 3},
    {"true_airspeed", 0, 155, 3},
    {"ground_speed", 0, 160, 0.5},
    {"vertical_speed", -1600, 1200, 15},
    {"altitude", 1200, 2700, 1.0},
    {"indicated_altitude", 1000, 2700, 2},
    {"radio_altitude", 0, 1500, 1.0},
    {"pitch", -8, 13, 0.5},
    {"bank", -26, 26, 0.8},
    {"heading", -180, 180, 0.6},
    {"compass", 0, 360, 0.8},
    {"gyro_heading", 0, 360, 0.6},
    {"g_force", 0.2, 2.3, 0.5},
    {"angle_of_attack", -6, 17, 1.5},
    {"turn_rate", -25, 25, 1.2},
    {"ball", -1, 1, 0.06},
    {"sideways_acceleration", -14, 14, 4},
    {"upward_acceleration", -25, 40, 15},
    {"pitch_rate", -0.4, 0.4, 0.04},
    {"roll_rate", -0.6, 0.6, 0.08},
    {"latitude", 48.0, 48.3, 0.0001},
    {"longitude", 10.1, 10.5, 0.0001},
    {"rpm", 0, 2700, 40},
    {"manifold_pressure", 8, 30, 0.6},
    {"fuel_flow", 0, 95, 1},
    {"exhaust_temperature", 10, 780, 3},
    {"cylinder_head_temperature", 50, 420, 0.2},
    {"oil_temperature", 10, 100, 0.1},
    {"oil_pressure", 0, 90, 1},
    {"fuel_pressure", 0, 6, 0.3},
    {"suction", 0, 5.5, 0.1},
    {"fuel_left", 60, 95, 0.001},
    {"fuel_right", 60, 95, 0.001},
    {"main_bus_volts", 0, 28.5, 2.5},
    {"avionics_bus_volts", 0, 28.5, 2.8},
    {"battery_volts", 18, 28.5, 1},
    {"battery_load", -25, 170, 20},
    {"total_load", 0, 175, 20},
    {"elevator", -0.9, 0.9, 0.06},
    {"aileron", -0.9, 0.9, 0.06},
    {"rudder", -1, 1, 0.06},
    {"elevator_trim", -0.5, 0.5, 0.01},
    {"throttle", 0, 1, 0.02},
    {"flaps_left", 0, 1, 0.01},
    {"gear_nose", 0, 1, 0.01},
    {"altimeter_setting", 1010, 1022, 0.1},
    {"sea_level_pressure", 1010, 1022, 0.1},
    {"gyro_drift", -5, 5, 0.1},
    {"outside_temperature", 5, 20, 0.02},
    {"dme1_distance", -1, 30, 30},  // -1 stands for no station
    {"adf1_bearing", -180, 180, 6},
    {"nav1_needle", -127, 127, 15},
    {"nav1_slope_needle", -127, 127, 10},
    {"dimmer", 0, 1, 0.02},
};

TEST(Circuit, every_quantity_stays_in_plausible_limits_and_makes_no_jump_that_no_aircraft_makes) {
    for (const Limits& limits : kLimits) {
        const ValueTrace& trace = flight().trace(limits.name);
        EXPECT_GE(trace.least, limits.least) << limits.name;
        EXPECT_LE(trace.most, limits.most) << limits.name;
        EXPECT_LE(trace.largest_step, limits.largest_step) << limits.name << " at " << trace.at_s << " s";
    }
    for (const simhost::OffsetRow& row : flight().simulator.map().rows()) {
        EXPECT_TRUE(flight().trace(std::string(row.name)).finite) << row.name;
    }
}

TEST(Circuit, every_value_moves_but_those_that_stand_for_a_setting_or_a_fixed_figure) {
    const std::set<std::string> standing = {
        // fixed figures
        "ground_altitude", "ground_altitude_whole", "minutes_behind_zulu", "magnetic_variation", "barber_pole",
        "rpm_scaler", "oil_quantity", "engines", "fuel_weight", "fuel_left_capacity", "fuel_right_capacity",
        "visibility", "wind_speed", "wind_direction",
        // the calendar within ten minutes
        "hour", "zulu_hour", "day_of_year", "year",
        // knobs and switches that this pilot does not touch
        "pause_control", "paused", "adf2", "adf2_extended", "adf1_extended", "adf1_standby_extended", "nav2",
        "nav2_standby", "com2", "com2_standby", "obs1", "aileron_trim", "aileron_trim_deflection", "ap_wing_leveler",
        "ap_nav", "ap_attitude", "ap_airspeed_value", "ap_vertical_speed", "ap_glide_slope", "ap_back_course",
        "control_event", "control_parameter", "radio_swap",
        // a second radio without a landing system
        "nav2_slope_needle", "nav2_slope_signal", "nav2_slope_needle_fine"};
    for (const simhost::OffsetRow& row : flight().simulator.map().rows()) {
        const std::string name(row.name);
        const ValueTrace& trace = flight().trace(name);
        EXPECT_EQ(trace.least == trace.most, standing.contains(name)) << name << " " << trace.least;
    }
}

TEST(Circuit, warnings_and_flags_come_in_the_phases_that_call_for_them) {
    struct Flag {
        const char* name;
        Phase phase;
        double least;
        double most;
    };
    const Flag flags[] = {
        {"main_bus_volts", Phase::cold_and_dark, 0, 1},
        {"avionics_bus_volts", Phase::power_up, 0, 0},
        {"stall_warning", Phase::slow_flight, 0, 1},
        {"stall_warning", Phase::cruise, 0, 0},
        {"stall_warning", Phase::final_approach, 0, 0},
        {"overspeed", Phase::fast_descent, 0, 1},
        {"overspeed", Phase::turbulence, 0, 0},
        {"on_ground", Phase::take_off, 0, 1},
        {"on_ground", Phase::cruise, 0, 0},
        {"on_ground", Phase::roll_out, 1, 1},
        {"ap_master", Phase::cruise, 1, 1},
        {"ap_master", Phase::climb, 0, 0},
        {"ap_master", Phase::landing, 0, 0},
        {"nav1_slope_signal", Phase::final_approach, 1, 1},
        {"outer_marker", Phase::final_approach, 0, 1},
        {"middle_marker", Phase::final_approach, 0, 1},
        {"inner_marker", Phase::final_approach, 0, 1},
        {"outer_marker", Phase::cruise, 0, 0},
        {"gear_nose", Phase::landing, 1, 1},
        {"combustion", Phase::engine_start, 0, 1},
        {"combustion", Phase::taxi_out, 1, 1},
    };
    for (const Flag& flag : flags) {
        const ValueTrace& trace = flight().trace(flag.name, flag.phase);
        EXPECT_GE(trace.least, flag.least) << flag.name << " in " << simhost::phase_name(flag.phase);
        EXPECT_LE(trace.most, flag.most) << flag.name << " in " << simhost::phase_name(flag.phase);
    }
    EXPECT_EQ(flight().trace("stall_warning", Phase::slow_flight).most, 1);
    EXPECT_EQ(flight().trace("overspeed", Phase::fast_descent).most, 1);
    EXPECT_EQ(flight().trace("outer_marker", Phase::final_approach).most, 1);
}

TEST(Circuit, the_altitude_is_held_in_turbulence_that_shakes_the_aircraft) {
    const ValueTrace& held = flight().trace("altitude", Phase::turbulence);
    const double wanted_ft = flight().trace("ap_altitude_value", Phase::turbulence).most / simhost::kMetresPerFoot;
    EXPECT_NEAR(held.least, wanted_ft, 60);
    EXPECT_NEAR(held.most, wanted_ft, 60);
    const ValueTrace& calm = flight().trace("g_force", Phase::downwind);
    const ValueTrace& rough = flight().trace("g_force", Phase::turbulence);
    EXPECT_GT(rough.most - rough.least, 3 * (calm.most - calm.least));
    EXPECT_GT(flight().trace("bank", Phase::turbulence).most, 4);
}

TEST(Circuit, the_landing_system_leads_the_approach_and_shows_it) {
    EXPECT_NEAR(flight().trace("nav1_needle", Phase::landing).most, 0, 15);
    const ValueTrace& dme = flight().trace("dme1_distance", Phase::final_approach);
    EXPECT_GT(dme.most, 4.0);
    EXPECT_LT(dme.least, 1.5);
}

TEST(FlightModelTest, the_same_seed_gives_the_same_flight_whatever_the_size_of_the_steps) {
    simhost::Simulator by_20;
    simhost::Simulator by_7;
    simhost::Simulator other_seed(99);
    by_20.jump_to(Phase::cruise);
    by_7.jump_to(Phase::cruise);
    other_seed.jump_to(Phase::cruise);
    for (int ms = 0; ms < 14000; ms += 140) {
        for (int i = 0; i < 7; ++i) {
            by_20.step(std::chrono::milliseconds(20));
            other_seed.step(std::chrono::milliseconds(20));
        }
        for (int i = 0; i < 20; ++i) {
            by_7.step(std::chrono::milliseconds(7));
        }
    }
    double difference = 0;
    for (const simhost::OffsetRow& row : by_20.map().rows()) {
        EXPECT_EQ(by_20.value(row.name), by_7.value(row.name)) << row.name;
        difference += std::abs(by_20.value(row.name) - other_seed.value(row.name));
    }
    EXPECT_GT(difference, 0.0);
}

TEST(FlightModelTest, circuit_after_circuit_goes_by_without_a_crash_and_without_running_dry) {
    FlightModel model(7);
    model.aircraft().tanks.left_gal = 13.0;  // for two circuits more, before the hose is needed
    model.aircraft().tanks.right_gal = 13.0;
    double least_fuel_gal = 100;
    int restarts = 0;
    double parked_off_m = 0;
    int circuits = 0;
    while (model.time_s() < 4000.0) {
        const Phase before = model.script().phase();
        model.step(std::chrono::milliseconds(1000));
        restarts += before > model.script().phase() && before != Phase::shut_down ? 1 : 0;
        least_fuel_gal = std::min(least_fuel_gal, model.aircraft().tanks.left_gal);
        if (model.script().finished_circuits() > circuits) {
            ++circuits;
            const simhost::RunwayPlace place = model.aircraft().airframe.runway_place();
            parked_off_m = std::max(parked_off_m, std::hypot(place.along_m - simhost::kParkingPlace.along_m,
                                                             place.across_m - simhost::kParkingPlace.across_m));
        }
    }
    EXPECT_EQ(restarts, 0);
    EXPECT_GE(circuits, 6);
    EXPECT_GT(model.aircraft().tanks.left_gal, 20.0);
    EXPECT_GT(least_fuel_gal, 8.0);
    EXPECT_LT(parked_off_m, 5.0);
}

TEST(FlightModelTest, a_jump_begins_the_phase_and_leaves_the_clock) {
    simhost::Simulator simulator;
    for (const Phase phase : {Phase::final_approach, Phase::cruise, Phase::cold_and_dark}) {
        const double seconds = simulator.aircraft().clock.seconds_of_day();
        simulator.jump_to(phase);
        EXPECT_EQ(simulator.model().script().phase(), phase);
        EXPECT_NEAR(simulator.aircraft().clock.seconds_of_day(), seconds, 0.1);
    }
}

}  // namespace
