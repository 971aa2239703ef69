#include "run/dme_indicators.h"

#include <array>
#include <cmath>
#include <optional>
#include <string>

#include "run/instrument_values.h"
#include "support/number_format.h"
#include "support/rounding.h"

namespace run {

namespace {

constexpr std::int16_t kDistanceFunction = 27;  // nautical miles; its fourth offset tells whether there is a signal
constexpr std::int16_t kSpeedFunction = 28;     // knots
constexpr std::int16_t kTimeFunction = 29;      // minutes
constexpr std::int16_t kSelectFunction = 30;    // the DME number that the simulator shows
constexpr int kSignalSequence = 4;
constexpr std::int32_t kNoOffset = 1;  // 0 and 1 stand in functions that have no such offset

constexpr int kCommandSpeed = 3;
constexpr int kCommandDistance = 4;
constexpr int kCommandTime = 5;

// Words of a display.
constexpr int kPointBehindSecond = 0x2000;
constexpr int kPointBehindFirst = 0x4000;
constexpr int kNoSignal = 0x3000;  // alone, or added to digits: the display goes dark
constexpr int kBlankTime = 0x99;

constexpr double kHighestWithTenths = 99.9;

constexpr int kRotaryByte = 17;
constexpr int kFrequencyHighByte = 20;  // kHz above 100 MHz; byte 19 is the low byte
constexpr int kFrequencyLowByte = 19;

constexpr float kLastStep = 4;

// Bits of the Bendix/King DME's GaugePlate1.
constexpr int kSwitchMask = 3;
constexpr int kRemoteNav2 = 4;
enum SwitchUse : int { kLocalDme1 = 0, kLocalDme2 = 1, kNav1 = 2, kNav2 = 3 };
constexpr int kSwitchRemote = 1;

void open_ports(RunContext& run, int Index, int sequence_number) {
    ActiveGauge& entry = run.entry(Index);
    entry.Port1 = open_reading_port(run, kDistanceFunction, sequence_number);
    entry.Port2 = open_reading_port(run, kSpeedFunction, sequence_number);
    entry.Port3 = open_reading_port(run, kTimeFunction, sequence_number);
    run.gauge(Index).GaugeWritePort4 = write_port(open_writing_port(run, kSelectFunction, sequence_number));
    run.AssignPollSlot(Index);
    entry.Last1 = 0;
    entry.Port4 = kNoSimPort;
    if (run.tables.functions[kDistanceFunction].FunctionOffset4 > kNoOffset) {
        entry.Port4 = open_reading_port(run, kDistanceFunction, kSignalSequence);
    }
    run.gauge(Index).GaugeRunIndex = 0;
    run.radios.DmeSelected = 1;
}

void choose_station(RunContext& run, int Index, std::uint8_t number) {
    const ActiveGauge& entry = run.entry(Index);
    for (const std::int16_t port : {entry.Port1, entry.Port2, entry.Port3}) {
        run.sim_com.NewSeqNr(port, number);
    }
}

// Numbers that the displays have no room or no sign for are packed as they are written.
int packed(double value, std::string_view picture) {
    std::string text;  // short enough to need no memory of its own
    support::format_number(value, picture, text);
    return pack_digits(text);
}

int word_with_tenths(double value) {
    const double tenths = support::round_half_even(value * 10.0) / 10.0;
    return packed(tenths, tenths <= kHighestWithTenths ? "00.0" : "000");
}

int word_of_minutes(double value) {
    return packed(std::floor(value), "00");
}

// --- Type 113: Last4 is -1 while there is no signal.

void send_distance(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const std::optional<double> distance = finite_value(run, entry.Port1);
    if (!distance) {
        return;
    }
    bool signal = *distance >= 0;
    if (entry.Port4 != kNoSimPort) {
        float state = 0;
        signal = run.sim_com.GetPort(entry.Port4, state) && state != 0.0F;
    }
    entry.Last4 = signal ? 0.0F : -1.0F;
    run.QueueFrame(entry.ActiveGaugeId, kCommandDistance, word_with_tenths(*distance) + (signal ? 0 : kNoSignal));
}

void send_speed(RunContext& run, int Index) {
    const ActiveGauge& entry = run.entry(Index);
    if (const std::optional<double> speed = finite_value(run, entry.Port2)) {
        run.QueueFrame(entry.ActiveGaugeId, kCommandSpeed,
                       word_with_tenths(*speed) + (entry.Last4 < 0 ? kNoSignal : 0));
    }
}

void send_time(RunContext& run, int Index) {
    const ActiveGauge& entry = run.entry(Index);
    if (entry.Last4 < 0) {
        run.QueueFrame(entry.ActiveGaugeId, kCommandTime, kBlankTime);
    } else if (const std::optional<double> minutes = finite_value(run, entry.Port3)) {
        run.QueueFrame(entry.ActiveGaugeId, kCommandTime, word_of_minutes(*minutes));
    }
}

// --- Type 123.

void send_or_blank(RunContext& run, int Index, int command, std::int16_t port, int (*word_of)(double)) {
    const std::uint16_t id = run.entry(Index).ActiveGaugeId;
    const int good = run.sim_com.NavGoodFlags & run.radios.DmeSelected;
    if (good == 0) {
        run.QueueFrame(id, command, kNoSignal);
    } else if (const std::optional<double> value = finite_value(run, port)) {
        run.QueueFrame(id, command, word_of(*value));
    }
}

int word_of_knots(double value) {
    return packed(support::round_half_even(value), "000");
}

void next_step(ActiveGauge& entry) {
    entry.Last1 = entry.Last1 >= kLastStep ? 0.0F : entry.Last1 + 1.0F;
}

// Five digits; the radio takes the last four, 1245 for 112.45 MHz.
std::string_view nav_text(int frequency_khz, std::array<char, 5>& text) {
    int rest = frequency_khz / 10;
    for (std::size_t place = text.size(); place > 0; --place) {
        text[place - 1] = static_cast<char>('0' + rest % 10);
        rest /= 10;
    }
    return {text.data(), text.size()};
}

}  // namespace

std::uint16_t pack_digits(std::string_view text) {
    unsigned word = 0;
    std::size_t mark = 0;
    for (std::size_t place = 1; place <= text.size(); ++place) {
        const char character = text[place - 1];
        if (character >= '0' && character <= '9') {
            word = word << 4 | static_cast<unsigned>(character - '0');
        } else {
            mark = place;
        }
    }
    if (mark == 3) {
        word += kPointBehindSecond;
    } else if (mark == 2) {
        word += kPointBehindFirst;
    }
    return static_cast<std::uint16_t>(word);
}

void set_up_dme(RunContext& run, int Index) {
    tables::GaugeRow& gauge = run.gauge(Index);
    if (gauge.GaugeSeqNr1 == 0) {
        gauge.GaugeSeqNr1 = 1;
    }
    open_ports(run, Index, gauge.GaugeSeqNr1);
}

void tick_dme(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const tables::GaugeRow& gauge = run.gauge(Index);
    const auto step = static_cast<int>(entry.Last1);
    next_step(entry);
    run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
    if (step == 0) {
        if (gauge.GaugePlate1 == 0) {
            choose_station(run, Index, run.radios.DmeSelected);
        } else if (gauge.GaugeRunIndex == 1.0F || gauge.GaugeRunIndex == 2.0F) {
            choose_station(run, Index, static_cast<std::uint8_t>(gauge.GaugeRunIndex));
        }
    } else if (step == 2) {
        send_distance(run, Index);
    } else if (step == 3) {
        send_speed(run, Index);
    } else if (step == 4) {
        send_time(run, Index);
    }
}

void report_dme(RunContext& run, const bus::GaugeReport& report) {
    tables::GaugeRow& gauge = run.tables.gauges[static_cast<std::size_t>(report.gauge_id())];
    const int rotary = report.byte(kRotaryByte);
    if (rotary != 2 && rotary != 4) {
        return;
    }
    const int number = rotary / 2;
    if (gauge.GaugePlate1 != 0) {
        gauge.GaugeRunIndex = static_cast<float>(number);
        return;
    }
    run.radios.DmeSelected = static_cast<std::uint8_t>(number);
    if (gauge.GaugeWritePort4 != tables::kNoWritePort) {
        auto value = static_cast<float>(number);
        run.sim_com.PutPort(gauge.GaugeWritePort4, value);
    }
}

void set_up_bk_dme(RunContext& run, int Index) {
    open_ports(run, Index, 1);
}

void tick_bk_dme(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
    if (run.radios.DmeSelected == 0) {
        entry.Last1 = 0;
        return;
    }
    const auto step = static_cast<int>(entry.Last1);
    next_step(entry);
    if (step == 0) {
        choose_station(run, Index, run.radios.DmeSelected);
        run.sim_com.GetNAVRadiosStatus();
    } else if (step == 2) {
        send_or_blank(run, Index, kCommandDistance, entry.Port1, word_with_tenths);
    } else if (step == 3) {
        send_or_blank(run, Index, kCommandSpeed, entry.Port2, word_of_knots);
    } else if (step == 4) {
        send_or_blank(run, Index, kCommandTime, entry.Port3, word_of_minutes);
    }
}

void report_bk_dme(RunContext& run, const bus::GaugeReport& report) {
    const tables::GaugeRow& gauge = run.tables.gauges[static_cast<std::size_t>(report.gauge_id())];
    RadioState& radios = run.radios;
    if ((report.byte(kRotaryByte) & kSwitchMask) == kSwitchRemote) {
        radios.NavHold1 = 0;
        radios.NavHold2 = 0;
        radios.DmeSelected = (gauge.GaugePlate1 & kRemoteNav2) != 0 ? 2 : 1;
        return;
    }
    const int use = gauge.GaugePlate1 & kSwitchMask;
    radios.DmeSelected = use == kLocalDme1 || use == kNav1 ? 1 : 2;
    if (use == kLocalDme1 || use == kLocalDme2) {
        return;
    }
    (use == kNav1 ? radios.NavHold1 : radios.NavHold2) = 1;
    const int frequency_khz = report.byte(kFrequencyHighByte) * 256 + report.byte(kFrequencyLowByte);
    if (frequency_khz == radios.DmeFrequencySeen) {
        return;
    }
    radios.DmeFrequencySeen = frequency_khz;
    std::array<char, 5> text{};
    if (use == kNav1) {
        run.sim_com.PutNAV1Frequency(nav_text(frequency_khz, text));
    } else {
        run.sim_com.PutNAV2Frequency(nav_text(frequency_khz, text));
    }
}

}  // namespace run
