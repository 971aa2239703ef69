#include "yoke/yoke_telegram.h"

#include <gtest/gtest.h>

namespace {

using yoke::Axis;
using yoke::YokeCommand;

TEST(YokeTelegram, commands_as_bytes) {
    std::string bytes;
    yoke::append_yoke_command(bytes, {15, 11, {512, 1150, 0, 127}});
    EXPECT_EQ(bytes, std::string("\x00\x0F\x8B\x80\x84\xFE\x88\x80\x80\xFF\x80\xFF\xFF", 13));
    bytes.clear();
    yoke::append_yoke_command(bytes, {15, 10, {16383, 16384, -1, 128}});
    EXPECT_EQ(bytes, std::string("\x00\x0F\x8A\xFF\xFF\xFF\xFF\xFF\xFF\x80\x81\xFF\xFF", 13)) << "what does not fit";
    EXPECT_EQ(yoke::decode_yoke_command(std::string_view(bytes).substr(0, 12)),
              (YokeCommand{15, 10, {16383, 16383, 16383, 128}}));
    for (const std::size_t at : {0U, 2U, 7U, 10U, 11U}) {
        std::string spoilt = bytes.substr(0, 12);
        spoilt[at] = at == 0 ? '\x01' : '\x7F';
        EXPECT_FALSE(yoke::decode_yoke_command(spoilt)) << at;
    }
    EXPECT_FALSE(yoke::decode_yoke_command(bytes));
}

TEST(YokeTelegram, the_status_is_read_by_its_bytes) {
    std::string status("......\x01\xFEP\x03\xFFS\x80\x05.\x01\x02\x80\x00......", 25);
    status[3] = 3;
    ASSERT_TRUE(yoke::is_yoke_status(status));
    EXPECT_EQ(yoke::yoke_type(status), 3);
    EXPECT_EQ(yoke::raw_position(status, Axis::ailerons), 510);
    EXPECT_EQ(yoke::raw_position(status, Axis::elevator), 1023);
    EXPECT_EQ(yoke::measured_force(status, Axis::ailerons), 258);
    EXPECT_EQ(yoke::measured_force(status, Axis::elevator), -32767);
    EXPECT_EQ(yoke::closed_switches(status), 0x8005);
    for (const std::size_t at : {8U, 11U}) {
        std::string spoilt = status;
        spoilt[at] = 'X';
        EXPECT_FALSE(yoke::is_yoke_status(spoilt));
    }
    EXPECT_FALSE(yoke::is_yoke_status(status + "."));
    for (const auto& [word, force] : std::vector<std::pair<int, int>>{
             {0, 0}, {511, 511}, {32767, 32767}, {0x8000, -32767}, {0xFFFF, 0}, {0xFFFE, -1}, {0xFE00, -511}}) {
        EXPECT_EQ(yoke::force_of_word(word), force) << word;
    }
}

TEST(YokeTelegram, other_types_have_six_switches_that_are_closed_when_clear) {
    std::string status(25, '\0');
    status[3] = 2;
    EXPECT_EQ(yoke::closed_switches(status), 0x3F);
    status[12] = static_cast<char>(255 - 8);
    status[13] = static_cast<char>(255 - 16);
    EXPECT_EQ(yoke::closed_switches(status), 1 << 2 | 1 << 5);
    status[12] = static_cast<char>(255);
    status[13] = static_cast<char>(254);
    EXPECT_EQ(yoke::closed_switches(status), 1 << 4);
}

}  // namespace
