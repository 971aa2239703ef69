#include "simlink/port_conversion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "simlink/sim_offsets.h"
#include "support/bytes.h"
#include "support/failure.h"

namespace {

using simlink::SimPort;
using tables::FunctionRow;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

FunctionRow neutral(std::uint8_t data_type, int mask = 0) {
    FunctionRow function;
    function.FunctionDataType = data_type;
    function.FunctionMultiplier = 1;
    function.FunctionDivider = 1;
    function.FunctionMask = support::as_i16(static_cast<std::uint16_t>(mask));
    return function;
}

// Puts a raw value into the slot of a type.
SimPort holding(std::uint8_t data_type, double raw) {
    SimPort port;
    switch (data_type) {
        case tables::kByte:
            port.ByteValue = static_cast<std::uint8_t>(raw);
            break;
        case tables::kLong:
            port.LongValue = static_cast<std::int32_t>(raw);
            break;
        case tables::kDouble:
            port.DoubleValue = raw;
            break;
        default:
            port.IntValue = support::as_i16(static_cast<std::uint16_t>(static_cast<int>(raw) & 0xFFFF));
    }
    return port;
}

TEST(PortConversion, raw_slots_become_engineering_values_by_type_and_mask) {
    struct Case {
        std::uint8_t type;
        int mask;
        double raw;
        float value;      // with neutral scaling
        float raw_value;  // as the function test shows it
    };
    const Case cases[] = {
        {tables::kByte, 0, 127, 127, 127},
        {tables::kByte, 0, 128, -127, -127},
        {tables::kByte, 0, 255, 0, 0},
        {tables::kByte, 0x10, 255, 255, 0},
        {tables::kByte, 0x10, 0x0F, 0x0F, 0x0F},
        {tables::kInteger, 0, -32768, -32768, -32768},
        {tables::kInteger, 0x0F, 0x1234, 0x1234, 0x1234},
        {tables::kUnsignedInteger, 0, 32767, 32767, 32767},
        {tables::kUnsignedInteger, 0, 0xFFFF, 65534, 65534},
        {tables::kUnsignedInteger, 0, 0x8000, 32767, 32767},
        {tables::kUnsignedInteger, 0x00F0, 0x1234, 0x30, 0x1234},
        {tables::kUnsignedInteger, 0x8000, 0xFFFF, -32768, 65534},
        {tables::kLong, 0, -2147483648.0, -2147483648.0F, -2147483648.0F},
        {tables::kDouble, 0, 0.1, 0.1F, 0.1F},
        {tables::kBcd, 0, 0x1234, 1234, 1234},
        {tables::kBcd, 0, 0x9999, 9999, 9999},
        {tables::kBcd, 0, 0xFFFF, 16665, 16665},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("type " + std::to_string(c.type) + ", mask " + std::to_string(c.mask) + ", raw " +
                     std::to_string(c.raw));
        const FunctionRow function = neutral(c.type, c.mask);
        const SimPort port = holding(c.type, c.raw);
        float value = -1;
        float raw = -1;
        EXPECT_EQ(engineering_value(port, function, value), simlink::ConversionOutcome::value_given);
        EXPECT_EQ(raw_value(port, function, raw), simlink::ConversionOutcome::value_given);
        EXPECT_EQ(value, c.value);
        EXPECT_EQ(raw, c.raw_value);
    }
}

TEST(PortConversion, scaling_adds_then_multiplies_then_divides_in_64_bits) {
    FunctionRow function = neutral(tables::kLong);
    function.FunctionAdd = 100;
    function.FunctionMultiplier = 3;
    function.FunctionDivider = 4;
    float value = 0;
    engineering_value(holding(tables::kLong, 2000000000), function, value);
    EXPECT_EQ(value, static_cast<float>(2000000100.0 * 3 / 4));
    EXPECT_EQ(simlink::scaled_back(150, function), 100.0F);

    function.FunctionMultiplier = 0;
    function.FunctionDivider = 0;
    engineering_value(holding(tables::kLong, 5), function, value);
    EXPECT_TRUE(std::isnan(value));
    function.FunctionMultiplier = 1;
    engineering_value(holding(tables::kLong, 5), function, value);
    EXPECT_EQ(value, kInfinity);
    function.FunctionMultiplier = 0;
    function.FunctionDivider = 1;
    EXPECT_EQ(simlink::scaled_back(5, function), kInfinity);
}

TEST(PortConversion, values_that_do_not_fit_fail_and_leave_the_value_unchanged) {
    FunctionRow huge = neutral(tables::kLong);
    huge.FunctionMultiplier = 1e38F;
    FunctionRow masked = neutral(tables::kUnsignedInteger, 0xFF);
    masked.FunctionMultiplier = 1e9F;
    FunctionRow masked_nan = neutral(tables::kUnsignedInteger, 0xFF);
    masked_nan.FunctionMultiplier = 0;
    masked_nan.FunctionDivider = 0;
    const std::pair<SimPort, FunctionRow> cases[] = {
        {holding(tables::kDouble, 1e39), neutral(tables::kDouble)},
        {holding(tables::kLong, 1000), huge},
        {holding(tables::kUnsignedInteger, 1000), masked},
        {holding(tables::kUnsignedInteger, 1000), masked_nan},
    };
    for (const auto& [port, function] : cases) {
        float value = 77;
        EXPECT_THROW(engineering_value(port, function, value), support::Failure);
        EXPECT_EQ(value, 77);
    }
    float value = 0;
    engineering_value(holding(tables::kDouble, std::numeric_limits<double>::quiet_NaN()), neutral(tables::kDouble),
                      value);
    EXPECT_TRUE(std::isnan(value)) << "what the simulator sends as not-a-number is no failure";
    for (const std::uint8_t type : {tables::kNotUsed, tables::DataType{200}}) {
        value = 5;
        EXPECT_EQ(engineering_value(SimPort{}, neutral(type), value), simlink::ConversionOutcome::no_value);
        EXPECT_EQ(value, 5);
    }
}

TEST(PortConversion, values_go_into_the_slot_of_their_type) {
    struct Case {
        std::uint8_t type;
        float value;
        std::optional<double> slot;  // nothing = a failure
    };
    const Case cases[] = {
        {tables::kByte, 0, 0},
        {tables::kByte, 254.5F, 254},
        {tables::kByte, 255.5F, std::nullopt},
        {tables::kByte, 1.5F, 2},
        {tables::kByte, -0.5F, 0},
        {tables::kByte, -1, std::nullopt},
        {tables::kInteger, 40000, 32767},
        {tables::kInteger, -40000, -32767},
        {tables::kInteger, 2.5F, 2},
        {tables::kInteger, kInfinity, 32767},
        {tables::kInteger, kNaN, std::nullopt},
        {tables::kUnsignedInteger, 32767, 32767},
        {tables::kUnsignedInteger, 40000, std::nullopt},
        {tables::kUnsignedInteger, -32768, -32768},
        {tables::kLong, -2147483648.0F, -2147483648.0},
        {tables::kLong, 2147483648.0F, std::nullopt},
        {tables::kLong, kNaN, std::nullopt},
        {tables::kDouble, kInfinity, std::numeric_limits<double>::infinity()},
        {tables::kBcd, 1234, 0x1234},
        {tables::kBcd, 11230, 0x1230},
        {tables::kBcd, 118350, 0x1835},
        {tables::kBcd, 0.5F, 0},
        {tables::kBcd, 1.5F, 2},
        {tables::kBcd, -1234, 0x0123},
        {tables::kBcd, -40000, 0x4000},
        {tables::kBcd, 1e30F, 0x0000},
        {tables::kBcd, kNaN, std::nullopt},
        {tables::kBcd, -kInfinity, std::nullopt},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE("type " + std::to_string(c.type) + ", value " + std::to_string(c.value));
        SimPort port = holding(c.type, 7);
        const FunctionRow function = neutral(c.type);
        if (c.slot) {
            store_in_slot(c.value, function, port);
        } else {
            EXPECT_THROW(store_in_slot(c.value, function, port), support::Failure);
        }
        const SimPort expected = holding(c.type, c.slot.value_or(7));
        EXPECT_EQ(port.ByteValue, expected.ByteValue);
        EXPECT_EQ(port.IntValue, expected.IntValue);
        EXPECT_EQ(port.LongValue, expected.LongValue);
        EXPECT_EQ(port.DoubleValue, expected.DoubleValue);
    }
}

TEST(PortConversion, a_masked_byte_changes_its_bits_alone) {
    struct Case {
        std::int32_t offset;
        int mask;
        int last;
        float value;
        int slot;
    };
    const auto selector = static_cast<std::int32_t>(simlink::kOffsetSoundSelector);
    const Case cases[] = {
        {0x300, 0x10, 0xFF, 0, 0xEF},    {0x300, 0x10, 0x00, 1, 0x10},    {0x300, 0x11, 0x02, -3.5F, 0x13},
        {0x300, 0x10, 0x00, kNaN, 0x10}, {0x300, 0x1FF, 0x00, 1, 0xFF},   {0x300, 0xC0, 0x40, 1, 0xC0},
        {selector, 0x40, 0x81, 1, 0x41}, {selector, 0x80, 0x41, 1, 0x81}, {selector, 0x80, 0xC1, 0, 0x41},
        {selector, 0x01, 0xC0, 1, 0xC1},
    };
    for (const Case& c : cases) {
        FunctionRow function = neutral(tables::kByte, c.mask);
        function.FunctionOffset1 = c.offset;
        SimPort port = holding(tables::kByte, c.last);
        store_in_slot(c.value, function, port);
        EXPECT_EQ(port.ByteValue, c.slot) << "mask " << c.mask << ", last " << c.last << ", value " << c.value;
    }
}

TEST(PortConversion, digits_of_a_frequency_text_become_bcd) {
    EXPECT_EQ(simlink::bcd_of_text("11835"), 0x1835);
    EXPECT_EQ(simlink::bcd_of_text("118355"), 0x1835);
    EXPECT_EQ(simlink::bcd_of_text("835"), 0x0835);
    EXPECT_EQ(simlink::bcd_of_text(""), 0);
}

}  // namespace
