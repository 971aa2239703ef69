#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "bus/port_set.h"
#include "panel/panel.h"
#include "panel/panel_host.h"
#include "platform/platform.h"
#include "run/frm_status.h"
#include "simlink/sim_com.h"
#include "tables/core_tables.h"
#include "yoke/force_modes.h"
#include "yoke/yoke_fields.h"
#include "yoke/yoke_state.h"
#include "yoke/yoke_switches.h"

namespace yoke {

// What the yokes' panels work with; all of it outlives them.
struct YokeParts {
    const platform::Platform& platform;
    tables::CoreTables& tables;
    simlink::SimCom& sim_com;
    bus::PortSet& ports;
    panel::PanelHost& panels;
    run::frmStatus& run_panel;
};

// What tells the two yokes apart.
struct YokeTraits {
    const char* panel_name;
    const char* title;
    std::size_t number;  // 0 = yoke 1
    std::int16_t tables::CoreTables::*port;
    bus::PortPlace place;
    bool tests_link_first;  // before the test of the virtual joystick
};

// Which yoke flies the aircraft; shared by both yokes and the panel over them.
struct YokeRoles {
    std::int16_t MasterYoke = 0;  // 0 = yoke 1, 1 = yoke 2
};

// Time without telegrams of the yoke or answers of the simulator after which the panel says so.
inline constexpr platform::Milliseconds kSilence{500};

// The panel of one force feedback yoke: it owns the yoke's port, tells it every 40 ms where to go and how hard to push,
// reads what it reports, and holds its settings. Yoke 1 and yoke 2 are the same with their own data.
class frmConfigYoke : public panel::Panel, public YokeFields, public bus::PortOwner, private SwitchSurroundings {
  public:
    frmConfigYoke(const YokeParts& parts, const YokeTraits& traits, YokeRoles& roles);
    ~frmConfigYoke() override;

    // The other yoke; set once, before anything runs.
    void set_partner(frmConfigYoke& partner) { partner_ = &partner; }

    bool hasPort() const {  // NOLINT(readability-identifier-naming): the system's own word
        return tables_.*traits_.port > 0;
    }
    bool running() const { return running_; }
    const YokeState& state() const { return yoke_; }

    // --- Start and stop ---------------------------------------------------------------------------------------------

    void cmdRun_Click();
    // No command goes to the yoke; it keeps its last target and force.
    void cmdStop_Click();
    // What a run does before it starts the yoke: shows the settings and takes them over.
    void activate();

    // --- Modes and roles --------------------------------------------------------------------------------------------

    void OptionCentre_Click() { select_mode(kCenter); }
    void OptionFFB_Click() { select_mode(kForceFeedback); }
    void OptionFollowAPmode_Click() { select_mode(kFollowAp); }
    void OptionServoMode_Click() { select_mode(kServo); }
    void OptionOff_Click() { select_mode(kOff); }
    // By the number of the mode, 0..4; others count as Off. Forces rise from nothing through the ramp again.
    void select_mode(int mode);
    void cmdSetMaster_Click();
    void cmdSetSlave_Click();

    // --- The link ---------------------------------------------------------------------------------------------------

    // Appends one command to YokeOutBuffer; shows a message when that fails.
    void ComposeCmd(int GaugeIDYoke, int icmd, int Ival1, int Ival2, int Ival3, int Ival4);
    // Writes YokeOutBuffer in one piece and empties it; a port that is not there takes nothing.
    void SendSerial();
    platform::SerialPort& serial_port() override { return *MSComm1_; }
    void reset_link() override;
    void link_opened() override;

    // One tick. Allocates nothing in the steady state.
    void ProcessTimer_Timer();

    // Says in boxMotors whether the motors may push. Cheap; called every 40 ms whether the yoke runs or not.
    void show_motors();

    platform::Timer ProcessTimer;
    platform::Timer SwichPowerOffTimer;
    platform::Timer CalibrationTimer;
    platform::Timer TimerVirtualButton;

  protected:
    void Form_Load() override;
    void Form_Activate() override;

  private:
    tables::YokeSettings& settings() { return tables_.yokes[traits_.number]; }
    const tables::YokeSettings& settings() const { return tables_.yokes[traits_.number]; }
    simlink::SimCom& sim_com() override { return sim_com_; }
    run::TrimSwitches& trim_switches() override { return run_panel_.context().trim_switches; }
    void swap_master() override;

    // frm_config_yoke.cpp
    void set_handlers();
    void show_mode();
    void show_number(panel::Control& box, double value, const char* picture);

    // yoke_link.cpp
    void MSComm1_OnComm(platform::SerialEvent event);
    void take_telegram();
    void bad_input(const char* what);
    void take_axis(Axis axis, std::string_view status);
    void take_switches(std::string_view status);
    void restart_port();
    void open_port();
    void restart_link();
    void SwichPowerOffTimer_Timer();
    void show_port();
    const char* why_motors_rest() const;

    // yoke_tick.cpp
    void startup_step();
    void ramp();
    void show_reads();
    void watch_standby(AxisState& axis, double shown_percent);
    void copy_partner_power(Axis axis);
    bool send_motor_power();
    void set_motor(Axis axis, bool on);
    void switch_with_autopilot();
    void run_mode(const TickContext& tick);
    void show_force_feedback();
    void show_follow_ap();
    void show_servo();
    void show_position();
    void put_trim();

    // yoke_settings_commands.cpp
    void set_setting_handlers();
    void show_settings();
    void show_switch_functions();
    void take_slider(std::size_t number);
    void CmdSetTimer_Click();
    void SetDeadbandAndFgreshold_Click();
    void CmdSetSwitches_Click();
    void cmdCopySettingsYoke2_Click();
    bool link_okay_for_test();
    void cmdTestButtonOn_Click();
    void cmdTestButtonOff_Click();
    void end_button_test();
    void TimerVirtualButton_Timer();
    void CmdStartCalibration_Click();
    void CalibrationTimer_Timer();
    void take_stop(std::int16_t& stop, panel::TextBox& box, panel::CheckBox& check, const panel::TextBox& value);
    void CmdCalibrationDone_Click();

    const platform::Platform& platform_;
    tables::CoreTables& tables_;
    simlink::SimCom& sim_com_;
    bus::PortSet& ports_;
    panel::PanelHost& panels_;
    run::frmStatus& run_panel_;
    const YokeTraits traits_;
    YokeRoles& roles_;
    frmConfigYoke* partner_ = nullptr;
    std::unique_ptr<platform::SerialPort> MSComm1_;

    YokeState yoke_;
    YokeSwitches switches_;
    std::string YokeOutBuffer_;
    std::string input_;
    bool running_ = false;
    bool button_phase_ = false;
    std::array<double, kAxes> shown_percent_{};  // as boxBank and boxPitch show it
    std::array<double, kAxes> shown_force_{};
    std::string number_text_;
};

// The two panels.
class frmConfigY1 : public frmConfigYoke {
  public:
    frmConfigY1(const YokeParts& parts, YokeRoles& roles);
};
class frmConfigY2 : public frmConfigYoke {
  public:
    frmConfigY2(const YokeParts& parts, YokeRoles& roles);
};

}  // namespace yoke
