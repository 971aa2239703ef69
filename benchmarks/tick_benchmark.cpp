// The tick with a full bus: 250 dual-needle gauges, all 500 needles moving at every tick, on plates of twenty points;
// and cockpits of 32 to 254 instruments of every family, every value moving. Timed from the entry of the tick to the
// block that it hands to the port; the simulator's cycle and the port itself stand outside. Nothing here may allocate.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

#include "bus/gauge_bus.h"
#include "bus/port_set.h"
#include "panel/panel_host.h"
#include "platform/manual/manual_platform.h"
#include "run/frm_status.h"
#include "simhost/block_server.h"
#include "simhost/offset_space.h"
#include "simlink/ipc_client.h"
#include "simlink/sim_com.h"
#include "tables/core_tables.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/open_port.h"

namespace {

constexpr int kGauges = 250;
constexpr int kFirstFunction = 51;
constexpr int kPlatePoints = 20;
constexpr std::size_t kFrameWithGap = 7;

// A gauge row of every family, with all that it can do switched on. The clocks go by the PC: one that goes by the
// simulator waits for it, which is not the tick's own time.
std::vector<tables::GaugeRow> one_of_every_family() {
    struct Row {
        int type, model, function1, sequence1, function2, sequence2, plate1, plate2;
    };
    constexpr Row kRows[] = {
        {1, 1, 51, 1, 0, 0, 0, 0},     {2, 1, 52, 1, 0, 0, 0, 0},     {3, 1, 53, 1, 54, 1, 0, 0},
        {4, 1, 55, 1, 0, 0, 0, 0},     {5, 1, 56, 1, 57, 1, 0, 0},    {6, 1, 58, 1, 59, 1, 0, 0},
        {8, 1, 299, 0, 0, 0, 0, 0},    {101, 1, 4, 2, 0, 1, 0, 0},    {103, 1, 5, 1, 6, 1, 2160, 600},
        {104, 1, 10, 1, 0, 0, 1, 0},   {105, 1, 7, 1, 11, 1, 0, 4},   {106, 1, 0, 0, 0, 0, 0, 0},
        {107, 1, 0, 0, 0, 0, 0, 0},    {108, 1, 0, 0, 0, 0, 0, 0},    {109, 1, 10, 1, 0, 0, 1, 0},
        {110, 1, 22, 1, 23, 1, 0, 1},  {111, 0, 20, 1, 21, 1, 0, 1},  {112, 1, 26, 1, 0, 0, 3, 0},
        {113, 1, 27, 1, 0, 0, 0, 0},   {114, 1, 26, 1, 0, 0, 7, 0},   {120, 1, 20, 2, 22, 2, 0, 1},
        {121, 3, 24, 1, 25, 1, 1, 1},  {122, 1, 26, 1, 0, 0, 3, 0},   {123, 1, 27, 1, 0, 0, 0, 0},
        {124, 1, 4, 1, 7, 1, 30, 700}, {125, 1, 38, 1, 180, 1, 0, 0}, {130, 1, 39, 1, 31, 1, 3, 2},
        {130, 3, 39, 1, 31, 1, 31, 2}, {140, 1, 17, 1, 48, 1, 0, 0},
    };
    std::vector<tables::GaugeRow> rows;
    for (const Row& row : kRows) {
        tables::GaugeRow& gauge = rows.emplace_back();
        gauge.GaugeType = static_cast<std::uint8_t>(row.type);
        gauge.GaugeModel = static_cast<std::uint8_t>(row.model);
        gauge.GaugeFunction1 = static_cast<std::int16_t>(row.function1);
        gauge.GaugeSeqNr1 = static_cast<std::uint8_t>(row.sequence1);
        gauge.GaugeFunction2 = static_cast<std::int16_t>(row.function2);
        gauge.GaugeSeqNr2 = static_cast<std::uint8_t>(row.sequence2);
        gauge.GaugePlate1 = static_cast<std::int16_t>(row.plate1);
        gauge.GaugePlate2 = static_cast<std::int16_t>(row.plate2);
    }
    return rows;
}

std::vector<tables::GaugeRow> dual_needle_gauges() {
    std::vector<tables::GaugeRow> rows(kGauges);
    for (std::size_t index = 0; index < rows.size(); ++index) {
        tables::GaugeRow& gauge = rows[index];
        gauge.GaugeType = 3;
        gauge.GaugeFunction1 = gauge.GaugeFunction2 =
            static_cast<std::int16_t>(kFirstFunction + static_cast<int>(index));
        gauge.GaugeSeqNr1 = 1;
        gauge.GaugeSeqNr2 = 2;
    }
    return rows;
}

class FullBus {
  public:
    // Gauges with the ids 1 to `gauges`, of the given rows again and again.
    FullBus(const std::vector<tables::GaugeRow>& rows, int gauges) {
        machine_.sim_transport.server = [this](std::uint8_t* block, std::size_t size) {
            return server_.answer(block, size).value;
        };
        client_.IpcInit();
        client_.IpcOpen(0, client_.IpcResult);
        for (int number = 1; number < tables::kFunctionRows; ++number) {
            tables::FunctionRow& row = tables_->functions[static_cast<std::size_t>(number)];
            row.FunctionShortName = "Function";
            row.FunctionDataType = tables::kDouble;
            row.FunctionMultiplier = 1;
            row.FunctionDivider = 1;
            row.FunctionOffset1 = 0x1000 + 16 * number;
            row.FunctionOffset2 = row.FunctionOffset1 + 8;
        }
        add_plate();
        for (int id = 1; id <= gauges; ++id) {
            tables_->gauges[static_cast<std::size_t>(id)] = rows[static_cast<std::size_t>(id - 1) % rows.size()];
        }
        tables_->GaugeBusPort1 = 1;
        status.cmdRun_Click();
    }

