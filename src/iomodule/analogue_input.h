#pragma once

#include <cstdint>

#include "tables/core_tables.h"

namespace iomodule {

// Whether an input has moved by more than the row's deadband.
bool beyond_deadband(const tables::IomRow& row, int old_value, int new_value);

// What an analogue input at a raw value (0..1023, limited to the row's own range) writes to its function. Throws a
// Failure when the row's limits lead to no number.
float analogue_output(const tables::IomRow& row, const tables::FunctionRow& function, int raw_value);

}  // namespace iomodule
