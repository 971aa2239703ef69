#include "simlink/frm_main.h"

#include <algorithm>
#include <charconv>

#include "panel/layout.h"
#include "simlink/sim_offsets.h"
#include "support/failure.h"

namespace simlink {

namespace {

constexpr platform::Milliseconds kOneSecond{1000};
constexpr std::int16_t kSettlingTicks = 3;
constexpr std::int32_t kAnySimulator = 0;

constexpr std::string_view kNotKnown = "N/A";
constexpr std::string_view kConnected = "Connected";
constexpr std::string_view kAutostartCaption = "Program will autostart with Selected Config in: ";
constexpr std::string_view kWaitingCaption = "Waiting for Simulator startup";

int number_of(const std::string& text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

}  // namespace

frmMain::frmMain(const StartParts& parts)
    : Panel("frmMain", "Start"),
      frmMainConnection(*this, "frmMainConnection", "FS link status:"),
      lblSim(*this, "lblSim", "Connected simulator:"),
      LabelFSUIPC(*this, "LabelFSUIPC", "FSUIPC Version:"),
      LabelProgramVersion(*this, "LabelProgramVersion", "Control Program version:"),
      FileBox(*this, "FileBox", "Configurations:"),
      FileName(*this, "FileName", "Selected Configuration File:"),
      TextAutostart(*this, "TextAutostart"),
      BoxAutoStartTime(*this, "BoxAutoStartTime", ""),
      Textseconds(*this, "Textseconds", "Seconds"),
      butOK(*this, "butOK", "Continue"),
      CmdConfigure(*this, "CmdConfigure", "Configure"),
      Exit(*this, "Exit", "Exit"),
      Timer1(parts.platform.loop, "frmMain.Timer1", kOneSecond, [this] { Timer1_Timer(); }),
      Timer2(parts.platform.loop, "frmMain.Timer2", kOneSecond, [this] { Timer2_Timer(); }),
      TimerWaitForFS(parts.platform.loop, "frmMain.TimerWaitForFS", kOneSecond, [this] { TimerWaitForFS_Timer(); }),
      platform_(parts.platform),
      tables_(parts.tables),
      configuration_(parts.configuration),
      client_(parts.client),
      run_(parts.run),
      panels_(parts.panels),
      late_link_timer_(parts.platform.loop, "frmMain.late link", kOneSecond, [this] { late_link_tick(); }) {
    frmMainConnection.text = "Not connected";
    lblSim.text = kNotKnown;
    LabelFSUIPC.text = kNotKnown;
    LabelProgramVersion.text = tables::kProgramVersion;
    butOK.enabled = false;
    butOK.on_click = [this] { butOK_Click(); };
    CmdConfigure.on_click = [this] { CmdConfigure_Click(); };
    Exit.on_click = [this] { Exit_Click(); };
    FileBox.on_click = [this] { FileBox_Click(); };
    hide_countdown_line();
    arrange();
}

void frmMain::arrange() {
    frmMainConnection.tool_tip = "Whether the simulator answers, and if not, why";
    lblSim.tool_tip = "Simulator that the program is connected to";
    LabelFSUIPC.tool_tip = "Version of the simulator's data interface";
    LabelProgramVersion.tool_tip = "Version of this program";
    FileBox.tool_tip = "Choose a configuration; this ends the automatic start";
    FileName.tool_tip = "Configuration that will be used";
    BoxAutoStartTime.tool_tip = "Seconds until the run starts by itself";
    butOK.tool_tip = "Go on with the selected configuration, without starting a run";
    CmdConfigure.tool_tip = "Set up gauges, functions and ports";
    Exit.tool_tip = "End the program";
    set_layout(panel::column({
        panel::frame("Simulator", {frmMainConnection, panel::row({lblSim, LabelFSUIPC, LabelProgramVersion})}),
        panel::frame("Configuration", {FileBox, FileName}),
        panel::row({TextAutostart, BoxAutoStartTime, Textseconds}),
        panel::row({butOK, CmdConfigure, Exit}),
    }));
}

void frmMain::start() {
    connect(SimNames);
    client_.ConnectionStatus = result_text(client_.IpcResult);
    panels_.show(*this);
}

// One connection attempt. At the start of the program it also is the first touch of the panel.
void frmMain::connect(const SimNameTable& names) {
    client_.IpcInit();
    const bool connected = client_.IpcOpen(kAnySimulator, client_.IpcResult);
    const std::string result(result_text(client_.IpcResult));
    panels_.load(*this);
    if (!connected) {
        frmMainConnection.text = "Error: " + result;
        return;
    }
    lblSim.text = sim_name(names, client_.SimVersionWord);
    LabelFSUIPC.text = version_text(client_.FsuipcVersionWord);
    frmMainConnection.text = "Connected to  Flight Simulator;   " + result;
}

bool frmMain::shows_connected() const {
    return frmMainConnection.text.get().starts_with(kConnected);
}

void frmMain::Form_Load() {
    Form_Initialize();
}

void frmMain::Form_Initialize() {
    tables_.ProgramName = tables::kProgramName;
    selected_file_ = configuration_.LoadStartFile();
    FileName.text = selected_file_;
    tables_.ConfigFileName = selected_file_;
    load_configuration();
    if (tables_.ConfigError == 0) {
        butOK.enabled = true;
        TextAutostart.text = kAutostartCaption;
        Timer1.start();
    }
}

void frmMain::Form_Activate() {
    refresh_file_box();
    FileName.text = selected_file_;
    tables_.ConfigFileName = selected_file_;
    load_and_enable_continue();
}

void frmMain::refresh_file_box() {
    std::vector<std::string> names;
    try {
        names = platform_.files.list(".cfg");
    } catch (const support::Failure&) {
        // A folder that cannot be listed offers nothing to choose; loading tells why.
    }
    const auto selected = std::find(names.begin(), names.end(), selected_file_);
    const int line = selected == names.end() ? -1 : static_cast<int>(selected - names.begin());
    FileBox.items.assign(std::move(names));
    FileBox.value = line;
}

// NOTE: a load can wait in a box while the timers go on. `loads_in_hand_` keeps the countdown from starting a run on
// tables that are only half read.
void frmMain::load_configuration() {
    struct Guard {
        int& loads;
        explicit Guard(int& counter) : loads(counter) { ++loads; }
        ~Guard() { --loads; }
    };
    const Guard guard(loads_in_hand_);
    configuration_.LoadConfiguration();
}

void frmMain::load_and_enable_continue() {
    load_configuration();
    if (tables_.ConfigError == 0) {
        butOK.enabled = true;
    }
}

void frmMain::show_countdown_line() {
    TextAutostart.text = kAutostartCaption;
    TextAutostart.visible = true;
    Textseconds.visible = true;
    BoxAutoStartTime.visible = true;
}

void frmMain::hide_countdown_line() {
    TextAutostart.visible = false;
    Textseconds.visible = false;
    BoxAutoStartTime.visible = false;
}

void frmMain::stop_countdown() {
    Timer2.stop();
    Timer1.stop();
    hide_countdown_line();
}

void frmMain::Timer1_Timer() {
    ++start_ticks_;
    if (start_ticks_ < kSettlingTicks) {
        return;
    }
    Timer1.stop();
    if (shows_connected()) {
        Timer2.start();
        BoxAutoStartTime.text = std::to_string(tables_.AutoStartDelay);
        show_countdown_line();
        return;
    }
    TimerWaitForFS.start();
    TextAutostart.text = kWaitingCaption;
    TextAutostart.visible = true;
    Textseconds.visible = false;
    BoxAutoStartTime.visible = false;
}

void frmMain::TimerWaitForFS_Timer() {
    if (shows_connected()) {
        TimerWaitForFS.stop();
        Timer2.start();
        show_countdown_line();
        return;
    }
    connect(kSimNamesAtRetry);
    if (shows_connected()) {
        TimerWaitForFS.stop();
        Timer2.start();
        Timer1.stop();
        BoxAutoStartTime.text = std::to_string(tables_.AutoStartDelay);
        show_countdown_line();
    }
}

void frmMain::Timer2_Timer() {
    const int seconds = number_of(BoxAutoStartTime.text) - 1;
    BoxAutoStartTime.text = std::to_string(seconds);
    const bool open = window_state() != panel::WindowState::hidden;
    if (open && seconds < 1 && loads_in_hand_ == 0) {
        start_run();
    }
}

void frmMain::start_run() {
    // 1.
    Timer2.stop();
    run_.set_run_panel_file(FileName.text.get());
    tables_.ConfigFileName = FileName.text.get();
    // 2.
    load_configuration();
    if (tables_.ConfigError != 0) {
        return;
    }
    // 3.
    run_.show_run_panel();
    run_.RefreshConfig();
    run_.OpenAllPorts();
    run_.cmdRun_Click();
    run_.minimise_run_panel();
    // 4.
    constexpr std::int16_t kGoOn = 0;
    client_.IpcWrite(kOffsetPauseControl, sizeof kGoOn, &kGoOn, client_.IpcResult);
    client_.IpcProcess(client_.IpcResult);
    // 5.
    close();
}

void frmMain::butOK_Click() {
    if (FileName.text.get().empty()) {
        platform_.boxes.message("No Configuration file selected ");
        return;
    }
    load_configuration();
    if (tables_.ConfigError != 0) {
        return;
    }
    run_.show_run_panel();
    run_.RefreshConfig();
    run_.set_run_panel_file(FileName.text.get());
    run_.OpenAllPorts();
    stop_countdown();
    close();
    // NOTE: a user who goes on without a simulator gets it as soon as it is there: the link is tried on behind the
    // closed panel, without a countdown and without starting anything.
    if (!client_.is_open()) {
        late_link_timer_.start();
    }
}

void frmMain::CmdConfigure_Click() {
    stop_countdown();
    if (FileName.text.get().empty()) {
        platform_.boxes.message("No Config File Selected");
        return;
    }
    tables_.ConfigFileName = FileName.text.get();
    load_configuration();
    butOK.enabled = true;
    Timer2.stop();
    Timer1.stop();
    tables_.ConfigureFromRunPanel = 0;
    panels_.show("FrmMainConfigure");
}

void frmMain::Exit_Click() {
    client_.IpcClose();
    run_.CloseAllComPorts();
    close();
    platform_.loop.stop();
}

void frmMain::FileBox_Click() {
    stop_countdown();
    const auto line = static_cast<std::size_t>(FileBox.value.get());
    if (line >= FileBox.items.size()) {
        return;
    }
    selected_file_ = FileBox.items[line];
    FileName.text = selected_file_;
    run_.set_run_panel_file(selected_file_);
    tables_.ConfigFileName = selected_file_;
    load_and_enable_continue();
}

// The panel's timers end with it.
void frmMain::close() {
    Timer1.stop();
    Timer2.stop();
    TimerWaitForFS.stop();
    panels_.hide(*this);
}

void frmMain::late_link_tick() {
    if (!client_.is_open()) {
        connect(kSimNamesAtRetry);
    }
    if (client_.is_open()) {
        late_link_timer_.stop();
    }
}

}  // namespace simlink
