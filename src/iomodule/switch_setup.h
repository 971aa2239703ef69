#pragma once

#include <cstdint>
#include <string>

#include "bus/gauge_bus.h"
#include "platform/boxes.h"
#include "tables/core_tables.h"

namespace iomodule {

inline constexpr int kLongestDebounceMs = 20;
inline constexpr std::int16_t kUsualDebounceMs = 3;

// What a module itself is told of its switches, beside their types: the debounce time, and the one switch that tests
// its LEDs. A module stores both; the configuration does not. Commands go to the module of a device id (1000 or 2000),
// which must be halted.
class SwitchSetup {
  public:
    SwitchSetup(platform::Boxes& boxes, bus::GaugeBus& gauge_bus) : boxes_(boxes), gauge_bus_(gauge_bus) {}

    // Milliseconds, as last set here.
    std::int16_t DebounceTime = kUsualDebounceMs;

    // Takes the number at the head of a text, 0 for a text without one. Shows a message, and does nothing else, when it
    // is not 0 to 20.
    // NOLINTNEXTLINE(readability-identifier-naming): the system's own word
    void cmdSetDebounceTime(int device_id, const std::string& boxDebounceTime);
    // Makes a switch (0..47) the one that lights all LEDs; it can do nothing else then, so its row, if it has one, is
    // cleared. Shows a message.
    void CmdSetAsTestSwitch(int device_id, int switch_number, tables::IomRow* row);
    // The module has no test switch any more. Clears the row and shows a message too.
    void CmdResetAsTestswitch(int device_id, tables::IomRow* row);

  private:
    platform::Boxes& boxes_;
    bus::GaugeBus& gauge_bus_;
};

// Frees a row of the table: its first seven columns become 0, the others stay.
void clear_row(tables::IomRow& row);

}  // namespace iomodule
