#include "simlink/sim_com.h"

#include <limits>

#include "simlink/keystrokes.h"
#include "simlink/sim_offsets.h"
#include "support/bytes.h"
#include "support/number_format.h"

namespace simlink {

namespace {

constexpr platform::Milliseconds kCycleInterval{20};
constexpr platform::Milliseconds kMacroDelay{1000};
// Control and "E".
constexpr std::int16_t kMacroKeyCode = support::as_i16(0x8045);
// Port numbers are 16 bits wide.
constexpr std::size_t kMostPorts = std::numeric_limits<std::int16_t>::max();

std::string three_digits(int number) {
    return support::format_number(number, "000");
}

}  // namespace

SimCom::SimCom(tables::CoreTables& tables, IpcClient& client, const platform::Platform& platform,
               panel::PanelHost& panels)
    : panel::Panel("SimCom", "Active Offsets"),
      // The blanks set each heading above its column of the list.
      LabelPort(*this, "LabelPort", "Port#       "),
      LabelUsedBy(*this, "LabelUsedBy", "Used by          "),
      LabelFunction(*this, "LabelFunction", "Func.#           "),
      LabelFunctionName(*this, "LabelFunctionName", "Func. Name"),
      OffsetsList(*this, "OffsetsList", "Active Offsets"),
      CmdClose(*this, "CmdClose", "Close"),
      ProcessTimer(platform.loop, "SimCom.ProcessTimer", kCycleInterval, [this] { ProcessTimer_Timer(); }),
      TimerMacroExecution(platform.loop, "SimCom.TimerMacroExecution", kMacroDelay,
                          [this] { TimerMacroExecution_Timer(); }),
      tables_(tables),
      client_(client),
      boxes_(platform.boxes),
      key_delivery_(platform.key_delivery),
      panels_(panels),
      link_watch_(client, platform.loop) {
    FfbPort.fill(kNoPort);
    CmdClose.on_click = [this] { CmdClose_Click(); };
    set_layout(panel::column(
        {panel::row({LabelPort, LabelUsedBy, LabelFunction, LabelFunctionName}), OffsetsList, panel::row({CmdClose})}));
}

std::int16_t SimCom::OpenSimPort(std::int16_t FxNumber, std::uint8_t& FxSeqnr) {
    if (FxNumber < 1 || ports_.size() >= kMostPorts) {
        return kNoPort;
    }
    if (FxSeqnr == 0) {
        FxSeqnr = 1;
    }
    if (FxNumber >= tables::kFunctionRows ||
        tables_.functions[static_cast<std::size_t>(FxNumber)].FunctionShortName.empty()) {
        boxes_.message("Program calls an empty function, Function #:  " + std::to_string(FxNumber) +
                       "\nCheck for correct/actual configuration file.");
        return kNoPort;
    }
    const tables::FunctionRow& function = tables_.functions[static_cast<std::size_t>(FxNumber)];
    if (function.FunctionDivider == 0.0F) {
        warn_of_zero(FxNumber, "Function contains division by zero.");
    }
    if (function.FunctionMultiplier == 0.0F) {
        warn_of_zero(FxNumber, "Function contains multiply by zero.");
    }
    const std::int16_t number = PortCount();
    ports_.push_back({.FxNumber = FxNumber, .FxSeqnr = FxSeqnr});
    ++OpenPortCount;
    OffsetsList.items.add(list_line(number));
    return number;
}

void SimCom::warn_of_zero(std::int16_t FxNumber, std::string_view what) {
    boxes_.message("Warning: Opening Function number : " + std::to_string(FxNumber) + "\n" + std::string(what));
}

const tables::FunctionRow& SimCom::function_of(const SimPort& port) const {
    return tables_.functions[static_cast<std::size_t>(port.FxNumber)];
}

// "007         ID:012           045  - 1         Airspeed"
std::string SimCom::list_line(std::int16_t PortNr) const {
    const SimPort& port = ports_[static_cast<std::size_t>(PortNr)];
    std::string line = three_digits(PortNr);
    line.append(9, ' ');
    line += owner_label();
    line.append(11, ' ');
    line += three_digits(port.FxNumber) + "  - " + std::to_string(port.FxSeqnr);
    line.append(9, ' ');
    line += function_of(port).FunctionShortName;
    return line;
}

std::string SimCom::owner_label() const {
    constexpr std::int16_t kGaugeIds = 256;
    if (PortOwnerId < kGaugeIds) {
        return "ID:" + three_digits(PortOwnerId);
    }
    switch (PortOwnerId) {
        case kOwnerIom1:
            return "IOM#1";
        case kOwnerIom2:
            return "IOM#2";
        case kOwnerInternal:
            return "INTRN";
        case kOwnerCluster:
            return "ENGCL";
        case kOwnerYokes:
            return "YOKES";
        default:
            return {};
    }
}

void SimCom::DisableReadSimPort(int PortNr) {
    if (PortNr >= 1 && is_port(PortNr)) {
        ports_[static_cast<std::size_t>(PortNr)].ReadEnabled = 0;
    }
}

void SimCom::EnableReadSimPort(int PortNr) {
    if (is_port(PortNr)) {
        ports_[static_cast<std::size_t>(PortNr)].ReadEnabled = 1;
    }
}

void SimCom::NewSeqNr(int PortNr, std::uint8_t Seqnr) {
    if (is_port(PortNr)) {
        ports_[static_cast<std::size_t>(PortNr)].FxSeqnr = Seqnr;
    }
}

void SimCom::CloseAllPorts() {
    ProcessTimer.stop();
    ports_.clear();
    FfbPort.fill(kNoPort);
    OpenPortCount = 0;
    PortsOpen = 0;
    OffsetsList.items.clear();
}

void SimCom::CommandStopAll() {
    CloseAllPorts();
}

void SimCom::OpenSimCom() {
    ProcessTimer.start();
}

void SimCom::RunSimcom() {
    ProcessTimer.start();
}

void SimCom::StopSimcom() {
    ProcessTimer.stop();
}

void SimCom::CloseSimCom() {
    ProcessTimer.stop();
    CloseAllPorts();
    client_.IpcClose();
    link_watch_.reset();
}

void SimCom::CmdClose_Click() {
    panels_.hide(*this);
}

// NOTE: While the link is lost the cycle is skipped as a whole, so a value that was put meanwhile waits in its port and
// leaves with the first cycle after the simulator is back. Requests of the fixed accesses are dropped: a keystroke of
// minutes ago must not arrive then.
void SimCom::ProcessTimer_Timer() {
    if (ports_.empty() || !link_watch_.ready()) {
        return;
    }
    for (SimPort& port : ports_) {
        append_port(port);
    }
    link_watch_.process();
}

void SimCom::append_port(SimPort& port) {
    const tables::FunctionRow& function = function_of(port);
    const PortOffset at = offset_of(function, port.FxSeqnr);
    const SlotBytes bytes = slot_of(port, function.FunctionDataType);
    const bool transferred = at.exists && bytes.slot != nullptr;
    if (port.WritePending != 0) {
        if (transferred) {
            append_write(at.offset, bytes.size, bytes.slot);
        }
        port.WritePending = 0;
    } else if (port.ReadEnabled != 0 && transferred && port.ByteShared == 0) {
        append_read(at.offset, bytes.size, bytes.slot);
    }
    port.ByteShared = 0;
}

void SimCom::append_read(std::uint32_t offset, std::uint32_t size, void* destination) {
    client_.IpcRead(offset, size, destination, client_.IpcResult);
}

void SimCom::append_write(std::uint32_t offset, std::uint32_t size, const void* source) {
    client_.IpcWrite(offset, size, source, client_.IpcResult);
}

void SimCom::TimerMacroExecution_Timer() {
    SendKeystroke(kMacroKeyCode);
    TimerMacroExecution.stop();
}

void SimCom::go_on_or_exit(const std::string& text, const std::function<bool()>& settled) {
    if (boxes_.question(text, settled) == platform::Answer::yes) {
        return;
    }
    if (exit_program) {
        exit_program();
    }
    throw platform::LoopStopped{};
}

}  // namespace simlink
