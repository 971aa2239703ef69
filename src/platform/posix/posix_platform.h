#pragma once

#include <string>

#include "platform/platform.h"
#include "platform/posix/posix_files.h"
#include "platform/posix/posix_loop.h"
#include "platform/posix/posix_machine.h"
#include "platform/posix/posix_serial.h"
#include "platform/posix/posix_transport.h"
#include "platform/posix/x_keys.h"

namespace platform::posix {

// The machine that the program runs on, with a folder as its working folder.
class PosixPlatform {
  public:
    // Throws a Failure when the folder cannot be opened.
    explicit PosixPlatform(const std::string& folder);

    Platform platform() { return {loop, boxes, wall_clock, random, files, serial_ports, sim_transport, key_delivery}; }

    PosixLoop loop;
    StackedBoxes boxes;
    PosixWallClock wall_clock;
    PosixRandom random;
    PosixFiles files;
    PosixSerialPorts serial_ports;
    PosixTransport sim_transport;
    XKeys key_delivery;
};

}  // namespace platform::posix
