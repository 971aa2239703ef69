#pragma once

#include "platform/manual/manual_boxes.h"
#include "platform/manual/manual_loop.h"
#include "platform/manual/manual_machine.h"
#include "platform/manual/manual_serial.h"
#include "platform/manual/manual_transport.h"
#include "platform/platform.h"

namespace platform::manual {

// One of each, in virtual time.
struct ManualPlatform {
    ManualLoop loop;
    ManualBoxes boxes{loop};
    ManualWallClock wall_clock;
    ManualRandom random;
    ManualFiles files;
    ManualSerialPorts serial_ports{loop};
    ManualTransport sim_transport{loop};
    ManualKeys key_delivery;

    Platform platform() { return {loop, boxes, wall_clock, random, files, serial_ports, sim_transport, key_delivery}; }
};

}  // namespace platform::manual
