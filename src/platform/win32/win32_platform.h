#pragma once

#include <string>

#include "platform/platform.h"
#include "platform/win32/win32_files.h"
#include "platform/win32/win32_keys.h"
#include "platform/win32/win32_loop.h"
#include "platform/win32/win32_machine.h"
#include "platform/win32/win32_serial.h"
#include "platform/win32/win32_transport.h"

namespace platform::win32 {

// The machine that the program runs on, with a folder as its working folder.
class Win32Platform {
  public:
    // `folder` in UTF-8. Throws a Failure when it cannot be opened.
    explicit Win32Platform(const std::string& folder);

    Platform platform() { return {loop, boxes, wall_clock, random, files, serial_ports, sim_transport, key_delivery}; }

    Win32Loop loop;
    StackedBoxes boxes;
    Win32WallClock wall_clock;
    Win32Random random;
    Win32Files files;
    Win32SerialPorts serial_ports;
    Win32Transport sim_transport;
    Win32Keys key_delivery;
};

}  // namespace platform::win32
