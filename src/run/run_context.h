#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "bus/gauge_bus.h"
#include "platform/platform.h"
#include "run/active_gauges.h"
#include "run/audio_and_trim_state.h"
#include "run/autopilot_state.h"
#include "run/cluster_state.h"
#include "run/navigation_state.h"
#include "run/radio_state.h"
#include "simlink/sim_com.h"
#include "support/steps.h"
#include "tables/core_tables.h"

namespace run {

// Small steps of a tick: when one fails, the user is asked whether the tick goes on behind it.
using TickSteps = support::Steps<std::function<bool(const support::Failure&)>>;

inline constexpr std::size_t kSystemPorts = 14;

// What an instrument family works with: the shared tables, the simulator ports, the list of the run, and the ways to
// put frames on the bus. One per program, owned by the run panel.
struct RunContext {
    RunContext(const platform::Platform& platform_used, tables::CoreTables& core_tables, simlink::SimCom& simulator,
               bus::GaugeBus& bus_used, TickSteps tick_steps);

    const platform::Platform& platform;
    tables::CoreTables& tables;
    simlink::SimCom& sim_com;
    bus::GaugeBus& gauge_bus;
    TickSteps steps;

    ActiveGauges active;
    // Highest index of the active gauge list: the number of gauges less one, never less than 1. 0 before the list has
    // been built.
    std::int16_t ActiveCount = 0;

    std::int16_t CurrentSlot = 0;  // the poll slot of this tick
    std::int16_t LastSlot = -1;    // the highest slot given out
    std::string PollText;          // the one poll frame of this tick, or empty

    // The value that a branch works on, and the needle position that PlateLookup has found for it.
    float GaugeValue = 0;
    std::int16_t LookupPosition = 0;

    // Simulator port of system value 1..14; index 0 is not used.
    std::array<std::int16_t, kSystemPorts + 1> SystemPort{};

    std::int16_t BrightnessByte = 0;  // 0 until the dimmer first moves; then its level with bit 4 set
    ClusterState cluster;

    // What families of instruments remember beside the entries of the list.
    NavigationState navigation;
    RadioState radios;
    AutopilotState autopilot;
    AudioState audio;
    TrimSwitches trim_switches;

    // The entry at a list index, 0..ActiveCount, and the gauge table row behind it.
    ActiveGauge& entry(int Index) { return active[static_cast<std::size_t>(Index)]; }
    tables::GaugeRow& gauge(int Index) { return tables.gauges[entry(Index).ActiveGaugeId]; }

    // Appends one frame to this tick's output. Throws a Failure for a value that is not finite.
    void QueueFrame(int GaugeId, int Command, double Value) { gauge_bus.QueueFrame(GaugeId, Command, Value); }

    // Makes a frame for the entry at list index `Index` this tick's poll frame if its slot is due; a later one of the
    // same tick takes its place. Throws a Failure for a value that is not finite.
    void PollFrame(int Index, int Command, double Value);

    // Gives the entry the next poll slot. Only in a family's set-up.
    void AssignPollSlot(int Index);

    // Looks GaugeValue up on a plate: clamps it in place to the plate's range and leaves the whole part of the needle
    // position, rounded down and not limited, in LookupPosition. False, with both as they were, when there is no such
    // plate or the value is not a number; the needle then stays where it is. Throws a Failure when the position does
    // not fit 16 bits.
    [[nodiscard]] bool PlateLookup(int plate_number);

    // The running counter of AssignPollSlot.
    std::uint16_t next_poll_slot = 0;
};

}  // namespace run
