#include "run/engine_cluster_gauge.h"

#include <bit>

namespace run {

namespace {

// Rows of the function table. The fuel of both tanks is one function.
constexpr std::int16_t kExhaustGasFunction = 40;
constexpr std::int16_t kFuelFlowFunction = 41;
constexpr std::int16_t kOilTemperatureFunction = 42;
constexpr std::int16_t kOilPressureFunction = 43;
constexpr std::int16_t kVacuumFunction = 44;
constexpr std::int16_t kAmpereFunction = 45;
constexpr std::int16_t kFuelFunction = 46;

constexpr std::size_t kNeedleCount = kClusterGaugeCommands.size();

// In an active entry, Port1 is the first simulator port, Port2 the step of the next tick, and Port3 tells by bits which
// of the eight ports were opened, in the order of kPortOrder; those that were stand one behind the other.
constexpr std::int16_t kFirstStep = 1;
constexpr std::int16_t kSteps = 4;

// Needles by the order in which their ports are opened.
constexpr std::array<std::size_t, kNeedleCount> kPortOrder = {2, 3, 4, 5, 6, 7, 0, 1};

struct Step {
    unsigned port_a;  // place in kPortOrder
    unsigned port_b;
};
constexpr std::array<Step, kSteps> kStepPorts = {{{6, 7}, {0, 1}, {2, 3}, {4, 5}}};

// The oil pressure is read as an unsigned word.
constexpr unsigned kOilPressurePort = 3;
constexpr float kWordSignStep = 65535.0F;

int high_byte(std::int16_t word) {
    return static_cast<std::uint16_t>(word) >> 8;
}

int low_byte(std::int16_t word) {
    return static_cast<std::uint16_t>(word) & 0xFF;
}

std::int16_t port_number(const ActiveGauge& entry, unsigned place) {
    const auto opened = static_cast<unsigned>(entry.Port3);
    if ((opened & (1U << place)) == 0) {
        return kNoSimPort;
    }
    const int opened_before = std::popcount(opened & ((1U << place) - 1));
    return static_cast<std::int16_t>(entry.Port1 + opened_before);
}

void serve_needle(RunContext& run, int Index, unsigned place) {
    const ActiveGauge& entry = run.entry(Index);
    const std::size_t needle = kPortOrder[place];
    if (!run.sim_com.GetPort(port_number(entry, place), run.GaugeValue)) {
        return;
    }
    if (place == kOilPressurePort && run.GaugeValue < 0) {
        run.GaugeValue += kWordSignStep;
    }
    if (run.PlateLookup(cluster_gauge_needles(run.gauge(Index))[needle].plate)) {
        run.QueueFrame(entry.ActiveGaugeId, kClusterGaugeCommands[needle], run.LookupPosition);
    }
}

}  // namespace

std::array<ClusterGaugeNeedle, kNeedleCount> cluster_gauge_needles(const tables::GaugeRow& gauge) {
    return {{{kFuelFunction, 1, gauge.GaugeClass1},
             {kFuelFunction, 2, gauge.GaugeSeqNr1},
             {kExhaustGasFunction, 1, high_byte(gauge.GaugePlate1)},
             {kFuelFlowFunction, 1, low_byte(gauge.GaugePlate1)},
             {kOilTemperatureFunction, 1, gauge.GaugeClass2},
             {kOilPressureFunction, 1, gauge.GaugeSeqNr2},
             {kVacuumFunction, 1, high_byte(gauge.GaugePlate2)},
             {kAmpereFunction, 1, low_byte(gauge.GaugePlate2)}}};
}

void set_up_engine_cluster_gauge(RunContext& run, int Index) {
    const auto needles = cluster_gauge_needles(run.gauge(Index));
    std::int16_t first = kNoSimPort;
    unsigned opened = 0;
    for (std::size_t place = 0; place < kNeedleCount; ++place) {
        const ClusterGaugeNeedle& needle = needles[kPortOrder[place]];
        std::uint8_t sequence_number = needle.sequence_number;
        const std::int16_t port = run.sim_com.OpenSimPort(needle.function, sequence_number);
        if (port == kNoSimPort) {
            continue;
        }
        run.sim_com.EnableReadSimPort(port);
        first = opened == 0 ? port : first;
        opened |= 1U << place;
    }
    ActiveGauge& entry = run.entry(Index);
    entry.Port1 = first;
    entry.Port2 = kFirstStep;
    entry.Port3 = static_cast<std::int16_t>(opened);
}

void tick_engine_cluster_gauge(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const Step& step = kStepPorts[static_cast<std::size_t>(entry.Port2)];
    entry.Port2 = static_cast<std::int16_t>((entry.Port2 + 1) % kSteps);
    run.steps.attempt([&] { serve_needle(run, Index, step.port_a); });
    run.steps.attempt([&] { serve_needle(run, Index, step.port_b); });
}

}  // namespace run
