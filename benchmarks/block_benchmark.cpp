// The simulator ports' cycle without a transport: how long 500 ports take to be put into a block and its answers to be
// scattered, and how long all their values take to be read. Nothing here may allocate.

#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "panel/panel_host.h"
#include "platform/manual/manual_platform.h"
#include "simlink/ipc_block.h"
#include "simlink/ipc_client.h"
#include "simlink/sim_com.h"
#include "support/bytes.h"
#include "tables/core_tables.h"
#include "tests/support/allocation_counter.h"

namespace {

constexpr std::int16_t kPorts = 500;

// 500 reading ports of all types on a link whose server answers at once and changes nothing.
class Ports {
  public:
    Ports() {
        machine_.sim_transport.server = [](std::uint8_t* block, std::size_t) {
            if (support::read_u32le(block + simlink::kOffsetAt) == simlink::kOffsetFsuipcVersion) {
                support::put_u32le(block + simlink::kReadHeadBytes, 0x50000000);
                support::put_u32le(block + 2 * simlink::kReadHeadBytes + 4, 0xFADE0008);
            }
            return simlink::kReplyOkay;
        };
        client_.IpcInit();
        client_.IpcOpen(0, client_.IpcResult);
        for (std::int16_t number = 1; number < tables::kFunctionRows; ++number) {
            tables::FunctionRow& row = tables_->functions[static_cast<std::size_t>(number)];
            row.FunctionShortName = "Function";
            row.FunctionDataType = static_cast<std::uint8_t>(number % tables::kNotUsed);
            row.FunctionOffset1 = 0x200 + 8 * number;
            row.FunctionMultiplier = 2;
            row.FunctionDivider = 3;
        }
        for (std::int16_t port = 0; port < kPorts; ++port) {
            std::uint8_t seqnr = 1;
            const auto function = static_cast<std::int16_t>(1 + port % (tables::kFunctionRows - 1));
            sim_com.EnableReadSimPort(sim_com.OpenSimPort(function, seqnr));
        }
    }

  private:
    platform::manual::ManualPlatform machine_;
    platform::Platform platform_ = machine_.platform();
    std::unique_ptr<tables::CoreTables> tables_ = std::make_unique<tables::CoreTables>();
    simlink::IpcClient client_{machine_.sim_transport};
    panel::PanelHost panels_;

  public:
    simlink::SimCom sim_com{*tables_, client_, platform_, panels_};
    bool answered() const { return sim_com.link_alive(); }
};

void report_allocations(benchmark::State& state, std::uint64_t before) {
    state.counters["allocations"] = static_cast<double>(allocations - before);
}

void block_of_500_ports(benchmark::State& state) {
    Ports ports;
    ports.sim_com.ProcessTimer_Timer();
    if (!ports.answered()) {
        state.SkipWithError("the cycle was not answered");
    }
    const std::uint64_t before = allocations;
    for (auto _ : state) {
        ports.sim_com.ProcessTimer_Timer();
    }
    report_allocations(state, before);
}
BENCHMARK(block_of_500_ports)->Unit(benchmark::kMicrosecond);

void values_of_500_ports(benchmark::State& state) {
    Ports ports;
    ports.sim_com.ProcessTimer_Timer();
    const std::uint64_t before = allocations;
    for (auto _ : state) {
        for (int port = 0; port < kPorts; ++port) {
            float value = 0;
            ports.sim_com.GetPort(port, value);
            benchmark::DoNotOptimize(value);
        }
    }
    report_allocations(state, before);
}
BENCHMARK(values_of_500_ports)->Unit(benchmark::kMicrosecond);

void puts_to_500_ports(benchmark::State& state) {
    Ports ports;
    const std::uint64_t before = allocations;
    for (auto _ : state) {
        for (int port = 0; port < kPorts; ++port) {
            float value = 10;
            ports.sim_com.PutPort(port, value);
        }
        ports.sim_com.ProcessTimer_Timer();
    }
    report_allocations(state, before);
}
BENCHMARK(puts_to_500_ports)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
