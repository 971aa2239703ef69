#include "run/audio_panel.h"

#include <array>

#include "bus/frames.h"
#include "run/instrument_values.h"

namespace run {

namespace {

constexpr int kMarkerFunction = 38;  // offsets 1 to 3: outer, middle, inner marker

constexpr int kCommandLamps = 6;

constexpr std::int16_t kLampStep = 3;

constexpr int kReportButtons1 = 7;
constexpr int kReportButtons2 = 8;

// A button of the report and its bit of the sound selector.
struct Button {
    int report_byte;
    unsigned report_bits;
    unsigned selector_bit;
};
constexpr std::array<Button, 8> kButtons = {{
    {kReportButtons1, 1U << 0, 64},                // COM2
    {kReportButtons1, 1U << 1, 8},                 // NAV2
    {kReportButtons1, 1U << 5, 128},               // COM1
    {kReportButtons1, (1U << 5) | (1U << 0), 32},  // COM1 and COM2 together
    {kReportButtons2, 1U << 0, 16},                // NAV1
    {kReportButtons2, 1U << 1, 4},                 // marker
    {kReportButtons2, 1U << 2, 1},                 // ADF
    {kReportButtons2, 1U << 3, 2},                 // DME
}};

std::uint8_t selector_of(const bus::GaugeReport& report) {
    unsigned selector = 0;
    for (const Button& button : kButtons) {
        if ((report.byte(button.report_byte) & button.report_bits) == button.report_bits) {
            selector |= button.selector_bit;
        }
    }
    return static_cast<std::uint8_t>(selector);
}

void look_at_marker(RunContext& run, std::int16_t port, unsigned bit) {
    float value = 0;
    if (!run.sim_com.GetPort(port, value)) {
        return;
    }
    const unsigned lamps = run.audio.MarkerLamps;
    run.audio.MarkerLamps = static_cast<std::uint8_t>(value > 0 ? lamps | bit : lamps & ~bit);
}

void send_lamps(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    if (entry.Last2 != static_cast<float>(run.audio.MarkerLamps)) {
        entry.Last2 = run.audio.MarkerLamps;
        run.QueueFrame(entry.ActiveGaugeId, kCommandLamps, run.audio.MarkerLamps);
    }
}

}  // namespace

void set_up_audio_panel(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    entry.Port1 = open_reading_port(run, kMarkerFunction, 1);
    entry.Port2 = open_reading_port(run, kMarkerFunction, 2);
    entry.Port3 = open_reading_port(run, kMarkerFunction, 3);
    entry.Last1 = 0;
    forget_audio_panel(run, Index);
    run.AssignPollSlot(Index);
}

// Last1 counts the steps.
void tick_audio_panel(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const auto step = static_cast<std::int16_t>(entry.Last1);
    switch (step) {
        case 0:
            look_at_marker(run, entry.Port1, 1U << 0);
            break;
        case 1:
            look_at_marker(run, entry.Port2, 1U << 1);
            break;
        case 2:
            look_at_marker(run, entry.Port3, 1U << 2);
            break;
        default:
            send_lamps(run, Index);
            break;
    }
    entry.Last1 = step >= kLampStep ? 0.0F : entry.Last1 + 1.0F;
    run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
}

void forget_audio_panel(RunContext& run, int Index) {
    run.entry(Index).Last2 = kNothingSent;
}

void report_audio_panel(RunContext& run, const bus::GaugeReport& report) {
    const std::uint8_t selector = selector_of(report);
    run.sim_com.SoundSelector = selector;
    if (selector != run.audio.SoundSelectorSeen) {
        run.audio.SoundSelectorSeen = selector;
        run.sim_com.SetSoundSelector();
    }
}

}  // namespace run
