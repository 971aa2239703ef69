#include "run/radios.h"

#include <array>
#include <string_view>

#include "bus/frames.h"
#include "run/instrument_values.h"

namespace run {

namespace {

// GaugeModel: COM and NAV come first, then the two ADF ranges.
constexpr std::uint8_t kNavRadio = 1;
constexpr std::uint8_t kLastAdfRadio = 3;

// The ADF frequency's second word stands two offsets behind the first.
constexpr int kAdfSecondWord = 2;

constexpr int kReportActive = 7;    // 7, 8
constexpr int kReportStandby = 10;  // 10, 11

constexpr int kDroppedDigit = 10;
constexpr int kLeadingOne = 10000;

// A number as the five digits of a display.
class FiveDigits {
  public:
    explicit FiveDigits(std::uint16_t number) {
        for (auto digit = digits_.rbegin(); digit != digits_.rend(); ++digit) {
            *digit = static_cast<char>('0' + number % 10);
            number = static_cast<std::uint16_t>(number / 10);
        }
    }
    std::string_view view() const { return {digits_.data(), digits_.size()}; }

  private:
    std::array<char, 5> digits_{};
};

}  // namespace

float simulator_frequency(std::uint16_t reported) {
    const int number = reported / kDroppedDigit + kLeadingOne;
    return static_cast<float>(number);
}

void set_up_radio(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    tables::GaugeRow& gauge = run.gauge(Index);
    entry.Port1 = open_writing_port(run, gauge.GaugeFunction1, gauge.GaugeSeqNr1);
    entry.Port2 = kNoSimPort;
    if (gauge.GaugePlate2 != 0) {
        entry.Port2 = open_writing_port(run, gauge.GaugeFunction2, gauge.GaugeSeqNr2);
    }
    if (gauge.GaugeModel > kNavRadio) {
        entry.Port3 = open_writing_port(run, gauge.GaugeFunction1, gauge.GaugeSeqNr1 + kAdfSecondWord);
        gauge.GaugeWritePort3 = write_port(entry.Port3);
        if (gauge.GaugePlate1 != 0) {
            run.sim_com.EnableReadSimPort(entry.Port3);  // PutADF reads it back
        }
    }
    gauge.GaugeWritePort1 = write_port(entry.Port1);
    gauge.GaugeWritePort2 = write_port(entry.Port2);
    run.AssignPollSlot(Index);
}

void tick_radio(RunContext& run, int Index) {
    run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
}

void report_radio(RunContext& run, const bus::GaugeReport& report) {
    const int id = report.gauge_id();
    const tables::GaugeRow& gauge = run.tables.gauges[static_cast<std::size_t>(id)];
    if (gauge.GaugeModel > kLastAdfRadio) {
        return;
    }
    if (gauge.GaugeModel > kNavRadio) {
        run.sim_com.PutADF(FiveDigits(report.word(kReportActive)).view(), id);
        return;
    }
    float active = simulator_frequency(report.word(kReportActive));
    run.sim_com.PutPort(gauge.GaugeWritePort1, active);
    if (gauge.GaugePlate2 != 0) {
        float standby = simulator_frequency(report.word(kReportStandby));
        run.sim_com.PutPort(gauge.GaugeWritePort2, standby);
    }
}

}  // namespace run
