#pragma once

#include <cstdint>
#include <optional>

#include "run/run_context.h"

// What most instrument families do with simulator ports.
namespace run {

// Opens a port on an offset (1..4) of a function and switches its reading on. kNoSimPort when there is none.
std::int16_t open_reading_port(RunContext& run, int function, std::uint8_t sequence_number);

// Opens a port that only writes.
std::int16_t open_writing_port(RunContext& run, int function, std::uint8_t sequence_number);

// The number as the gauge table holds it; kNoSimPort becomes kNoWritePort.
constexpr std::uint16_t write_port(std::int16_t port) {
    return static_cast<std::uint16_t>(port);
}

// The engineering value of a port. Nothing when the port gives none, or when what it gives is not a finite number: the
// instrument then stays as it is.
std::optional<double> finite_value(RunContext& run, std::int16_t port);

// 360 becomes `steps_per_turn`. Not limited; rounded to nearest, ties to even. Throws a Failure beyond 16 bits.
std::int16_t position_of_degrees(double degrees, int steps_per_turn);

}  // namespace run
