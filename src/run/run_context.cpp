#include "run/run_context.h"

#include <cmath>
#include <optional>
#include <utility>

#include "bus/frames.h"
#include "run/plate_lookup.h"
#include "support/rounding.h"

namespace run {

RunContext::RunContext(const platform::Platform& platform_used, tables::CoreTables& core_tables,
                       simlink::SimCom& simulator, bus::GaugeBus& bus_used, TickSteps tick_steps)
    : platform(platform_used),
      tables(core_tables),
      sim_com(simulator),
      gauge_bus(bus_used),
      steps(std::move(tick_steps)) {}

void RunContext::PollFrame(int Index, int Command, double Value) {
    const ActiveGauge& polled = entry(Index);
    if (CurrentSlot != polled.PollSlot) {
        return;
    }
    PollText.clear();
    support::append_byte(PollText, bus::kFrameGap);
    bus::append_frame(PollText, polled.ActiveGaugeId, Command, Value);
}

void RunContext::AssignPollSlot(int Index) {
    entry(Index).PollSlot = next_poll_slot++;
}

bool RunContext::PlateLookup(int plate_number) {
    const tables::Plate* const plate = find_plate(tables, plate_number);
    if (plate == nullptr) {
        return false;
    }
    double value = GaugeValue;
    const std::optional<double> position = plate_position(*plate, value);
    if (!position) {
        return false;
    }
    if (value != static_cast<double>(GaugeValue)) {
        GaugeValue = support::narrow_to_f32(value);
    }
    LookupPosition = support::round_to_i16(std::floor(*position));
    return true;
}

}  // namespace run
