#pragma once

#include "platform/win32/line_input.h"
#include "platform/win32/win32_instance_lock.h"
#include "platform/win32/win32_platform.h"
#include "platform/win32/win32_sim_server.h"

namespace platform::native {

using Files = win32::Win32Files;
using InstanceLock = win32::Win32InstanceLock;
using LineInput = win32::LineInput;
using Loop = win32::Win32Loop;
using MachinePlatform = win32::Win32Platform;
using SimServer = win32::Win32SimServer;
using SimTransport = win32::Win32Transport;
using WallClock = win32::Win32WallClock;
using win32::standard_input;

}  // namespace platform::native
