#pragma once

#include <array>
#include <memory>
#include <string_view>
#include <vector>

#include "bus/gauge_bus.h"
#include "bus/port_set.h"
#include "cluster/frm_status_ec.h"
#include "iomodule/frm_status_iom.h"
#include "panel/panel_host.h"
#include "panel/placeholder_panel.h"
#include "platform/platform.h"
#include "run/frm_status.h"
#include "simlink/frm_main.h"
#include "simlink/ipc_client.h"
#include "simlink/run_starter.h"
#include "simlink/sim_com.h"
#include "tables/configuration_store.h"
#include "tables/core_tables.h"
#include "yoke/frm_force_curve.h"
#include "yoke/frm_status_ffb.h"

namespace app {

// The whole program on one machine: its tables, its link to the simulator, its gauge bus and all its panels. It knows
// nothing of how the panels are shown. Several can stand in one process, each on a machine of its own.
class Cockpit final : private simlink::RunStarter {
  public:
    // What `platform` refers to outlives the cockpit.
    explicit Cockpit(const platform::Platform& platform);
    ~Cockpit() override;
    Cockpit(const Cockpit&) = delete;
    Cockpit& operator=(const Cockpit&) = delete;

    // Queues the start routine; the event loop does the rest. Once.
    void start();
    // Queues the orderly end, as the run panel's Exit command: the run stops, ports and panels close, the loop ends.
    // Works while a box is open too.
    void exit();

    panel::PanelHost& panels() { return panels_; }
    tables::CoreTables& tables() { return tables_; }
    tables::ConfigurationStore& configuration() { return configuration_; }
    simlink::IpcClient& client() { return client_; }
    simlink::SimCom& sim_com() { return sim_com_; }
    bus::GaugeBus& gauge_bus() { return gauge_bus_; }
    bus::PortSet& ports() { return ports_; }
    run::frmStatus& run_panel() { return run_panel_; }
    cluster::frmStatusEC& cluster_panel() { return cluster_panel_; }
    iomodule::frmStatusIOM& io_module1() { return io_module1_; }
    iomodule::frmStatusIOM& io_module2() { return io_module2_; }
    yoke::frmStatusFFB& yokes_panel() { return yokes_panel_; }
    yoke::frmConfigYoke& yoke1() { return yoke1_; }
    yoke::frmConfigYoke& yoke2() { return yoke2_; }
    yoke::frmForceCurve& force_curve() { return force_curve_; }
    simlink::frmMain& start_panel() { return start_panel_; }

  private:
    void show_run_panel() override;
    void minimise_run_panel() override;
    void set_run_panel_file(std::string_view file_name) override;
    void RefreshConfig() override;
    void OpenAllPorts() override;
    void CloseAllComPorts() override;
    void cmdRun_Click() override;

    platform::Platform platform_;
    tables::CoreTables tables_;
    panel::PanelHost panels_;
    tables::ConfigurationStore configuration_;
    simlink::IpcClient client_;
    simlink::SimCom sim_com_;
    bus::PortSet ports_;
    bus::GaugeBus gauge_bus_;
    run::frmStatus run_panel_;
    cluster::frmStatusEC cluster_panel_;
    iomodule::frmStatusIOM io_module1_;
    iomodule::frmstatusIOM2 io_module2_;
    yoke::YokeRoles yoke_roles_;
    yoke::frmConfigY1 yoke1_;
    yoke::frmConfigY2 yoke2_;
    yoke::frmStatusFFB yokes_panel_;
    yoke::frmForceCurve force_curve_;
    simlink::frmMain start_panel_;
    std::vector<std::unique_ptr<panel::PlaceholderPanel>> placeholders_;
};

}  // namespace app
