// What the panel of an IO module shows.

#include <vector>

#include "bus/port_lamp.h"
#include "iomodule/frm_status_iom.h"
#include "iomodule/iom_rows.h"
#include "iomodule/switch_action.h"
#include "panel/layout.h"
#include "run/run_lamp.h"
#include "simlink/keystrokes.h"

namespace iomodule {

namespace {

// "A1" to "F8".
std::string signal_label(int number) {
    return std::string(1, static_cast<char>('A' + number / kGroupSize)) + std::to_string(number % kGroupSize + 1);
}

std::string key_text(std::int16_t key) {
    const auto code = static_cast<std::uint16_t>(key);
    if ((code & simlink::kKeyMask) == 0) {
        return "-";
    }
    std::string text = (code & simlink::kKeyControl) != 0 ? "Ctrl " : "";
    text += (code & simlink::kKeyShift) != 0 ? "Shift " : "";
    return text + simlink::key_name(static_cast<int>(code & simlink::kKeyMask));
}

std::string function_text(const tables::CoreTables& tables, const tables::IomRow& row) {
    return function_of(tables, row).FunctionShortName + ", " + std::to_string(row.IomSeqNr);
}

std::string switch_text(const tables::CoreTables& tables, const tables::IomRow& row) {
    if (!is_keystroke(row)) {
        return function_text(tables, row);
    }
    const char* const target = row.IomSeqNr == kKeystrokeToSimulator ? "simulator" : "desktop";
    return "key to the " + std::string(target) + ": on " + key_text(row.IomKeyOffOn) + ", off " +
           key_text(row.IomKeyOnOff);
}

template <typename Controls>
panel::LayoutNode board_of(Controls& controls) {
    std::vector<panel::LayoutNode> lamps;
    lamps.reserve(controls.size());
    for (auto& control : controls) {
        lamps.emplace_back(control);
    }
    return panel::board(kGroupSize, std::move(lamps));
}

}  // namespace

void frmStatusIOM::set_up_fields() {
    BoxRun.tool_tip = "Running: switches, inputs and LEDs work. Halted: they don't";
    boxPort.tool_tip = "Serial port of the module; one that was unplugged is opened again by itself";
    boxReply.tool_tip = "Whether the module answers the program";
    boxNrOfUpdates.tool_tip = "Times that the module was asked in the last second; 25 is right";
    cmdRun.tool_tip = "Start this module";
    cmdStop.tool_tip = "Stop this module; the rest of the cockpit goes on";
    cmdHide.tool_tip = "Hide this panel; the module goes on";
    for (int number = 0; number < kSwitches; ++number) {
        panel::Indicator& lamp = boxSwitchIndicator[static_cast<std::size_t>(number)];
        lamp.text = signal_label(number);
        lamp.colour = panel::kBrightGreen;
    }
    for (int number = 0; number < kLeds; ++number) {
        panel::Indicator& lamp = boxLedIndicator[static_cast<std::size_t>(number)];
        lamp.text = signal_label(number);
        lamp.colour = kLedDark;
    }
    for (panel::Slider& slider : SLiderAnalogue) {
        slider.enabled = false;  // moved by the module alone
    }
    show_assignments();
}

void frmStatusIOM::arrange() {
    std::vector<panel::LayoutNode> sliders(SLiderAnalogue.begin(), SLiderAnalogue.end());
    set_layout(panel::column({
        panel::row({BoxRun, boxPort, boxReply, boxNrOfUpdates, cmdRun, cmdStop, cmdHide}),
        panel::frame("Switches", {board_of(boxSwitchIndicator)}),
        panel::frame("LEDs", {board_of(boxLedIndicator)}),
        panel::frame("Analogue inputs", {panel::board(kAnalogueInputs / 2, std::move(sliders))}),
    }));
}

void frmStatusIOM::Form_Load() {
    show_assignments();
}

void frmStatusIOM::Form_Activate() {
    activate(traits_.start_clears_input);
    show_assignments();
    show_port();
}

void frmStatusIOM::show_assignments() {
    const auto tell = [this](panel::Control& control, const std::string& label, std::int16_t number, auto&& text_of) {
        const tables::IomRow* const assigned = row(number);
        control.tool_tip = label + ": " + (assigned != nullptr ? text_of(tables_, *assigned) : "not used");
    };
    for (int number = 0; number < kSwitches; ++number) {
        const auto at = static_cast<std::size_t>(number);
        tell(boxSwitchIndicator[at], "Switch " + signal_label(number), SwitchRow_[at], switch_text);
    }
    for (int number = 0; number < kLeds; ++number) {
        const auto at = static_cast<std::size_t>(number);
        tell(boxLedIndicator[at], "LED " + signal_label(number), LedRow_[at], function_text);
    }
    for (std::size_t at = 0; at < SLiderAnalogue.size(); ++at) {
        tell(SLiderAnalogue[at], "Input " + std::to_string(at + 1), AnalogueRow_[at], function_text);
    }
}

void frmStatusIOM::show_running() {
    run::show_running(BoxRun, cmdRun, cmdStop);
}

void frmStatusIOM::show_halted() {
    run::show_halted(BoxRun, cmdRun, cmdStop);
    show_reply();
}

void frmStatusIOM::show_port() {
    bus::show_port(boxPort, *MSComm1_, port_number());
}

void frmStatusIOM::show_reply() {
    if (!ProcessTimer.enabled()) {
        boxReply.text = "Not asked";
        boxReply.colour = panel::kDefaultColour;
        return;
    }
    boxReply.text = telegrams_ > 0 ? "Answers" : "Silent";
    boxReply.colour = telegrams_ > 0 ? panel::kGreen : panel::kRed;
}

}  // namespace iomodule
