#include "platform/posix/posix_platform.h"

#include <cstdio>

#include "platform/log_line.h"

namespace platform::posix {

namespace {

void write_to_standard_error(const std::string& text) {
    std::fprintf(stderr, "cockpit: %s\n", log_line(text).c_str());
}

}  // namespace

PosixPlatform::PosixPlatform(const std::string& folder)
    : boxes(loop, write_to_standard_error), files(folder), serial_ports(loop, folder), sim_transport(loop) {
    loop.on_unhandled_failure = write_to_standard_error;
}

}  // namespace platform::posix
