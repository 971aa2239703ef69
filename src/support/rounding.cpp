#include "support/rounding.h"

#include <cmath>
#include <limits>

#include "support/failure.h"

namespace support {

namespace {

template <typename Integer>
Integer round_to(double value) {
    const double rounded = round_half_even(value);
    // Written so that not-a-number fails too.
    if (!(rounded >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
          rounded <= static_cast<double>(std::numeric_limits<Integer>::max()))) {
        throw Failure("Overflow");
    }
    return static_cast<Integer>(rounded);
}

}  // namespace

double round_half_even(double value) {
    const double below = std::floor(value);
    const double fraction = value - below;
    if (fraction < 0.5) {
        return below;
    }
    if (fraction > 0.5) {
        return below + 1.0;
    }
    if (fraction == 0.5) {
        return std::fmod(below, 2.0) == 0.0 ? below : below + 1.0;
    }
    return value;  // infinity and not-a-number
}

std::int16_t round_to_i16(double value) {
    return round_to<std::int16_t>(value);
}

std::int32_t round_to_i32(double value) {
    return round_to<std::int32_t>(value);
}

std::uint8_t round_to_u8(double value) {
    return round_to<std::uint8_t>(value);
}

float narrow_to_f32(double value) {
    const float narrowed = static_cast<float>(value);
    if (std::isinf(narrowed) && !std::isinf(value)) {
        throw Failure("Overflow");
    }
    return narrowed;
}

}  // namespace support
