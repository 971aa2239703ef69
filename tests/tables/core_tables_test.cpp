#include "tables/core_tables.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/failure.h"

namespace {

using tables::BitShift;
using tables::CoreTables;
using tables::ShiftDirection;

TEST(CoreTables, constants_return_to_the_rows_that_the_program_owns) {
    CoreTables tables;
    tables.gauge_types[3] = {99, "from a file"};
    tables.gauge_types[31] = {150, "added by a file"};
    SetConstants(tables);
    EXPECT_EQ(gauge_type_name(tables, 3), "Small/Large gauge; Dual Needle ");
    EXPECT_EQ(gauge_type_name(tables, 7), "Tripple Needle Concentric Small");
    EXPECT_EQ(gauge_type_name(tables, 150), "added by a file");
    EXPECT_EQ(gauge_type_name(tables, 99), " Unknown ");
    EXPECT_EQ(gauge_type_name(tables, 0), " Unknown ");
    EXPECT_EQ(tables.classes[0], "");
    EXPECT_EQ(tables.classes[11], "External");
}

TEST(CoreTables, shifts_round_and_truncate_toward_0) {
    EXPECT_EQ(BitShift(0x1234, 8, ShiftDirection::right), 0x12);
    EXPECT_EQ(BitShift(-5, 1, ShiftDirection::right), -2);
    EXPECT_EQ(BitShift(3, 30, ShiftDirection::right), 0);
    EXPECT_EQ(BitShift(-3, 4, ShiftDirection::left), -48);
    EXPECT_EQ(BitShift(7, -1, ShiftDirection::left), 4);
    EXPECT_THROW(BitShift(1, 31, ShiftDirection::left), support::Failure);
}

TEST(CoreTables, a_moved_gauge_takes_its_run_time_fields_along) {
    CoreTables tables;
    tables.gauges[20] = {1, 5, 2, 3, 4, 55, 1, 6, 7, 88, 2, 9, 2, 1.5F, 10, 11, 12, tables::kNoWritePort};
    const tables::GaugeRow row = tables.gauges[20];
    move_gauge_row(tables, 20, 21);
    EXPECT_EQ(tables.gauges[21], row);
    EXPECT_EQ(tables.gauges[20], tables::GaugeRow{});
    move_gauge_row(tables, 21, 21);
    EXPECT_EQ(tables.gauges[21], row);
}

TEST(CoreTables, yoke_axes_follow_the_stored_calibration) {
    struct Case {
        std::int16_t minimum, maximum;
        std::int16_t effective_maximum, range;
        double scale;
        std::int16_t centre;
    };
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    const Case cases[] = {
        {0, 1023, 1023, 1023, 1024.0 / 1023.0, 512}, {100, 300, 1023, 923, 1024.0 / 923.0, 562},
        {0, 499, 1023, 1023, 1024.0 / 1023.0, 512},  {0, 500, 500, 500, 2.048, 250},
        {600, 600, 600, 0, kInfinite, 600},          {-32768, 32767, 32767, -1, -1024.0, -32768},
    };
    for (const Case& one : cases) {
        tables::YokeSettings yoke;
        yoke.YokeCalibration = {0, 1023, one.minimum, one.maximum};
        derive_yoke_axes(yoke);
        EXPECT_EQ(yoke.aileron_axis.maximum, one.effective_maximum) << one.minimum;
        EXPECT_EQ(yoke.aileron_axis.range, one.range) << one.minimum;
        EXPECT_EQ(yoke.aileron_axis.scale, one.scale) << one.minimum;
        EXPECT_EQ(yoke.aileron_axis.centre, one.centre) << one.minimum;
        EXPECT_EQ(yoke.elevator_axis.centre, 512);
        EXPECT_EQ(yoke.YokeCalibration[3], one.maximum);
    }
}

}  // namespace
