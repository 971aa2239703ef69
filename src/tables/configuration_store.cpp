#include "tables/configuration_store.h"

#include <array>
#include <cstdio>
#include <utility>

#include "support/failure.h"
#include "tables/config_items.h"
#include "tables/config_sections.h"

namespace tables {

namespace {

// Places in the header, counted from 0, and how much of them is compared.
constexpr std::size_t kHeaderProgramAt = 14;
constexpr std::size_t kHeaderVersionAt = 69;
constexpr std::size_t kComparedProgramLength = 35;
constexpr std::size_t kComparedVersionLength = 10;

constexpr std::string_view kStartFileGeneral = "General";
constexpr std::string_view kStartFileDelay = "Startdelay";
constexpr std::string_view kStartFileEnd = "End";

std::string_view part_of(std::string_view text, std::size_t at, std::size_t length) {
    return at < text.size() ? text.substr(at, length) : std::string_view{};
}

std::string date_and_time(const platform::DateTime& at) {
    std::array<char, 80> text;
    const int length = std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", at.year, at.month,
                                     at.day, at.hour, at.minute, at.second);
    return std::string(text.data(), static_cast<std::size_t>(length));
}

void read_rows(ItemReader& reader, CoreTables& tables, std::int16_t format) {
    require_section(reader, kSectionIom);
    read_iom(reader, tables);
    require_section(reader, kSectionFunctions);
    read_functions(reader, tables, 0, kFunctionRows - 1);
    require_section(reader, kSectionGaugeTypes);
    read_gauge_types(reader, tables);
    require_section(reader, kSectionGauges);
    read_gauges(reader, tables, format);
    require_section(reader, kSectionCluster);
    read_cluster(reader, tables);
}

// A file without the section has no plates. Gives the name behind the plates.
std::string_view read_plates_if_any(ItemReader& reader, CoreTables& tables) {
    reader.enter_section(kSectionPlates);
    const std::string_view name = reader.text();
    if (name != kSectionPlates) {
        tables.plates.clear();
        return name;
    }
    read_plates(reader, tables);
    return reader.text();
}

}  // namespace

std::string build_config_header(std::string_view program_name, std::string_view program_version,
                                std::string_view simulator_name, std::string_view fsuipc_version,
                                const platform::DateTime& saved_at) {
    std::string header = "Program Name: ";
    header.append(program_name).append(" , Version: ").append(program_version);
    header.append("         ,Connected Sim: ").append(simulator_name);
    header.append(", FSUIPC version: ").append(fsuipc_version);
    header.append(" ,Date/Time saved: ").append(date_and_time(saved_at)).append("\r\n");
    return header;
}

ConfigurationStore::ConfigurationStore(CoreTables& tables, platform::FileStore& files, platform::Boxes& boxes,
                                       platform::WallClock& wall_clock, std::string program_version)
    : tables_(tables),
      files_(files),
      boxes_(boxes),
      wall_clock_(wall_clock),
      program_version_(std::move(program_version)) {}

void ConfigurationStore::LoadConfiguration() {
    const std::string file_name = tables_.ConfigFileName;
    tables_.ConfigError = 0;
    try {
        read_configuration(file_name);
    } catch (const support::Failure& failure) {
        boxes_.message("Error Configuration file: " + failure.description() + "\nFilename: " + file_name);
        tables_.ConfigError = 1;
    }
}

void ConfigurationStore::read_configuration(const std::string& file_name) {
    const std::string bytes = files_.read(file_name);
    tables_.ConfigFormat = kPresentFormat;
    ItemReader reader(bytes);
    reader.skip_past(kSectionGeneral);
    reader.enter_section(kSectionGeneral);
    reader.read(tables_.ConfigHeader);
    // Kept apart from the table: a question lets timers go on, and they may load another file.
    const std::int16_t format = format_of_header(tables_.ConfigHeader);
    tables_.ConfigFormat = format;
    read_general(reader, tables_, format);
    switch (ask_about_header()) {
        case Compatibility::wrong_program:
            tables_.ConfigError = 1;
            return;
        case Compatibility::wrong_version:
            return;
        case Compatibility::go_on:
            break;
    }
    read_rows(reader, tables_, format);
    const std::string_view name = read_plates_if_any(reader, tables_);
    if (name == kMarkEnd) {
        return;  // from before the yokes: their tables keep their values
    }
    if (name != kSectionGeneralFfb) {
        throw WrongSection();
    }
    reader.enter_section(kSectionGeneralFfb);
    read_yokes(reader, tables_);
}

ConfigurationStore::Compatibility ConfigurationStore::ask_about_header() const {
    const std::string header = tables_.ConfigHeader;
    if (part_of(header, kHeaderProgramAt, kComparedProgramLength) !=
        part_of(tables_.ProgramName, 0, kComparedProgramLength)) {
        const auto answer = boxes_.question(
            "The selected Configuration file is possibly not compatible with this program.\n"
            "In case a config from a previous version, ignore errors save it again.\n"
            "Continue?");
        if (answer == platform::Answer::no) {
            return Compatibility::wrong_program;
        }
    }
    std::string_view version = part_of(header, kHeaderVersionAt, kComparedVersionLength);
    while (!version.empty() && version.back() == ' ') {
        version.remove_suffix(1);
    }
    if (version != program_version_) {
        const auto answer = boxes_.question(
            "The version of selected Configuration file differs from program version.\n"
            "Possibly the functions differ or are missing. Partially import the functions if needed.\n"
            "Correct and/or check and (re)save the configuration file.\n"
            "Continue?");
        if (answer == platform::Answer::no) {
            return Compatibility::wrong_version;
        }
    }
    return Compatibility::go_on;
}

std::string ConfigurationStore::configuration_bytes() const {
    ItemWriter writer;
    write_configuration(writer, tables_);
    return writer.take();
}

void ConfigurationStore::SaveConfiguration() {
    for (YokeSettings& yoke : tables_.yokes) {
        yoke.YokeSwitchFunctions[0] = kYokeSwitchMark;
    }
    files_.replace(tables_.ConfigFileName, configuration_bytes());
}

void ConfigurationStore::prepare_header(std::string_view simulator_name, std::string_view fsuipc_version) {
    tables_.ConfigHeader = build_config_header(tables_.ProgramName, program_version_, simulator_name, fsuipc_version,
                                               wall_clock_.local_now());
}

std::string ConfigurationStore::LoadStartFile() {
    try {
        const std::string bytes = files_.read(std::string(kStartFileName));
        ItemReader reader(bytes);
        require_section(reader, kStartFileGeneral);
        std::string config_file_name(reader.text());
        require_section(reader, kStartFileDelay);
        std::int16_t delay = 0;
        reader.read(delay);
        require_section(reader, kStartFileEnd);
        tables_.AutoStartDelay = delay;
        return config_file_name;
    } catch (const support::Failure&) {
        tables_.AutoStartDelay = kDefaultAutoStartDelay;
        return std::string(kDefaultConfigFileName);
    }
}

bool ConfigurationStore::SaveStartFile(const std::string& config_file_name) {
    ItemWriter writer;
    writer.line(kStartFileGeneral);
    writer.line(config_file_name);
    writer.line(kStartFileDelay);
    writer.line(tables_.AutoStartDelay);
    writer.line(kStartFileEnd);
    try {
        files_.replace(std::string(kStartFileName), writer.bytes());
        return true;
    } catch (const support::Failure& failure) {
        boxes_.message("Error writing Default Start file. " + failure.description());
        return false;
    }
}

}  // namespace tables
