#pragma once

#include <chrono>
#include <cstdint>

#include "simhost/aircraft.h"
#include "simhost/flight_script.h"

namespace simhost {

// The stand-in simulator's world on its own time: the aircraft and the script that flies it, moved on in equal small
// steps, so that the same seed and the same writes give the same flight on every machine.
class FlightModel {
  public:
    using Duration = std::chrono::steady_clock::duration;
    static constexpr std::uint64_t kDefaultSeed = 20240621;
    static constexpr std::chrono::milliseconds kStep{10};

    explicit FlightModel(std::uint64_t seed = kDefaultSeed) : seed_(seed), aircraft_(seed) {}

    // Moves the world on. What is left over below one step counts towards the next call. While paused nothing moves.
    void step(Duration elapsed);
    // Puts the world back to the start: cold and dark on the apron, the clock as it was set.
    void restart();
    // Flies ahead to the next begin of that phase (at most one circuit and a half) at once.
    void jump_to(Phase phase);

    Aircraft& aircraft() { return aircraft_; }
    const Aircraft& aircraft() const { return aircraft_; }
    const FlightScript& script() const { return script_; }
    double time_s() const { return time_s_; }

  private:
    void one_step();
    bool lost() const;

    std::uint64_t seed_;
    Aircraft aircraft_;
    FlightScript script_;
    Duration left_over_{};
    double time_s_ = 0;
    double stranded_s_ = 0;
};

}  // namespace simhost
