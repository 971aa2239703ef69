#pragma once

#include <optional>

#include "tables/core_tables.h"

namespace run {

inline constexpr int kHighestNeedlePosition = 1079;

// The plate of that number, null when there is no such plate.
const tables::Plate* find_plate(const tables::CoreTables& tables, int plate_number);

// The needle position of a value on a plate, not limited to 0..1079. `value` is clamped in place to the plate's minimum
// and maximum; at and beyond them the result is exactly their position. Nothing when the value is not a number, or the
// plate's points lead to no number: the needle then stays where it is.
// NOTE: a plate without any calibration point runs straight from its minimum to its maximum.
std::optional<double> plate_position(const tables::Plate& plate, double& value);

}  // namespace run
