#pragma once

#include "panel/control.h"
#include "platform/serial_port.h"

namespace bus {

// Shows on a lamp of a panel how its port stands: "COM3 open" on green, "COM3 closed" or "COM3 unplugged" on red,
// "None" for number 0.
void show_port(panel::Indicator& lamp, const platform::SerialPort& port, int number);

}  // namespace bus
