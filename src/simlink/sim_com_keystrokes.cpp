// Keystrokes to the simulator and to the desktop.

#include "simlink/keystrokes.h"
#include "simlink/sim_com.h"
#include "simlink/sim_offsets.h"

namespace simlink {

void SimCom::SendKeystroke(std::int16_t KeyCode) {
    const auto code = static_cast<std::uint16_t>(KeyCode);
    if ((code & kKeyMask) == 0) {
        return;
    }
    const std::uint32_t parameter = key_press_parameter(code);
    append_write(kOffsetControlParameter, sizeof parameter, &parameter);
    append_write(kOffsetControlNumber, sizeof kControlKeyPress, &kControlKeyPress);
}

void SimCom::SendKeystrokeLocal(std::int16_t KeyCode) {
    const auto code = static_cast<std::uint16_t>(KeyCode);
    if ((code & kKeyMask) == 0) {
        return;
    }
    const std::string text = send_keys_text(code);
    if (run_panel_minimised && run_panel_minimised()) {
        key_delivery_.send(text);
    } else {
        boxes_.message("Keystroke received from IO module: " + text +
                       "\nTo send to Active Window the Control Progam be minimized");
    }
}

void SimCom::ConvertKeytoName(int KeyCode) {
    KeyName = key_name(KeyCode);
}

}  // namespace simlink
