#include "run/instrument_values.h"

#include <cmath>

#include "support/rounding.h"

namespace run {

std::int16_t open_writing_port(RunContext& run, int function, std::uint8_t& sequence_number) {
    return run.sim_com.OpenSimPort(static_cast<std::int16_t>(function), sequence_number);
}

std::int16_t open_writing_port(RunContext& run, int function, int fixed_sequence_number) {
    auto sequence_number = static_cast<std::uint8_t>(fixed_sequence_number);
    return open_writing_port(run, function, sequence_number);
}

std::int16_t open_reading_port(RunContext& run, int function, std::uint8_t& sequence_number) {
    const std::int16_t port = open_writing_port(run, function, sequence_number);
    run.sim_com.EnableReadSimPort(port);
    return port;
}

std::int16_t open_reading_port(RunContext& run, int function, int fixed_sequence_number) {
    auto sequence_number = static_cast<std::uint8_t>(fixed_sequence_number);
    return open_reading_port(run, function, sequence_number);
}

std::optional<double> finite_value(RunContext& run, std::int16_t port) {
    float value = 0;
    if (!run.sim_com.GetPort(port, value) || !std::isfinite(value)) {
        return std::nullopt;
    }
    run.GaugeValue = value;
    return value;
}

std::int16_t position_of_degrees(double degrees, int steps_per_turn) {
    constexpr double kFullTurn = 360;
    return support::round_to_i16(degrees / kFullTurn * steps_per_turn);
}

}  // namespace run
