#pragma once

#include <cstddef>
#include <string_view>

#include "support/failure.h"
#include "tables/config_items.h"
#include "tables/core_tables.h"

// The sections of a configuration file, one reader and one writer each, so that single sections can be read as well.
namespace tables {

inline constexpr std::string_view kSectionGeneral = "General";
inline constexpr std::string_view kSectionIom = "IOM";
inline constexpr std::string_view kSectionFunctions = "Functions";
inline constexpr std::string_view kSectionGaugeTypes = "Gaugetypes";
inline constexpr std::string_view kSectionGauges = "Gauges";
inline constexpr std::string_view kSectionCluster = "Engine Cluster Settings";
inline constexpr std::string_view kSectionPlates = "Plates";
inline constexpr std::string_view kSectionGeneralFfb = "GeneralFFB";
inline constexpr std::string_view kSectionYoke1 = "Yoke1";
inline constexpr std::string_view kSectionYoke2 = "Yoke2";
inline constexpr std::string_view kMarkEof = "EOF";
inline constexpr std::string_view kMarkEnd = "end";

// Values of ConfigFormat.
inline constexpr std::int16_t kOldFormat = 9;
inline constexpr std::int16_t kPresentFormat = 10;

// Items of a record in the file, for skipping.
inline constexpr int kGeneralItems = 20;  // the header included
inline constexpr int kOldGeneralItems = 15;
inline constexpr int kIomItems = 13;
inline constexpr int kFunctionItems = 21;
inline constexpr int kGaugeTypeItems = 2;
inline constexpr int kGaugeItems = 12;
inline constexpr int kOldGaugeItems = 11;
inline constexpr int kClusterItems = 3;

// A section name or closing mark that is not the one that belongs there. Its description is empty.
class WrongSection : public support::Failure {
  public:
    WrongSection() : Failure("") {}
};

// Reads the next item and throws WrongSection when it is not the name of that section. Failures in the items that
// follow name the section.
void require_section(ItemReader& reader, std::string_view name);

// kOldFormat when the version in a header has one digit in front of its point, else kPresentFormat.
std::int16_t format_of_header(std::string_view header);

// The readers take the items of one section, behind its name, into the tables. All throw a Failure; what was read up
// to then stays.
void read_general(ItemReader& reader, CoreTables& tables, std::int16_t format);  // behind the header
void read_iom(ItemReader& reader, CoreTables& tables);
void read_functions(ItemReader& reader, CoreTables& tables, int first_row, int last_row);
void read_gauge_types(ItemReader& reader, CoreTables& tables);
void read_gauges(ItemReader& reader, CoreTables& tables, std::int16_t format);
void read_cluster(ItemReader& reader, CoreTables& tables);
void read_plates(ItemReader& reader, CoreTables& tables);

// Reads everything behind the name "GeneralFFB" up to the closing mark, and derives the axis values of both yokes. A
// wrong name in front of a yoke sets ConfigError to 1 and the reading goes on; a wrong closing mark throws
// WrongSection.
void read_yokes(ItemReader& reader, CoreTables& tables);

// Writes the whole file.
void write_configuration(ItemWriter& writer, const CoreTables& tables);

}  // namespace tables
