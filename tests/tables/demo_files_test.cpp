// The files of the demo's working folder hold together.
#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include "platform/manual/manual_platform.h"
#include "tables/config_items.h"
#include "tables/configuration_store.h"

namespace {

using tables::CoreTables;
using tables::FunctionRow;

std::string demo_file(std::string_view name) {
    std::ifstream file(std::string(PROJECT_ROOT "/demo/").append(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class DemoFiles : public testing::Test {
  protected:
    DemoFiles() {
        for (const std::string_view name : {tables::kDefaultConfigFileName, tables::kStartFileName}) {
            machine_.files.contents[std::string(name)] = demo_file(name);
        }
        tables_.ProgramName = tables::kProgramName;
        tables::ConfigurationStore store(tables_, machine_.files, machine_.boxes, machine_.wall_clock);
        tables_.ConfigFileName = store.LoadStartFile();
        store.LoadConfiguration();
    }

    const FunctionRow& function(int row) const { return tables_.functions.at(static_cast<std::size_t>(row)); }

    platform::manual::ManualPlatform machine_;
    CoreTables tables_;
};

TEST_F(DemoFiles, the_configuration_loads_without_a_word) {
    EXPECT_EQ(tables_.ConfigFileName, tables::kDefaultConfigFileName);
    EXPECT_LT(tables_.AutoStartDelay, 10);
    EXPECT_TRUE(machine_.boxes.shown().empty());
    EXPECT_EQ(tables_.ConfigError, 0);
}

TEST_F(DemoFiles, every_fixed_function_is_there_and_every_function_can_be_opened) {
    for (int row = 1; row < tables::kFunctionRows; ++row) {
        const bool fixed = row <= tables::kStandardFunctionLast || (row >= 190 && row <= 207);
        EXPECT_TRUE(!fixed || !function(row).FunctionShortName.empty()) << row;
        if (!function(row).FunctionShortName.empty()) {
            EXPECT_NE(function(row).FunctionDivider, 0.0F) << row;
            EXPECT_NE(function(row).FunctionMultiplier, 0.0F) << row;
            EXPECT_EQ(function(row).FunctionNumber, row);
        }
    }
}

TEST_F(DemoFiles, the_cockpit_has_every_type_and_its_needles_have_functions_and_rising_plates) {
    std::set<int> types;
    for (const tables::GaugeRow& gauge : tables_.gauges) {
        types.insert(gauge.GaugeType);
        if (gauge.GaugeType >= 1 && gauge.GaugeType <= 6) {
            EXPECT_FALSE(function(gauge.GaugeFunction1).FunctionShortName.empty());
            EXPECT_LT(gauge.GaugePlate1, tables_.PlateCount());
            EXPECT_LT(gauge.GaugePlate2, tables_.PlateCount());
        }
    }
    EXPECT_EQ(types, (std::set<int>{0,   1,   2,   3,   4,   5,   6,   8,   101, 103, 104, 105, 106, 107, 108,
                                    109, 110, 111, 112, 113, 114, 120, 121, 122, 123, 124, 125, 130, 140}));
    EXPECT_NE(tables_.ClusterPort, tables_.GaugeBusPort1);
    for (std::size_t row = 0; row < 8; ++row) {
        const tables::ClusterRow& needle = tables_.cluster.at(row);
        EXPECT_LT(needle.ClusterSetting3, tables_.PlateCount()) << row;
        EXPECT_TRUE(needle.ClusterSetting2 == 0 || !function(needle.ClusterSetting2).FunctionShortName.empty()) << row;
    }
    for (const tables::Plate& plate : tables_.plates) {
        const auto last = static_cast<std::size_t>(tables::kFirstPlatePoint + plate.PlateValue[1]);
        EXPECT_EQ(plate.PlateValue[tables::kFirstPlatePoint], plate.PlateValue[2]) << plate.PlateName;
        EXPECT_EQ(plate.PlateValue[last], plate.PlateValue[3]) << plate.PlateName;
        for (std::size_t point = tables::kFirstPlatePoint; point < last; ++point) {
            EXPECT_LT(plate.PlateValue[point], plate.PlateValue[point + 1]) << plate.PlateName;
        }
    }
}

TEST_F(DemoFiles, every_offset_of_a_function_stands_in_the_offset_list) {
    std::map<int, int> length_of;
    const std::string bytes = demo_file("Offsetlist.txt");
    tables::ItemReader reader(bytes);
    for (;;) {
        std::int16_t offset = 0;
        std::int16_t length = 0;
        reader.read(offset);
        reader.read(length);
        reader.skip(5);
        if (offset == -1) {
            break;
        }
        EXPECT_TRUE(length_of.emplace(offset, length).second) << offset;
    }
    EXPECT_GT(length_of.size(), 100U);
    constexpr std::array<int, 7> kSizes = {1, 2, 2, 4, 8, 2, 0};
    for (const FunctionRow& row : tables_.functions) {
        for (const int offset : {row.FunctionOffset1, row.FunctionOffset2, row.FunctionOffset3, row.FunctionOffset4}) {
            const auto above = length_of.upper_bound(offset);
            if (offset != 0) {
                ASSERT_NE(above, length_of.begin());
                const auto& [start, length] = *std::prev(above);
                EXPECT_LE(offset + kSizes.at(row.FunctionDataType), start + length) << row.FunctionShortName;
            }
        }
    }
}

}  // namespace
