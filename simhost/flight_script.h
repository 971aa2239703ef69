#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

#include "simhost/pilot.h"

namespace simhost {

// The phases of the circuit, in their order; after the last the first follows again.
enum class Phase : std::uint8_t {
    cold_and_dark,
    power_up,
    engine_start,
    taxi_out,
    run_up,
    line_up,
    take_off,
    climb,
    climbing_turn,
    cruise,
    turbulence,
    fast_descent,
    slow_flight,
    stall_recovery,
    downwind,
    base_turn,
    final_approach,
    landing,
    roll_out,
    taxi_in,
    shut_down,
};
inline constexpr int kPhases = 21;

// The circuit, flown by the scripted pilot: each phase sets the levers, flies its part, and says when it is done.
class FlightScript {
  public:
    // Works for one step of the aircraft.
    void step(Aircraft& aircraft, double dt_s);

    Phase phase() const { return phase_; }
    double phase_s() const { return phase_s_; }
    int finished_circuits() const { return finished_circuits_; }

    // What the phases' functions work with.
    Pilot pilot;

    double marked_s = 0;  // a stretch of time that the phase measures

  private:
    void enter(Phase phase, Aircraft& aircraft);

    Phase phase_ = Phase::cold_and_dark;
    double phase_s_ = 0;
    bool entered_ = false;
    int finished_circuits_ = 0;
};

// One phase: what happens at its begin, what happens in every step (true when the phase is done), and how long it may
// take at most, seconds.
struct PhaseRow {
    Phase phase;
    std::string_view name;
    void (*begin)(FlightScript& script, Aircraft& aircraft);
    bool (*step)(FlightScript& script, Aircraft& aircraft, double dt_s);
    double limit_s;
};

const std::array<PhaseRow, kPhases>& phase_table();
std::string_view phase_name(Phase phase);
std::optional<Phase> phase_named(std::string_view name);

// The functions of the table's rows, on the ground and in the air.
namespace ground_phases {
void begin_cold_and_dark(FlightScript& script, Aircraft& aircraft);
bool cold_and_dark(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_power_up(FlightScript& script, Aircraft& aircraft);
bool power_up(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_engine_start(FlightScript& script, Aircraft& aircraft);
bool engine_start(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_taxi_out(FlightScript& script, Aircraft& aircraft);
bool taxi_out(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_run_up(FlightScript& script, Aircraft& aircraft);
bool run_up(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_line_up(FlightScript& script, Aircraft& aircraft);
bool line_up(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_roll_out(FlightScript& script, Aircraft& aircraft);
bool roll_out(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_taxi_in(FlightScript& script, Aircraft& aircraft);
bool taxi_in(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_shut_down(FlightScript& script, Aircraft& aircraft);
bool shut_down(FlightScript& script, Aircraft& aircraft, double dt_s);
}  // namespace ground_phases

namespace air_phases {
void begin_take_off(FlightScript& script, Aircraft& aircraft);
bool take_off(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_climb(FlightScript& script, Aircraft& aircraft);
bool climb(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_climbing_turn(FlightScript& script, Aircraft& aircraft);
bool climbing_turn(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_cruise(FlightScript& script, Aircraft& aircraft);
bool cruise(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_turbulence(FlightScript& script, Aircraft& aircraft);
bool turbulence(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_fast_descent(FlightScript& script, Aircraft& aircraft);
bool fast_descent(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_slow_flight(FlightScript& script, Aircraft& aircraft);
bool slow_flight(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_stall_recovery(FlightScript& script, Aircraft& aircraft);
bool stall_recovery(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_downwind(FlightScript& script, Aircraft& aircraft);
bool downwind(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_base_turn(FlightScript& script, Aircraft& aircraft);
bool base_turn(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_final_approach(FlightScript& script, Aircraft& aircraft);
bool final_approach(FlightScript& script, Aircraft& aircraft, double dt_s);
void begin_landing(FlightScript& script, Aircraft& aircraft);
bool landing(FlightScript& script, Aircraft& aircraft, double dt_s);
}  // namespace air_phases

}  // namespace simhost
