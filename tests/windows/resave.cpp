// Loads a configuration of the working folder and saves it under another name: resave FROM TO. The same source is built
// for both systems, which must write the same bytes.
#include <cstdio>

#include "app/native.h"
#include "bench/unattended_boxes.h"
#include "platform/manual/manual_machine.h"
#include "support/failure.h"
#include "tables/configuration_store.h"

int main(int count, char** words) {
    if (count != 3) {
        std::fprintf(stderr, "resave FROM TO\n");
        return 2;
    }
    try {
        tables::CoreTables tables;
        tables::SetConstants(tables);
        tables.ProgramName = tables::kProgramName;
        platform::native::Files files(".");
        platform::manual::ManualWallClock clock;
        bench::UnattendedBoxes boxes([](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); });
        tables::ConfigurationStore store(tables, files, boxes, clock);
        tables.ConfigFileName = words[1];
        store.LoadConfiguration();
        if (tables.ConfigError != 0) {
            return 1;
        }
        tables.ConfigFileName = words[2];
        store.SaveConfiguration();
        return 0;
    } catch (const support::Failure& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
}
