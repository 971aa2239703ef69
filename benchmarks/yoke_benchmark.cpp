// One tick of a yoke in Force Feedback mode with everything moving, from the timer to the block that it hands to the
// port, and the telegram that answers. Nothing here may allocate.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

#include "platform/manual/manual_platform.h"
#include "simhost/block_server.h"
#include "simhost/offset_space.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/open_port.h"
#include "yoke/frm_status_ffb.h"

namespace {

constexpr int kFirstFunction = 190;

class YokeBench {
  public:
    YokeBench() {
        machine_.sim_transport.server = [this](std::uint8_t* block, std::size_t size) {
            return server_.answer(block, size).value;
        };
        client_.IpcInit();
        client_.IpcOpen(0, client_.IpcResult);
        for (int number = 1; number < tables::kFunctionRows; ++number) {
            tables::FunctionRow& row = tables_->functions[static_cast<std::size_t>(number)];
            row.FunctionShortName = "Function";
            row.FunctionDataType = tables::kDouble;
            row.FunctionMultiplier = row.FunctionDivider = 1;
            row.FunctionOffset1 = 0x1000 + 8 * number;
        }
        tables::YokeSettings& settings = tables_->yokes[0];
        settings.FFBEffectAilerons = settings.FFBEffectElevator = 80;
        settings.TurbulenceAilerons = settings.TurbulenceElevator = 50;
        settings.StandbyTime = 600;
        settings.ShakerAtStall = 1;
        settings.YokeCalibration = {0, 1023, 0, 1023};
        for (std::size_t point = 0; point <= 10; ++point) {
            tables_->yoke_common.AileronForceCurve[point] = {static_cast<float>(800 + 1000 * point),
                                                             static_cast<float>(5500 - 500 * point)};
        }
        tables_->yoke_common.AileronForceCurve[12].airspeed = 4;
        tables_->yoke_common.ElevatorForceCurve = tables_->yoke_common.AileronForceCurve;
        tables_->yoke_common.ModeSlaveToMasterY1 = yoke::kForceFeedback;
        tables_->YokePort1 = 1;
        status_.set_participant(run::ParticipantPlace::yokes, &both_);
        status_.cmdRun_Click();
        for (int tick = 0; tick < 120; ++tick) {
            move();
            yoke1_.ProcessTimer_Timer();
        }
    }
    ~YokeBench() { status_.set_participant(run::ParticipantPlace::yokes, nullptr); }

    void move() {
        ++moves_;
        for (int number = 0; number < 18; ++number) {
            space_->write_f64(static_cast<std::uint32_t>(0x1000 + 8 * (kFirstFunction + number)),
                              number < 4 || number == 17 ? 0 : (moves_ * 37 + number) % 100 * 0.1);
        }
        tables_->AircraftIAS = static_cast<float>(moves_ * 13 % 300);
        status_string_[7] = static_cast<char>(moves_ % 250);
        status_string_[10] = static_cast<char>(moves_ * 3 % 250);
        status_string_[18] = static_cast<char>(moves_ % 200);
        sim_com_.ProcessTimer_Timer();
        yoke1_.clear_marks();
    }
    void tick_and_answer() {
        yoke1_.ProcessTimer_Timer();
        line().give(status_string_);
    }
    std::size_t written() { return line().last_write_size; }

  private:
    // The run panel's own port is made first.
    test_support::OpenPort& line() { return *lines_.made[1]; }

    platform::manual::ManualPlatform machine_;
    test_support::OpenPorts lines_;
    platform::Platform platform_{machine_.loop,  machine_.boxes, machine_.wall_clock,    machine_.random,
                                 machine_.files, lines_,         machine_.sim_transport, machine_.key_delivery};
    std::unique_ptr<tables::CoreTables> tables_ = std::make_unique<tables::CoreTables>();
    std::unique_ptr<simhost::OffsetSpace> space_ = std::make_unique<simhost::OffsetSpace>();
    simhost::BlockServer server_{*space_};
    simlink::IpcClient client_{machine_.sim_transport};
    panel::PanelHost panels_;
    simlink::SimCom sim_com_{*tables_, client_, platform_, panels_};
    bus::GaugeBus gauge_bus_{platform_, *tables_};
    bus::PortSet ports_{machine_.boxes, *tables_};
    run::frmStatus status_{{platform_, *tables_, sim_com_, gauge_bus_, ports_, panels_}};
    yoke::YokeRoles roles_;
    yoke::frmConfigY1 yoke1_{{platform_, *tables_, sim_com_, ports_, panels_, status_}, roles_};
    yoke::frmConfigY2 yoke2_{{platform_, *tables_, sim_com_, ports_, panels_, status_}, roles_};
    yoke::frmStatusFFB both_{{platform_, *tables_, sim_com_, ports_, panels_, status_}, roles_, yoke1_, yoke2_};
    std::string status_string_ = std::string("...\x03..\x01.P\x02.S\x00\x01...\x00.\x00.....", 24) + ".";
    int moves_ = 0;
};

void tick_of_a_yoke(benchmark::State& state) {
    YokeBench bench;
    std::vector<double> times_us;
    times_us.reserve(1'000'000);
    std::uint64_t allocated = 0;
    for (auto _ : state) {
        bench.move();
        const std::uint64_t before = allocations;
        const auto begin = std::chrono::steady_clock::now();
        bench.tick_and_answer();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
        allocated += allocations - before;
        state.SetIterationTime(taken.count());
        times_us.push_back(taken.count() * 1e6);
        if (bench.written() != 13) {
            state.SkipWithError("the tick has sent no command");
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
}
BENCHMARK(tick_of_a_yoke)->UseManualTime()->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
