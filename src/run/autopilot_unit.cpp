#include "run/autopilot_unit.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "run/system_ports.h"
#include "support/bytes.h"
#include "support/rounding.h"

namespace run {

namespace {

constexpr std::int16_t kDefaultVerticalSpeed = 700;  // ft/min

// Flags of GaugePlate1. Bit 0 (pressure in hPa) is the unit's own, bit 3 is taken by WriteAutopilot.
constexpr int kUseAirPressure = 2;
constexpr int kFlightDirector = 4;
constexpr int kCopyAltitude = 16;

constexpr int kCommandAltitude = 3;       // feet
constexpr int kCommandVerticalSpeed = 4;  // ft/min
constexpr int kCommandModes = 5;          // hundreds of ft/min * 256 + mode bits
constexpr int kCommandLamps = 11;         // alert and trim

constexpr int kHighestHundreds = 255;
constexpr int kFeetPerMinutePerHundred = 100;

// Bits of ApCommandBits and ApStatusBits.
constexpr unsigned kMaster = 1U << 0;
constexpr unsigned kHeading = 1U << 1;
constexpr unsigned kNav = 1U << 3;
constexpr unsigned kApproach = 1U << 4;
constexpr unsigned kBackCourse = 1U << 5;
constexpr unsigned kVerticalSpeedHold = 1U << 6;
constexpr unsigned kAltitudeHold = 1U << 7;
constexpr unsigned kCompared = kHeading | kNav | kApproach | kBackCourse;
constexpr unsigned kHoldsAltitude = kMaster | kVerticalSpeedHold | kAltitudeHold;

constexpr double kClimbBandFeet = 200;  // farther from the target the default vertical speed is chosen
constexpr double kAlertBandFeet = 100;
constexpr int kAlertWord = 20;

constexpr std::int16_t kTrimTicks = 16;
constexpr int kTrimBand = 10;
constexpr std::int16_t kTrimUpLamps = 0x3000;
constexpr std::int16_t kTrimDownLamps = 0x6000;

// Bytes of the report.
constexpr int kReportAltitude = 7;        // 7, 8: feet, signed
constexpr int kReportVerticalSpeed = 10;  // 10, 11: ft/min, signed
constexpr int kReportPressure = 19;       // 19, 20
constexpr int kReportModes = 22;
constexpr int kReportPressureUnit = 23;  // 0 = hundredths of inHg, else hPa
constexpr int kReportOperated = 24;

constexpr double kFeetPerMetre = 3.28084;
constexpr double kAltitudeUnits = 65536;  // of a metre
constexpr double kHectopascalPerInchHg = 33.86;
constexpr double kHundredths = 100;

// NOTE: the value's magnitude has no place for a sign; a negative vertical speed takes the sign of the whole frame.
void send_modes(RunContext& run, int Index, unsigned bits) {
    const int vertical_speed = run.sim_com.ApVerticalSpeed;
    const double hundreds =
        support::round_half_even(std::abs(vertical_speed) / static_cast<double>(kFeetPerMinutePerHundred));
    const int word = std::min(static_cast<int>(hundreds), kHighestHundreds) * 256 + static_cast<int>(bits);
    run.QueueFrame(run.entry(Index).ActiveGaugeId, kCommandModes, vertical_speed < 0 ? -word : word);
}

// Of modes that exclude each other the later one of the list stays; back course goes with approach.
unsigned sound_modes(unsigned bits) {
    if ((bits & kNav) != 0) {
        bits &= ~(kApproach | kBackCourse);
    }
    if ((bits & kApproach) != 0) {
        bits &= ~kNav;
    }
    if ((bits & kBackCourse) != 0) {
        bits = (bits & ~kNav) | kApproach;
    }
    if ((bits & kApproach) == 0) {
        bits &= ~(kApproach | kBackCourse);
    }
    return bits;
}

// The unit has changed its modes: it gets them back as they count, and the altitude to hold.
void confirm_modes(RunContext& run, int Index) {
    simlink::SimCom& simulator = run.sim_com;
    AutopilotState& state = run.autopilot;
    state.modes_lost = false;
    simulator.ApCommandBits = static_cast<std::uint8_t>(sound_modes(simulator.ApCommandBits));
    send_modes(run, Index, simulator.ApCommandBits);
    const bool engaged = (state.ApCommandSeen & kHoldsAltitude) == 0 && (simulator.ApCommandBits & kHoldsAltitude) != 0;
    state.ApCommandSeen = simulator.ApCommandBits;
    if (engaged && (run.gauge(Index).GaugePlate1 & kCopyAltitude) != 0 && std::isfinite(run.tables.CurrentAltitude)) {
        run.QueueFrame(run.entry(Index).ActiveGaugeId, kCommandAltitude,
                       support::round_half_even(double{run.tables.CurrentAltitude}));
    }
}

void choose_vertical_speed(RunContext& run, int Index, double feet_to_target) {
    simlink::SimCom& simulator = run.sim_com;
    if (simulator.ApVerticalSpeed != 0) {
        return;
    }
    const std::int16_t default_speed = run.gauge(Index).GaugePlate2;
    if (feet_to_target > kClimbBandFeet) {
        simulator.ApVerticalSpeed = default_speed;
        simulator.PutAPVSvalue();
    } else if (feet_to_target < -kClimbBandFeet) {
        simulator.ApVerticalSpeed = support::as_i16(static_cast<std::uint16_t>(-default_speed));
        simulator.PutAPVSvalue();
    }
}

int altitude_alert(AutopilotState& state, double feet_to_target) {
    if (std::fabs(feet_to_target) > kAlertBandFeet) {
        state.ApAlertArmed = 1;
    } else if (state.ApAlertArmed == 1) {
        state.ApAlertArmed = 0;
        return kAlertWord;
    }
    return 0;
}

void watch_trim(AutopilotState& state, std::int16_t ApTrimValue) {
    if (++state.ApTrimTicks < kTrimTicks) {
        return;
    }
    state.ApTrimTicks = 0;
    const int change = ApTrimValue - state.ApTrimSeen;
    state.ApTrimSeen = ApTrimValue;
    state.ApTrimIndicator = change > kTrimBand ? kTrimUpLamps : change < -kTrimBand ? kTrimDownLamps : std::int16_t{0};
}

}  // namespace

void set_up_autopilot(RunContext& run, int Index) {
    tables::GaugeRow& gauge = run.gauge(Index);
    run.AssignPollSlot(Index);
    if (gauge.GaugePlate2 == 0) {
        gauge.GaugePlate2 = kDefaultVerticalSpeed;
    }
    run.sim_com.take_autopilot_flags(gauge.GaugePlate1);
}

void start_autopilot(RunContext& run, int /*Index*/) {
    run.autopilot.answers_are_old = true;
}

void tick_autopilot(RunContext& run, int Index) {
    simlink::SimCom& simulator = run.sim_com;
    AutopilotState& state = run.autopilot;
    run.PollFrame(Index, bus::kCommandStatus, bus::kStatusInRun);
    if (state.ApReportFlag != 0) {
        state.answers_are_old = true;
        return;
    }
    simulator.GetAPVSvalue();
    // NOTE: what GetAPVSvalue gives is the answer to its call before. After a pause that would be a state in which the
    // unit's own writes are missing, and the unit would be sent back what it has just changed.
    if (state.answers_are_old) {
        state.answers_are_old = false;
        return;
    }
    const unsigned differing = simulator.ApCommandBits ^ simulator.ApStatusBits;
    // 1. The simulator's autopilot was switched on or off.
    if ((differing & kMaster) != 0) {
        send_modes(run, Index, simulator.ApStatusBits);
        return;
    }
    // 2. The unit has other modes.
    if (simulator.ApCommandBits != state.ApCommandSeen || state.modes_lost) {
        confirm_modes(run, Index);
        return;
    }
    // 3. The simulator has other modes.
    if ((simulator.ApCommandBits & kMaster) != 0 && (differing & kCompared) != 0) {
        send_modes(run, Index, simulator.ApStatusBits);
    }
    // 4.
    if (state.ApVerticalSpeedSeen != simulator.ApVerticalSpeed || state.vertical_speed_lost) {
        state.vertical_speed_lost = false;
        state.ApVerticalSpeedSeen = simulator.ApVerticalSpeed;
        run.QueueFrame(run.entry(Index).ActiveGaugeId, kCommandVerticalSpeed, simulator.ApVerticalSpeed);
        return;
    }
    // 5. to 8.
    int alert = 0;
    if (std::isfinite(run.tables.CurrentAltitude)) {
        const double feet_to_target = simulator.ApTargetAltitude - double{run.tables.CurrentAltitude};
        choose_vertical_speed(run, Index, feet_to_target);
        alert = altitude_alert(state, feet_to_target);
    }
    watch_trim(state, simulator.ApTrimValue);
    run.QueueFrame(run.entry(Index).ActiveGaugeId, kCommandLamps, alert | state.ApTrimIndicator);
}

void forget_autopilot(RunContext& run, int /*Index*/) {
    // A unit that was sent nothing yet has lost nothing, and tells its modes before it is sent any.
    run.autopilot.modes_lost = run.autopilot.ApCommandSeen != 0;
    run.autopilot.vertical_speed_lost = run.autopilot.ApVerticalSpeedSeen != 0;
}

void report_autopilot(RunContext& run, const bus::GaugeReport& report) {
    const tables::GaugeRow& gauge = run.tables.gauges[static_cast<std::size_t>(report.gauge_id())];
    simlink::SimCom& simulator = run.sim_com;
    // 1.
    simulator.ApCommandBits = report.byte(kReportModes);
    run.autopilot.ApReportFlag = report.byte(kReportOperated);
    if (run.autopilot.ApReportFlag == 0) {
        return;
    }
    // 2., 3.
    simulator.ApTargetAltitude = support::as_i16(report.word(kReportAltitude));
    simulator.ApAltitudeValue = support::round_to_i32(simulator.ApTargetAltitude / kFeetPerMetre * kAltitudeUnits);
    simulator.ApVerticalSpeed = support::as_i16(report.word(kReportVerticalSpeed));
    run.autopilot.ApVerticalSpeedSeen = simulator.ApVerticalSpeed;
    // 4.
    if ((gauge.GaugePlate1 & kUseAirPressure) != 0) {
        const double divider = report.byte(kReportPressureUnit) != 0 ? kHectopascalPerInchHg : kHundredths;
        auto pressure = static_cast<float>(report.word(kReportPressure) / divider);
        run.sim_com.PutPort(run.SystemPort[kAirPressurePort], pressure);
    }
    // 5. Without a flight director all modes end with the master.
    if ((gauge.GaugePlate1 & kFlightDirector) == 0 && (simulator.ApCommandBits & kMaster) == 0) {
        simulator.ApCommandBits = 0;
    }
    // 6.
    simulator.WriteAutopilot();
}

}  // namespace run
