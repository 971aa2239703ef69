#pragma once

#include <string>
#include <string_view>

#include "platform/boxes.h"
#include "platform/file_store.h"
#include "platform/wall_clock.h"
#include "tables/core_tables.h"

namespace tables {

inline constexpr std::string_view kProgramName = "Control Program for FSUIPC based Simulators";
inline constexpr std::string_view kProgramVersion = "10.1.3";  // the text of LabelProgramVersion

inline constexpr std::string_view kStartFileName = "DefaultStartFileMS.cfn";
inline constexpr std::string_view kDefaultConfigFileName = "Default MS-FS.cfg";
inline constexpr std::int16_t kDefaultAutoStartDelay = 10;  // seconds

// The first item of a configuration file: which program saved it, what it was connected to, and when
// ("2024-05-31 18:04:09"). The places of name and version are part of the format: 15 and 70, counted from 1. The
// simulator and FSUIPC names are the texts that the start panel shows.
std::string build_config_header(std::string_view program_name, std::string_view program_version,
                                std::string_view simulator_name, std::string_view fsuipc_version,
                                const platform::DateTime& saved_at);

// Fills the tables from the configuration file and stores them again, and keeps the start file. The files stand in the
// working folder; where the system tells upper from lower case in file names, so do these. Any method may be called
// halted or running; nothing here is part of a tick.
class ConfigurationStore {
  public:
    // `program_version` is the text of LabelProgramVersion.
    ConfigurationStore(CoreTables& tables, platform::FileStore& files, platform::Boxes& boxes,
                       platform::WallClock& wall_clock, std::string program_version = std::string(kProgramVersion));

    // Reads ConfigFileName into the tables and sets ConfigError: 0 good, 1 refused by the user or failed; a failure is
    // shown. May ask whether to go on with a file of another program or version; "No" to the version leaves ConfigError
    // at 0 with the "General" values changed alone. The tables keep what was read up to a failure. Never throws for
    // what stands in the file.
    void LoadConfiguration();

    // Writes all tables to ConfigFileName, replacing the file, and marks both YokeSwitchFunctions as of the present
    // layout. ConfigHeader is written as it stands. Throws a Failure when the file cannot be written; the file before
    // is then untouched.
    void SaveConfiguration();

    // Sets ConfigHeader for a save at this moment.
    void prepare_header(std::string_view simulator_name, std::string_view fsuipc_version);

    // Gives the name of the configuration to start with and sets AutoStartDelay. A start file that is missing or
    // damaged gives "Default MS-FS.cfg" and 10 seconds.
    std::string LoadStartFile();

    // Writes the start file with `config_file_name` and the present AutoStartDelay. False after a failure, which has
    // been shown.
    bool SaveStartFile(const std::string& config_file_name);

    // The bytes that SaveConfiguration writes.
    std::string configuration_bytes() const;

    CoreTables& tables() { return tables_; }

  private:
    enum class Compatibility { go_on, wrong_program, wrong_version };

    void read_configuration(const std::string& file_name);
    Compatibility ask_about_header() const;

    CoreTables& tables_;
    platform::FileStore& files_;
    platform::Boxes& boxes_;
    platform::WallClock& wall_clock_;
    std::string program_version_;
};

}  // namespace tables
