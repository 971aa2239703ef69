// Loading and saving of a full configuration in memory: all fixed tables, 200 plates, 300 rows of IO modules.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "platform/manual/manual_platform.h"
#include "tables/configuration_store.h"
#include "tests/support/configuration_text.h"

namespace {

constexpr const char* kFile = "full.cfg";

struct FullConfiguration {
    FullConfiguration() {
        machine.files.contents[kFile] = test_support::ConfigurationText(1).present({300, 200});
        tables->ProgramName = tables::kProgramName;
        tables->ConfigFileName = kFile;
        store.LoadConfiguration();
    }

    std::int64_t file_bytes() const { return static_cast<std::int64_t>(machine.files.contents.at(kFile).size()); }

    platform::manual::ManualPlatform machine;
    std::unique_ptr<tables::CoreTables> tables = std::make_unique<tables::CoreTables>();
    tables::ConfigurationStore store{*tables, machine.files, machine.boxes, machine.wall_clock};
};

void load_full_configuration(benchmark::State& state) {
    FullConfiguration full;
    for (auto iteration : state) {
        (void)iteration;
        full.store.LoadConfiguration();
    }
    if (full.tables->ConfigError != 0) {
        state.SkipWithError("the configuration did not load");
    }
    state.SetBytesProcessed(state.iterations() * full.file_bytes());
}

void save_full_configuration(benchmark::State& state) {
    FullConfiguration full;
    for (auto iteration : state) {
        (void)iteration;
        full.store.SaveConfiguration();
    }
    state.SetBytesProcessed(state.iterations() * full.file_bytes());
}

BENCHMARK(load_full_configuration)->Unit(benchmark::kMillisecond);
BENCHMARK(save_full_configuration)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
