#include <gtest/gtest.h>

#include "simhost/offset_map.h"
#include "simhost/radios.h"
#include "simhost/units.h"

namespace {

using simhost::AntennaState;
using simhost::Navigation;
using simhost::Radios;
using simhost::RunwayPlace;

// What the receivers make of a place, with needles that have come to rest.
Navigation receive(const Radios& radios, RunwayPlace place, double height_m, double true_heading_deg = 252.0) {
    AntennaState antenna;
    antenna.place = simhost::place_of(place);
    antenna.height_m = height_m;
    antenna.true_heading_deg = true_heading_deg;
    antenna.track_deg = true_heading_deg;
    antenna.ground_speed_mps = 50.0;
    antenna.powered = true;
    Navigation navigation;
    for (int i = 0; i < 1000; ++i) {
        navigation.step(radios, antenna, 0.02);
    }
    return navigation;
}

Radios tuned_to_the_landing_system() {
    Radios radios;
    radios.nav1_active = 0x1110;
    return radios;
}

TEST(NavigationTest, localizer_and_slope_needles_point_to_where_the_pilot_must_fly) {
    struct Case {
        const char* what;
        RunwayPlace place;
        double height_m;
        int needle;  // sign: -1 fly left, 1 fly right
        int slope;   // sign: -1 fly up, 1 fly down
        int to_from;
    };
    const double on_slope_m =
        (5000.0 + simhost::kGlidePathOriginM) * std::tan(simhost::radians(simhost::kGlidePathDeg));
    const Case cases[] = {
        {"on the beam and the slope", {-5000, 0}, on_slope_m, 0, 0, 1},
        {"left of the beam", {-5000, -100}, on_slope_m, 1, 0, 1},
        {"right of the beam", {-5000, 100}, on_slope_m, -1, 0, 1},
        {"below the slope", {-5000, 0}, on_slope_m - 40, 0, -1, 1},
        {"above the slope", {-5000, 0}, on_slope_m + 40, 0, 1, 1},
        {"beyond the station", {3000, 0}, 200, 0, 0, 2},
    };
    const Radios radios = tuned_to_the_landing_system();
    for (const Case& c : cases) {
        const Navigation navigation = receive(radios, c.place, c.height_m);
        const auto sign = [](double value) { return value > 3 ? 1 : value < -3 ? -1 : 0; };
        EXPECT_EQ(sign(navigation.nav1.needle), c.needle) << c.what;
        EXPECT_EQ(sign(navigation.nav1.slope_needle), c.slope) << c.what;
        EXPECT_EQ(navigation.nav1.to_from, c.to_from) << c.what;
        EXPECT_TRUE(navigation.nav1.localizer) << c.what;
    }
    EXPECT_NEAR(receive(radios, {-5000, 1000}, 200).nav1.needle, -127, 0.1);  // at its stop
}

TEST(NavigationTest, a_vor_shows_its_radial_against_the_course_that_is_set) {
    Radios radios;
    radios.nav2_active = 0x1245;
    const simhost::RunwayPlace station = {-9500, 6200};
    // South of the station by true north; the radial is magnetic.
    const simhost::Place there = simhost::place_of(station);
    const simhost::Place south = {there.north_m - 10000, there.east_m};
    const simhost::RunwayPlace place = simhost::runway_place_of(south);
    const double radial_deg = 180 - simhost::kMagneticVariationDeg;

    radios.obs2_deg = radial_deg;
    Navigation navigation = receive(radios, place, 500, 0);
    EXPECT_NEAR(navigation.nav2.radial_deg, radial_deg, 0.1);
    EXPECT_EQ(navigation.nav2.to_from, 2);
    EXPECT_NEAR(navigation.nav2.needle, 0, 1);
    EXPECT_NEAR(navigation.nav2.relative_bearing_deg, 0, 0.1);
    EXPECT_NEAR(navigation.nav2.dme_nm, 10000 / simhost::kMetresPerNm, 0.1);

    radios.obs2_deg = radial_deg + 180;
    navigation = receive(radios, place, 500, 0);
    EXPECT_EQ(navigation.nav2.to_from, 1);
    EXPECT_NEAR(navigation.nav2.needle, 0, 1);

    // Inbound with a course 5 degrees greater: the course line lies to the left, half the scale away.
    radios.obs2_deg = radial_deg + 180 + 5;
    navigation = receive(radios, place, 500, 0);
    EXPECT_NEAR(navigation.nav2.needle, -63.5, 2);
}

TEST(NavigationTest, an_adf_points_to_its_beacon_from_any_heading) {
    Radios radios;
    for (const double heading_deg : {0.0, 90.0, 200.0, 359.0}) {
        const Navigation navigation = receive(radios, {-9000, 0}, 300, heading_deg);
        const double expected = simhost::wrap180(simhost::kRunwayHeadingDeg - heading_deg);
        EXPECT_NEAR(navigation.adf1.relative_bearing_deg, expected, 0.2) << heading_deg;
    }
    radios.adf1_extended = 0x0100;  // 1352 kHz: nobody there
    EXPECT_FALSE(receive(radios, {-9000, 0}, 300).adf1.good());
}

TEST(NavigationTest, markers_are_heard_above_their_beacons_alone) {
    EXPECT_EQ(simhost::marker_at({-5200, 0}, 240), simhost::Marker::outer);
    EXPECT_EQ(simhost::marker_at({-1050, 20}, 60), simhost::Marker::middle);
    EXPECT_EQ(simhost::marker_at({-180, 0}, 20), simhost::Marker::inner);
    EXPECT_EQ(simhost::marker_at({-3000, 0}, 150), simhost::Marker::none);
    EXPECT_EQ(simhost::marker_at({-5200, 2000}, 240), simhost::Marker::none);
}

TEST(NavigationTest, without_power_nothing_is_heard) {
    AntennaState antenna;
    antenna.place = simhost::place_of({-5000, 0});
    Navigation navigation;
    navigation.step(tuned_to_the_landing_system(), antenna, 0.02);
    EXPECT_EQ(navigation.radio_flags(), 0);
    EXPECT_EQ(navigation.nav1.dme_nm, simhost::NavReceiver::kNoDme);
}

TEST(OffsetMapTest, names_are_unique_and_no_two_values_share_a_byte) {
    const simhost::OffsetMap map;
    std::uint32_t end = 0;
    std::string before;
    for (const simhost::OffsetRow& row : map.rows()) {
        EXPECT_EQ(map.find(row.name), &row) << row.name;
        EXPECT_GE(row.offset, end) << row.name << " overlaps " << before;
        end = row.offset + simhost::bytes_of(row.kind);
        before = row.name;
    }
}

TEST(OffsetMapTest, every_kind_reads_back_what_it_was_given_and_stops_at_its_limits) {
    using simhost::OffsetKind;
    struct Case {
        OffsetKind kind;
        double scale;
        double value;
        double read;
    };
    const Case cases[] = {
        {OffsetKind::u8, 1, 200, 200},
        {OffsetKind::u8, 1, -5, 0},
        {OffsetKind::i8, 1, -127, -127},
        {OffsetKind::i8, 1, 1000, 127},
        {OffsetKind::u16, 16, 1013.25, 1013.25},
        {OffsetKind::u16, 1, 99999, 65535},
        {OffsetKind::i16, 256, -20.5, -20.5},
        {OffsetKind::i16, 1, 1e9, 32767},
        {OffsetKind::i32, 65536, -1234.5, -1234.5},
        {OffsetKind::i32, 1, 1e300, 2147483647},
        {OffsetKind::f32, 1, 0.25, 0.25},
        {OffsetKind::f64, 2, -1e-9, -1e-9},
        {OffsetKind::fixed32_32, 1, -0.25, -0.25},
        {OffsetKind::fixed32_32, 1, 123456.75, 123456.75},
    };
    simhost::OffsetSpace space;
    for (const Case& c : cases) {
        const simhost::OffsetRow row{0x1000, c.kind, c.scale, "x", "", nullptr, nullptr};
        simhost::OffsetMap::write(row, c.value, space);
        EXPECT_NEAR(simhost::OffsetMap::read(row, space), c.read, std::abs(c.read) * 1e-7 + 1e-9) << c.value;
    }
}

TEST(ClockTest, time_runs_over_midnight_and_the_turn_of_the_year) {
    simhost::SimClock clock(2023, 365, 86399.0);
    clock.step(2.0);
    EXPECT_EQ(clock.hour(), 0);
    EXPECT_EQ(clock.second(), 1);
    EXPECT_EQ(clock.day_of_year(), 1);
    EXPECT_EQ(clock.year(), 2024);
    EXPECT_EQ(clock.zulu_hour(), 23);  // an hour behind local time
    EXPECT_EQ(clock.zulu_day_of_year(), 365);
    clock.set_hour(12);
    clock.set_minute(99);
    EXPECT_EQ(clock.hour(), 12);
    EXPECT_EQ(clock.minute(), 59);
    EXPECT_EQ(clock.second(), 1);
}

}  // namespace
