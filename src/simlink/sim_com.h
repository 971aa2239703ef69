#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "panel/control.h"
#include "panel/panel.h"
#include "panel/panel_host.h"
#include "platform/platform.h"
#include "simlink/ipc_client.h"
#include "simlink/link_watch.h"
#include "simlink/sim_port.h"
#include "tables/core_tables.h"

namespace simlink {

inline constexpr int kFfbFunctions = 18;

// Owners of ports that are not a gauge (PortOwnerId).
inline constexpr std::int16_t kOwnerIom1 = 1000;
inline constexpr std::int16_t kOwnerIom2 = 2000;
inline constexpr std::int16_t kOwnerInternal = 3000;
inline constexpr std::int16_t kOwnerCluster = 4000;
inline constexpr std::int16_t kOwnerYokes = 5000;

// The needle position of a radio-magnetic indicator whose station is not valid; others are 0..4320 for a turn.
inline constexpr std::int16_t kRmiParked = 5000;

// Stands between the run and the simulator. Whoever wants a simulator value opens a port on a function; a timer moves
// the raw values of all ports to and from the simulator in one block every 20 ms, and callers work with engineering
// values through GetPort and PutPort without ever waiting. It is also the panel that lists the open ports.
//
// Requests of the fixed accesses (autopilot, radios, keystrokes ...) go into the block in front of those of the next
// cycle; a variable that one of them reads holds the answer of an earlier cycle.
class SimCom : public panel::Panel {
  public:
    SimCom(tables::CoreTables& tables, IpcClient& client, const platform::Platform& platform, panel::PanelHost& panels);

    // Ports. A port number that is not open (-1 = no port) does nothing.

    // Opens a port on an offset (1..4) of a function and returns its number; kNoPort for function numbers below 1 and,
    // with a message, for empty functions. An `FxSeqnr` of 0 becomes 1. The port does not read yet.
    std::int16_t OpenSimPort(std::int16_t FxNumber, std::uint8_t& FxSeqnr);
    // Ignored for port 0 too.
    void DisableReadSimPort(int PortNr);
    void EnableReadSimPort(int PortNr);
    void NewSeqNr(int PortNr, std::uint8_t Seqnr);
    // Gives the engineering value. The value stays as it is, and false returns, when the port is not open, does not
    // read or has a write pending, and when the user goes on after a failure. Allocates nothing when all goes well.
    bool GetPort(int PortNr, float& value);
    // The value without scaling, for the function test.
    bool GetPortRaw(int PortNr, float& value);
    // Scales the value back, in the caller's variable, and marks the port for the next cycle.
    void PutPort(int PortNr, float& value);
    void CloseAllPorts();
    void CommandStopAll();

    // The cycle: OpenSimCom and RunSimcom switch it on, StopSimcom off; CloseSimCom ends it all and closes the link.
    void OpenSimCom();
    void RunSimcom();
    void StopSimcom();
    void CloseSimCom();

    // Time and date, fresh when the call returns. The only access that waits for the simulator; while the link is lost
    // it leaves all values as they are.
    void GetTimeAndDate();
    void PutTimeAndDate();

    // Autopilot.
    void WriteAutopilot();
    void GetAPVSvalue();
    void PutAPVSvalue();
    // Takes the flag for WriteAutopilot (bit 3: approach goes to a second offset too) from the gauge's GaugePlate1.
    void take_autopilot_flags(std::int16_t GaugePlate1);

    // Radios. Texts are of at least five digits; the second to fifth count.
    void PutNAV1Frequency(std::string_view NavFrequency);
    void PutNAV2Frequency(std::string_view NavFrequency);
    void PutADF(std::string_view Convertstring, int ReceivedID);
    void GetNAVRadiosStatus();
    void SetSoundSelector();
    // Fills RmiNeedle1..4. Throws a Failure when what the simulator gives is no bearing.
    void GetRMIdata();
    // Takes the flags for GetRMIdata: bit 3 (a second VOR) of the first indicator's GaugePlate1, bit 4 (a second ADF)
    // of the second one's. With one indicator both are the same.
    void take_rmi_flags(std::int16_t first_plate_flags, std::int16_t second_plate_flags);

    // Keystrokes. A key code whose low byte is 0 does nothing.
    void SendKeystroke(std::int16_t KeyCode);
    // To the active window of the desktop, while the run panel is minimised. A message tells the user when that fails,
    // once until a keystroke has been delivered again.
    void SendKeystrokeLocal(std::int16_t KeyCode);
    void ConvertKeytoName(int KeyCode);

    // Yoke functions, 0..17. GetPortFFB throws a Failure when a value does not fit its variable.
    void GetPortFFB(int FFBOffsetNr);
    // Sends the variable of that number; the value given plays no part.
    void PutPortFFB(int FFBOffsetNr, float FFBOffsetValue = 0);

    // The simulator link as others may show it.
    bool link_alive() const { return link_watch_.alive(); }
    std::optional<platform::TimePoint> last_answer() const { return link_watch_.last_answer(); }
    IpcClient& client() { return client_; }

    // What this panel asks of the program: the run panel's Exit command, and whether the run panel is minimised.
    std::function<void()> exit_program;
    std::function<bool()> run_panel_minimised;

