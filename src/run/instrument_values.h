#pragma once

#include <cstdint>
#include <optional>

#include "run/run_context.h"

// What most instrument families do with simulator ports.
namespace run {

// Opens a port on an offset of a function that only writes. kNoSimPort when there is none. A sequence number of 0 in
// the gauge table counts as 1 and becomes 1 there; a fixed one is 1..4.
std::int16_t open_writing_port(RunContext& run, int function, std::uint8_t& sequence_number);
std::int16_t open_writing_port(RunContext& run, int function, int fixed_sequence_number);

// The same, with its reading switched on.
std::int16_t open_reading_port(RunContext& run, int function, std::uint8_t& sequence_number);
std::int16_t open_reading_port(RunContext& run, int function, int fixed_sequence_number);

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
