#include "run/frm_status.h"

#include <chrono>
#include <cstdlib>

#include "panel/layout.h"
#include "run/instrument_table.h"
#include "run/run_lamp.h"
#include "support/number_format.h"
#include "support/steps.h"
#include "tables/configuration_store.h"

namespace run {

namespace {

constexpr platform::Milliseconds kProcessInterval{40};
constexpr platform::Milliseconds kOneSecond{1000};
constexpr int kShortestIntervalMs = 10;
constexpr int kLongestIntervalMs = 200;
constexpr const char* kRunPanelTitle = "Control Program for FSUIPC based Simulators";

}  // namespace

frmStatus::frmStatus(const RunParts& parts)
    : Panel("frmStatus", kRunPanelTitle),
      BoxRun(*this, "BoxRun", "State"),
      Label37(*this, "Label37"),
      BoxCurrentConfig(*this, "BoxCurrentConfig", "Configuration"),
      LabelVersion(*this, "LabelVersion"),
      cmdRun(*this, "cmdRun", "Run"),
      cmdStop(*this, "cmdStop", "Stop"),
      cmdconfig(*this, "cmdconfig", "Configure"),
      cmdHide(*this, "cmdHide", "Hide"),
      CmdExit(*this, "CmdExit", "Exit"),
      cmdShowPorts(*this, "cmdShowPorts", "Simulator ports"),
      cmdShowECStatus(*this, "cmdShowECStatus", "Engine cluster"),
      cmdShowIOM(*this, "cmdShowIOM", "IO module 1"),
      cmdShowIOM2(*this, "cmdShowIOM2", "IO module 2"),
      CmdShowYokes(*this, "CmdShowYokes", "Yokes"),
      BoxIAS(*this, "BoxIAS", "Airspeed (kt)"),
      boxAltitude(*this, "boxAltitude", "Altitude (ft)"),
      BoxVS(*this, "BoxVS", "Vertical speed (ft/min)"),
      BoxHea(*this, "BoxHea", "Heading (\xB0)"),
      boxCompass(*this, "boxCompass", "Compass (\xB0)"),
      boxPitch(*this, "boxPitch", "Pitch (\xB0)"),
      boxBank(*this, "boxBank", "Bank (\xB0)"),
      BoxAirPressHg(*this, "BoxAirPressHg", "Air pressure (inHg)"),
      BoxAirPressmBar(*this, "BoxAirPressmBar", "Air pressure (mbar)"),
      boxVoltage(*this, "boxVoltage", "Main bus (V)"),
      BoxInstrLights(*this, "BoxInstrLights", "Instrument lights"),
      boxNavLights(*this, "boxNavLights", "Navigation lights"),
      SliderXferTimer(*this, "SliderXferTimer", "Process interval", kShortestIntervalMs, kLongestIntervalMs),
      BoxXferProcessTimer(*this, "BoxXferProcessTimer", "Interval (ms)"),
      frmXferCount(*this, "frmXferCount", "Updates per second"),
      boxNrofOffsets(*this, "boxNrofOffsets", "Simulator ports open"),
      boxSimulator(*this, "boxSimulator", "Simulator"),
      boxGaugePort(*this, "boxGaugePort", "Gauge bus"),
      boxBusLoad(*this, "boxBusLoad", "Bus load (bytes/s)"),
      boxLongestTick(*this, "boxLongestTick", "Longest update (ms)"),
      boxMissedTicks(*this, "boxMissedTicks", "Updates missed"),
      ProcessTimer(parts.platform.loop, "frmStatus.ProcessTimer", kProcessInterval, [this] { ProcessTimer_Timer(); }),
      Timer1(parts.platform.loop, "frmStatus.Timer1", kOneSecond, [this] { Timer1_Timer(); }),
      platform_(parts.platform),
      tables_(parts.tables),
      sim_com_(parts.sim_com),
      gauge_bus_(parts.gauge_bus),
      ports_(parts.ports),
      panels_(parts.panels),
      context_(parts.platform, parts.tables, parts.sim_com, parts.gauge_bus,
               TickSteps([this](const support::Failure& failure) { return asks_to_continue(failure); })),
      bus_capacity_(bus::GaugeBus::capacity()) {
    number_text_.reserve(512);
    SliderXferTimer.value = static_cast<int>(kProcessInterval.count());
    set_handlers();
    set_tool_tips();
    arrange();
    show_halted();
    ports_.set_owner(bus::PortPlace::gauge_bus, &gauge_bus_);
    gauge_bus_.on_report = [this](const bus::GaugeReport& report) { take_report(report); };
    gauge_bus_.on_fresh_link = [this] { link_is_fresh(); };
    sim_com_.exit_program = [this] { CmdExit_Click(); };
    sim_com_.run_panel_minimised = [this] { return minimised(); };
    Timer1.start();
}

frmStatus::~frmStatus() {
    sim_com_.run_panel_minimised = {};
    sim_com_.exit_program = {};
    gauge_bus_.on_fresh_link = {};
    gauge_bus_.on_report = {};
    ports_.set_owner(bus::PortPlace::gauge_bus, nullptr);
}

void frmStatus::set_participant(ParticipantPlace place, RunParticipant* participant) {
    participants_[static_cast<std::size_t>(place)] = participant;
}

void frmStatus::set_handlers() {
    cmdRun.on_click = [this] { cmdRun_Click(); };
    cmdStop.on_click = [this] { cmdStop_Click(); };
    cmdconfig.on_click = [this] { cmdconfig_Click(); };
    CmdExit.on_click = [this] { CmdExit_Click(); };
    // Out of sight, but not out of reach: the task bar brings the panel back.
    cmdHide.on_click = [this] { panels_.minimise(*this); };
    cmdShowPorts.on_click = [this] { panels_.show(sim_com_); };
    cmdShowECStatus.on_click = [this] { panels_.show("frmStatusEC"); };
    cmdShowIOM.on_click = [this] { panels_.show("frmStatusIOM"); };
    cmdShowIOM2.on_click = [this] { panels_.show("frmstatusIOM2"); };
    CmdShowYokes.on_click = [this] { panels_.show("frmStatusFFB"); };
    SliderXferTimer.on_change = [this] { SliderXferTimer_Change(); };
}

void frmStatus::set_tool_tips() {
    cmdRun.tool_tip = "Start moving the gauges";
    cmdStop.tool_tip = "Stop moving the gauges; the serial ports stay open";
    cmdconfig.tool_tip = "Stop the run and set up gauges, functions and ports";
    cmdHide.tool_tip = "Hide this panel; the run goes on";
    CmdExit.tool_tip = "Stop the run, close all ports and end the program";
    cmdShowPorts.tool_tip = "List the simulator values that are being read and written";
    cmdShowECStatus.tool_tip = "Show the state of the engine cluster";
    cmdShowIOM.tool_tip = "Show the state of IO module 1";
    cmdShowIOM2.tool_tip = "Show the state of IO module 2";
    CmdShowYokes.tool_tip = "Show the state of the force feedback yokes";
    BoxRun.tool_tip = "Running: gauges follow the simulator. Halted: gauges stand still";
    BoxCurrentConfig.tool_tip = "File of the configuration in force";
    BoxIAS.tool_tip = "Indicated airspeed in knots";
    boxAltitude.tool_tip = "Altitude in feet";
    BoxVS.tool_tip = "Vertical speed in feet per minute";
    BoxHea.tool_tip = "Heading in degrees, 0 to 360";
    boxCompass.tool_tip = "Whiskey compass in degrees";
    boxPitch.tool_tip = "Pitch in degrees";
    boxBank.tool_tip = "Bank in degrees";
    BoxAirPressHg.tool_tip = "Air pressure in inches of mercury";
    BoxAirPressmBar.tool_tip = "Air pressure in millibar";
    boxVoltage.tool_tip = "Voltage of the main bus in volts; gauges are lit from 8 V";
    BoxInstrLights.tool_tip = "Switch of the instrument lights";
    boxNavLights.tool_tip = "Switch of the navigation lights";
    SliderXferTimer.tool_tip = "Set interval between gauge updates; Lower is faster";
    BoxXferProcessTimer.tool_tip = "Time between gauge updates in milliseconds";
    frmXferCount.tool_tip = "Gauge updates in the last second";
    boxNrofOffsets.tool_tip = "Number of simulator values that are being read or written";
    boxSimulator.tool_tip = "Whether the simulator answers; it is looked for again by itself";
    boxGaugePort.tool_tip = "Serial port of the gauge bus";
    boxBusLoad.tool_tip =
        "What the gauges are sent, against what their line can carry. If it is too slow, raise the interval";
    boxLongestTick.tool_tip = "Longest time that one gauge update has taken, in milliseconds";
    boxMissedTicks.tool_tip = "Gauge updates that came too late and were left out";
}

// Label37 bears the same name as BoxCurrentConfig and has no place of its own.
void frmStatus::arrange() {
    set_layout(panel::column({
        panel::row({BoxRun, boxSimulator, boxGaugePort, boxBusLoad, BoxCurrentConfig, LabelVersion}),
        panel::row({cmdRun, cmdStop, cmdconfig, cmdHide, CmdExit}),
        panel::row({cmdShowPorts, cmdShowECStatus, cmdShowIOM, cmdShowIOM2, CmdShowYokes}),
        panel::frame("Flight", {panel::row({BoxIAS, boxAltitude, BoxVS, BoxHea, boxCompass}),
                                panel::row({boxPitch, boxBank, BoxAirPressHg, BoxAirPressmBar})}),
        panel::frame("Aircraft", {panel::row({boxVoltage, BoxInstrLights, boxNavLights})}),
        panel::frame("Gauge updates", {panel::row({SliderXferTimer, BoxXferProcessTimer}),
                                       panel::row({boxNrofOffsets, frmXferCount, boxLongestTick, boxMissedTicks})}),
    }));
}

void frmStatus::Form_Load() {
    if (!tables_.ProgramName.empty()) {
        set_title(tables_.ProgramName);
    }
    show_version();
    tables::SetConstants(tables_);
    show_configuration();
    Label37.text = tables_.ConfigFileName;
}

void frmStatus::Form_Activate() {
    show_version();
}

void frmStatus::show_version() {
    LabelVersion.text = std::string("Version: ").append(tables::kProgramVersion);
}

void frmStatus::show_configuration() {
    BoxCurrentConfig.text = tables_.ConfigFileName;
}

void frmStatus::show_running() {
    run::show_running(BoxRun, cmdRun, cmdStop);
}

void frmStatus::show_halted() {
    run::show_halted(BoxRun, cmdRun, cmdStop);
}

void frmStatus::cmdRun_Click() {
    if (Running_ == 1) {
        return;
    }
    support::Steps steps([this](const support::Failure&) {
        platform_.boxes.message("Error 9: An error occured trying to open Comm Port(s)");
        return true;
    });
    start_cancelled_ = false;
    steps.attempt([this] { RefreshConfig(); });
    if (start_cancelled_) {
        return;
    }
    panels_.hide("FrmMainConfigure");
    panels_.hide("frmTestFunction");
    show_running();
    context_.CurrentSlot = 0;
    steps.attempt([this] {
        if (!gauge_bus_.serial_port().is_open()) {
            ports_.OpenAllPorts();
        }
    });
    steps.attempt([this] { gauge_bus_.prepare_run(); });
    bus_load_.start(gauge_bus_.bytes_written());
    ProcessTimer.start();
    Running_ = 1;
    start_gauges();
    for_each_participant([&](RunParticipant& unit) {
        if (!start_cancelled_) {
            steps.attempt([&unit] { unit.cmdRun_Click(); });
        }
    });
    if (start_cancelled_) {
        return;
    }
    steps.attempt([this] { sim_com_.RunSimcom(); });
    gauge_bus_.WriteDuringConfig.stop();
}

void frmStatus::start_gauges() {
    for (int index = 0; index < static_cast<int>(context_.active.size()); ++index) {
        const InstrumentRow* const row = find_instrument(context_.gauge(index).GaugeType);
        if (row != nullptr && row->start != nullptr) {
            row->start(context_, index);
        }
    }
}

void frmStatus::cmdStop_Click() {
    // A start that is waiting for one of its units ends there.
    start_cancelled_ = true;
    if (Running_ == 0) {
        return;
    }
    Running_ = 0;
    sim_com_.StopSimcom();
    ProcessTimer.stop();
    show_halted();
    gauge_bus_.WriteDuringConfig.start();
    for_each_participant([](RunParticipant& unit) { unit.cmdStop_Click(); });
}

void frmStatus::cmdconfig_Click() {
    cmdStop_Click();
    show_halted();
    panels_.show("frmMain");
    panels_.show("FrmMainConfigure");
    tables_.ConfigureFromRunPanel = 1;
    panels_.hide(*this);
    sim_com_.CloseAllPorts();
}

void frmStatus::CmdExit_Click() {
    cmdStop_Click();
    ports_.CloseAllComPorts();
    for (const char* const name :
         {"frmStatus", "frmStatusEC", "frmStatusIOM", "frmstatusIOM2", "frmStatusFFB", "frmConfigY1", "frmConfigY2"}) {
        panels_.hide(name);
    }
    sim_com_.CommandStopAll();
    sim_com_.CloseSimCom();
    platform_.loop.stop();
}

void frmStatus::Timer1_Timer() {
    if (Running_ == 1) {
        // The controller was not there when the run started; it may have been plugged in meanwhile.
        gauge_bus_.retry_open();
    }
    show_statistics();
    TickCount_ = 0;
    ClusterState& cluster = context_.cluster;
    if (cluster.ClusterRecalibrateWait > 0) {
        --cluster.ClusterRecalibrateWait;
    }
    if (cluster.ClusterRecalibrateWait < 1) {
        cluster.ClusterRecalibrate = 0;
    }
    gauge_bus_.count_down_reply_wait();
}

void frmStatus::show_statistics() {
    frmXferCount.text = std::to_string(TickCount_);
    show_links();
    show_bus_load();
    const std::chrono::duration<double, std::milli> longest_ms = ProcessTimer.longest_run();
    show_number(boxLongestTick, longest_ms.count(), "0.0");
    boxMissedTicks.text = std::to_string(ProcessTimer.missed_periods());
}

void frmStatus::show_bus_load() {
    if (Running_ == 0) {
        boxBusLoad.text = "Halted";
        boxBusLoad.colour = panel::kDefaultColour;
        return;
    }
    bus_load_.take_second(gauge_bus_.bytes_written(), bus_capacity_);
    bus_load_.describe(tables_.ProcessInterval, number_text_);
    boxBusLoad.text = number_text_;
    const BusLoad::State state = bus_load_.state();
    boxBusLoad.colour = state == BusLoad::State::fits       ? panel::kGreen
                        : state == BusLoad::State::too_slow ? panel::kRed
                                                            : panel::kDefaultColour;
}

// What a user who looks for a fault asks first: is the simulator there, is the gauge bus there?
void frmStatus::show_links() {
    const bool lost = sim_com_.last_answer().has_value() && !sim_com_.link_alive();
    boxSimulator.text = sim_com_.link_alive() ? "Answers" : lost ? "Silent" : "Not read";
    boxSimulator.colour = sim_com_.link_alive() ? panel::kGreen : lost ? panel::kRed : panel::kDefaultColour;

    const platform::SerialPort& port = gauge_bus_.serial_port();
    if (tables_.GaugeBusPort1 < 1) {
        boxGaugePort.text = "None";
        boxGaugePort.colour = panel::kDefaultColour;
        return;
    }
    const char* const state = !port.is_open() ? " closed" : port.connected() ? " open" : " unplugged";
    boxGaugePort.text = "COM" + std::to_string(tables_.GaugeBusPort1) + state;
    boxGaugePort.colour = !port.is_open() ? panel::kDefaultColour : port.connected() ? panel::kGreen : panel::kRed;
}

void frmStatus::SliderXferTimer_Change() {
    BoxXferProcessTimer.text = std::to_string(SliderXferTimer.value.get());
    tables_.ProcessInterval = static_cast<std::int16_t>(std::atoi(BoxXferProcessTimer.text.get().c_str()));
    ProcessTimer.set_interval(platform::Milliseconds(tables_.ProcessInterval));
}

}  // namespace run
