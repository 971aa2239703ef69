#include "cluster/cluster_telegram.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace {

using Byte = std::pair<int, int>;  // number from 1, value

std::vector<Byte> differing(const std::string& telegram, char from) {
    std::vector<Byte> bytes;
    for (std::size_t at = 0; at < telegram.size(); ++at) {
        if (telegram[at] != from) {
            bytes.emplace_back(static_cast<int>(at) + 1, static_cast<unsigned char>(telegram[at]));
        }
    }
    return bytes;
}

std::string blank_telegram() {
    std::string telegram;
    cluster::begin_telegram(telegram, cluster::kTelegramNormal, cluster::kFillBlank);
    return telegram;
}

TEST(ClusterTelegram, every_needle_has_its_place) {
    const std::vector<int> places = {2, 4, 6, 22, 8, 12, 14, 16, 16, 18, 20, 10, 24, 26, 28, 30};
    for (int needle = 0; needle < 16; ++needle) {
        std::string telegram = blank_telegram();
        ASSERT_EQ(telegram.size(), 40U);
        cluster::put_needle(telegram, needle, 0x0A5B);
        const int at = places[static_cast<std::size_t>(needle)];
        EXPECT_EQ(differing(telegram, ' '), (std::vector<Byte>{{1, 'F'}, {at, 0x0A}, {at + 1, 0x5B}})) << needle;
    }
    std::string telegram = blank_telegram();
    cluster::put_needle(telegram, 0, -1);
    cluster::put_needle(telegram, 1, 4321);
    EXPECT_EQ(telegram.substr(1, 4), std::string("\x00\x00\x10\xE0", 4)) << "limited to 0 and 4320";
}

TEST(ClusterTelegram, a_display_shows_three_digits_and_its_point) {
    struct Case {
        const char* text;
        int first_byte;
        int second_byte;
    };
    const std::vector<Case> cases = {
        {"12.34", 75, 50},                      // 12.3
        {"123.45", 180, 50},                    // 123.
        {"00.00", 27, 17},                      // 00.0
        {"05.39", 75, 97},                      // 05.3
        {"99.99", 10 * 16 + 11, 10 * 16 + 10},  // 99.9, not rounded up
        {"100.00", 177, 1 * 16 + 2},            // 100.
        {"999.99", 186, 10 * 16 + 10},          // 999.
        {"1000.00", 186, 10 * 16 + 10},         // the most that it can show
        {"123456789.00", 186, 10 * 16 + 10},    // likewise
        {"-12.34", 27, 17},                     // below 0
        {"0", 27, 17},
        {"", 27, 17},
        {"nan", 27, 17},
        {"inf", 27, 17},
        {"12.", 27, 17},
        {"1.5", 27, 17},
    };
    const std::vector<int> places = {36, 34, 30, 32};
    for (const Case& one : cases) {
        for (int slot = 0; slot < 4; ++slot) {
            std::string telegram = blank_telegram();
            cluster::put_display(telegram, slot, one.text);
            const int at = places[static_cast<std::size_t>(slot)];
            EXPECT_EQ(differing(telegram, ' '),
                      (std::vector<Byte>{{1, 'F'}, {at, one.first_byte}, {at + 1, one.second_byte}}))
                << one.text << " on slot " << slot;
        }
    }
}

TEST(ClusterTelegram, the_last_three_bytes_tell_the_lights) {
    struct Case {
        run::ClusterState state;
        int lights;
        int flag;
    };
    const std::vector<Case> cases = {
        {{.ClusterLights = 0, .ClusterPower = 0}, 2, 0},
        {{.ClusterLights = 1, .ClusterPower = 0}, 3, 0},
        {{.ClusterLights = 0, .ClusterPower = 1}, 0, 0},
        {{.ClusterLights = 1, .ClusterPower = 1, .ClusterBrightness = 9 * 16, .ClusterBrightnessFlag = 1}, 145, 1},
        {{.ClusterLights = 1, .ClusterPower = 1, .ClusterBrightness = 240, .ClusterBrightnessFlag = 6}, 241, 6},
    };
    for (const Case& one : cases) {
        std::string telegram = blank_telegram();
        cluster::finish_telegram(telegram, one.state);
        EXPECT_EQ(
            differing(telegram.substr(37), '\0'),
            differing(std::string{static_cast<char>(one.lights), static_cast<char>(one.flag), static_cast<char>(170)},
                      '\0'));
        EXPECT_EQ(telegram.substr(1, 36), std::string(36, ' '));
    }
}

TEST(ClusterTelegram, a_position_is_four_times_the_whole_plate_position) {
    tables::Plate plate;  // 10 at 100, 20 at 351, 30 at 1000, more than a turn at 40
    plate.PlateValue = {1, 3, 10, 40, 10, 20, 30, 40};
    plate.PlatePosition = {1, 3, 100, 1500, 100, 351, 1000, 1500};
    struct Case {
        double value;
        int position;
        double value_after;
    };
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const std::vector<Case> cases = {
        {10, 400, 10},        {9, 400, 10},      {-kInfinity, 400, 10}, {15, 225 * 4, 15}, {20, 351 * 4, 20},
        {29.99, 3996, 29.99}, {30, 4000, 30},    {30.5, 4100, 30.5},    {35, 4320, 35},    {40, 4320, 40},
        {41, 4320, 40},       {1e300, 4320, 40}, {kInfinity, 4320, 40},
    };
    for (const Case& one : cases) {
        double value = one.value;
        EXPECT_EQ(cluster::cluster_position(plate, value), one.position) << one.value;
        EXPECT_EQ(value, one.value_after);
    }
    double no_number = std::nan("");
    EXPECT_EQ(cluster::cluster_position(plate, no_number), std::nullopt);
    plate.PlatePosition[2] = plate.PlatePosition[4] = -50;
    double lowest = 10;
    EXPECT_EQ(cluster::cluster_position(plate, lowest), 0);
    tables::Plate ends;  // no points between its ends
    ends.PlateValue[3] = 100;
    ends.PlatePosition[3] = 945;
    double middle = 50;
    EXPECT_EQ(cluster::cluster_position(ends, middle), 472 * 4);
}

TEST(ClusterTelegram, the_version_stands_at_the_end_of_a_reply) {
    const auto reply = [](int first, std::size_t length) {
        std::string bytes = "?-------------21";
        bytes.front() = static_cast<char>(first);
        return bytes.substr(0, length);
    };
    EXPECT_EQ(cluster::reply_version(reply(255, 16)), "21");
    EXPECT_EQ(cluster::reply_version(reply(255, 15)), "2");
    EXPECT_EQ(cluster::reply_version(reply(255, 8)), "");
    EXPECT_EQ(cluster::reply_version(reply(255, 7)), std::nullopt);
    EXPECT_EQ(cluster::reply_version(reply(254, 16)), std::nullopt);
    EXPECT_EQ(cluster::reply_version(""), std::nullopt);
}

}  // namespace
