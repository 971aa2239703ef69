#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "bus/port_set.h"
#include "cluster/cluster_telegram.h"
#include "panel/control.h"
#include "panel/panel.h"
#include "panel/panel_host.h"
#include "platform/platform.h"
#include "run/cluster_state.h"
#include "run/run_participant.h"
#include "simlink/sim_com.h"
#include "support/steps.h"
#include "tables/core_tables.h"

namespace cluster {

// What the panel works with; all of it outlives the panel.
struct ClusterParts {
    const platform::Platform& platform;
    tables::CoreTables& tables;
    simlink::SimCom& sim_com;
    bus::PortSet& ports;
    panel::PanelHost& panels;
    run::ClusterState& state;  // shared with the run panel
};

// Entry r of ClusterPortNr is the simulator port of settings row r, this far behind it stands that of the second
// engine.
inline constexpr int kSecondEnginePorts = 11;
inline constexpr int kClusterPorts = 19;

// The panel of the stand-alone engine cluster, which hangs on a port of its own: one telegram with all needles and
// displays every 40 ms. The unit is driven blind; it needs not reply.
class frmStatusEC : public panel::Panel, public run::RunParticipant, public bus::PortOwner {
  public:
    explicit frmStatusEC(const ClusterParts& parts);
    ~frmStatusEC() override;

    // --- As a unit of the run ---------------------------------------------------------------------------------------

    bool hasPort() const override { return tables_.ClusterPort > 0; }
    // Opens the simulator ports of all rows in use; needles stand at 0 until their first value. May show messages.
    void OpenPorts() override;
    // Starts the telegrams; nothing while they go out. May show a message.
    void cmdRun_Click() override;
    // Stops them; nothing while halted.
    void cmdStop_Click() override;

    // --- What other panels call -------------------------------------------------------------------------------------

    // Makes the unit look for the zero marks of all needles, in a run or outside one. It starts the telegrams.
    void Recalibrate();
    // Sends one needle (0..15; nothing for others) to a position, limited to 0..4320, and all others to 0. While
    // telegrams go out the next one undoes it. Shows a message when the port is not there.
    void MoveSingleNeedle(int index, int position);

    // One telegram. Allocates nothing while all goes well.
    void ProcessTimer_Timer();

    bool running() const { return running_; }
    const std::string& ClusterTelegram() const { return ClusterTelegram_; }
    // The version text of the latest reply, empty before the first.
    const std::string& ClusterReply() const { return ClusterReply_; }
    std::int16_t ClusterPortNr(int entry) const { return ClusterPortNr_[static_cast<std::size_t>(entry)]; }

    // --- The port ---------------------------------------------------------------------------------------------------

    platform::SerialPort& serial_port() override { return *MSComm1_; }
    void reset_link() override;
    void link_opened() override;

    // --- Fields -----------------------------------------------------------------------------------------------------

    panel::Indicator BoxRun;
    panel::Indicator boxPort;
    panel::TextBox boxUnitReply;
    panel::TextBox boxNrOfUpdates;
    panel::CommandButton cmdRun;
    panel::CommandButton cmdStop;
    panel::CommandButton CmdClose;
    std::array<panel::Label, kNeedlesPerEngine> LabelFunction;
    std::array<panel::TextBox, kNeedles> boxValue;

    platform::Timer ProcessTimer;
    platform::Timer Timer1000ms;

  protected:
    void Form_Load() override;
    void Form_Activate() override;

  private:
    const tables::ClusterRow& row(int number) const { return tables_.cluster[static_cast<std::size_t>(number)]; }
    bool dual_engine() const;

    void set_tool_tips();
    void arrange();
    void show_functions();
    void show_port();
    void show_running();
    void show_halted();
    void show_reply();

    void process_tick();
    void serve_row(int row_number);
    void serve_needle(int row_number, int needle, std::int16_t port);
    void read_needle(int row_number, int needle, std::int16_t port);
    void put_next_display(int needle);
    void put_recalibration();
    void send_telegram();
    void ask_about_write_failure();
    bool asks_to_continue(const std::function<bool()>& settled);
    void Timer1000ms_Timer();
    void retry_open();
    void MSComm1_OnComm(platform::SerialEvent event);
    void take_reply();

    const platform::Platform& platform_;
    tables::CoreTables& tables_;
    simlink::SimCom& sim_com_;
    bus::PortSet& ports_;
    panel::PanelHost& panels_;
    run::ClusterState& state_;
    std::unique_ptr<platform::SerialPort> MSComm1_;
    support::Steps<std::function<bool(const support::Failure&)>> steps_;

    bool running_ = false;
    std::array<std::int16_t, kClusterPorts> ClusterPortNr_{};
    std::string ClusterTelegram_;
    std::string ClusterReply_;
    int ClusterFrames_ = 0;                 // since the last Timer1000ms event
    int next_display_ = 0;                  // display slot that is given out next
    std::array<int, kNeedles> position_{};  // where each needle was last sent
    std::string number_text_;               // kept, so that a tick allocates nothing

    bool data_failure_told_ = false;   // the user knows what is wrong with the settings, in this run
    bool write_failure_told_ = false;  // the user knows of this outage of the port
};

}  // namespace cluster
