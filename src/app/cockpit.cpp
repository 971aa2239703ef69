#include "app/cockpit.h"

namespace app {

namespace {

// Panels that commands open and that this program does not have yet.
struct LaterPanel {
    const char* name;
    const char* title;
};
constexpr std::array<LaterPanel, 3> kLaterPanels = {{
    {"FrmMainConfigure", "Configuration"},
    {"SaveConfig", "Save configuration"},
    {"frmTestFunction", "Test a function"},
}};

}  // namespace

Cockpit::Cockpit(const platform::Platform& platform)
    : platform_(platform),
      configuration_(tables_, platform_.files, platform_.boxes, platform_.wall_clock),
      client_(platform_.sim_transport),
      sim_com_(tables_, client_, platform_, panels_),
      ports_(platform_.boxes, tables_),
      gauge_bus_(platform_, tables_),
      run_panel_({platform_, tables_, sim_com_, gauge_bus_, ports_, panels_}),
      cluster_panel_({platform_, tables_, sim_com_, ports_, panels_, run_panel_.context().cluster}),
      io_module1_({platform_, tables_, sim_com_, gauge_bus_, ports_, panels_}),
      io_module2_({platform_, tables_, sim_com_, gauge_bus_, ports_, panels_}),
      yoke1_({platform_, tables_, sim_com_, ports_, panels_, run_panel_}, yoke_roles_),
      yoke2_({platform_, tables_, sim_com_, ports_, panels_, run_panel_}, yoke_roles_),
      yokes_panel_({platform_, tables_, sim_com_, ports_, panels_, run_panel_}, yoke_roles_, yoke1_, yoke2_),
      force_curve_(platform_, tables_, panels_),
      start_panel_({platform_, tables_, configuration_, client_, *this, panels_}) {
    panels_.add(start_panel_);
    panels_.add(run_panel_);
    panels_.add(sim_com_);
    panels_.add(cluster_panel_);
    panels_.add(io_module1_);
    panels_.add(io_module2_);
    panels_.add(yoke1_);
    panels_.add(yoke2_);
    panels_.add(yokes_panel_);
    panels_.add(force_curve_);
    run_panel_.set_participant(run::ParticipantPlace::cluster, &cluster_panel_);
    run_panel_.set_participant(run::ParticipantPlace::iom1, &io_module1_);
    run_panel_.set_participant(run::ParticipantPlace::iom2, &io_module2_);
    run_panel_.set_participant(run::ParticipantPlace::yokes, &yokes_panel_);
    for (const LaterPanel& later : kLaterPanels) {
        placeholders_.push_back(std::make_unique<panel::PlaceholderPanel>(panels_, later.name, later.title));
        panels_.add(*placeholders_.back());
    }
}

Cockpit::~Cockpit() = default;

void Cockpit::start() {
    platform_.loop.post([this] { start_panel_.start(); });
}

void Cockpit::exit() {
    platform_.loop.post([this] { run_panel_.CmdExit_Click(); });
}

void Cockpit::show_run_panel() {
    panels_.show(run_panel_);
}

void Cockpit::minimise_run_panel() {
    panels_.minimise(run_panel_);
}

void Cockpit::set_run_panel_file(std::string_view file_name) {
    // The run panel takes the name of its file when it loads, which must not undo this.
    panels_.load(run_panel_);
    run_panel_.Label37.text = file_name;
}

void Cockpit::RefreshConfig() {
    run_panel_.RefreshConfig();
}

void Cockpit::OpenAllPorts() {
    ports_.OpenAllPorts();
}

void Cockpit::CloseAllComPorts() {
    ports_.CloseAllComPorts();
}

void Cockpit::cmdRun_Click() {
    run_panel_.cmdRun_Click();
}

}  // namespace app
