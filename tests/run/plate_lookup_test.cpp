#include "run/plate_lookup.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

namespace {

using Points = std::vector<std::pair<double, int>>;

tables::Plate plate_of(std::pair<double, int> minimum, std::pair<double, int> maximum, const Points& points) {
    tables::Plate plate;
    plate.PlateValue[1] = static_cast<double>(points.size());
    plate.PlatePosition[1] = static_cast<std::int16_t>(points.size());
    plate.PlateValue[2] = minimum.first;
    plate.PlatePosition[2] = static_cast<std::int16_t>(minimum.second);
    plate.PlateValue[3] = maximum.first;
    plate.PlatePosition[3] = static_cast<std::int16_t>(maximum.second);
    for (std::size_t point = 0; point < points.size(); ++point) {
        plate.PlateValue[4 + point] = points[point].first;
        plate.PlatePosition[4 + point] = static_cast<std::int16_t>(points[point].second);
    }
    return plate;
}

tables::Plate airspeed_plate() {
    // A curved scale whose ends differ from the first and last point, so that a look-up there cannot go unseen.
    return plate_of({40, 100}, {200, 900}, {{40, 101}, {80, 300}, {120, 600}, {200, 899}});
}

TEST(PlateLookup, a_value_is_clamped_and_turned_into_a_position) {
    struct Case {
        double value;
        double position;
        double value_left;
    };
    const std::vector<Case> cases = {
        {40, 100, 40},   {39.99, 100, 40}, {-1e9, 100, 40}, {200, 900, 200}, {200.01, 900, 200},
        {1e9, 900, 200}, {80, 300, 80},    {120, 600, 120}, {100, 450, 100}, {60, 200.5, 60},
    };
    for (const Case& expected : cases) {
        double value = expected.value;
        const std::optional<double> position = run::plate_position(airspeed_plate(), value);
        ASSERT_TRUE(position.has_value()) << expected.value;
        EXPECT_DOUBLE_EQ(*position, expected.position) << expected.value;
        EXPECT_EQ(value, expected.value_left) << expected.value;
    }
}

TEST(PlateLookup, two_points_give_a_straight_scale) {
    double value = 50;
    EXPECT_EQ(run::plate_position(plate_of({0, 0}, {100, 945}, {{0, 0}, {100, 945}}), value), 472.5);
}

TEST(PlateLookup, a_plate_without_points_runs_straight_from_minimum_to_maximum) {
    const tables::Plate plate = plate_of({-50, 90}, {50, 990}, {});
    for (const auto& [given, position] : Points{{-51, 90}, {-50, 90}, {-20, 360}, {0, 540}, {49, 981}, {60, 990}}) {
        double value = given;
        EXPECT_EQ(run::plate_position(plate, value), position) << given;
    }
}

TEST(PlateLookup, no_value_gives_a_position_that_is_not_a_number) {
    const double infinity = std::numeric_limits<double>::infinity();
    const double not_a_number = std::numeric_limits<double>::quiet_NaN();
    double value = not_a_number;
    EXPECT_EQ(run::plate_position(airspeed_plate(), value), std::nullopt);
    value = infinity;
    EXPECT_EQ(run::plate_position(airspeed_plate(), value), 900);
    value = -infinity;
    EXPECT_EQ(run::plate_position(airspeed_plate(), value), 100);
    // A file can hold anything.
    const std::vector<tables::Plate> odd_plates = {
        plate_of({not_a_number, 0}, {not_a_number, 900}, {{0, 1}, {1, 2}}),
        plate_of({-infinity, 0}, {infinity, 900}, {{-infinity, 1}, {infinity, 2}}),
        plate_of({0, 0}, {100, 900}, {{100, 10}, {100, 20}, {100, 30}}),
        plate_of({0, 0}, {100, 900}, {{0, 10}, {0, 20}, {0, 30}}),
        plate_of({100, 0}, {0, 900}, {{100, 10}, {0, 20}}),
    };
    for (const tables::Plate& plate : odd_plates) {
        for (const double given : {-1.0, 0.0, 5.0, 50.0, 99.0, 100.0, 101.0, infinity, not_a_number}) {
            value = given;
            const std::optional<double> position = run::plate_position(plate, value);
            EXPECT_FALSE(position && std::isnan(*position)) << given;
        }
    }
}

TEST(PlateLookup, a_plate_is_found_by_its_number_only) {
    tables::CoreTables tables;
    EXPECT_EQ(run::find_plate(tables, 0), nullptr);
    tables.plates.resize(2);
    EXPECT_EQ(run::find_plate(tables, 0), &tables.plates[0]);
    EXPECT_EQ(run::find_plate(tables, 1), &tables.plates[1]);
    EXPECT_EQ(run::find_plate(tables, 2), nullptr);
    EXPECT_EQ(run::find_plate(tables, -1), nullptr);
}

}  // namespace
