#include <gtest/gtest.h>

#include <map>
#include <string>

#include "run_world.h"
#include "tests/support/allocation_counter.h"

namespace {

using run_test::RunWorld;

// A gauge of every type, with functions, plates and flags that make it work as much as it can.
void add_gauges(RunWorld& world) {
    int id = 20;
    for (const run::InstrumentRow& row : run::instrument_rows()) {
        if (row.tick == nullptr) {
            continue;
        }
        const int function = row.lights == run::LightBus::avionics && row.code != 130 ? 20 : 40;
        tables::GaugeRow& gauge = world.add_gauge(id++, row.code, function, function + 1);
        gauge.GaugePlate1 = row.code <= 8 ? 0 : 1;
        gauge.GaugePlate2 = row.code <= 8 ? 0 : 1;
    }
}

TEST(SteadyTick, no_family_allocates_in_its_branch_or_with_its_report) {
    RunWorld world;
    world.tables.LightMode = 2;
    add_gauges(world);
    world.status.cmdRun_Click();
    world.tick(300);  // every buffer has grown to its size
    run::RunContext& run = world.status.context();
    ASSERT_GT(run.ActiveCount, 20);
    std::map<int, int> found;  // by type code
    for (int round = 0; round < 200; ++round) {
        for (int function = 1; function <= 50; ++function) {
            world.set_value(function, 10 + (round * 13 + function) % 90);
        }
        for (int index = 0; index <= run.ActiveCount; ++index) {
            const run::InstrumentRow* const row = run::find_instrument(run.gauge(index).GaugeType);
            world.tick();
            world.wire.written.clear();
            world.tables.TxBuffer.clear();
            run.CurrentSlot = static_cast<std::int16_t>(run.entry(index).PollSlot);
            std::string telegram(bus::kReportLength, static_cast<char>(round % 100 + 1));
            telegram[bus::kReportGaugeIdByte - 1] = static_cast<char>(run.entry(index).ActiveGaugeId);
            const bus::GaugeReport report(telegram);
            const std::uint64_t before = allocations;
            row->tick(run, index);
            if (row->report != nullptr) {
                row->report(run, report);
            }
            const auto made = static_cast<int>(allocations - before);
            found[row->code] += made;
        }
    }
    EXPECT_TRUE(world.machine.boxes.shown().empty()) << world.last_shown();
    for (const auto& [code, count] : found) {
        EXPECT_EQ(count, 0) << "type " << code;
    }
}

}  // namespace
