#include "run/instrument_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

std::string report_of(int type, char first_tag, char second_tag) {
    std::string report(bus::kReportLength, '\1');
    report[0] = 0;
    report[2] = static_cast<char>(type);
    report[5] = first_tag;
    report[8] = second_tag;
    report[24] = static_cast<char>(255);
    return report;
}

TEST(InstrumentTable, every_known_device_type_has_one_row) {
    tables::CoreTables tables;
    tables::SetConstants(tables);
    std::set<int> known;
    for (std::size_t row = 1; row <= 30; ++row) {
        known.insert(tables.gauge_types[row].GaugeTypeCode);
    }
    std::set<int> rows;
    for (const run::InstrumentRow& row : run::instrument_rows()) {
        EXPECT_TRUE(rows.insert(row.code).second) << "two rows of code " << row.code;
        EXPECT_EQ(run::find_instrument(row.code), &row);
    }
    EXPECT_EQ(rows, known);
    for (const int unknown : {-1, 0, 9, 102, 141, 255, 256}) {
        EXPECT_EQ(run::find_instrument(unknown), nullptr) << unknown;
    }
}

TEST(InstrumentTable, the_lights_of_the_avionics_follow_their_bus) {
    const std::set<int> expected = {106, 107, 108, 110, 111, 112, 113, 114, 120, 121, 122, 123, 124, 125, 130};
    std::set<int> avionics;
    for (const run::InstrumentRow& row : run::instrument_rows()) {
        if (row.lights == run::LightBus::avionics) {
            avionics.insert(row.code);
        }
    }
    EXPECT_EQ(avionics, expected);
}

TEST(InstrumentTable, a_report_goes_to_its_type_when_its_tags_fit) {
    struct Case {
        int type;
        char first_tag;
        char second_tag;
    };
    const std::vector<Case> tagged = {
        {101, 'P', 'P'}, {106, 'C', 'A'}, {107, 'C', 'A'}, {108, 'C', 'A'}, {110, 'A', 'S'},
        {111, 'A', 'S'}, {121, 'A', 'S'}, {112, 'X', 'Y'}, {114, 'X', 'Y'}, {113, 'S', 'D'},
        {123, 'S', 'D'}, {120, 'C', 'S'}, {122, 'X', 'F'}, {124, 'A', 'V'}, {140, 'P', 'T'},
    };
    for (const Case& known : tagged) {
        const std::string good = report_of(known.type, known.first_tag, known.second_tag);
        EXPECT_EQ(run::match_report(bus::GaugeReport(good)), run::find_instrument(known.type)) << known.type;
        const std::string bad_first = report_of(known.type, 'z', known.second_tag);
        EXPECT_EQ(run::match_report(bus::GaugeReport(bad_first)), nullptr) << known.type;
        const std::string bad_second = report_of(known.type, known.first_tag, 'z');
        EXPECT_EQ(run::match_report(bus::GaugeReport(bad_second)), nullptr) << known.type;
    }
    for (const int untagged : {104, 105, 125}) {
        const std::string report = report_of(untagged, '\0', '\xFF');
        EXPECT_EQ(run::match_report(bus::GaugeReport(report)), run::find_instrument(untagged)) << untagged;
    }
}

TEST(InstrumentTable, a_report_outside_the_reporting_types_goes_to_nobody) {
    for (const int type : {0, 1, 6, 8, 10, 100, 102, 141, 255}) {
        const std::string report = report_of(type, 'P', 'P');
        EXPECT_EQ(run::match_report(bus::GaugeReport(report)), nullptr) << type;
    }
}

}  // namespace
