#include <string>

#include "bus/frames.h"
#include "run/frm_status.h"
#include "run/instrument_table.h"
#include "run/light_logic.h"
#include "run/system_ports.h"
#include "support/failure.h"
#include "support/number_format.h"
#include "support/steps.h"

namespace run {

namespace {

constexpr float kFullTurnDegrees = 360.0F;
constexpr double kMillibarPerInchHg = 33.86;
constexpr std::int16_t kHighestTickCount = 1000;

}  // namespace

void frmStatus::ProcessTimer_Timer() {
    try {
        process_tick();
    } catch (const support::StepsAbandoned&) {
        cmdStop_Click();
    }
}

// It never yields by itself; only a question about a failure lets other events run.
void frmStatus::process_tick() {
    // 1.
    ProcessState_ = 1;
    tables_.TxBuffer.clear();
    context_.PollText.clear();
    // 2.
    ProcessState_ = 2;
    context_.steps.attempt([this] { update_lights(tables_, context_.BrightnessByte, context_.cluster); });
    // 3.
    ProcessState_ = 3;
    if (light_frames_due(tables_) || (repaint_lights_ && tables_.LightMode != kLightsAlwaysOff)) {
        process_lights();
        return;
    }
    context_.steps.attempt([this] { show_system_values(); });
    // 4.
    ProcessState_ = 4;
    serve_gauges();
    // 5.
    ProcessState_ = 5;
    read_system_values();
    context_.steps.attempt([this] { show_switches(); });
    // 6.
    ProcessState_ = 6;
    tables_.TxBuffer.append(context_.PollText);
    ++context_.CurrentSlot;
    if (context_.CurrentSlot > context_.LastSlot) {
        context_.CurrentSlot = 0;
    }
    // 7.
    ProcessState_ = 7;
    FlushFrames();
    ++TickCount_;
    if (TickCount_ > kHighestTickCount) {
        TickCount_ = 0;
    }
}

void frmStatus::process_lights() {
    send_lights();
    repaint_lights_ = false;
    lights_sent_ = true;
    if (tables_.LightMode == kLightsAlwaysOn) {
        tables_.LightChange = 0;
    }
    context_.cluster.ClusterLights = (tables_.MainBusLightByte & bus::kLightOn) != 0 ? 1 : 0;
    context_.cluster.ClusterPower = (tables_.MainBusLightByte & bus::kLightPower) != 0 ? 1 : 0;
    FlushFrames();
}

void frmStatus::send_lights() {
    int served_id = 0;
    for (const ActiveGauge& gauge : context_.active) {
        if (gauge.ActiveGaugeId == 0 || gauge.ActiveGaugeId == served_id) {
            continue;
        }
        served_id = gauge.ActiveGaugeId;
        context_.steps.attempt([&] {
            context_.QueueFrame(served_id, bus::kCommandLights, light_value(tables_, gauge, context_.BrightnessByte));
        });
    }
}

void frmStatus::show_system_values() {
    show_number(boxBank, tables_.AircraftBank, "000.00");
    show_number(boxPitch, tables_.AircraftPitch, "000.00");
    show_number(BoxVS, tables_.AircraftVS, "#####.0");
    show_number(BoxIAS, tables_.AircraftIAS, "###.0");
    show_number(BoxHea, tables_.AircraftHeading, "###.#0");
    show_number(boxCompass, tables_.AircraftCompass, "###.#0");
    show_number(boxAltitude, tables_.CurrentAltitude, "####0");
    show_number(BoxAirPressHg, tables_.AirPressureHg, "##0.00");
    show_number(BoxAirPressmBar, static_cast<double>(tables_.AirPressureHg) * kMillibarPerInchHg, "0000");
}

void frmStatus::show_number(panel::TextBox& box, double value, std::string_view picture) {
    support::format_number(value, picture, number_text_);
    box.text = number_text_;
}

void frmStatus::serve_gauges() {
    context_.steps.attempt([this] {
        if (context_.active.empty()) {
            throw support::Failure("The list of gauges could not be built");
        }
    });
    if (context_.active.empty()) {
        return;
    }
    // A failure question answered by the end of the run or of the program ends the walk too.
    for (int index = 0; index <= context_.ActiveCount && Running_ == 1; ++index) {
        entry_in_hand_ = index;
        const InstrumentRow* const row = find_instrument(context_.gauge(index).GaugeType);
        if (row != nullptr && row->tick != nullptr) {
            context_.steps.attempt([&] { row->tick(context_, index); });
        }
    }
}

void frmStatus::read_system_port(std::size_t number, float& value) {
    context_.steps.attempt([&] { sim_com_.GetPort(context_.SystemPort[number], value); });
}

void frmStatus::read_system_values() {
    read_system_port(kAirPressurePort, tables_.AirPressureHg);
    read_system_port(kAirspeedPort, tables_.AircraftIAS);
    read_system_port(kVerticalSpeedPort, tables_.AircraftVS);
    read_system_port(kAltitudePort, tables_.CurrentAltitude);
    read_system_port(kPitchPort, tables_.AircraftPitch);
    read_system_port(kBankPort, tables_.AircraftBank);
    read_system_port(kHeadingPort, tables_.AircraftHeading);
    if (tables_.AircraftHeading < 0) {
        tables_.AircraftHeading += kFullTurnDegrees;
    }
    read_system_port(kNavLightsPort, NavLightSwitch_);
    read_system_port(kMainBusPort, tables_.MainBusVoltage);
    read_system_port(kOutsideTemperaturePort, sim_com_.SimOutsideTemp);
    read_system_port(kInstrumentLightsPort, InstrLightSwitch_);
    read_system_port(kCompassPort, tables_.AircraftCompass);
    read_system_port(kAvionicsBusPort, tables_.AvionicsBusVoltage);
}

void frmStatus::show_switches() {
    show_number(boxVoltage, tables_.MainBusVoltage, "##.00");
    const bool instrument_lights = InstrLightSwitch_ != 0;
    BoxInstrLights.text = instrument_lights ? "ON" : "OFF";
    tables_.LightSwitches = instrument_lights ? kInstrumentLightsSwitch : std::int16_t{0};
    const bool nav_lights = NavLightSwitch_ != 0;
    boxNavLights.text = nav_lights ? "ON" : "OFF";
    if (nav_lights) {
        tables_.LightSwitches = static_cast<std::int16_t>(tables_.LightSwitches + kNavLightsSwitch);
    }
}

void frmStatus::FlushFrames() {
    const platform::SerialPort& port = gauge_bus_.serial_port();
    if (write_failure_told_ && port.is_open() && !port.connected()) {
        return;  // unplugged, and the user knows
    }
    try {
        if (gauge_bus_.FlushFrames() == bus::Flushed::written) {
            write_failure_told_ = false;
        }
    } catch (const support::Failure& failure) {
        ask_about_write_failure(failure);
    }
}

// NOTE: asked once per outage, not at every tick: a controller that is unplugged and plugged in again takes the
// question with it and needs no hand.
void frmStatus::ask_about_write_failure(const support::Failure& failure) {
    if (write_failure_told_) {
        return;
    }
    write_failure_told_ = true;
    std::function<bool()> settled;
    if (!gauge_bus_.serial_port().connected()) {
        settled = [this] { return gauge_bus_.serial_port().connected(); };
    }
    const platform::Answer answer =
        platform_.boxes.question("Error 13: Error Writing to Gauges. \r\nError Description: " + failure.description() +
                                     "\r\nCheck Virtual/USB comport gauges for CIM(s). ",
                                 settled);
    if (answer != platform::Answer::yes) {
        cmdStop_Click();
    }
}

bool frmStatus::asks_to_continue(const support::Failure& failure) {
    std::string text;
    if (context_.ActiveCount > 0) {
        text = "Error 10: An error has occured processing GaugeID:" +
               std::to_string(context_.entry(entry_in_hand_).ActiveGaugeId) +
               "\r\nGaugetype: " + std::to_string(context_.gauge(entry_in_hand_).GaugeType) +
               " , Process State: " + std::to_string(ProcessState_) +
               "\r\nGauge value: " + support::shortest(context_.GaugeValue) +
               "\r\nComm Port status: " + (gauge_bus_.serial_port().is_open() ? "Open" : "Closed") +
               "\r\nError: " + failure.description() + "\r\nCheck gauge and/or assigned function.\r\nContinue?";
    } else {
        text = "Error 11: Incorrect or empty configuration file. \r\nError Description: " + failure.description() +
               "\r\nFilename= " + tables_.ConfigFileName + "\r\nContinue?: ";
    }
    return platform_.boxes.question(text) == platform::Answer::yes;
}

void frmStatus::take_report(const bus::GaugeReport& report) {
    if (Running_ == 0) {
        return;
    }
    const InstrumentRow* const row = match_report(report);
    if (row != nullptr && row->report != nullptr) {
        row->report(context_, report);
    }
}

// The devices behind a port that was opened anew may have been without power meanwhile: everything goes out again.
void frmStatus::link_is_fresh() {
    write_failure_told_ = false;
    for (int index = 0; index < static_cast<int>(context_.active.size()); ++index) {
        const InstrumentRow* const row = find_instrument(context_.gauge(index).GaugeType);
        if (row != nullptr && row->forget != nullptr) {
            row->forget(context_, index);
        }
    }
    repaint_lights_ = lights_sent_;
}

}  // namespace run
