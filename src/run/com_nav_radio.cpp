#include "run/com_nav_radio.h"

#include "bus/frames.h"
#include "run/instrument_values.h"
#include "run/radios.h"

namespace run {

namespace {

constexpr int kComActiveFunction = 20;
constexpr int kComStandbyFunction = 21;
constexpr int kNavActiveFunction = 22;
constexpr int kNavStandbyFunction = 23;

constexpr int kReportComActive = 7;    // 7, 8
constexpr int kReportComStandby = 10;  // 10, 11
constexpr int kReportNavActive = 13;   // 13, 14
constexpr int kReportNavStandby = 16;  // 16, 17
constexpr int kReportPower = 23;
constexpr int kPowerOffBit = 32;

constexpr float kFrequencyWhenOff = 10000;  // 100.00 MHz

float frequency_of(const bus::GaugeReport& report, int byte_number) {
    const bool off = (report.byte(kReportPower) & kPowerOffBit) != 0;
    return off ? kFrequencyWhenOff : simulator_frequency(report.word(byte_number));
}

void put_if_changed(RunContext& run, std::uint16_t port, float value, float& last) {
    if (value != last) {
        last = value;
        run.sim_com.PutPort(port, value);
    }
}

bool dme_owns_nav(const RunContext& run, const tables::GaugeRow& gauge) {
    return (gauge.GaugeSeqNr2 == 1 && run.radios.NavHold1 == 1) || (gauge.GaugeSeqNr2 == 2 && run.radios.NavHold2 == 1);
}

}  // namespace

void set_up_com_nav_radio(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    tables::GaugeRow& gauge = run.gauge(Index);
    entry.Port1 = open_writing_port(run, kComActiveFunction, gauge.GaugeSeqNr1);
    gauge.GaugeWritePort1 = write_port(entry.Port1);
    entry.Port2 = open_writing_port(run, kNavActiveFunction, gauge.GaugeSeqNr1);
    gauge.GaugeWritePort2 = write_port(entry.Port2);
    if (gauge.GaugePlate2 != 0) {
        entry.Port3 = open_writing_port(run, kComStandbyFunction, gauge.GaugeSeqNr1);
        gauge.GaugeWritePort3 = write_port(entry.Port3);
        entry.Port4 = open_writing_port(run, kNavStandbyFunction, gauge.GaugeSeqNr1);
        gauge.GaugeWritePort4 = write_port(entry.Port4);
    }
    gauge.GaugeRunIndex = static_cast<float>(Index);  // by which a report finds the entry
    entry.Last1 = entry.Last2 = entry.Last3 = entry.Last4 = kNothingSent;
    run.AssignPollSlot(Index);
}

void tick_com_nav_radio(RunContext& run, int Index) {
    run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
}

void report_com_nav_radio(RunContext& run, const bus::GaugeReport& report) {
    const tables::GaugeRow& gauge = run.tables.gauges[static_cast<std::size_t>(report.gauge_id())];
    const int index = static_cast<int>(gauge.GaugeRunIndex);
    if (index < 0 || index > run.ActiveCount) {
        return;
    }
    ActiveGauge& entry = run.entry(index);
    if (entry.ActiveGaugeId != report.gauge_id()) {
        return;  // a unit that is not in the list
    }
    put_if_changed(run, gauge.GaugeWritePort1, frequency_of(report, kReportComActive), entry.Last1);
    if (!dme_owns_nav(run, gauge)) {
        put_if_changed(run, gauge.GaugeWritePort2, frequency_of(report, kReportNavActive), entry.Last2);
    }
    if (gauge.GaugePlate2 == 0) {
        return;
    }
    put_if_changed(run, gauge.GaugeWritePort3, frequency_of(report, kReportComStandby), entry.Last3);
    put_if_changed(run, gauge.GaugeWritePort4, frequency_of(report, kReportNavStandby), entry.Last4);
}

}  // namespace run
