#include "bus/port_lamp.h"

#include <string>

namespace bus {

void show_port(panel::Indicator& lamp, const platform::SerialPort& port, int number) {
    if (number < 1) {
        lamp.text = "None";
        lamp.colour = panel::kDefaultColour;
        return;
    }
    const bool connected = port.connected();
    const char* const state = !port.is_open() ? " closed" : connected ? " open" : " unplugged";
    lamp.text = "COM" + std::to_string(number) + state;
    lamp.colour = connected ? panel::kGreen : panel::kRed;
}

}  // namespace bus
