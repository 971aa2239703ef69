#pragma once

#include "tables/core_tables.h"

namespace iomodule {

// IomKeyOffOn of a LED row: the conditions for on, any combination; one that holds is enough.
inline constexpr unsigned kLedOnAtMinimum = 1;
inline constexpr unsigned kLedOnAtMaximum = 2;
inline constexpr unsigned kLedOnAtCrossover = 4;
inline constexpr unsigned kLedOnFreeValue = 8;

// IomKeyOnOff of a LED row: what the module is told of its master switches.
inline constexpr unsigned kMaster1 = 1;
inline constexpr unsigned kMaster2 = 2;

// IomMode of a LED row.
inline constexpr int kOutInvert = 1;

// What a LED's conditions look at: the simulator's value itself or, for a function with a mask, 1 where any bit of the
// mask is set and 0 where none is. Throws a Failure when a value that is to be masked is no whole number of 32 bits.
float led_value(const tables::FunctionRow& function, float value);

// The state of a LED, 0 or 1, at that value.
int led_state(const tables::IomRow& row, const tables::FunctionRow& function, float value);

}  // namespace iomodule