    // Gives every needle another value and lets the simulator's cycle carry it.
    void move_all() {
        ++moves_;
        for (int needle = 0; needle < 2 * kGauges; ++needle) {
            space_->write_f64(static_cast<std::uint32_t>(0x1000 + 16 * kFirstFunction + 8 * needle),
                              (moves_ * 37 + needle * 13) % 1000);
        }
        // The aircraft's own values and the instruments' too.
        for (int function = 1; function < kFirstFunction; ++function) {
            const auto offset = static_cast<std::uint32_t>(0x1000 + 16 * function);
            if (function == 8 || function == 9 || function == 14) {
                continue;  // the lights' switches and supply: a tick that tells lights tells nothing else
            }
            space_->write_f64(offset, (moves_ * 37 + function) % 1000 * 0.1);
            space_->write_f64(offset + 8, (moves_ * 41 + function) % 1000 * 0.1);
        }
        sim_com_.ProcessTimer_Timer();
    }
    std::size_t bytes_taken() const { return ports_taken_.made.front()->last_write_size; }

  private:
    void add_plate() {
        tables::Plate plate;
        plate.PlateValue[1] = kPlatePoints;
        plate.PlateValue[3] = 1000;
        plate.PlatePosition[3] = 1000;
        for (std::size_t point = 0; point < kPlatePoints; ++point) {
            plate.PlateValue[4 + point] = static_cast<double>(point) * 1000.0 / (kPlatePoints - 1);
            plate.PlatePosition[4 + point] = static_cast<std::int16_t>(plate.PlateValue[4 + point]);
        }
        tables_->plates.push_back(plate);
    }

    platform::manual::ManualPlatform machine_;
    test_support::OpenPorts ports_taken_;
    platform::Platform platform_{machine_.loop,  machine_.boxes, machine_.wall_clock,    machine_.random,
                                 machine_.files, ports_taken_,   machine_.sim_transport, machine_.key_delivery};
    std::unique_ptr<tables::CoreTables> tables_ = std::make_unique<tables::CoreTables>();
    std::unique_ptr<simhost::OffsetSpace> space_ = std::make_unique<simhost::OffsetSpace>();
    simhost::BlockServer server_{*space_};
    simlink::IpcClient client_{machine_.sim_transport};
    panel::PanelHost panels_;
    simlink::SimCom sim_com_{*tables_, client_, platform_, panels_};
    bus::GaugeBus gauge_bus_{platform_, *tables_};
    bus::PortSet ports_{machine_.boxes, *tables_};
    int moves_ = 0;

  public:
    run::frmStatus status{{platform_, *tables_, sim_com_, gauge_bus_, ports_, panels_}};
};

void time_ticks(benchmark::State& state, FullBus& bus, std::size_t least_bytes) {
    // Long enough for the slowest cycle of steps of an instrument.
    for (int warm_up = 0; warm_up < 120; ++warm_up) {
        bus.move_all();
        bus.status.ProcessTimer_Timer();
    }
    std::vector<double> times_us;
    times_us.reserve(1'000'000);
    std::uint64_t allocated = 0;
    double bytes = 0;
    for (auto _ : state) {
        bus.move_all();
        bus.status.clear_marks();  // as the page does
        const std::uint64_t before = allocations;
        const auto begin = std::chrono::steady_clock::now();
        bus.status.ProcessTimer_Timer();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        allocated += allocations - before;
        state.SetIterationTime(taken.count());
        times_us.push_back(taken.count() * 1e6);
        bytes += static_cast<double>(bus.bytes_taken());
        if (bus.bytes_taken() < least_bytes) {
            state.SkipWithError("not every instrument was served");
            return;
        }
    }
    if (allocated != 0) {
        state.SkipWithError("the tick has allocated");
        return;
    }
    const auto ticks = static_cast<double>(times_us.size());
    std::sort(times_us.begin(), times_us.end());
    state.counters["median_us"] = times_us[times_us.size() / 2];
    state.counters["p99_us"] = times_us[times_us.size() * 99 / 100];
    state.counters["allocations"] = static_cast<double>(allocated);
    state.counters["bytes_a_tick"] = bytes / ticks;
}

void tick_of_250_dual_gauges(benchmark::State& state) {
    FullBus bus(dual_needle_gauges(), kGauges);
    time_ticks(state, bus, 2 * kGauges * kFrameWithGap);
}
BENCHMARK(tick_of_250_dual_gauges)->UseManualTime()->Unit(benchmark::kMicrosecond);

// Grows in proportion to the number of instruments.
void tick_of_every_family(benchmark::State& state) {
    const auto gauges = static_cast<int>(state.range(0));
    FullBus bus(one_of_every_family(), gauges);
    time_ticks(state, bus, static_cast<std::size_t>(gauges) / 2 * kFrameWithGap);
    state.counters["ns_an_instrument"] = state.counters["median_us"] * 1000 / gauges;
}
BENCHMARK(tick_of_every_family)->Arg(32)->Arg(64)->Arg(128)->Arg(254)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
