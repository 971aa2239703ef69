// The simulated altimeter, attitude and heading indicator, VOR, ADF and radio-magnetic indicator.

#include <gtest/gtest.h>

#include "bench/devices/adf_indicator.h"
#include "bench/devices/altimeter.h"
#include "bench/devices/attitude_indicator.h"
#include "bench/devices/heading_indicator.h"
#include "bench/devices/radio_magnetic_indicator.h"
#include "bench/devices/vor_indicators.h"
#include "platform/manual/manual_loop.h"

namespace bench {
namespace {

using namespace std::chrono_literals;

int byte_of(Device& device, int number) {
    return static_cast<unsigned char>(device.report(1).view()[static_cast<std::size_t>(number - 1)]);
}
int word_of(Device& device, int number) {
    const ReportBytes report = device.report(1);
    return bus::GaugeReport(report.view()).word(number);
}

struct NavigationInstruments : testing::Test {
    platform::manual::ManualLoop loop;
};

TEST_F(NavigationInstruments, an_altimeter_moves_at_its_speed_and_its_knob_sets_the_window_or_the_simulator) {
    Altimeter altimeter(loop, {.type = 101, .model = 2});
    altimeter.take({4, 6000});
    loop.advance(1s);
    EXPECT_NEAR(altimeter.altitude_feet(), 3000, 1);
    loop.advance(5s);
    EXPECT_EQ(altimeter.altitude_feet(), 6000);
    altimeter.take({4, -500});
    loop.advance(5s);
    EXPECT_EQ(altimeter.altitude_feet(), -500);

    altimeter.operate("pressure", 4);
    EXPECT_EQ(word_of(altimeter, 7), 1017);
    EXPECT_EQ(byte_of(altimeter, 12), 128);
    altimeter.take({5, 1 + 16});  // inches, via the simulator
    EXPECT_EQ(altimeter.pressure(), 29.92);
    EXPECT_EQ(byte_of(altimeter, 4), 1);
    altimeter.operate("pressure", 3);
    altimeter.operate("pressure", -1);
    EXPECT_EQ(word_of(altimeter, 7), 2992) << "the window waits for the simulator";
    altimeter.operate("pressure", 2);
    EXPECT_EQ(byte_of(altimeter, 12), 130) << "clicks since the last report";
    EXPECT_EQ(byte_of(altimeter, 12), 128);
}

TEST_F(NavigationInstruments, an_attitude_indicator_turns_the_simulators_signs_into_the_pilots) {
    struct Case {
        int model, bank, pitch;
        double bank_degrees, pitch_degrees;
    };
    for (const Case& one : {Case{1, 2160, 600, 0, 0}, Case{1, 2520, 900, -30, -11.25}, Case{2, 400, 0, 30, 22.5},
                            Case{3, 1920 + 640, 640, -60, -22.5}}) {
        AttitudeIndicator indicator(loop, {.type = 103, .model = one.model});
        indicator.take({4, one.bank});
        indicator.take({5, one.pitch});
        loop.advance(5s);
        EXPECT_DOUBLE_EQ(indicator.bank_degrees(), one.bank_degrees);
        EXPECT_DOUBLE_EQ(indicator.pitch_degrees(), one.pitch_degrees);
        indicator.take({4, -1});
        EXPECT_EQ(indicator.bad_values(), 1);
    }
}

TEST_F(NavigationInstruments, a_card_turns_the_shorter_way_round) {
    HeadingIndicator indicator(loop, {.type = 105});
    indicator.take({5, 4200});  // 350 degrees
    loop.advance(50ms);
    EXPECT_GT(indicator.card_degrees(), 350) << "by way of north, not of south";
    loop.advance(2s);
    EXPECT_EQ(indicator.card_degrees(), 350);
    indicator.operate("heading", 15);
    EXPECT_EQ(indicator.card_degrees(), 5);
    indicator.operate("heading", -20);
    indicator.operate("bug", -90);
    EXPECT_EQ(indicator.drift_degrees(), -5);
    EXPECT_EQ(word_of(indicator, 7), 355 * 12);
    EXPECT_EQ(word_of(indicator, 10), 270 * 12);
}

TEST_F(NavigationInstruments, vor_needles_and_flags_show_their_words_and_the_disk_counts_against_the_course) {
    VorIndicator vor1(loop, {.type = 106});
    VorIndicator vor2(loop, {.type = 107});
    for (VorIndicator* vor : {&vor1, &vor2}) {
        vor->take({5, 772});
        vor->take({12, 1 + 2 + 4});
    }
    vor1.take({6, 172});
    vor2.take({6, 172});
    loop.advance(3s);
    EXPECT_EQ(vor1.loc(), 1);
    EXPECT_EQ(vor1.slope(), -1);
    EXPECT_EQ(vor1.to_from(), 2);
    EXPECT_TRUE(vor1.slope_valid());
    EXPECT_FALSE(vor2.slope_valid());
    EXPECT_EQ(vor2.unknown_commands(), 1) << "it has no glide slope";
    for (const auto& [clicks, raw] : std::vector<std::pair<int, int>>{{0, 1084}, {90, 813}, {-180, 271}, {91, 1081}}) {
        vor1.operate("obs", clicks);
        EXPECT_EQ(word_of(vor1, 7), raw);
    }
    AdfIndicator adf(loop, {.type = 108});
    adf.take({5, 3240});
    adf.operate("card", -90);
    loop.advance(3s);
    EXPECT_EQ(adf.needle_degrees(), 270);
    EXPECT_EQ(word_of(adf, 7), 271);
}

TEST_F(NavigationInstruments, rmi_needles_follow_their_switches_and_park_without_a_station) {
    RadioMagneticIndicator standard(loop, {.type = 130, .model = 1});
    RadioMagneticIndicator dual(loop, {.type = 130, .model = 3});
    EXPECT_TRUE(standard.parked(1));
    for (const int value : {1080 | 0x4000, 2160 | 0x2000, 3240}) {
        standard.take({9, value});
    }
    for (const int value : {5000, 1080 | 0x4000, 2160 | 0x2000, 3240 | 0x6000}) {
        dual.take({9, value});
    }
    loop.advance(5s);
    EXPECT_EQ(standard.needle_degrees(1), 90);
    EXPECT_EQ(standard.needle_degrees(2), 180);
    EXPECT_TRUE(dual.parked(1));
    EXPECT_EQ(dual.needle_degrees(2), 90);
    for (RadioMagneticIndicator* rmi : {&standard, &dual}) {
        rmi->operate("source1", 1);
        rmi->operate("source2", 1);
        EXPECT_EQ(byte_of(*rmi, 7), 1);
        EXPECT_FALSE(rmi->operate("source1", 2));
    }
    loop.advance(5s);
    EXPECT_EQ(standard.needle_degrees(1), 270);
    EXPECT_EQ(standard.needle_degrees(2), 270);
    EXPECT_EQ(dual.needle_degrees(1), 180);
    EXPECT_EQ(dual.needle_degrees(2), 270);
}

TEST_F(NavigationInstruments, rmi_distances_show_digits_dashes_and_nothing) {
    RadioMagneticIndicator rmi(loop, {.type = 130, .model = 1});
    EXPECT_EQ(rmi.dme_text(1), "") << "without DME";
    tables::GaugeRow row;
    row.GaugePlate1 = 1;
    RadioMagneticIndicator::set_up(rmi, row);
    rmi.take({15, 0x2123});
    rmi.take({15, 0x4100});
    EXPECT_EQ(rmi.dme_text(1), "12.3");
    EXPECT_EQ(rmi.dme_text(2), "100");
    rmi.take({15, 0x0AAA});
    EXPECT_EQ(rmi.dme_text(1), "---");
    rmi.operate("source2", 1);
    EXPECT_EQ(rmi.dme_text(2), "   ");
    rmi.take({13, 1024});
    EXPECT_EQ(rmi.dme_text(2), "100") << "shown in ADF mode too";
    rmi.take({bus::kCommandLights, 0});
    EXPECT_EQ(rmi.dme_text(2), "   ") << "without power";
}

}  // namespace
}  // namespace bench
