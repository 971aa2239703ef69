#include "run/vor_indicators.h"

#include "bus/frames.h"
#include "run/instrument_values.h"
#include "support/rounding.h"

namespace run {

namespace {

constexpr int kLocNeedleFunction = 33;
constexpr int kSlopeNeedleFunction = 34;
constexpr int kToFromFunction = 35;
constexpr int kSlopeFlagFunction = 36;
constexpr int kCourseFunction = 37;
constexpr int kVor1 = 1;
constexpr int kVor2 = 2;

constexpr int kCommandLocNeedle = 5;
constexpr int kCommandSlopeNeedle = 6;
constexpr int kCommandFlags = 12;  // 1 + to/from, plus 4 with a glide slope
constexpr int kSlopeFlagBit = 4;

constexpr int kNeedleCentre = 472;
constexpr double kNeedleSteps = 300;  // from the centre to the end of the scale
constexpr double kNeedleRange = 127;  // the same in the simulator

constexpr int kDiskSteps = 1084;  // a turn
constexpr double kFullTurn = 360;
constexpr double kHighestCourse = 359.9;

int needle_position(double value) {
    const double steps = support::round_half_even(value) / kNeedleRange * kNeedleSteps;
    return kNeedleCentre + support::round_to_i16(steps);
}

void forget_sent(VorMemory& memory) {
    memory.loc_needle.reset();
    memory.slope_needle.reset();
    memory.to_from.reset();
    memory.slope_flag.reset();
}

void open_course_port(RunContext& run, int Index, int receiver) {
    tables::GaugeRow& gauge = run.gauge(Index);
    const bool writes_course = gauge.GaugePlate1 == 0;
    if (writes_course) {
        gauge.GaugeWritePort1 = write_port(open_writing_port(run, kCourseFunction, receiver));
        run.AssignPollSlot(Index);
    }
}

void join_receiver(VorMemory& memory, int Index) {
    if (memory.first_index < 0) {
        memory.first_index = Index;
    }
}

// The needle's frame, if its value has changed.
std::optional<int> look_at_needle(RunContext& run, std::int16_t port, std::optional<float>& seen) {
    const std::optional<double> value = finite_value(run, port);
    if (!value || (seen && static_cast<double>(*seen) == *value)) {
        return std::nullopt;
    }
    seen = static_cast<float>(*value);
    return needle_position(*value);
}

// A flag of the simulator; nothing while it gives none.
std::optional<std::uint8_t> look_at_flag(RunContext& run, std::int16_t port) {
    const std::optional<double> value = finite_value(run, port);
    return value ? std::optional(support::round_to_u8(*value)) : std::nullopt;
}

std::optional<int> look_at_flags(RunContext& run, const ActiveGauge& entry, VorMemory& memory) {
    const std::optional<std::uint8_t> to_from = look_at_flag(run, entry.Port3);
    const std::optional<std::uint8_t> slope_flag = look_at_flag(run, entry.Port4);
    if (!to_from || !slope_flag || (to_from == memory.to_from && slope_flag == memory.slope_flag)) {
        return std::nullopt;
    }
    memory.to_from = to_from;
    memory.slope_flag = slope_flag;
    return 1 + *to_from + (*slope_flag != 0 ? kSlopeFlagBit : 0);
}

std::optional<int> look_at_to_from(RunContext& run, const ActiveGauge& entry, VorMemory& memory) {
    const std::optional<std::uint8_t> to_from = look_at_flag(run, entry.Port2);
    if (!to_from || to_from == memory.to_from) {
        return std::nullopt;
    }
    memory.to_from = to_from;
    return 1 + *to_from;
}

void send_frame(RunContext& run, int Index, int command, const std::optional<int>& value) {
    if (value) {
        run.QueueFrame(run.entry(Index).ActiveGaugeId, command, *value);
    }
}

void send_and_poll(RunContext& run, int Index, const VorMemory& memory) {
    send_frame(run, Index, kCommandLocNeedle, memory.loc_frame);
    send_frame(run, Index, kCommandSlopeNeedle, memory.slope_frame);
    send_frame(run, Index, kCommandFlags, memory.flag_frame);
    run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
}

void take_course(RunContext& run, const bus::GaugeReport& report, VorMemory& memory) {
    const int course = course_of_disk(report.word(kReportDisk));
    if (course == memory.course) {
        return;
    }
    memory.course = static_cast<std::int16_t>(course);
    auto degrees = static_cast<float>(course);
    run.sim_com.PutPort(run.tables.gauges[static_cast<std::size_t>(report.gauge_id())].GaugeWritePort1, degrees);
}

}  // namespace

int course_of_disk(std::uint16_t steps) {
    const double degrees = support::round_half_even((kDiskSteps - static_cast<double>(steps)) / kDiskSteps * kFullTurn);
    return degrees > kHighestCourse ? 0 : static_cast<int>(degrees);
}

void set_up_vor1_indicator(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    entry.Port1 = open_reading_port(run, kLocNeedleFunction, kVor1);
    entry.Port2 = open_reading_port(run, kSlopeNeedleFunction, kVor1);
    entry.Port3 = open_reading_port(run, kToFromFunction, kVor1);
    entry.Port4 = open_reading_port(run, kSlopeFlagFunction, kVor1);
    open_course_port(run, Index, kVor1);
    join_receiver(run.navigation.vor1, Index);
}

void set_up_vor2_indicator(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    entry.Port1 = open_reading_port(run, kLocNeedleFunction, kVor2);
    entry.Port2 = open_reading_port(run, kToFromFunction, kVor2);
    open_course_port(run, Index, kVor2);
    join_receiver(run.navigation.vor2, Index);
}

void tick_vor1_indicator(RunContext& run, int Index) {
    VorMemory& memory = run.navigation.vor1;
    if (Index == memory.first_index) {
        const ActiveGauge& entry = run.entry(Index);
        memory.loc_frame.reset();
        memory.slope_frame.reset();
        memory.flag_frame.reset();
        run.steps.attempt([&] { memory.loc_frame = look_at_needle(run, entry.Port1, memory.loc_needle); });
        run.steps.attempt([&] { memory.slope_frame = look_at_needle(run, entry.Port2, memory.slope_needle); });
        run.steps.attempt([&] { memory.flag_frame = look_at_flags(run, entry, memory); });
    }
    send_and_poll(run, Index, memory);
}

void tick_vor2_indicator(RunContext& run, int Index) {
    VorMemory& memory = run.navigation.vor2;
    if (Index == memory.first_index) {
        const ActiveGauge& entry = run.entry(Index);
        memory.loc_frame.reset();
        memory.flag_frame.reset();
        run.steps.attempt([&] { memory.loc_frame = look_at_needle(run, entry.Port1, memory.loc_needle); });
        run.steps.attempt([&] { memory.flag_frame = look_at_to_from(run, entry, memory); });
    }
    send_and_poll(run, Index, memory);
}

void forget_vor1_indicator(RunContext& run, int /*Index*/) {
    forget_sent(run.navigation.vor1);
}

void forget_vor2_indicator(RunContext& run, int /*Index*/) {
    forget_sent(run.navigation.vor2);
}

void report_vor1_indicator(RunContext& run, const bus::GaugeReport& report) {
    take_course(run, report, run.navigation.vor1);
}

void report_vor2_indicator(RunContext& run, const bus::GaugeReport& report) {
    take_course(run, report, run.navigation.vor2);
}

}  // namespace run
