#include "simlink/keystrokes.h"

#include <gtest/gtest.h>

#include "simlink/ipc_texts.h"
#include "simlink/sim_time.h"

namespace {

TEST(Keystrokes, flags_go_into_the_parameter_of_the_key_press_control) {
    EXPECT_EQ(simlink::key_press_parameter(0x8045), 0xA45U);
    EXPECT_EQ(simlink::key_press_parameter(0x4045), 0x945U);
    EXPECT_EQ(simlink::key_press_parameter(0xC045), 0xB45U);
    EXPECT_EQ(simlink::key_press_parameter(0x3F45), 0x845U);
}

TEST(Keystrokes, characters_that_mean_something_to_send_keys_stand_in_braces) {
    EXPECT_EQ(simlink::send_keys_text('A'), "A");
    EXPECT_EQ(simlink::send_keys_text(0x8000 | 'A'), "^A");
    EXPECT_EQ(simlink::send_keys_text(0xC000 | '+'), "^+{+}");
    for (const char character : std::string("}{+%^)([]~")) {
        EXPECT_EQ(simlink::send_keys_text(static_cast<std::uint16_t>(character)), std::string("{") + character + "}");
    }
}

TEST(Keystrokes, key_names_are_known_for_listed_codes_alone) {
    const std::pair<int, const char*> names[] = {
        {112, "F1"},
        {127, "F16"},
        {65, "A"},
        {90, "Z"},
        {48, "0"},
        {57, "9"},
        {96, "Numpad0"},
        {105, "Numpad9"},
        {32, " Space"},
        {33, " PgeUp"},
        {34, "PgeDwn"},
        {3, "Cancel"},
        {45, "Insert"},
        {108, "Separator"},
        {109, "Subtract"},
        {111, "Divide"},
        {221, "Clse Bracket"},
        {222, "Quote"},
        {16, ""},
        {17, ""},
        {110, ""},
        {128, ""},
        {0, ""},
        {0x8045, ""},
        {-1, ""},
    };
    for (const auto& [code, name] : names) {
        EXPECT_EQ(simlink::key_name(code), name) << code;
    }
}

TEST(SimTime, seconds_above_65535_go_as_65535_minus_the_sum) {
    EXPECT_EQ(simlink::seconds_for_clock(18, 12, 15), 65535);
    EXPECT_EQ(simlink::seconds_for_clock(18, 12, 16), -1);
    EXPECT_EQ(simlink::seconds_for_clock(23, 59, 59), 65535 - 86399);
    EXPECT_EQ(simlink::seconds_for_clock(255, 255, 255), 65535 - (255 * 3600 + 255 * 60 + 255));
}

TEST(SimTime, days_of_the_year_run_on_into_later_months) {
    struct Case {
        int year, days, expected_year, month, day;
    };
    const Case cases[] = {
        {2023, 1, 2023, 1, 1},          {2023, 0, 2022, 12, 31},       {2024, 60, 2024, 2, 29}, {2023, 60, 2023, 3, 1},
        {2023, 365, 2023, 12, 31},      {2023, 366, 2024, 1, 1},       {1900, 60, 1900, 3, 1},  {0, 60, 0, 2, 29},
        {-32768, 32767, -32679, 9, 17}, {32767, -32769, 32677, 4, 12},
    };
    for (const Case& c : cases) {
        const platform::DateTime date = simlink::date_of_year(c.year, c.days);
        EXPECT_EQ(date.year, c.expected_year) << c.year << " + " << c.days;
        EXPECT_EQ(date.month, c.month) << c.year << " + " << c.days;
        EXPECT_EQ(date.day, c.day) << c.year << " + " << c.days;
    }
}

TEST(IpcTexts, version_words_read_as_four_digits_and_a_letter) {
    EXPECT_EQ(simlink::version_text(0x49740000), "4.974");
    EXPECT_EQ(simlink::version_text(0x49740001), "4.974a");
    EXPECT_EQ(simlink::version_text(0x49740002), "4.974b");
    EXPECT_EQ(simlink::version_text(0x4A740000), "4.:74");
    EXPECT_EQ(simlink::version_text(0x49740100), "4.974`");
    EXPECT_EQ(simlink::version_text(0xFFFFFFFF).size(), 6U);
}

TEST(IpcTexts, names_and_results_outside_their_tables_do_not_stop_the_program) {
    EXPECT_EQ(simlink::sim_name(simlink::SimNames, 8), "FSX");
    EXPECT_EQ(simlink::sim_name(simlink::SimNames, 13), "PREP3D-V4+");
    EXPECT_EQ(simlink::sim_name(simlink::kSimNamesAtRetry, 13), "Unknown");
    EXPECT_EQ(simlink::sim_name(simlink::SimNames, 14), "Unknown");
    EXPECT_EQ(simlink::sim_name(simlink::SimNames, 0xFFFF), "Unknown");
    EXPECT_EQ(simlink::result_text(15), "Read or Write request cannot be added, memory for Process is full");
    EXPECT_EQ(simlink::result_text(16), "");
    EXPECT_EQ(simlink::result_text(-1), "");
}

}  // namespace
