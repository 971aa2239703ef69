#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/failure.h"
#include "support/number_format.h"
#include "support/rounding.h"
#include "support/steps.h"

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(Rounding, goes_to_the_nearest_and_a_half_to_the_even_neighbour) {
    const struct {
        double value;
        int expected;
    } cases[] = {{0.5, 0},   {1.5, 2},    {2.5, 2},           {-0.5, 0},        {-1.5, -2},
                 {-2.5, -2}, {2.4999, 2}, {-32768.5, -32768}, {32767.4, 32767}, {0.49999999999999994, 0}};
    for (const auto& item : cases) {
        EXPECT_EQ(support::round_to_i16(item.value), item.expected) << item.value;
    }
    EXPECT_EQ(support::round_to_u8(254.5), 254);
    EXPECT_EQ(support::round_to_i32(-2147483648.5), std::numeric_limits<std::int32_t>::min());
}

TEST(Rounding, fails_for_what_does_not_fit) {
    for (const double value : {32767.5, -32769.0, kNan, kInfinity, -kInfinity, 1e300}) {
        EXPECT_THROW(support::round_to_i16(value), support::Failure) << value;
    }
    for (const double value : {-1.0, 256.0, 255.5, kNan}) {
        EXPECT_THROW(support::round_to_u8(value), support::Failure) << value;
    }
    for (const double value : {2147483648.0, -2147483649.0, kInfinity}) {
        EXPECT_THROW(support::round_to_i32(value), support::Failure) << value;
    }
}

TEST(Rounding, narrowing_fails_only_for_finite_values_out_of_range) {
    EXPECT_THROW(support::narrow_to_f32(1e39), support::Failure);
    EXPECT_THROW(support::narrow_to_f32(-1e39), support::Failure);
    EXPECT_TRUE(std::isinf(support::narrow_to_f32(kInfinity)));
    EXPECT_TRUE(std::isnan(support::narrow_to_f32(kNan)));
    EXPECT_EQ(support::narrow_to_f32(0.1), 0.1F);
}

TEST(NumberFormat, follows_its_picture) {
    const struct {
        double value;
        const char* picture;
        const char* expected;
    } cases[] = {
        {3.14159, "000.00", "003.14"},  {-3.14159, "000.00", "-003.14"},
        {1234.5, "000.00", "1234.50"},  {0, "#####.0", ".0"},
        {-0.04, "#####.0", ".0"},       {1500, "#####.0", "1500.0"},
        {87.25, "###.#0", "87.25"},     {87.999, "###.#0", "88.00"},
        {87.5, "###.##", "87.5"},       {0, "####0", "0"},
        {9.5, "####0", "10"},           {29.92, "##0.00", "29.92"},
        {1013.2, "0000", "1013"},       {28.5, "##.00", "28.50"},
        {0.5, "##.00", ".50"},          {kNan, "000.00", "nan"},
        {-kInfinity, "000.00", "-inf"}, {1e22, "0000", "10000000000000000000000"},
        {0.05, "#0.0", "0.1"},          {-0.001, "000.00", "000.00"},
        {5.0, "###.##", "5."},
    };
    for (const auto& item : cases) {
        EXPECT_EQ(support::format_number(item.value, item.picture), item.expected) << item.value << " " << item.picture;
    }
}

TEST(NumberFormat, shortest_texts_read_back_the_same) {
    EXPECT_EQ(support::shortest(0.1F), "0.1");
    EXPECT_EQ(support::shortest(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(support::shortest(16383.0), "16383");
}

TEST(Steps, a_failed_step_is_skipped_or_ends_the_sequence) {
    int steps_done = 0;
    bool go_on = true;
    std::string asked;
    const auto run = [&] {
        support::Steps steps([&](const support::Failure& failure) {
            asked += failure.description();
            return go_on;
        });
        steps.attempt([&] { ++steps_done; });
        steps.attempt([]() -> void { throw support::Failure("broken"); });
        steps.attempt([&] { ++steps_done; });
    };
    run();
    EXPECT_EQ(steps_done, 2);
    EXPECT_EQ(asked, "broken");
    go_on = false;
    EXPECT_THROW(run(), support::StepsAbandoned);
    EXPECT_EQ(steps_done, 3);
}

}  // namespace
