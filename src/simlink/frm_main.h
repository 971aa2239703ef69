#pragma once

#include <cstdint>
#include <string>

#include "panel/control.h"
#include "panel/panel.h"
#include "panel/panel_host.h"
#include "platform/platform.h"
#include "simlink/ipc_client.h"
#include "simlink/ipc_texts.h"
#include "simlink/run_starter.h"
#include "tables/configuration_store.h"
#include "tables/core_tables.h"

namespace simlink {

// What the start panel works with; all of it outlives the panel.
struct StartParts {
    const platform::Platform& platform;
    tables::CoreTables& tables;
    tables::ConfigurationStore& configuration;
    IpcClient& client;
    RunStarter& run;
    panel::PanelHost& panels;
};

// The start panel and the start of the program: it tries the simulator, loads the configuration, and then counts down
// to a run or waits for the simulator first. The user can step in at any time.
//
// State      | Running timer  | Left by
// Settling   | Timer1         | its third tick
// Waiting    | TimerWaitForFS | a connection to the simulator
// Countdown  | Timer2         | the number falling below 1, or a user command
// Idle       | none           | a user command
class frmMain : public panel::Panel {
  public:
    explicit frmMain(const StartParts& parts);

    // The start routine, the program's entry point: tries the simulator once and shows this panel; timers and events do
    // the rest. Run it once, as a task of the event loop: it may wait in a box, and for a simulator that hangs.
    void start();

    void butOK_Click();
    void CmdConfigure_Click();
    void Exit_Click();
    void FileBox_Click();

    // --- Fields ---------------------------------------------------------------------------------------------------

    panel::TextBox frmMainConnection;
    panel::TextBox lblSim;
    panel::TextBox LabelFSUIPC;
    panel::TextBox LabelProgramVersion;
    panel::ListBox FileBox;
    panel::TextBox FileName;
    panel::Label TextAutostart;
    panel::TextBox BoxAutoStartTime;
    panel::Label Textseconds;
    panel::CommandButton butOK;
    panel::CommandButton CmdConfigure;
    panel::CommandButton Exit;

    platform::Timer Timer1;
    platform::Timer Timer2;
    platform::Timer TimerWaitForFS;

  protected:
    void Form_Load() override;
    void Form_Activate() override;

  private:
    void Form_Initialize();
    void Timer1_Timer();
    void Timer2_Timer();
    void TimerWaitForFS_Timer();
    void late_link_tick();

    void arrange();
    void refresh_file_box();
    void load_configuration();
    void load_and_enable_continue();
    void connect(const SimNameTable& names);
    bool shows_connected() const;
    void show_countdown_line();
    void hide_countdown_line();
    void stop_countdown();
    void start_run();
    void close();

    const platform::Platform& platform_;
    tables::CoreTables& tables_;
    tables::ConfigurationStore& configuration_;
    IpcClient& client_;
    RunStarter& run_;
    panel::PanelHost& panels_;

    platform::Timer late_link_timer_;
    std::int16_t start_ticks_ = 0;
    std::string selected_file_;  // of the start file, or the last choice in FileBox
    int loads_in_hand_ = 0;      // loads that wait in a box
};

}  // namespace simlink
