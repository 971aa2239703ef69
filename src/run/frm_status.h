#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "bus/gauge_bus.h"
#include "bus/port_set.h"
#include "panel/control.h"
#include "panel/panel.h"
#include "panel/panel_host.h"
#include "platform/platform.h"
#include "run/bus_load.h"
#include "run/run_context.h"
#include "run/run_participant.h"
#include "simlink/sim_com.h"
#include "tables/core_tables.h"

namespace run {

// What the run panel works with; all of it outlives the panel.
struct RunParts {
    const platform::Platform& platform;
    tables::CoreTables& tables;
    simlink::SimCom& sim_com;
    bus::GaugeBus& gauge_bus;
    bus::PortSet& ports;
    panel::PanelHost& panels;
};

// The run panel: starts and stops a run, and does the tick that turns simulator values into frames for every gauge.
class frmStatus : public panel::Panel {
  public:
    explicit frmStatus(const RunParts& parts);
    ~frmStatus() override;

    // A unit with a port of its own joins the run. Null takes it out again.
    void set_participant(ParticipantPlace place, RunParticipant* participant);

    // --- What other panels call -----------------------------------------------------------------------------------

    // Builds the lists of the run: active gauges, simulator ports, poll slots. Nothing while the simulator ports are
    // open (SimCom's PortsOpen). Only while halted. May show messages.
    void RefreshConfig();
    // Starts a run; nothing while one is on.
    void cmdRun_Click();
    // Stops the run; nothing while halted.
    void cmdStop_Click();
    // Stops the run and goes to the configuration panel.
    void cmdconfig_Click();
    // Stops the run, closes ports and panels, and ends the program.
    void CmdExit_Click();
    // One tick. Only during a run. Allocates nothing once every gauge has been served and nothing goes wrong.
    void ProcessTimer_Timer();

    bool running() const { return Running_ == 1; }
    std::int16_t TickCount() const { return TickCount_; }
    // The lists and values of the run, for the units of the program and for tests.
    RunContext& context() { return context_; }
    // Its longest run, longest delay and missed periods tell how well the cockpit keeps time.
    const platform::Timer& process_timer() const { return ProcessTimer; }

    // --- Fields ---------------------------------------------------------------------------------------------------

    panel::Indicator BoxRun;
    panel::Label Label37;  // file of the configuration, also written by the start panel
    panel::TextBox BoxCurrentConfig;
    panel::Label LabelVersion;
    panel::CommandButton cmdRun;
    panel::CommandButton cmdStop;
    panel::CommandButton cmdconfig;
    panel::CommandButton cmdHide;
    panel::CommandButton CmdExit;
    panel::CommandButton cmdShowPorts;
    panel::CommandButton cmdShowECStatus;
    panel::CommandButton cmdShowIOM;
    panel::CommandButton cmdShowIOM2;
    panel::CommandButton CmdShowYokes;

    panel::TextBox BoxIAS;
    panel::TextBox boxAltitude;
    panel::TextBox BoxVS;
    panel::TextBox BoxHea;
    panel::TextBox boxCompass;
    panel::TextBox boxPitch;
    panel::TextBox boxBank;
    panel::TextBox BoxAirPressHg;
    panel::TextBox BoxAirPressmBar;
    panel::TextBox boxVoltage;
    panel::TextBox BoxInstrLights;
    panel::TextBox boxNavLights;

    panel::Slider SliderXferTimer;
    panel::TextBox BoxXferProcessTimer;
    panel::TextBox frmXferCount;
    panel::TextBox boxNrofOffsets;
    panel::Indicator boxSimulator;
    panel::Indicator boxGaugePort;
    panel::Indicator boxBusLoad;
    panel::TextBox boxLongestTick;
    panel::TextBox boxMissedTicks;

    platform::Timer ProcessTimer;
    platform::Timer Timer1;

  protected:
    void Form_Load() override;
    void Form_Activate() override;

  private:
    // frm_status.cpp
    void set_handlers();
    void set_tool_tips();
    void arrange();
    void show_configuration();
    void show_version();
    void show_running();
    void show_halted();
    void Timer1_Timer();
    void SliderXferTimer_Change();
    void show_statistics();
    void show_links();
    void show_bus_load();
    void start_gauges();
    // Calls every unit that has a port, in the given order.
    template <typename Call>
    void for_each_participant(Call&& call) {
        for (RunParticipant* const unit : participants_) {
            if (unit != nullptr && unit->hasPort()) {
                call(*unit);
            }
        }
    }

    // refresh_config.cpp
    void take_process_interval();
    void show_unit_commands();
    void build_active_list();
    void set_up_gauges();
    void open_system_ports();

    // process_tick.cpp
    void process_tick();
    void process_lights();
    void send_lights();
    void show_system_values();
    void serve_gauges();
    void read_system_values();
    void read_system_port(std::size_t number, float& value);
    void show_switches();
    void FlushFrames();
    void ask_about_write_failure(const support::Failure& failure);
    bool asks_to_continue(const support::Failure& failure);
    void show_number(panel::TextBox& box, double value, std::string_view picture);
    void take_report(const bus::GaugeReport& report);
    void link_is_fresh();

    const platform::Platform& platform_;
    tables::CoreTables& tables_;
    simlink::SimCom& sim_com_;
    bus::GaugeBus& gauge_bus_;
    bus::PortSet& ports_;
    panel::PanelHost& panels_;
    std::array<RunParticipant*, kParticipantPlaces> participants_{};
    RunContext context_;

    std::int16_t Running_ = 0;
    bool start_cancelled_ = false;   // a stop came while a start was waiting
    std::int16_t TickCount_ = 0;     // ticks since the last Timer1 event
    std::uint8_t ProcessState_ = 0;  // progress of the tick, 1 to 7; read by the error message
    int entry_in_hand_ = 0;          // list index; read by the error message
    float InstrLightSwitch_ = 0;
    float NavLightSwitch_ = 0;
    BusLoad bus_load_;
    int bus_capacity_;         // bytes a second
    std::string number_text_;  // kept, so that a tick allocates nothing

    bool write_failure_told_ = false;  // the user knows of this outage of the gauge port
    bool lights_sent_ = false;         // since the lists were built
    bool repaint_lights_ = false;      // the next tick tells all gauges their lights, changed or not
};

}  // namespace run
