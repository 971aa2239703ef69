// Keystrokes to the simulator and to the desktop.

#include "simlink/keystrokes.h"
#include "simlink/sim_com.h"
#include "simlink/sim_offsets.h"
#include "support/failure.h"

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
    const std::string received = "Keystroke received from IO module: " + text + "\n";
    if (!run_panel_minimised || !run_panel_minimised()) {
        boxes_.message(received + "To send to Active Window the Control Progam be minimized");
        return;
    }
    try {
        key_delivery_.send(text);
        key_failure_told_ = false;
    } catch (const support::Failure& failure) {
        // Switches go on being moved: one message must do.
        if (!key_failure_told_) {
            key_failure_told_ = true;
            boxes_.message(received + "It could not be sent to Active Window: " + failure.description() +
                           "\nThis message does not come again until a keystroke has been sent.");
        }
    }
}

void SimCom::ConvertKeytoName(int KeyCode) {
    KeyName = key_name(KeyCode);
}

}  // namespace simlink
