#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace run {

enum class SystemReading {
    every_cycle,  // the simulator link reads it in each of its cycles
    on_demand,    // an instrument switches reading on around its use
};

// The function that an internal simulator port stands on.
struct SystemPortRow {
    std::int16_t function;
    std::uint8_t sequence_number;
    SystemReading reading;
};

// Numbers of the ports, SystemPort(1) to SystemPort(14).
enum SystemPortNumber : std::size_t {
    kAirPressurePort = 1,
    kAirspeedPort = 2,
    kVerticalSpeedPort = 3,
    kAltitudePort = 4,
    kPitchPort = 5,
    kBankPort = 6,
    kHeadingPort = 7,
    kNavLightsPort = 8,
    kMainBusPort = 9,
    kTimePort = 10,
    kOutsideTemperaturePort = 11,
    kInstrumentLightsPort = 12,
    kCompassPort = 13,
    kAvionicsBusPort = 14,
};

inline constexpr std::array<SystemPortRow, 14> kSystemPortRows = {{
    {1, 1, SystemReading::every_cycle},
    {2, 1, SystemReading::every_cycle},
    {3, 1, SystemReading::every_cycle},
    {4, 1, SystemReading::every_cycle},
    {5, 1, SystemReading::every_cycle},
    {6, 1, SystemReading::every_cycle},
    {7, 1, SystemReading::every_cycle},
    {8, 1, SystemReading::every_cycle},
    {9, 1, SystemReading::every_cycle},
    {10, 1, SystemReading::on_demand},
    {13, 1, SystemReading::on_demand},
    {14, 1, SystemReading::every_cycle},
    {16, 1, SystemReading::every_cycle},
    {9, 2, SystemReading::every_cycle},
}};

// Row of SystemPort(number), 1..14.
constexpr const SystemPortRow& system_port(std::size_t number) {
    return kSystemPortRows[number - 1];
}

}  // namespace run
