#include "platform/win32/win32_machine.h"

#include <windows.h>

namespace platform::win32 {

DateTime Win32WallClock::local_now() const {
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

}  // namespace platform::win32
