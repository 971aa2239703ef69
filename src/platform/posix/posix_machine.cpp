#include "platform/posix/posix_machine.h"

#include <ctime>

namespace platform::posix {

DateTime PosixWallClock::local_now() const {
    const std::time_t seconds = std::time(nullptr);
    std::tm parts{};
    ::localtime_r(&seconds, &parts);
    return {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour, parts.tm_min, parts.tm_sec};
}

}  // namespace platform::posix
