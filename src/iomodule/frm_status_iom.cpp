#include "iomodule/frm_status_iom.h"

#include <algorithm>

#include "bus/frames.h"
#include "iomodule/iom_rows.h"
#include "iomodule/led_output.h"
#include "support/failure.h"

namespace iomodule {

namespace {

constexpr platform::Milliseconds kProcessInterval{40};
constexpr platform::Milliseconds kOneSecond{1000};
constexpr platform::Milliseconds kCommandInterval{10};

constexpr std::size_t kBlanksAfterOpening = 40;
constexpr std::size_t kGapsBehindCommand = 5;
constexpr std::size_t kPendingLength = bus::kFrameLength + 1;  // the frame and one gap
// Every LED, the request and the power state in one cycle.
constexpr std::size_t kMostOutput = (kLeds + 2) * (bus::kFrameLength + 1);

constexpr std::uint8_t kNeverActedOn = 127;
constexpr std::uint8_t kNoPowerSent = 15;  // neither on nor off, so that the first cycle sends the power state
constexpr double kLastValueAtOpening = -1234567.0;
constexpr double kLastValueAtStart = -99999.0;
constexpr float kLowestVoltage = 8.0F;

constexpr ModuleTraits kModule1 = {
    "frmStatusIOM",       "IO module 1", "#1", bus::kIoModule1Id, simlink::kOwnerIom1, &tables::CoreTables::IomPort1,
    bus::PortPlace::iom1, true};
constexpr ModuleTraits kModule2 = {
    "frmstatusIOM2",      "IO module 2", "#2", bus::kIoModule2Id, simlink::kOwnerIom2, &tables::CoreTables::IomPort2,
    bus::PortPlace::iom2, false};

template <std::size_t... Index>
std::array<panel::Indicator, sizeof...(Index)> make_lamps(panel::Panel& panel, const char* name,
                                                          std::index_sequence<Index...>) {
    return {{panel::Indicator(panel, name, {}, static_cast<int>(Index))...}};
}

template <std::size_t... Index>
std::array<panel::Slider, sizeof...(Index)> make_sliders(panel::Panel& panel, std::index_sequence<Index...>) {
    return {{panel::Slider(panel, "SLiderAnalogue", "Input " + std::to_string(Index + 1), 0, kHighestPotentiometer,
                           static_cast<int>(Index))...}};
}

}  // namespace

frmStatusIOM::frmStatusIOM(const IomParts& parts) : frmStatusIOM(parts, kModule1) {}

frmstatusIOM2::frmstatusIOM2(const IomParts& parts) : frmStatusIOM(parts, kModule2) {}

frmStatusIOM::frmStatusIOM(const IomParts& parts, const ModuleTraits& traits)
    : Panel(traits.panel_name, traits.title),
      BoxRun(*this, "BoxRun", "State"),
      boxPort(*this, "boxPort", "Port"),
      boxReply(*this, "boxReply", "Module"),
      boxNrOfUpdates(*this, "boxNrOfUpdates", "Frames per second"),
      cmdRun(*this, "cmdRun", "Run"),
      cmdStop(*this, "cmdStop", "Stop"),
      cmdHide(*this, "cmdHide", "Hide"),
      boxSwitchIndicator(make_lamps(*this, "boxSwitchIndicator", std::make_index_sequence<kSwitches>{})),
      boxLedIndicator(make_lamps(*this, "boxLedIndicator", std::make_index_sequence<kLeds>{})),
      SLiderAnalogue(make_sliders(*this, std::make_index_sequence<kAnalogueInputs>{})),
      ProcessTimer(parts.platform.loop, name() + ".ProcessTimer", kProcessInterval, [this] { ProcessTimer_Timer(); }),
      TimerSeconds(parts.platform.loop, name() + ".TimerSeconds", kOneSecond, [this] { TimerSeconds_Timer(); }),
      WriteCmdDuringConfig(parts.platform.loop, name() + ".WriteCmdDuringConfig", kCommandInterval,
                           [this] { WriteCmdDuringConfig_Timer(); }),
      platform_(parts.platform),
      tables_(parts.tables),
      sim_com_(parts.sim_com),
      gauge_bus_(parts.gauge_bus),
      ports_(parts.ports),
      panels_(parts.panels),
      traits_(traits),
      MSComm1_(parts.platform.serial_ports.create()) {
    OutBuffer_.reserve(kMostOutput);
    cmdRun.on_click = [this] { cmdRun_Click(); };
    cmdStop.on_click = [this] { cmdStop_Click(); };
    cmdHide.on_click = [this] { cmdHide_Click(); };
    set_up_fields();
    arrange();
    show_halted();
    show_port();
    show_reply();
    MSComm1_->set_event_handler([this](platform::SerialEvent event) { MSComm1_OnComm(event); });
    ports_.set_owner(traits_.place, this);
    gauge_bus_.set_io_module(traits_.device_id, this);
    WriteCmdDuringConfig.start();
}

frmStatusIOM::~frmStatusIOM() {
    gauge_bus_.set_io_module(traits_.device_id, nullptr);
    ports_.set_owner(traits_.place, nullptr);
}

tables::IomRow* frmStatusIOM::row(std::int16_t number) {
    const bool there = number > 0 && static_cast<std::size_t>(number) < tables_.iom.size();
    return there ? &tables_.iom[static_cast<std::size_t>(number)] : nullptr;
}

// --- The port

void frmStatusIOM::OpenCommPort() {
    if (!hasPort()) {
        return;
    }
    try {
        open_comm_port();
        open_failure_told_ = false;
    } catch (const support::Failure&) {
        if (!std::exchange(open_failure_told_, true)) {
            platform_.boxes.message(std::string("Error opening Com Port for IO Module ") + traits_.number_sign + ".");
        }
    }
    show_port();
}

// Opened twice: some adapters deliver what they had kept from before at the first opening.
void frmStatusIOM::open_comm_port() {
    MSComm1_->close();
    reset_link();
    bus::open_line(*MSComm1_, traits_.place, port_number());
    MSComm1_->close();
    MSComm1_->open();
    MSComm1_->clear_output();
    MSComm1_->read();
    LastInput.clear();
}

// Quiet when it fails: the opening before has told.
void frmStatusIOM::retry_open() {
    if (MSComm1_->is_open() || !hasPort()) {
        return;
    }
    try {
        open_comm_port();
    } catch (const support::Failure&) {
        return;
    }
    open_failure_told_ = false;
    repaint_outputs();
}

void frmStatusIOM::reset_link() {
    // A single command that waits to be sent is kept.
    if (CmdPending_ != 1) {
        OutBuffer_.assign(kBlanksAfterOpening, ' ');
    }
    InputSeen = 0;
}

void frmStatusIOM::link_opened() {
    LastInput.clear();
    repaint_outputs();
    show_port();
}

// The module may have been without power: the next cycle tells it everything again. What its switches and inputs have
// become meanwhile is seen from its first telegram, against what was last acted on.
void frmStatusIOM::repaint_outputs() {
    LastPowerByte_ = kNoPowerSent;
    forget_leds();
}

// Every LED goes out anew.
void frmStatusIOM::forget_leds() {
    for (const std::int16_t number : LedRow_) {
        if (tables::IomRow* const led = row(number)) {
            led->IomLastValue = kLastValueAtStart;
        }
    }
}

// --- Start and stop

void frmStatusIOM::OpenPorts() {
    sim_com_.PortOwnerId = traits_.simulator_port_owner;
    SwitchRow_.fill(0);
    LedRow_.fill(0);
    AnalogueRow_.fill(0);
    const auto rows = static_cast<std::int16_t>(
        std::min<std::size_t>(tables_.iom.size(), static_cast<std::size_t>(std::max<int>(tables_.IomRowCount, 0)) + 1));
    for (std::int16_t number = 0; number < rows; ++number) {
        if (tables_.iom[static_cast<std::size_t>(number)].IomDeviceId == traits_.device_id) {
            assign_row(number);
        }
    }
    show_assignments();
}

// NOTE: a row for a signal that the module does not have is left alone; its port stays open and unused.
void frmStatusIOM::assign_row(std::int16_t number) {
    tables::IomRow& assigned = tables_.iom[static_cast<std::size_t>(number)];
    assigned.IomSimPort = sim_com_.OpenSimPort(assigned.IomFunction, assigned.IomSeqNr);
    const auto put = [&](auto& rows) {
        const int signal = assigned.IomSignalNumber;
        if (signal >= 0 && signal < static_cast<int>(rows.size())) {
            rows[static_cast<std::size_t>(signal)] = number;
        }
    };
    switch (assigned.IomSignalType) {
        case kSignalSwitch:
        case kSignalSwitchOfOld:
            put(SwitchRow_);
            if (assigned.IomMode != 0 || function_of(tables_, assigned).FunctionMask != 0) {
                sim_com_.EnableReadSimPort(assigned.IomSimPort);
            }
            break;
        case kSignalAnalogue:
            put(AnalogueRow_);
            break;
        case kSignalLed:
            put(LedRow_);
            assigned.IomLastValue = kLastValueAtOpening;
            sim_com_.EnableReadSimPort(assigned.IomSimPort);
            break;
        default:
            break;
    }
}

void frmStatusIOM::cmdRun_Click() {
    if (PanelRunning_ == 1) {
        return;
    }
    send_pending_command();
    PanelRunning_ = 1;
    asked_.reset();
    telegrams_ = 0;
    show_running();
    OpenCommPort();
    OutBuffer_.clear();
    activate(traits_.start_clears_input);
    UpdateCount_ = 1;
    TimerSeconds.start();
    platform_.loop.yield_until([this] { return UpdateCount_ != 1 || PanelRunning_ != 1; });
    if (PanelRunning_ != 1) {
        return;  // stopped meanwhile
    }
    LastPowerByte_ = kNoPowerSent;
    ProcessTimer.start();
    WriteCmdDuringConfig.stop();
}

void frmStatusIOM::cmdStop_Click() {
    PanelRunning_ = 0;
    ProcessTimer.stop();
    show_halted();
    TimerSeconds.stop();
    WriteCmdDuringConfig.start();
    open_failure_told_ = false;  // the next start tells it again
}

// Makes every LED go out anew and, with the first telegram that shows any switch on, every assigned switch act.
void frmStatusIOM::activate(bool clear_input) {
    if (CmdPending_ != 1) {
        OutBuffer_.clear();
    }
    LastSwitchBytes_.fill(0);
    LastSwitchState_.fill(kNeverActedOn);
    forget_leds();
    if (clear_input) {
        MSComm1_->clear_input();
    }
}

// --- The cycle

void frmStatusIOM::ProcessTimer_Timer() {
    try {
        process_cycle();
    } catch (const support::Failure& failure) {
        cmdStop_Click();
        platform_.boxes.message(std::string("Error at processing IO module ") + traits_.number_sign + ":" +
                                failure.description() + "\r\nProcess is stopped");
    }
}

void frmStatusIOM::process_cycle() {
    // 1.
    OutBuffer_.clear();
    // 2.
    for (int number = 0; number < kLeds && PanelRunning_ == 1; ++number) {
        serve_led(number);
    }
    if (PanelRunning_ != 1) {
        return;  // stopped while a question was open
    }
    // 3.
    AppendCmd(kCommandDevice, kCommandStatus, kStatusInRun);
    // 4.
    PowerByte_ = tables_.MainBusVoltage > kLowestVoltage ? kPowerOn : kPowerOff;
    if (PowerByte_ != LastPowerByte_) {
        LastPowerByte_ = PowerByte_;
        AppendCmd(kCommandDevice, kCommandPower, PowerByte_);
    }
    // 5.
    send_out_buffer();
    // 6.
    ++UpdateCount_;
}

// A LED without a value, or with one that is no number, stays as it is.
void frmStatusIOM::serve_led(int number) {
    tables::IomRow* const led = row(LedRow_[static_cast<std::size_t>(number)]);
    float port_value = 0;
    // While the lists of the run are being built the port numbers are not those of the open ports.
    if (led == nullptr || sim_com_.PortsOpen != 1 || !sim_com_.GetPort(led->IomSimPort, port_value)) {
        return;
    }
    const tables::FunctionRow& function = function_of(tables_, *led);
    const float value = led_value(function, port_value);
    if (value == static_cast<float>(led->IomLastValue) || value != value) {
        return;
    }
    led->IomLastValue = value;
    const int state = led_state(*led, function, value);
    boxLedIndicator[static_cast<std::size_t>(number)].colour = state == 1 ? panel::kRed : kLedDark;
    AppendCmd(kCommandDevice, kCommandLed, number * 256 + state);
}

void frmStatusIOM::AppendCmd(int id, int cmd, double data) {
    support::append_byte(OutBuffer_, bus::kFrameGap);
    bus::append_frame(OutBuffer_, id, cmd, data);
}

// What is not there takes nothing; it is told everything when it comes back.
void frmStatusIOM::send_out_buffer() {
    if (!MSComm1_->connected()) {
        return;
    }
    MSComm1_->clear_input();
    try {
        MSComm1_->write(OutBuffer_);
    } catch (const support::Failure&) {
        if (MSComm1_->connected()) {
            throw;
        }
    }
}

void frmStatusIOM::TimerSeconds_Timer() {
    boxNrOfUpdates.text = std::to_string(UpdateCount_);
    UpdateCount_ = 0;
    retry_open();
    show_port();
    show_reply();
    telegrams_ = 0;
}

// --- Single commands

void frmStatusIOM::ComposeCmd(int /*id*/, int cmd, double data) {
    // NOTE: in a run nothing would end this wait, and nothing sends the command.
    platform_.loop.yield_until([this] { return CmdPending_ != 1 || PanelRunning_ == 1; });
    if (PanelRunning_ == 1) {
        return;
    }
    OutBuffer_.clear();
    bus::append_frame(OutBuffer_, kCommandDevice, cmd, data);
    OutBuffer_.append(kGapsBehindCommand, static_cast<char>(bus::kFrameGap));
    CmdPending_ = 1;
}

void frmStatusIOM::WriteCmdDuringConfig_Timer() {
    send_pending_command();
}

// Told once until the port has opened: a panel that polls would bring the box up 100 times a second.
void frmStatusIOM::send_pending_command() {
    if (CmdPending_ != 1) {
        return;
    }
    // Whatever happens to the command, nobody may wait for it for ever.
    CmdPending_ = 0;
    const std::string command = OutBuffer_.substr(0, kPendingLength);
    if (!MSComm1_->is_open()) {
        OpenCommPort();
    }
    if (!MSComm1_->connected()) {
        return;
    }
    MSComm1_->clear_input();
    try {
        MSComm1_->write(command);
    } catch (const support::Failure&) {
        show_port();  // pulled out this very moment
    }
}

void frmStatusIOM::cmdHide_Click() {
    panels_.hide(*this);
}

}  // namespace iomodule
