#include "tables/config_items.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "support/failure.h"

namespace {

using tables::ItemReader;
using tables::ItemWriter;

// What the failure of `read` on `bytes` says; empty when it does not fail.
template <typename Field>
std::string failure_of(const std::string& bytes) {
    ItemReader reader(bytes);
    Field field{};
    try {
        reader.read(field);
    } catch (const support::Failure& failure) {
        return failure.description();
    }
    return {};
}

template <typename Field>
Field value_of(const std::string& bytes) {
    ItemReader reader(bytes);
    Field field{};
    reader.read(field);
    return field;
}

TEST(ItemReader, items_come_whatever_the_layout) {
    const std::string layouts[] = {
        "\"a, b\",12,\"\"\r\n3",           "\"a, b\"\r\n12\r\n\"\"\r\n3\r\n", "\"a, b\" , 12 ,\t\"\",3",
        "\n\n \"a, b\",\r\n12,\n\"\",\r3", "\xEF\xBB\xBF\"a, b\",12,,3",
    };
    for (const std::string& layout : layouts) {
        ItemReader reader(layout);
        std::int16_t twelve = 0;
        std::uint8_t three = 0;
        EXPECT_EQ(reader.text(), "a, b") << layout;
        reader.read(twelve);
        EXPECT_EQ(twelve, 12) << layout;
        EXPECT_EQ(reader.text(), "") << layout;
        reader.read(three);
        EXPECT_EQ(three, 3) << layout;
        EXPECT_THROW(reader.text(), support::Failure) << layout;
    }
}

TEST(ItemReader, a_text_runs_over_lines_to_its_closing_quote) {
    const std::string bytes("\"one\r\ntwo, 'x'\0\xFF\",7", 19);
    ItemReader reader(bytes);
    EXPECT_EQ(reader.text(), std::string("one\r\ntwo, 'x'\0\xFF", 15));
    EXPECT_EQ(reader.text(), "7");
}

TEST(ItemReader, numbers_come_in_the_ordinary_decimal_forms) {
    EXPECT_EQ(value_of<std::int32_t>("-2147483648"), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(value_of<std::int16_t>("+12"), 12);
    EXPECT_EQ(value_of<std::int16_t>("1.0"), 1);
    EXPECT_EQ(value_of<std::int16_t>("2.5"), 2);
    EXPECT_EQ(value_of<std::int16_t>("3.5"), 4);
    EXPECT_EQ(value_of<std::int32_t>("1E+5"), 100000);
    EXPECT_EQ(value_of<std::uint8_t>("255.4"), 255);
    EXPECT_EQ(value_of<float>(" .5 "), 0.5F);
    EXPECT_EQ(value_of<float>("-1.5e-3"), -1.5e-3F);
    EXPECT_EQ(value_of<double>("+1.E2"), 100.0);
    EXPECT_EQ(value_of<float>("1e-60"), 0.0F);
    EXPECT_EQ(value_of<double>("0." + std::string(400, '0') + "1"), 0.0);
    EXPECT_EQ(value_of<double>("-5e-99999999999999999999"), 0.0);
}

TEST(ItemReader, what_does_not_fit_its_field_is_a_failure_that_says_why) {
    struct Case {
        std::function<std::string(const std::string&)> read;
        std::string item;
        std::string why;
    };
    const std::string long_number(500, '9');
    const Case cases[] = {
        {failure_of<std::uint8_t>, "256", "0 to 255"},
        {failure_of<std::uint8_t>, "-1", "does not fit"},
        {failure_of<std::uint8_t>, "255.5", "does not fit"},
        {failure_of<std::int16_t>, "32768", "-32768 to 32767"},
        {failure_of<std::int32_t>, "2147483648", "does not fit"},
        {failure_of<std::int32_t>, long_number, "does not fit"},
        {failure_of<std::int16_t>, "1e400", "does not fit"},
        {failure_of<std::int16_t>, "nan", "does not fit"},
        {failure_of<float>, "1e39", "does not fit"},
        {failure_of<double>, long_number + "e-3", "does not fit"},
        {failure_of<double>, "1e99999999999999999999", "does not fit"},
        {failure_of<float>, "1.2.3", "is not a number"},
        {failure_of<float>, "12 13", "is not a number"},
        {failure_of<float>, "0x10", "is not a number"},
        {failure_of<std::int16_t>, "+-1", "is not a number"},
        {failure_of<std::int16_t>, "12a", "is not a number"},
        {failure_of<std::int16_t>, std::string("1\0", 2), "is not a number"},
        {failure_of<std::int16_t>, "\"12\"", "a number belongs here"},
        {failure_of<std::int16_t>, ",,", "a number is missing"},
        {failure_of<std::int16_t>, " \r\n ", "the file ends too early"},
        {failure_of<std::string>, "\"open\r\n", "closing quote"},
        {failure_of<std::string>, "\"5\" gauge\",1", "followed by something else"},
    };
    for (const Case& one : cases) {
        EXPECT_NE(one.read(one.item).find(one.why), std::string::npos)
            << one.item.substr(0, 30) << " gave: " << one.read(one.item);
        EXPECT_LT(one.read(one.item).size(), 200U);
    }
}

TEST(ItemReader, a_failure_names_line_section_and_row) {
    const std::string bytes = "1\r\n2\r\nx\r\n";
    ItemReader reader(bytes);
    reader.enter_section("Gauges");
    reader.enter_row(17);
    reader.skip(2);
    std::int16_t field = 5;
    try {
        reader.read(field);
        FAIL();
    } catch (const support::Failure& failure) {
        EXPECT_EQ(failure.description(), "Line 3, section \"Gauges\", row 17: \"x\" is not a number.");
    }
    EXPECT_EQ(field, 5);
}

TEST(ItemReader, everything_in_front_of_a_searched_item_is_skipped) {
    const std::string bytes = "junk \"quoted\" , 12\r\n\"a\"b\r\n\"Gen\neral\",General\r\n7";
    ItemReader reader(bytes);
    reader.skip_past("General");
    EXPECT_EQ(reader.text(), "7");
    ItemReader without(bytes);
    EXPECT_THROW(without.skip_past("Generals"), support::Failure);
}

TEST(ItemReader, a_count_is_no_more_than_the_file_can_hold) {
    const auto count_of = [](const std::string& bytes) { return ItemReader(bytes).count(4); };
    EXPECT_EQ(count_of("0"), 0);
    EXPECT_EQ(count_of("2\n1,2,3,4"), 2);
    for (const char* bytes : {"-1\n1,2,3,4", "3\n1,2,3,4", "32767\n", "99999\n"}) {
        EXPECT_THROW(count_of(bytes), support::Failure) << bytes;
    }
}

TEST(ItemWriter, lines_hold_items_that_read_back) {
    ItemWriter writer;
    writer.write("5\" gauge");
    writer.write(std::int32_t{-3});
    writer.write(0.1F);
    writer.end_line();
    writer.line(1e300);
    writer.line(std::uint8_t{200});
    EXPECT_EQ(writer.bytes(), "\"5' gauge\",-3,0.1\r\n1e+300\r\n200\r\n");
}

}  // namespace
