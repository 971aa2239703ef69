#include "iomodule/switch_setup.h"

#include <cstdlib>

#include "iomodule/io_module_telegram.h"
#include "support/rounding.h"

namespace iomodule {

void SwitchSetup::cmdSetDebounceTime(int device_id, const std::string& boxDebounceTime) {
    const double time = support::round_half_even(std::strtod(boxDebounceTime.c_str(), nullptr));
    if (!(time >= 0 && time <= kLongestDebounceMs)) {
        boxes_.message("A debounce time must be between 0 and 20");
        return;
    }
    DebounceTime = static_cast<std::int16_t>(time);
    gauge_bus_.SendGauge(device_id, kCommandDebounce, DebounceTime + 256 * DebounceTime);
}

void SwitchSetup::CmdSetAsTestSwitch(int device_id, int switch_number, tables::IomRow* row) {
    gauge_bus_.SendGauge(device_id, kCommandTestSwitch, switch_number + 1);
    boxes_.message("Switch is cleared and cannot be used for other functions");
    if (row != nullptr) {
        clear_row(*row);
    }
}

void SwitchSetup::CmdResetAsTestswitch(int device_id, tables::IomRow* row) {
    gauge_bus_.SendGauge(device_id, kCommandTestSwitch, 0);
    boxes_.message("Switch can be used to assign function (again).");
    if (row != nullptr) {
        clear_row(*row);
    }
}

void clear_row(tables::IomRow& row) {
    row.IomDeviceId = 0;
    row.IomSignalType = 0;
    row.IomSignalNumber = 0;
    row.IomFunctionClass = 0;
    row.IomFunction = 0;
    row.IomSeqNr = 0;
    row.IomValueA = 0;
}

}  // namespace iomodule
