#include "run/clocks.h"

#include <algorithm>
#include <cmath>

#include "run/instrument_values.h"
#include "run/system_ports.h"
#include "simlink/sim_time.h"
#include "support/number_format.h"
#include "support/rounding.h"

namespace run {

namespace {

// How a clock is kept right: the low four bits of GaugePlate1.
enum SyncMode : int {
    kFromPc = 1,
    kFromSimulator = 2,
    kToSimulatorAtStart = 3,  // Boeing clock only
};
constexpr int kSyncModeMask = 15;

constexpr std::int16_t kTimeFunction = 10;

// Commands of both clocks.
constexpr int kCommandTime = 5;  // seconds of the day; universal time on the Cessna clock
// Of the Boeing clock.
constexpr int kCommandDate = 4;  // year since 2000 * 1024 + month * 64 + day
// Of the Cessna clock.
constexpr int kCommandLocalHour = 4;
constexpr int kCommandVoltage = 9;  // volts * 256 + tenths
constexpr int kCommandCelsius = 11;
constexpr int kCommandFahrenheit = 12;

constexpr std::int16_t kLastBoeingStep = 5;

// Counts of the Cessna clock's cycle.
constexpr std::int16_t kCountReadTime = 20;
constexpr std::int16_t kCountTakeTime = 25;
constexpr std::int16_t kCountSendTime = 27;
constexpr std::int16_t kCountPastTime = 28;
constexpr std::int16_t kCountVoltage = 40;
constexpr std::int16_t kCountCelsius = 50;
constexpr std::int16_t kCountFahrenheit = 60;
constexpr std::int16_t kLastCessnaCount = 100;

constexpr double kHighestVoltage = 99.9;  // two digits and a tenth
constexpr int kYearBase = 2000;

// Bytes of the Boeing clock's report.
constexpr int kReportYear = 7;  // since 2000
constexpr int kReportMonth = 8;
constexpr int kReportDay = 9;
constexpr int kReportHour = 11;
constexpr int kReportMinute = 12;
constexpr int kReportSecond = 13;

int sync_mode(const tables::GaugeRow& gauge) {
    return gauge.GaugePlate1 & kSyncModeMask;
}

std::int32_t pc_seconds(const platform::DateTime& pc) {
    return simlink::seconds_for_clock(pc.hour, pc.minute, pc.second);
}

int date_word(int year, int month, int day) {
    // NOTE: the simulator's year counts from 2000, one that a clock has reported from 0; the word takes both.
    const int year_since_2000 = year >= kYearBase ? year - kYearBase : year;
    return (year_since_2000 & 63) * 1024 + (month & 15) * 64 + (day & 31);
}

// --- Boeing clock -------------------------------------------------------------------------------------------------

// NOTE: A clock that sets the simulator is asked by the first tick, and not while the lists are built: its answer
// counts only during a run, and a request that leaves earlier may be answered too early.
void ask_clock(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    if (entry.StepCounter != 0) {
        entry.StepCounter = 0;
        run.QueueFrame(entry.ActiveGaugeId, bus::kCommandStatus, bus::kStatusInRun);
    }
}

void take_time(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    if (sync_mode(run.gauge(Index)) == kFromSimulator) {
        run.sim_com.GetTimeAndDate();
        run.sim_com.DisableReadSimPort(run.SystemPort[kTimePort]);
    } else if (entry.Last1 == kNothingSent) {
        entry.Last1 = run.sim_com.SimSecond;
        run.QueueFrame(entry.ActiveGaugeId, kCommandTime, pc_seconds(run.platform.wall_clock.local_now()));
    }
}

// Sets the clock once and then once a minute, at second 0.
// NOTE: Only in simulator mode: what another clock has asked for must not set this one. While the simulator is silent
// its last time is not sent; when it is back the clock is set at once.
void send_simulator_time(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const tables::GaugeRow& gauge = run.gauge(Index);
    if (sync_mode(gauge) != kFromSimulator) {
        return;
    }
    const simlink::SimCom& simulator = run.sim_com;
    if (!simulator.link_alive()) {
        entry.Last1 = kNothingSent;
        return;
    }
    const bool utc = gauge.GaugePlate2 != 0;
    const auto mark = static_cast<float>(utc ? simulator.SimZuluSeconds : std::int32_t{simulator.SimSecond});
    if (mark == entry.Last1) {
        return;
    }
    const bool due = entry.Last1 == kNothingSent || simulator.SimSecond == 0;
    entry.Last1 = mark;
    if (due) {
        run.QueueFrame(entry.ActiveGaugeId, kCommandTime, utc ? simulator.SimZuluSeconds : simulator.SimLocalSeconds);
    }
}

// NOTE: The PC's date is taken anew at every cycle, so that a clock that goes by it passes midnight, and is not shared
// with clocks that go by the simulator.
void send_date(RunContext& run, int Index) {
    const std::uint16_t id = run.entry(Index).ActiveGaugeId;
    if (sync_mode(run.gauge(Index)) == kFromPc) {
        const platform::DateTime pc = run.platform.wall_clock.local_now();
        run.QueueFrame(id, kCommandDate, date_word(pc.year, pc.month, pc.day));
    } else {
        const simlink::SimCom& simulator = run.sim_com;
        run.QueueFrame(id, kCommandDate, date_word(simulator.SimYear2, simulator.SimMonth, simulator.SimDay));
    }
}

// --- Cessna clock -------------------------------------------------------------------------------------------------

void send_time(RunContext& run, int Index) {
    const std::uint16_t id = run.entry(Index).ActiveGaugeId;
    if (sync_mode(run.gauge(Index)) == kFromPc) {
        // Taken now: the run may start long after its lists were built.
        const platform::DateTime pc = run.platform.wall_clock.local_now();
        run.QueueFrame(id, kCommandTime, pc_seconds(pc));
        run.QueueFrame(id, kCommandLocalHour, pc.hour);
    } else if (run.sim_com.link_alive()) {
        run.QueueFrame(id, kCommandTime, run.sim_com.SimZuluSeconds);
        run.QueueFrame(id, kCommandLocalHour, run.sim_com.SimHour);
    }
}

void send_voltage(RunContext& run, int Index) {
    const double voltage = run.tables.MainBusVoltage;
    if (!std::isfinite(voltage)) {
        return;
    }
    std::string text;  // short enough to need no memory of its own
    support::format_number(std::clamp(voltage, 0.0, kHighestVoltage), "00.0", text);
    const auto digit = [&text](std::size_t place) { return text[place] - '0'; };
    run.QueueFrame(run.entry(Index).ActiveGaugeId, kCommandVoltage, (digit(0) * 10 + digit(1)) * 256 + digit(3));
}

// NOTE: The clock keeps the temperature that it has read itself: another clock's GetTimeAndDate leaves an unscaled one
// in SimOutsideTemp. It asks for the reading at every tick of its turn, since another clock may end it.
void read_temperature(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const std::int16_t port = run.SystemPort[kOutsideTemperaturePort];
    if (entry.Port1 == kCountVoltage) {
        entry.Last1 = run.sim_com.SimOutsideTemp;
    } else {
        run.sim_com.GetPort(port, entry.Last1);
    }
    if (entry.Port1 == kCountCelsius) {
        run.sim_com.DisableReadSimPort(port);
    } else {
        run.sim_com.EnableReadSimPort(port);
    }
}

void send_temperature(RunContext& run, int Index, int command, double degrees) {
    if (std::isfinite(degrees)) {
        run.QueueFrame(run.entry(Index).ActiveGaugeId, command, support::round_half_even(degrees));
    }
}

}  // namespace

void set_up_boeing_clock(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    open_reading_port(run, kTimeFunction, 1);
    entry.Port1 = 0;
    entry.StepCounter = sync_mode(run.gauge(Index)) == kToSimulatorAtStart ? 1 : 0;  // 1 = has to be asked
    forget_boeing_clock(run, Index);
}

void tick_boeing_clock(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    switch (entry.Port1) {
        case 0:
            ask_clock(run, Index);
            break;
        case 1:
            if (sync_mode(run.gauge(Index)) == kFromSimulator) {
                run.sim_com.EnableReadSimPort(run.SystemPort[kTimePort]);
            }
            break;
        case 2:
            take_time(run, Index);
            break;
        case 3:
            send_simulator_time(run, Index);
            break;
        case 4:
            send_date(run, Index);
            break;
        default:
            break;
    }
    entry.Port1 = entry.Port1 >= kLastBoeingStep ? std::int16_t{0} : static_cast<std::int16_t>(entry.Port1 + 1);
}

void forget_boeing_clock(RunContext& run, int Index) {
    const int mode = sync_mode(run.gauge(Index));
    if (mode == kFromPc || mode == kFromSimulator) {
        run.entry(Index).Last1 = kNothingSent;
    }
}

void report_boeing_clock(RunContext& run, const bus::GaugeReport& report) {
    // NOTE: no marker bytes tell this report from noise, so a time of day that cannot be is dropped.
    if (report.byte(kReportHour) > 23 || report.byte(kReportMinute) > 59 || report.byte(kReportSecond) > 59) {
        return;
    }
    simlink::SimCom& simulator = run.sim_com;
    simulator.SimYear2 = static_cast<std::int16_t>(report.byte(kReportYear) + kYearBase);
    simulator.SimMonth = report.byte(kReportMonth);
    simulator.SimDay = report.byte(kReportDay);
    simulator.SimHour = report.byte(kReportHour);
    simulator.SimMinute = report.byte(kReportMinute);
    simulator.SimSecond = report.byte(kReportSecond);
    simulator.PutTimeAndDate();
}

void set_up_cessna_clock(RunContext& run, int Index) {
    run.entry(Index).Port1 = sync_mode(run.gauge(Index)) == kFromPc ? kCountSendTime : std::int16_t{0};
}

void tick_cessna_clock(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const bool from_simulator = sync_mode(run.gauge(Index)) == kFromSimulator;
    const std::int16_t count = entry.Port1;
    if (count == kCountReadTime && from_simulator) {
        run.sim_com.EnableReadSimPort(run.SystemPort[kTimePort]);
    } else if (count == kCountTakeTime) {
        if (from_simulator) {
            run.sim_com.GetTimeAndDate();
            run.sim_com.DisableReadSimPort(run.SystemPort[kTimePort]);
        } else {
            entry.Port1 = kCountPastTime;
        }
    } else if (count == kCountSendTime) {
        send_time(run, Index);
    } else if (count >= kCountVoltage && count <= kCountCelsius) {
        read_temperature(run, Index);
        if (count == kCountVoltage) {
            send_voltage(run, Index);
        } else if (count == kCountCelsius) {
            send_temperature(run, Index, kCommandCelsius, double{entry.Last1});
        }
    } else if (count == kCountFahrenheit) {
        send_temperature(run, Index, kCommandFahrenheit, 9.0 * double{entry.Last1} / 5.0 + 32.0);
    }
    entry.Port1 = entry.Port1 >= kLastCessnaCount ? std::int16_t{0} : static_cast<std::int16_t>(entry.Port1 + 1);
}

void forget_cessna_clock(RunContext& run, int Index) {
    const int mode = sync_mode(run.gauge(Index));
    if (mode == kFromPc) {
        run.entry(Index).Port1 = kCountSendTime;
    } else if (mode == kFromSimulator) {
        run.entry(Index).Port1 = kCountReadTime;
    }
}

}  // namespace run