    const std::vector<SimPort>& ports() const { return ports_; }
    std::int16_t PortCount() const { return static_cast<std::int16_t>(ports_.size()); }

    std::int16_t PortOwnerId = 0;    // labels the lines of the list
    std::int16_t OpenPortCount = 0;  // since the last CloseAllPorts
    std::uint8_t PortsOpen = 0;      // set by the run when its ports are open

    std::uint8_t SimHour = 0;
    std::uint8_t SimMinute = 0;
    std::uint8_t SimSecond = 0;
    std::uint8_t SimZuluHour = 0;
    std::int16_t SimDayOfYear = 0;
    std::int16_t SimYear = 0;
    float SimOutsideTemp = 0;
    platform::DateTime SimDate;
    std::int16_t SimMonth = 0;
    std::int16_t SimDay = 0;
    std::int16_t SimYear2 = 0;
    std::int32_t SimLocalSeconds = 0;
    std::int32_t SimZuluSeconds = 0;

    std::uint8_t ApCommandBits = 0;
    std::uint8_t ApStatusBits = 0;
    std::int32_t ApMaster = 0;
    std::int16_t ApVerticalSpeed = 0;   // ft/min
    std::int32_t ApTargetAltitude = 0;  // feet
    std::int32_t ApAltitudeValue = 0;   // metres * 65536
    std::int16_t ApTrimValue = 0;

    std::uint8_t SoundSelector = 0;
    std::uint16_t RadioFlags = 0;
    std::uint8_t NavGoodFlags = 0;
    std::int16_t RmiNeedle1 = 0;
    std::int16_t RmiNeedle2 = 0;
    std::int16_t RmiNeedle3 = 0;
    std::int16_t RmiNeedle4 = 0;

    std::string KeyName;

    std::array<std::int16_t, kFfbFunctions> FfbPort{};
    std::uint8_t FfbOnGround = 0;
    std::uint8_t FfbApMaster = 0;
    std::uint8_t FfbApRoll = 0;
    std::uint8_t FfbApPitch = 0;
    std::int16_t FfbElevator = 0;
    std::int16_t FfbAileron = 0;
    float FfbPitchMotion = 0;
    float FfbBankMotion = 0;
    std::uint8_t FfbStall = 0;
    std::uint8_t FfbOverspeed = 0;
    float FfbApAileron = 0;
    float FfbApElevator = 0;
    std::int16_t FfbTrim = 0;
    std::int16_t FfbBrakes = 0;
    std::int32_t FfbJoystickButtons = 0;
    std::uint8_t FfbPtt1 = 0;
    std::uint8_t FfbPtt2 = 0;
    std::int32_t FfbGroundSpeed = 0;

    // The panel.
    panel::Label LabelPort;
    panel::Label LabelUsedBy;
    panel::Label LabelFunction;
    panel::Label LabelFunctionName;
    panel::ListBox OffsetsList;
    panel::CommandButton CmdClose;

    platform::Timer ProcessTimer;
    platform::Timer TimerMacroExecution;

    void CmdClose_Click();
    void ProcessTimer_Timer();
    void TimerMacroExecution_Timer();

  private:
    enum class Reading { raw, engineering };

    bool is_port(int PortNr) const { return PortNr >= 0 && PortNr < PortCount(); }
    const tables::FunctionRow& function_of(const SimPort& port) const;
    std::string list_line(std::int16_t PortNr) const;
    std::string owner_label() const;
    void warn_of_zero(std::int16_t FxNumber, std::string_view what);

    bool can_give_value(int PortNr) const;
    bool read_port(int PortNr, Reading reading, float& value);
    void question_reading(int PortNr, Reading reading, std::string_view description);
    void question_writing(int PortNr, float value, std::string_view description);
    bool get_macro(int macro, float& value);
    void go_on_or_exit(const std::string& text, const std::function<bool()>& settled);

    void append_read(std::uint32_t offset, std::uint32_t size, void* destination);
    void append_write(std::uint32_t offset, std::uint32_t size, const void* source);
    void append_port(SimPort& port);
    void share_masked_byte(const SimPort& written);

    tables::CoreTables& tables_;
    IpcClient& client_;
    platform::Boxes& boxes_;
    platform::KeyDelivery& key_delivery_;
    panel::PanelHost& panels_;
    LinkWatch link_watch_;
    std::vector<SimPort> ports_;

    // Variables of reads that no other part uses.
    std::int16_t outside_temperature_raw_ = 0;
    std::array<std::int32_t, 8> ap_mode_read_{};  // by bit of ApStatusBits; bit 0 is ApMaster
    std::int16_t macro1_position_ = 0;
    std::int32_t macro1_gate_ = 0;
    std::uint8_t macro2_value_ = 0;
    std::int16_t vor1_bearing_ = 0;
    std::int16_t vor2_bearing_ = 0;
    std::int16_t adf1_bearing_ = 0;
    std::int16_t adf2_bearing_ = 0;

    bool key_failure_told_ = false;
    bool approach_to_second_offset_ = false;
    bool rmi_second_vor_ = false;
    bool rmi_second_adf_ = false;
    float ffb_value_ = 0;  // what the last PutPortFFB has sent
};

}  // namespace simlink
