#include "platform/posix/line_settings.h"

#include <array>
#include <cstring>
#include <string_view>
#include <vector>

#include "platform/posix/system_failure.h"

namespace platform::posix {

namespace {

struct NamedSpeed {
    std::string_view name;
    speed_t speed;
};

constexpr std::array<NamedSpeed, 8> kSpeeds = {{
    {"1200", B1200},
    {"2400", B2400},
    {"4800", B4800},
    {"9600", B9600},
    {"19200", B19200},
    {"38400", B38400},
    {"57600", B57600},
    {"115200", B115200},
}};

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> parts(1);
    for (const char letter : text) {
        if (letter == ',') {
            parts.emplace_back();
        } else {
            parts.back().push_back(letter);
        }
    }
    return parts;
}

}  // namespace

LineSettings parse_line_settings(const std::string& text) {
    const support::Failure bad("Bad line settings: " + text);
    const std::vector<std::string> parts = split(text);
    if (parts.size() != 4 || parts[1].size() != 1 || std::strchr("NEO", parts[1][0]) == nullptr ||
        (parts[2] != "7" && parts[2] != "8") || (parts[3] != "1" && parts[3] != "2")) {
        throw bad;
    }
    for (const NamedSpeed& known : kSpeeds) {
        if (known.name == parts[0]) {
            return {known.speed, parts[1][0], parts[2] == "7" ? 7 : 8, parts[3] == "1" ? 1 : 2};
        }
    }
    throw bad;
}

void apply_line_settings(int descriptor, const LineSettings& settings) {
    termios mode{};
    if (::tcgetattr(descriptor, &mode) != 0) {
        throw_system_failure("Not a serial line");
    }
    ::cfmakeraw(&mode);
    mode.c_iflag &= ~static_cast<tcflag_t>(IGNBRK | BRKINT | IGNPAR | IXON | IXOFF);
    mode.c_iflag |= INPCK | PARMRK;
    mode.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB | PARODD | CSTOPB | CRTSCTS);
    mode.c_cflag |= CLOCAL | CREAD;
    mode.c_cflag |= settings.data_bits == 7 ? CS7 : CS8;
    if (settings.parity != 'N') {
        mode.c_cflag |= settings.parity == 'O' ? (PARENB | PARODD) : PARENB;
    }
    if (settings.stop_bits == 2) {
        mode.c_cflag |= CSTOPB;
    }
    mode.c_cc[VMIN] = 1;
    mode.c_cc[VTIME] = 0;
    ::cfsetispeed(&mode, settings.speed);
    ::cfsetospeed(&mode, settings.speed);
    if (::tcsetattr(descriptor, TCSANOW, &mode) != 0) {
        throw_system_failure("The line refuses its settings");
    }
}

}  // namespace platform::posix
