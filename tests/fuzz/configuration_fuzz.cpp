// Loads arbitrary bytes as a configuration and as a start file. Whatever loads without an error must load again from
// what is saved, to the same bytes.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "platform/manual/manual_platform.h"
#include "tables/configuration_store.h"

namespace {

void load_and_save(const std::string& bytes) {
    platform::manual::ManualPlatform machine;
    machine.files.contents["fuzz.cfg"] = bytes;
    machine.files.contents[std::string(tables::kStartFileName)] = bytes;
    const auto tables = std::make_unique<tables::CoreTables>();
    tables->ProgramName = tables::kProgramName;
    tables->ConfigFileName = "fuzz.cfg";
    tables::ConfigurationStore store(*tables, machine.files, machine.boxes, machine.wall_clock);
    store.LoadStartFile();
    store.LoadConfiguration();
    if (tables->iom.size() > bytes.size() || tables->plates.size() > bytes.size()) {
        std::abort();
    }
    if (tables->ConfigError != 0) {
        return;
    }
    store.prepare_header("N/A", "N/A");
    store.SaveConfiguration();
    const std::string saved = machine.files.contents["fuzz.cfg"];
    store.LoadConfiguration();
    store.SaveConfiguration();
    if (tables->ConfigError != 0 || machine.files.contents["fuzz.cfg"] != saved) {
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    load_and_save(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
