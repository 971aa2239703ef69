#pragma once

#include <cstdint>
#include <string_view>

#include "simlink/sim_port.h"
#include "tables/core_tables.h"

// The way between raw slots and engineering values. Scaling is done in 64-bit floats and stored as 32-bit ones; a
// multiplier or divider of 0 gives infinity or not-a-number, and only a later rounding fails (Failure "Overflow").
namespace simlink {

enum class ConversionOutcome { value_given, no_value };

// The engineering value of a port, by data type and mask of its function (macros apart). Types that are not transferred
// give no value. Throws a Failure, with the value untouched, when it fits no 32-bit float, or for a masked Unsigned
// Int. no 32-bit integer.
ConversionOutcome engineering_value(const SimPort& port, const tables::FunctionRow& function, float& value);

// The same without add, multiply and divide, and without regard to the mask.
ConversionOutcome raw_value(const SimPort& port, const tables::FunctionRow& function, float& value);

// Takes an engineering value back to what the simulator holds: the inverse of the scaling. Throws a Failure.
float scaled_back(float value, const tables::FunctionRow& function);

// Stores a value that has been scaled back in the slot of the function's data type. Throws a Failure, with the slot
// untouched, when a rounding does not fit; an Integer is held to -32767..32767 first and fits but for not-a-number.
void store_in_slot(float value, const tables::FunctionRow& function, SimPort& port);

// The second to fifth characters as four BCD digits, the second in the highest nibble: "11835" gives 0x1835. Shorter
// texts are taken as if zeros stood in front.
std::uint16_t bcd_of_text(std::string_view digits);

// A value as decimal text of at least five digits and then as bcd_of_text takes it, so of a number of five digits the
// first is dropped. Throws a Failure for infinity and not-a-number.
std::uint16_t bcd_of_value(float value);

// Four BCD digits read as a decimal number.
int value_of_bcd(std::uint16_t bcd);

}  // namespace simlink
