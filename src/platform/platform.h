#pragma once

#include "platform/boxes.h"
#include "platform/event_loop.h"
#include "platform/file_store.h"
#include "platform/key_delivery.h"
#include "platform/random.h"
#include "platform/serial_port.h"
#include "platform/sim_transport.h"
#include "platform/wall_clock.h"

namespace platform {

// All that the logic asks of the machine, as one back end gives it.
struct Platform {
    EventLoop& loop;
    Boxes& boxes;
    WallClock& wall_clock;
    Random& random;
    FileStore& files;
    SerialPorts& serial_ports;
    SimTransport& sim_transport;
    KeyDelivery& key_delivery;
};

}  // namespace platform
