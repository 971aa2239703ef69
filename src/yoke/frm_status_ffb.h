#pragma once

#include <array>

#include "run/run_participant.h"
#include "yoke/frm_config_yoke.h"

namespace yoke {

inline constexpr int kYokes = 2;

// The panel over both yokes: it says which one flies the aircraft, starts and stops them, opens their simulator ports,
// and hands over when the pilot on the slave's side pushes.
class frmStatusFFB : public panel::Panel, public run::RunParticipant {
  public:
    frmStatusFFB(const YokeParts& parts, YokeRoles& roles, frmConfigYoke& yoke1, frmConfigYoke& yoke2);

    // --- As a unit of the run ---------------------------------------------------------------------------------------

    bool hasPort() const override { return yoke(0).hasPort() || yoke(1).hasPort(); }
    // Opens the ports of the yoke functions. May show messages.
    void OpenPorts() override;
    void cmdRun_Click() override;
    void cmdStop_Click() override;

    // --- Roles ------------------------------------------------------------------------------------------------------

    void cmdSetYoke1Master_Click();
    void cmdSetYoke2Master_Click();

    // --- Fields -----------------------------------------------------------------------------------------------------

    panel::Indicator BoxRun;
    panel::TextBox BoxCurrentConfig;
    panel::CommandButton cmdRun;
    panel::CommandButton cmdStop;
    panel::CommandButton cmdSaveLoad;
    panel::CommandButton cmdHide;

    panel::Indicator boxStatusY1;
    panel::Indicator boxAssignmentY1;
    panel::TextBox boxY1Mode;
    panel::Indicator boxMotorsY1;
    panel::CommandButton cmdSetYoke1Master;
    panel::CommandButton cmdShowY1;
    panel::CheckBox CheckMasterAtStartupY1;
    panel::ComboBox ComboSlaveToMasterY1;
    panel::ComboBox ComboMasterToSlaveY1;

    panel::Indicator boxStatusY2;
    panel::Indicator boxAssignmentY2;
    panel::TextBox boxY2Mode;
    panel::Indicator boxMotorsY2;
    panel::CommandButton cmdSetYoke2Master;
    panel::CommandButton CmdShowY2;
    panel::CheckBox CheckMasterAtStartupY2;
    panel::ComboBox ComboSlaveToMasterY2;
    panel::ComboBox ComboMasterToSlaveY2;

    panel::CheckBox CheckAutoSwitch;
    panel::Slider SliderAutoSwichForce;
    panel::Slider SliderOverruleTimeAutoswitch;

    platform::Timer Timer1;

  protected:
    void Form_Activate() override;

  private:
    frmConfigYoke& yoke(int number) { return *yokes_[static_cast<std::size_t>(number)]; }
    const frmConfigYoke& yoke(int number) const { return *yokes_[static_cast<std::size_t>(number)]; }
    tables::YokeCommonSettings& settings() { return tables_.yoke_common; }

    void set_handlers();
    void set_tool_tips();
    void arrange();
    void activate();
    void take_master_at_startup(int yoke_number);
    void Timer1_Timer();
    void show_yokes();
    void watch_slave();

    tables::CoreTables& tables_;
    simlink::SimCom& sim_com_;
    panel::PanelHost& panels_;
    YokeRoles& roles_;
    std::array<frmConfigYoke*, kYokes> yokes_;
    int OverForceTicks_ = 0;
    std::int16_t ForceLimit_ = 0;
};

}  // namespace yoke
