// The simulator link and the tick's clock as the system itself gives them, against a running simhost: how long one
// block takes, and how late a timer of 40 ms comes while another exchanges a block every 20 ms. Built for both systems
// from this source; benchmarks/windows runs both and compares.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <vector>

#include "app/native.h"
#include "simlink/ipc_client.h"

namespace {

using platform::Milliseconds;
using std::chrono::duration;

constexpr int kBlocks = 3000;
constexpr int kReads = 90;  // as many as a large cockpit has ports
constexpr std::uint32_t kFirstOffset = 0x0280;
constexpr std::size_t kTicks = 500;

void tell(const char* what, std::vector<double> figures_us) {
    std::sort(figures_us.begin(), figures_us.end());
    const std::size_t last = figures_us.size() - 1;
    std::printf("%-40s median %7.0f us, p99 %7.0f us, worst %7.0f us\n", what, figures_us[last / 2],
                figures_us[last * 99 / 100], figures_us[last]);
    std::fflush(stdout);
}

bool exchange(simlink::IpcClient& client, std::array<std::uint32_t, kReads>& values) {
    std::int32_t result = 0;
    for (int read = 0; read < kReads; ++read) {
        const auto place = static_cast<std::uint32_t>(read);
        client.IpcRead(kFirstOffset + 4 * place, sizeof(values[0]), &values[place], result);
    }
    return client.IpcProcess(result);
}

int measure() {
    platform::native::Loop loop;
    platform::native::SimTransport transport(loop);
    simlink::IpcClient client(transport);
    std::int32_t result = 0;
    client.IpcInit();
    if (!client.IpcOpen(0, result)) {
        std::fprintf(stderr, "no simulator: result %d\n", static_cast<int>(result));
        return 1;
    }
    std::array<std::uint32_t, kReads> values{};
    std::vector<double> round_trips;
    for (int block = 0; block < kBlocks; ++block) {
        const platform::TimePoint begin = loop.now();
        if (!exchange(client, values)) {
            std::fprintf(stderr, "the simulator has gone\n");
            return 1;
        }
        round_trips.push_back(duration<double, std::micro>(loop.now() - begin).count());
    }
    tell("a block of 90 reads", round_trips);

    std::vector<double> delays;
    platform::Timer cycle(loop, "cycle", Milliseconds(20), [&] { exchange(client, values); });
    platform::Timer tick(loop, "tick", Milliseconds(40),
                         [&] { delays.push_back(duration<double, std::micro>(tick.last_delay()).count()); });
    cycle.start();
    tick.start();
    loop.yield_until([&] { return delays.size() >= kTicks; });
    tell("a tick of 40 ms comes late by", delays);
    return 0;
}

}  // namespace

int main() {
    return measure();
}
