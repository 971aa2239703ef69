#pragma once

#include <span>

#include "bus/frames.h"
#include "run/run_context.h"

namespace run {

// Whether the lights of a device follow the main or the avionics bus.
enum class LightBus : std::uint8_t { main_bus, avionics };

// One device type: its code and what its family does for it. A function that is null does nothing. Index = list index
// of the gauge, 0..ActiveCount.
struct InstrumentRow {
    int code = 0;
    LightBus lights = LightBus::main_bus;
    // Letters that bytes 6 and 9 of its report must bear; 0 = not tested.
    char first_tag = 0;
    char second_tag = 0;
    // While the lists are built: opens the gauge's simulator ports, asks for a poll slot.
    void (*set_up)(RunContext& run, int Index) = nullptr;
    // At every run start, for every gauge: start values that make the first tick send.
    void (*start)(RunContext& run, int Index) = nullptr;
    // In every tick but light ticks.
    void (*tick)(RunContext& run, int Index) = nullptr;
    // The device may have lost what it showed (the bus was away): forget what was sent, so that all of it goes again.
    void (*forget)(RunContext& run, int Index) = nullptr;
    // With a well-formed report of this type whose tags fit, during a run, between ticks. Never sends on the bus.
    void (*report)(RunContext& run, const bus::GaugeReport& report) = nullptr;
};

// All device types that the program knows.
std::span<const InstrumentRow> instrument_rows();

// The row of a type code, null for a code that has none.
const InstrumentRow* find_instrument(int code);

// Reports of other type codes are shown to waiting panels only.
inline constexpr int kFirstReportingType = 101;
inline constexpr int kLastReportingType = 140;

// The row whose handler takes the report: its type code is 101..140, has a row, and the report bears the row's tags.
// Null otherwise.
const InstrumentRow* match_report(const bus::GaugeReport& report);

}  // namespace run
