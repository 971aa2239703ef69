#include "simlink/port_conversion.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>

#include "simlink/sim_offsets.h"
#include "support/bytes.h"
#include "support/failure.h"
#include "support/rounding.h"

namespace simlink {

namespace {

// The steps from an unsigned raw value to a signed one, as the simulator's data are meant: not two's complement.
constexpr int kByteSignStep = 255;
constexpr int kWordSignStep = 65535;
// -32768 is never sent.
constexpr float kIntegerLimit = 32767;
// The two upper bits of the sound selector exclude each other.
constexpr unsigned kSelectorUpperBits = 0xC0;

float converted(double raw, const tables::FunctionRow& function) {
    const double value =
        (raw + double{function.FunctionAdd}) * double{function.FunctionMultiplier} / double{function.FunctionDivider};
    return support::narrow_to_f32(value);
}

int signed_byte(std::uint8_t raw) {
    return raw > 127 ? raw - kByteSignStep : raw;
}

int unsigned_word(std::int16_t raw) {
    return raw < 0 ? raw + kWordSignStep : raw;
}

float masked_word(std::int16_t raw, const tables::FunctionRow& function) {
    const std::int32_t whole = support::round_to_i32(converted(raw, function));
    return static_cast<float>(whole & std::int32_t{function.FunctionMask});
}

std::uint8_t masked_byte(std::uint8_t last, float value, const tables::FunctionRow& function) {
    const auto mask = static_cast<unsigned>(function.FunctionMask);
    unsigned bits = last;
    if (value == 0.0F) {
        bits &= ~mask;
    } else {
        if (function.FunctionOffset1 == std::int32_t{kOffsetSoundSelector} && (mask & kSelectorUpperBits) != 0) {
            bits &= ~kSelectorUpperBits;
        }
        bits |= mask;
    }
    return static_cast<std::uint8_t>(bits & 0xFFU);
}

}  // namespace

ConversionOutcome engineering_value(const SimPort& port, const tables::FunctionRow& function, float& value) {
    const bool masked = function.FunctionMask != 0;
    switch (function.FunctionDataType) {
        case tables::kByte:
            value = masked ? static_cast<float>(port.ByteValue) : converted(signed_byte(port.ByteValue), function);
            return ConversionOutcome::value_given;
        case tables::kInteger:
            value = converted(port.IntValue, function);
            return ConversionOutcome::value_given;
        case tables::kUnsignedInteger:
            value = masked ? masked_word(port.IntValue, function) : converted(unsigned_word(port.IntValue), function);
            return ConversionOutcome::value_given;
        case tables::kLong:
            value = converted(port.LongValue, function);
            return ConversionOutcome::value_given;
        case tables::kDouble:
            value = converted(support::narrow_to_f32(port.DoubleValue), function);
            return ConversionOutcome::value_given;
        case tables::kBcd:
            value = converted(value_of_bcd(static_cast<std::uint16_t>(port.IntValue)), function);
            return ConversionOutcome::value_given;
        default:
            return ConversionOutcome::no_value;
    }
}

ConversionOutcome raw_value(const SimPort& port, const tables::FunctionRow& function, float& value) {
    switch (function.FunctionDataType) {
        case tables::kByte:
            value = static_cast<float>(signed_byte(port.ByteValue));
            return ConversionOutcome::value_given;
        case tables::kInteger:
            value = static_cast<float>(port.IntValue);
            return ConversionOutcome::value_given;
        case tables::kUnsignedInteger:
            value = static_cast<float>(unsigned_word(port.IntValue));
            return ConversionOutcome::value_given;
        case tables::kLong:
            value = static_cast<float>(port.LongValue);
            return ConversionOutcome::value_given;
        case tables::kDouble:
            value = support::narrow_to_f32(port.DoubleValue);
            return ConversionOutcome::value_given;
        case tables::kBcd:
            value = static_cast<float>(value_of_bcd(static_cast<std::uint16_t>(port.IntValue)));
            return ConversionOutcome::value_given;
        default:
            return ConversionOutcome::no_value;
    }
}

float scaled_back(float value, const tables::FunctionRow& function) {
    return support::narrow_to_f32(double{value} * double{function.FunctionDivider} /
                                      double{function.FunctionMultiplier} -
                                  double{function.FunctionAdd});
}

void store_in_slot(float value, const tables::FunctionRow& function, SimPort& port) {
    switch (function.FunctionDataType) {
        case tables::kByte:
            port.ByteValue =
                function.FunctionMask != 0 ? masked_byte(port.ByteValue, value, function) : support::round_to_u8(value);
            break;
        case tables::kInteger:
            port.IntValue = support::round_to_i16(std::clamp(value, -kIntegerLimit, kIntegerLimit));
            break;
        case tables::kUnsignedInteger:
            port.IntValue = support::round_to_i16(value);
            break;
        case tables::kLong:
            port.LongValue = support::round_to_i32(value);
            break;
        case tables::kDouble:
            port.DoubleValue = double{value};
            break;
        case tables::kBcd:
            port.IntValue = support::as_i16(bcd_of_value(value));
            break;
        default:
            break;
    }
}

std::uint16_t bcd_of_text(std::string_view digits) {
    constexpr std::size_t kTextDigits = 5;
    unsigned bcd = 0;
    for (std::size_t place = 1; place < kTextDigits; ++place) {
        // Counted from a text that is filled up to five characters with zeros in front.
        const std::size_t missing = digits.size() < kTextDigits ? kTextDigits - digits.size() : 0;
        const unsigned digit = place < missing ? 0U : support::byte_at(digits, place - missing) & 15U;
        bcd = bcd << 4 | digit;
    }
    return static_cast<std::uint16_t>(bcd);
}

std::uint16_t bcd_of_value(float value) {
    if (!std::isfinite(value)) {
        throw support::Failure("Overflow");
    }
    constexpr std::ptrdiff_t kTextDigits = 5;
    std::array<char, 64> text;
    text.fill('0');
    const double whole = support::round_half_even(double{value});
    char* const digits = text.data() + kTextDigits + 1;
    const char* const end =
        std::to_chars(digits, text.data() + text.size(), std::fabs(whole), std::chars_format::fixed, 0).ptr;
    // The zeros in front fill up to five digits; a sign is then a character of the text like any other.
    char* begin = digits - std::max<std::ptrdiff_t>(0, kTextDigits - (end - digits));
    if (whole < 0) {
        *--begin = '-';
    }
    return bcd_of_text({begin, static_cast<std::size_t>(end - begin)});
}

int value_of_bcd(std::uint16_t bcd) {
    return (bcd >> 12) * 1000 + (bcd >> 8 & 15) * 100 + (bcd >> 4 & 15) * 10 + (bcd & 15);
}

}  // namespace simlink
