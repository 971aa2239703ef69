// An IO module with everything assigned: 32 LEDs, 48 switches, 8 inputs. Timed apart: the cycle, from its entry to the
// block that it hands to the port, and the receive handler, from the telegram's event to the last write that comes of
// it; with everything changing in every cycle, and with nothing. The simulator's cycle and the port stand outside.
// Nothing here may allocate.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "tests/iomodule/iom_world.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/open_port.h"

namespace {

using iom_test::IomWorld;
using std::chrono::steady_clock;

constexpr int kFirstLedFunction = 51;
constexpr int kFirstSwitchFunction = 101;
constexpr int kFirstInputFunction = 151;
constexpr std::size_t kFrameWithGap = 7;
constexpr int kTurns = 300'000;

enum class Scene { everything_changes, nothing_changes };

class FullModule {
  public:
    FullModule() {
        for (int number = kFirstLedFunction; number < kFirstInputFunction + iomodule::kAnalogueInputs; ++number) {
            world_.define_function(number);
            world_.set_range(number, 0, 100);
        }
        for (int signal = 0; signal < iomodule::kLeds; ++signal) {
            world_.add_led(signal, kFirstLedFunction + signal, iomodule::kLedOnAtCrossover).IomValueA = 50;
        }
        for (int signal = 0; signal < iomodule::kSwitches; ++signal) {
            tables::IomRow& row = world_.add_switch(signal, kFirstSwitchFunction + signal);
            if (signal % 2 != 0) {  // every second one steps its function
                row.IomMode = iomodule::kIncrementOffOn | iomodule::kIncrementOnOff;
                row.IomValueA = 1;
                row.IomValueB = -1;
            }
        }
        for (int signal = 0; signal < iomodule::kAnalogueInputs; ++signal) {
            world_.add_input(signal, kFirstInputFunction + signal, 0, 512, 1023);
        }
        world_.status.set_participant(run::ParticipantPlace::iom1, &module_);
        world_.status.cmdRun_Click();
        for (const bool odd : {false, true}) {
            std::vector<int> on;
            for (int number = odd ? 1 : 0; number < iomodule::kSwitches; number += 2) {
                on.push_back(number);
            }
            std::map<int, int> inputs;
            for (int input = 0; input < iomodule::kAnalogueInputs; ++input) {
                inputs[input] = odd ? 1000 - input : 20 + input;
            }
            telegrams_.push_back(IomWorld::telegram(on, inputs));
        }
    }
    ~FullModule() { world_.status.set_participant(run::ParticipantPlace::iom1, nullptr); }

    // Everything gets another value, or keeps the one it has; the simulator's cycle carries what was written and read.
    void prepare(Scene scene) {
        turn_ += scene == Scene::everything_changes ? 1 : 0;
        for (int signal = 0; signal < iomodule::kLeds; ++signal) {
            world_.set_value(kFirstLedFunction + signal, turn_ % 2 == 0 ? 80 : 20);
        }
        world_.sim_com.ProcessTimer_Timer();
        module_.clear_marks();  // as the page does
    }
    void cycle() { module_.ProcessTimer_Timer(); }
    void take_telegram() { line().give(telegrams_[turn_ % 2]); }

    std::size_t bytes_sent() { return line().last_write_size; }
    // The writes that wait for the simulator's next cycle.
    int writes_waiting() const {
        const auto& ports = world_.sim_com.ports();
        return static_cast<int>(std::count_if(ports.begin(), ports.end(),
                                              [](const simlink::SimPort& port) { return port.WritePending != 0; }));
    }

  private:
    test_support::OpenPort& line() { return *lines_.made.front(); }

    IomWorld world_;
    test_support::OpenPorts lines_;
    platform::Platform platform_{world_.platform.loop,          world_.platform.boxes,       world_.platform.wall_clock,
                                 world_.platform.random,        world_.platform.files,       lines_,
                                 world_.platform.sim_transport, world_.platform.key_delivery};
    iomodule::frmStatusIOM module_{
        {platform_, world_.tables, world_.sim_com, world_.gauge_bus, world_.ports, world_.panels}};
    std::vector<std::string> telegrams_;
    std::size_t turn_ = 0;
};

void report(benchmark::State& state, std::vector<double>& times_us, std::uint64_t allocated) {
    if (allocated != 0) {
        state.SkipWithError("it has allocated");
        return;
    }
    std::sort(times_us.begin(), times_us.end());
    state.counters["median_us"] = times_us[times_us.size() / 2];
    state.counters["p99_us"] = times_us[times_us.size() * 99 / 100];
    state.counters["allocations"] = static_cast<double>(allocated);
}

// Times one of the two and does the other unwatched.
template <typename Before, typename Timed, typename After>
void time_turns(benchmark::State& state, Before&& before, Timed&& timed, After&& after) {
    std::vector<double> times_us;
    times_us.reserve(kTurns);
    std::uint64_t allocated = 0;
    for (int warm_up = 0; warm_up < 100; ++warm_up) {
        before();
        timed();
        after();
    }
    for (auto _ : state) {
        before();
        const std::uint64_t allocations_before = allocations;
        const auto begin = steady_clock::now();
        timed();
        const std::chrono::duration<double> taken = steady_clock::now() - begin;
        allocated += allocations - allocations_before;
        state.SetIterationTime(taken.count());
        times_us.push_back(taken.count() * 1e6);
        if (!after()) {
            state.SkipWithError("not everything was served");
            return;
        }
    }
    report(state, times_us, allocated);
}

void module_cycle(benchmark::State& state, Scene scene) {
    FullModule module;
    const std::size_t expected = (scene == Scene::everything_changes ? iomodule::kLeds + 1 : 1) * kFrameWithGap;
    time_turns(
        state, [&] { module.prepare(scene); }, [&] { module.cycle(); },
        [&] {
            const bool whole = module.bytes_sent() == expected;
            module.take_telegram();
            return whole;
        });
}
BENCHMARK_CAPTURE(module_cycle, everything_changes, Scene::everything_changes)
    ->UseManualTime()
    ->Iterations(kTurns)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(module_cycle, nothing_changes, Scene::nothing_changes)
    ->UseManualTime()
    ->Iterations(kTurns)
    ->Unit(benchmark::kMicrosecond);

void module_telegram(benchmark::State& state, Scene scene) {
    FullModule module;
    const int expected = scene == Scene::everything_changes ? iomodule::kSwitches + iomodule::kAnalogueInputs : 0;
    time_turns(
        state,
        [&] {
            module.prepare(scene);
            module.cycle();
        },
        [&] { module.take_telegram(); }, [&] { return module.writes_waiting() == expected; });
}
BENCHMARK_CAPTURE(module_telegram, everything_changes, Scene::everything_changes)
    ->UseManualTime()
    ->Iterations(kTurns)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(module_telegram, nothing_changes, Scene::nothing_changes)
    ->UseManualTime()
    ->Iterations(kTurns)
    ->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
