#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <memory>
#include <string>

#include "bus/gauge_bus.h"
#include "bus/port_set.h"
#include "iomodule/io_module_telegram.h"
#include "panel/control.h"
#include "panel/panel.h"
#include "panel/panel_host.h"
#include "platform/platform.h"
#include "run/run_participant.h"
#include "simlink/sim_com.h"
#include "tables/core_tables.h"

namespace iomodule {

// The colour of a LED that is off.
inline constexpr std::int32_t kLedDark = 0x808080;

// What a module's panel works with; all of it outlives the panel.
struct IomParts {
    const platform::Platform& platform;
    tables::CoreTables& tables;
    simlink::SimCom& sim_com;
    bus::GaugeBus& gauge_bus;
    bus::PortSet& ports;
    panel::PanelHost& panels;
};

// What tells the two modules apart.
struct ModuleTraits {
    const char* panel_name;
    const char* title;
    const char* number_sign;  // in messages
    int device_id;
    std::int16_t simulator_port_owner;
    std::int16_t tables::CoreTables::*port;
    bus::PortPlace place;
    bool start_clears_input;
};

// The panel of IO module 1: it owns the module's port and runs its cycle. Every 40 ms changed LEDs, a status request
// and a changed power state go out; the telegram that answers moves switches and analogue inputs into the simulator.
class frmStatusIOM : public panel::Panel, public run::RunParticipant, public bus::PortOwner, public bus::IoModuleLink {
  public:
    explicit frmStatusIOM(const IomParts& parts);
    ~frmStatusIOM() override;

    // --- As a unit of the run ---------------------------------------------------------------------------------------

    bool hasPort() const override { return port_number() > 0; }
    // Opens the port afresh, empty and with its own settings. Nothing without a port number; shows a message when it
    // fails, once until it has worked.
    void OpenCommPort() override;
    // Opens the simulator ports of all rows of this module. May show messages.
    void OpenPorts() override;
    // Starts the cycle; waits, serving events, about a second. Nothing while running.
    void cmdRun_Click() override;
    void cmdStop_Click() override;

    // --- What other panels call -------------------------------------------------------------------------------------

    // Hands one command to the 10 ms sender; waits, serving events, while the one before is still there. Only while
    // halted; a run sends nothing of it. Throws a Failure for data that is not finite.
    void ComposeCmd(int id, int cmd, double data) override;
    void cmdHide_Click();

    // The telegram last received, whatever it was; empty before the first.
    std::string LastInput;
    // 1 from each good telegram on.
    std::int16_t InputSeen = 0;

    // --- The cycle --------------------------------------------------------------------------------------------------

    // One cycle. Allocates nothing while all goes well.
    void ProcessTimer_Timer();

    bool running() const { return PanelRunning_ == 1; }
    int device_id() const { return traits_.device_id; }
    bool switch_state(int number) const { return SwitchState_[static_cast<std::size_t>(number)] == 1; }
    std::int16_t AnalogueValue(int number) const { return AnalogueValue_[static_cast<std::size_t>(number)]; }

    // --- The port ---------------------------------------------------------------------------------------------------

    platform::SerialPort& serial_port() override { return *MSComm1_; }
    void reset_link() override;
    void link_opened() override;

    // --- Fields -----------------------------------------------------------------------------------------------------

    panel::Indicator BoxRun;
    panel::Indicator boxPort;
    panel::Indicator boxReply;
    panel::TextBox boxNrOfUpdates;
    panel::CommandButton cmdRun;
    panel::CommandButton cmdStop;
    panel::CommandButton cmdHide;
    std::array<panel::Indicator, kSwitches> boxSwitchIndicator;
    std::array<panel::Indicator, kLeds> boxLedIndicator;
    std::array<panel::Slider, kAnalogueInputs> SLiderAnalogue;

    platform::Timer ProcessTimer;
    platform::Timer TimerSeconds;
    platform::Timer WriteCmdDuringConfig;

  protected:
    frmStatusIOM(const IomParts& parts, const ModuleTraits& traits);

    void Form_Load() override;
    void Form_Activate() override;

  private:
    // Which part of a telegram is in hand, for the words of the question.
    enum class ErrorSection { telegram = 0, switches = 1, analogue_inputs = 2 };

    std::int16_t port_number() const { return tables_.*traits_.port; }
    tables::IomRow* row(std::int16_t number);

    void set_up_fields();
    void arrange();
    void show_running();
    void show_halted();
    void show_port();
    void show_reply();
    void show_assignments();

    void open_comm_port();
    void retry_open();
    void activate(bool clear_input);
    void repaint_outputs();
    void forget_leds();
    void assign_row(std::int16_t number);

    void process_cycle();
    void serve_led(int number);
    void AppendCmd(int id, int cmd, double data);
    void send_out_buffer();
    void TimerSeconds_Timer();
    void WriteCmdDuringConfig_Timer();
    void send_pending_command();

    void MSComm1_OnComm(platform::SerialEvent event);
    void take_telegram();
    void take_switches(std::string_view telegram);
    void take_switch(int number, bool on);
    void take_analogue_inputs(std::string_view telegram);
    void take_analogue_input(int number);
    // Runs one small step of the receive handler; a failure is asked about once in a run.
    template <typename Step>
    void attempt(ErrorSection section, int signal_number, Step&& step);
    void ask_to_continue(const std::string& description);
    std::string failure_text(const std::string& description) const;

    const platform::Platform& platform_;
    tables::CoreTables& tables_;
    simlink::SimCom& sim_com_;
    bus::GaugeBus& gauge_bus_;
    bus::PortSet& ports_;
    panel::PanelHost& panels_;
    const ModuleTraits& traits_;
    std::unique_ptr<platform::SerialPort> MSComm1_;

    std::array<std::int16_t, kSwitches> SwitchRow_{};
    std::array<std::uint8_t, kSwitches> SwitchState_{};
    std::array<std::uint8_t, kSwitches + 1> LastSwitchState_{};
    std::array<std::int16_t, kLeds> LedRow_{};
    std::array<std::int16_t, kAnalogueInputs> AnalogueRow_{};
    std::array<std::int16_t, kAnalogueInputs> AnalogueValue_{};
    std::array<std::int16_t, kAnalogueInputs> LastAnalogueValue_{};
    SwitchBytes LastSwitchBytes_{};
    AnalogueBytes LastAnalogueBytes_{};
    bool analogue_seen_ = false;  // LastAnalogueBytes holds a telegram's bytes

    std::string OutBuffer_;
    std::int16_t PanelRunning_ = 0;
    std::int16_t CmdPending_ = 0;
    std::int16_t UpdateCount_ = 0;
    ErrorSection ErrorSection_ = ErrorSection::telegram;
    int signal_in_hand_ = 0;
    std::uint8_t PowerByte_ = 0;
    std::uint8_t LastPowerByte_ = 0;

    int telegrams_ = 0;  // good ones since the last TimerSeconds event
    bool open_failure_told_ = false;
    // What the user has been asked about in this run: the telegram, then switches, then analogue inputs.
    std::bitset<1 + kSwitches + kAnalogueInputs> asked_;
    std::string number_text_;
};

// The panel of IO module 2.
class frmstatusIOM2 : public frmStatusIOM {
  public:
    explicit frmstatusIOM2(const IomParts& parts);
};

}  // namespace iomodule
