#include "simhost/flight_script.h"

namespace simhost {

namespace {

// A client that pulls up out of the landing to this height goes around.
constexpr double kGoAroundM = 40.0;

}  // namespace

const std::array<PhaseRow, kPhases>& phase_table() {
    using namespace ground_phases;
    using namespace air_phases;
    static constexpr std::array<PhaseRow, kPhases> kTable{{
        {Phase::cold_and_dark, "cold_and_dark", begin_cold_and_dark, cold_and_dark, 90},
        {Phase::power_up, "power_up", begin_power_up, power_up, 30},
        {Phase::engine_start, "engine_start", begin_engine_start, engine_start, 40},
        {Phase::taxi_out, "taxi_out", begin_taxi_out, taxi_out, 180},
        {Phase::run_up, "run_up", begin_run_up, run_up, 30},
        {Phase::line_up, "line_up", begin_line_up, line_up, 60},
        {Phase::take_off, "take_off", begin_take_off, take_off, 60},
        {Phase::climb, "climb", begin_climb, climb, 90},
        {Phase::climbing_turn, "climbing_turn", begin_climbing_turn, climbing_turn, 150},
        {Phase::cruise, "cruise", begin_cruise, cruise, 40},
        {Phase::turbulence, "turbulence", begin_turbulence, turbulence, 40},
        {Phase::fast_descent, "fast_descent", begin_fast_descent, fast_descent, 40},
        {Phase::slow_flight, "slow_flight", begin_slow_flight, slow_flight, 80},
        {Phase::stall_recovery, "stall_recovery", begin_stall_recovery, stall_recovery, 30},
        {Phase::downwind, "downwind", begin_downwind, downwind, 120},
        {Phase::base_turn, "base_turn", begin_base_turn, base_turn, 180},
        {Phase::final_approach, "final_approach", begin_final_approach, final_approach, 600},
        {Phase::landing, "landing", begin_landing, landing, 60},
        {Phase::roll_out, "roll_out", begin_roll_out, roll_out, 90},
        {Phase::taxi_in, "taxi_in", begin_taxi_in, taxi_in, 300},
        {Phase::shut_down, "shut_down", begin_shut_down, shut_down, 60},
    }};
    return kTable;
}

std::string_view phase_name(Phase phase) {
    return phase_table()[static_cast<std::size_t>(phase)].name;
}

std::optional<Phase> phase_named(std::string_view name) {
    for (const PhaseRow& row : phase_table()) {
        if (row.name == name) {
            return row.phase;
        }
    }
    return std::nullopt;
}

void FlightScript::enter(Phase phase, Aircraft& aircraft) {
    phase_ = phase;
    phase_s_ = 0;
    marked_s = 0;
    entered_ = true;
    pilot.take_stick(aircraft);
    phase_table()[static_cast<std::size_t>(phase)].begin(*this, aircraft);
}

void FlightScript::step(Aircraft& aircraft, double dt_s) {
    if (!entered_) {
        enter(phase_, aircraft);
    }
    phase_s_ += dt_s;
    const bool lands = phase_ == Phase::landing || phase_ == Phase::roll_out;
    if (lands && aircraft.airframe.height_m() > kGoAroundM) {
        enter(Phase::climb, aircraft);
    }
    const PhaseRow& row = phase_table()[static_cast<std::size_t>(phase_)];
    const bool done = row.step(*this, aircraft, dt_s);
    if (!done && phase_s_ < row.limit_s) {
        return;
    }
    const int next = (static_cast<int>(phase_) + 1) % kPhases;
    if (next == 0) {
        ++finished_circuits_;
    }
    enter(static_cast<Phase>(next), aircraft);
}

}  // namespace simhost
