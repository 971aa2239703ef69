#pragma once

#include <cstdint>

namespace support {

// Rounding and narrowing of the whole program. All round to nearest with ties to even, and throw a Failure ("Overflow")
// when the result does not fit its type; infinity and not-a-number never fit.

std::int16_t round_to_i16(double value);
std::int32_t round_to_i32(double value);
std::uint8_t round_to_u8(double value);

// The nearest whole number as a float (ties to even), without a limit; not-a-number and infinity stay what they are.
double round_half_even(double value);

// Narrows to a 32-bit float. Throws a Failure ("Overflow") for a finite value beyond the range of a 32-bit float;
// infinity and not-a-number pass.
float narrow_to_f32(double value);

}  // namespace support
