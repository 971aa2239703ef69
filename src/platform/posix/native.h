#pragma once

#include "platform/posix/line_input.h"
#include "platform/posix/line_server.h"
#include "platform/posix/posix_instance_lock.h"
#include "platform/posix/posix_platform.h"
#include "platform/posix/posix_sim_server.h"

namespace platform::native {

using Files = posix::PosixFiles;
using InstanceLock = posix::PosixInstanceLock;
using LineInput = posix::LineInput;
using Loop = posix::PosixLoop;
using MachinePlatform = posix::PosixPlatform;
using SimServer = posix::PosixSimServer;
using SimTransport = posix::PosixTransport;
using WallClock = posix::PosixWallClock;

inline int standard_input() {
    return 0;
}

}  // namespace platform::native
