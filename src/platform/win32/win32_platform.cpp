#include "platform/win32/win32_platform.h"

#include <cstdio>

#include "platform/log_line.h"

namespace platform::win32 {

namespace {

// Nobody reads it unless the program was started with its standard error led somewhere.
void write_to_standard_error(const std::string& text) {
    std::fprintf(stderr, "cockpit: %s\n", log_line(text).c_str());
    std::fflush(stderr);
}

}  // namespace

Win32Platform::Win32Platform(const std::string& folder)
    : boxes(loop, write_to_standard_error), files(folder), serial_ports(loop), sim_transport(loop) {
    loop.on_unhandled_failure = write_to_standard_error;
}

}  // namespace platform::win32
