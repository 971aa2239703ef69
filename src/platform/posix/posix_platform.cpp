#include "platform/posix/posix_platform.h"

#include <cstdio>

namespace platform::posix {

PosixPlatform::PosixPlatform(const std::string& folder)
    : boxes(loop, [](const std::string& text) { std::fprintf(stderr, "cockpit: %s\n", log_line(text).c_str()); }),
      files(folder),
      serial_ports(loop, folder),
      sim_transport(loop) {}

}  // namespace platform::posix
