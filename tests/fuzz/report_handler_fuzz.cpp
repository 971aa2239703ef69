// The gauge port's receiver under anything that a line can bring: garbage, pieces of reports, breaks, a pulled plug,
// halted and running. Afterwards it must take a good report.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "bus/frames.h"
#include "tests/run/run_world.h"

namespace {

constexpr std::size_t kLongestInput = 512;

void check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// The input is a series of steps: a byte of what happens, in its low three bits, and how much of it, in the others;
// what arrives stands behind it.
void play(run_test::RunWorld& world, std::string_view input) {
    while (!input.empty()) {
        const auto step = static_cast<std::uint8_t>(input.front());
        input.remove_prefix(1);
        const std::size_t amount = step >> 3U;
        switch (step & 7U) {
            case 0:
                world.advance(static_cast<int>(amount) * 5);
                break;
            case 1:
                world.wire.send_break();
                break;
            case 2:
                world.wire.send_framing_error();
                break;
            case 3:
                world.wire.unplug();
                break;
            case 4:
                world.wire.plug();
                break;
            default:
                world.wire.deliver(input.substr(0, amount));
                input.remove_prefix(std::min(amount, input.size()));
                break;
        }
        check(world.tables.LastReply.size() <= bus::kReportLength);
    }
}

std::string good_report() {
    std::string report(bus::kReportLength, 'P');
    report[0] = 0;
    report[1] = 1;
    report[2] = 101;
    report[bus::kReportLength - 1] = static_cast<char>(bus::kReportEnd);
    return report;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestInput) {
        return 0;
    }
    run_test::RunWorld world;
    world.wire.record = false;
    world.add_gauge(1, 101);
    world.add_gauge(2, 1, 40);
    world.ports.OpenAllPorts();
    if (size > 0 && (data[0] & 1U) != 0) {
        world.status.cmdRun_Click();
    }
    play(world, {reinterpret_cast<const char*>(data), size});

    world.wire.plug();
    world.advance(300);  // longer than the longest input takes on the line
    world.status.cmdStop_Click();
    world.advance(100);
    world.gauge_bus.FlushFrames();
    world.wire.deliver(good_report());
    world.advance(30);
    check(world.tables.LastReply == good_report());
    return 0;
}
