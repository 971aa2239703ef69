#include "run/radio_magnetic_indicator.h"

#include <cmath>
#include <limits>
#include <string>

#include "run/instrument_values.h"
#include "support/number_format.h"

namespace run {

namespace {

constexpr std::uint8_t kModelWithDualNeedles = 3;

// Flags of GaugePlate1. The two dual flags are taken by SimCom.
constexpr int kHasDme = 1;
constexpr int kShowsDmeInAdfMode = 2;
constexpr int kCardFollowsCompass = 4;
// Flags of GaugePlate2.
constexpr int kFirstNeedleOnVor2 = 1;
constexpr int kSecondNeedleOnVor2 = 2;

constexpr int kDmeDistanceFunction = 27;

constexpr int kCommandCard = 5;
constexpr int kCommandNeedle = 9;  // with the bits of the needle's place
constexpr int kCommandFlag = 14;   // 1 = INOP
constexpr int kCommandDme = 15;

// Needle places of the standard unit.
constexpr int kYellowOnVor = 0x4000;
constexpr int kGreenOnVor = 0x2000;
constexpr int kOnAdf = 0;
// Needle places of model 3.
constexpr int kVorLeft = 0;
constexpr int kVorRight = 0x4000;
constexpr int kAdfLeft = 0x2000;
constexpr int kAdfRight = 0x6000;

constexpr int kSecondDisplay = 0x4000;
constexpr int kDmePoint = 0x2000;
constexpr int kDmeDashes = 0x0AAA;
constexpr double kHighestWithTenths = 99.9F;  // distances come as 32-bit floats

constexpr double kFullTurn = 360;
constexpr int kCardSteps = 4608;  // a turn; the needles have fewer
constexpr int kNeedleSteps = 4320;

constexpr float kPowerVolts = 8;
constexpr float kNoVoltageSeen = -100;

constexpr std::int16_t kLastStandardPhase = 3;
constexpr std::int16_t kLastDualPhase = 4;

bool has_dual_needles(const tables::GaugeRow& gauge) {
    return gauge.GaugeModel == kModelWithDualNeedles;
}

void forget_values(ActiveGauge& entry) {
    entry.Last1 = entry.Last2 = entry.Last3 = entry.Last4 = entry.Last5 = kNothingSent;
}

// The flag follows the avionics bus; with power back everything goes out again.
void send_flag(RunContext& run, int Index) {
    tables::GaugeRow& gauge = run.gauge(Index);
    const float voltage = run.tables.AvionicsBusVoltage;
    if (!std::isfinite(voltage) || gauge.GaugeRunIndex == voltage) {
        return;
    }
    gauge.GaugeRunIndex = voltage;
    const bool powered = voltage >= kPowerVolts;
    run.QueueFrame(run.entry(Index).ActiveGaugeId, kCommandFlag, powered ? 0 : 1);
    if (powered) {
        forget_values(run.entry(Index));
    }
}

void send_if_changed(RunContext& run, int Index, int command, int position, int place, float& last) {
    if (static_cast<float>(position) != last) {
        last = static_cast<float>(position);
        run.QueueFrame(run.entry(Index).ActiveGaugeId, command, position | place);
    }
}

void send_card(RunContext& run, int Index) {
    const bool compass = (run.gauge(Index).GaugePlate1 & kCardFollowsCompass) != 0;
    const double degrees = compass ? run.tables.AircraftCompass : run.tables.AircraftHeading;
    if (std::isfinite(degrees)) {
        send_if_changed(run, Index, kCommandCard, position_of_degrees(degrees, kCardSteps), 0, run.entry(Index).Last1);
    }
}

void send_bearing(RunContext& run, int Index, std::int16_t port, int place, float& last) {
    if (const std::optional<double> degrees = finite_value(run, port)) {
        send_if_changed(run, Index, kCommandNeedle, position_of_degrees(*degrees, kNeedleSteps), place, last);
    }
}

void send_adf_bearing(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    if (const std::optional<double> value = finite_value(run, entry.Port3)) {
        const double degrees = *value < 0 ? *value + kFullTurn : *value;
        send_if_changed(run, Index, kCommandNeedle, position_of_degrees(degrees, kNeedleSteps), kOnAdf, entry.Last4);
    }
}

void standard_phase(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    switch (entry.StepCounter) {
        case 0:
            send_flag(run, Index);
            send_card(run, Index);
            break;
        case 1:
            send_bearing(run, Index, entry.Port1, kYellowOnVor, entry.Last2);
            break;
        case 2:
            send_bearing(run, Index, entry.Port2, kGreenOnVor, entry.Last3);
            break;
        default:
            send_adf_bearing(run, Index);
            break;
    }
}

void dual_phase(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const simlink::SimCom& simulator = run.sim_com;
    switch (entry.StepCounter) {
        case 0:
            send_flag(run, Index);
            send_card(run, Index);
            run.sim_com.GetRMIdata();
            break;
        case 1:
            send_if_changed(run, Index, kCommandNeedle, simulator.RmiNeedle1, kVorLeft, entry.Last2);
            break;
        case 2:
            send_if_changed(run, Index, kCommandNeedle, simulator.RmiNeedle2, kVorRight, entry.Last3);
            break;
        case 3:
            send_if_changed(run, Index, kCommandNeedle, simulator.RmiNeedle3, kAdfLeft, entry.Last4);
            break;
        default:
            send_if_changed(run, Index, kCommandNeedle, simulator.RmiNeedle4, kAdfRight, entry.Last5);
            break;
    }
}

void send_distance(RunContext& run, int Index, std::int16_t port, int display, float& seen) {
    const std::optional<double> distance = finite_value(run, port);
    if (distance && *distance != static_cast<double>(seen)) {
        seen = static_cast<float>(*distance);
        run.QueueFrame(run.entry(Index).ActiveGaugeId, kCommandDme, rmi_dme_word(*distance) + display);
    }
}

void serve_dme_displays(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    if ((run.gauge(Index).GaugePlate1 & (kHasDme | kShowsDmeInAdfMode)) == 0) {
        return;
    }
    if (entry.StepCounter == 1) {
        send_distance(run, Index, entry.RmiPortDme1, 0, entry.RmiDme1Seen);
    } else if (entry.StepCounter == 2) {
        send_distance(run, Index, entry.RmiPortDme2, kSecondDisplay, entry.RmiDme2Seen);
    }
}

// Whether a needle's VOR, and the DME beside it, is the first or the second one.
int vor_number(const tables::GaugeRow& gauge, int flag) {
    return (gauge.GaugePlate2 & flag) != 0 ? 2 : 1;
}

void open_bearing_ports(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    tables::GaugeRow& gauge = run.gauge(Index);
    entry.Port1 = open_reading_port(run, gauge.GaugeFunction1, vor_number(gauge, kFirstNeedleOnVor2));
    entry.Port2 = open_reading_port(run, gauge.GaugeFunction1, vor_number(gauge, kSecondNeedleOnVor2));
    entry.Port3 = open_reading_port(run, gauge.GaugeFunction2, gauge.GaugeSeqNr2);
    entry.Port4 = 0;
}

// One indicator gives both dual flags; with two of them the second one gives the flag of the second ADF.
void take_dual_flags(RunContext& run, int Index) {
    const std::int16_t flags = run.gauge(Index).GaugePlate1;
    if (!run.navigation.first_rmi_flags) {
        run.navigation.first_rmi_flags = flags;
    }
    run.sim_com.take_rmi_flags(*run.navigation.first_rmi_flags, flags);
}

void open_dme_ports(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const tables::GaugeRow& gauge = run.gauge(Index);
    if ((gauge.GaugePlate1 & kHasDme) == 0) {
        return;
    }
    entry.RmiPortDme1 = open_reading_port(run, kDmeDistanceFunction, vor_number(gauge, kFirstNeedleOnVor2));
    entry.RmiPortDme2 = open_reading_port(run, kDmeDistanceFunction, vor_number(gauge, kSecondNeedleOnVor2));
}

}  // namespace

int rmi_dme_word(double distance_nm) {
    if (distance_nm < 0) {
        return kDmeDashes;
    }
    std::string text;  // short enough to need no memory of its own
    support::format_number(distance_nm, distance_nm <= kHighestWithTenths ? "00.0" : "000", text);
    unsigned word = 0;
    bool point = false;
    for (const char character : text) {
        if (character >= '0' && character <= '9') {
            word = (word << 4 | static_cast<unsigned>(character - '0')) & 0xFFFFU;
        }
        point = point || character == '.';
    }
    return static_cast<int>(word) + (point ? kDmePoint : 0);
}

void set_up_radio_magnetic_indicator(RunContext& run, int Index) {
    if (has_dual_needles(run.gauge(Index))) {
        take_dual_flags(run, Index);
    } else {
        open_bearing_ports(run, Index);
    }
    open_dme_ports(run, Index);
    run.entry(Index).StepCounter = 0;
    forget_radio_magnetic_indicator(run, Index);
}

void tick_radio_magnetic_indicator(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    const bool dual = has_dual_needles(run.gauge(Index));
    run.steps.attempt([&] {
        if (dual) {
            dual_phase(run, Index);
        } else {
            standard_phase(run, Index);
        }
    });
    run.steps.attempt([&] { serve_dme_displays(run, Index); });
    const std::int16_t last_phase = dual ? kLastDualPhase : kLastStandardPhase;
    entry.StepCounter =
        entry.StepCounter >= last_phase ? std::int16_t{0} : static_cast<std::int16_t>(entry.StepCounter + 1);
}

void forget_radio_magnetic_indicator(RunContext& run, int Index) {
    ActiveGauge& entry = run.entry(Index);
    forget_values(entry);
    run.gauge(Index).GaugeRunIndex = kNoVoltageSeen;
    entry.RmiDme1Seen = entry.RmiDme2Seen = std::numeric_limits<float>::quiet_NaN();
}

}  // namespace run
