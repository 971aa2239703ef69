// The tick with a full bus: 250 dual-needle gauges, all 500 needles moving at every tick, on plates of twenty points.
// Timed from the entry of the tick to the block that it hands to the port; the simulator's cycle and the port itself
// stand outside. Nothing here may allocate.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <new>
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

namespace {

std::atomic<std::uint64_t> allocations{0};

constexpr int kGauges = 250;
constexpr int kFirstFunction = 51;
constexpr int kPlatePoints = 20;
constexpr std::size_t kFrameWithGap = 7;

// A port that takes everything at once.
class OpenPort : public platform::SerialPort {
  public:
    explicit OpenPort(std::size_t& bytes_taken) : bytes_taken_(bytes_taken) {}
    void set_number(int number) override { number_ = number; }
    int number() const override { return number_; }
    void set_settings(const std::string&) override {}
    void set_receive_threshold(std::size_t) override {}
    void set_read_length(std::size_t) override {}
    void set_event_handler(EventHandler) override {}
    void open() override { open_ = true; }
    void close() override { open_ = false; }
    bool is_open() const override { return open_; }
    bool connected() const override { return open_; }
    std::string read() override { return {}; }
    void clear_input() override {}
    void clear_output() override {}
    void write(std::string_view bytes) override { bytes_taken_ = bytes.size(); }
    bool carrier_detect() const override { return false; }

  private:
    std::size_t& bytes_taken_;
    int number_ = 0;
    bool open_ = false;
};

class OpenPorts : public platform::SerialPorts {
  public:
    std::unique_ptr<platform::SerialPort> create() override { return std::make_unique<OpenPort>(bytes_taken); }
    std::size_t bytes_taken = 0;
};

class FullBus {
  public:
    FullBus() {
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
        for (int id = 1; id <= kGauges; ++id) {
            tables::GaugeRow& gauge = tables_->gauges[static_cast<std::size_t>(id)];
            gauge.GaugeType = 3;
            gauge.GaugeFunction1 = gauge.GaugeFunction2 = static_cast<std::int16_t>(kFirstFunction + id - 1);
            gauge.GaugeSeqNr1 = 1;
            gauge.GaugeSeqNr2 = 2;
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
        // The aircraft's own values too.
        for (int function = 1; function <= 7; ++function) {
            space_->write_f64(static_cast<std::uint32_t>(0x1000 + 16 * function), (moves_ * 37) % 1000 * 0.37);
        }
        sim_com_.ProcessTimer_Timer();
    }
    std::size_t bytes_taken() const { return ports_taken_.bytes_taken; }

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
    OpenPorts ports_taken_;
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

void tick_of_250_dual_gauges(benchmark::State& state) {
    FullBus bus;
    for (int warm_up = 0; warm_up < 10; ++warm_up) {
        bus.move_all();
        bus.status.ProcessTimer_Timer();
    }
    std::vector<double> times_us;
    times_us.reserve(1'000'000);
    std::uint64_t allocated = 0;
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
        if (bus.bytes_taken() < 2 * kGauges * kFrameWithGap) {
            state.SkipWithError("not every needle has moved");
            return;
        }
    }
    if (allocated != 0) {
        state.SkipWithError("the tick has allocated");
        return;
    }
    std::sort(times_us.begin(), times_us.end());
    state.counters["median_us"] = times_us[times_us.size() / 2];
    state.counters["p99_us"] = times_us[times_us.size() * 99 / 100];
    state.counters["allocations"] = static_cast<double>(allocated);
}
BENCHMARK(tick_of_250_dual_gauges)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace

// Not inlined: GCC takes the pair of malloc and delete apart otherwise and warns.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    if (void* const memory = std::malloc(size)) {
        return memory;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

BENCHMARK_MAIN();
