#include "platform/posix/terminal_mode.h"

#include <termios.h>

#include <array>

#include "platform/posix/system_failure.h"

namespace platform::posix {

namespace {

struct SystemSpeed {
    unsigned baud;
    speed_t code;
};

constexpr std::array<SystemSpeed, 8> kSpeeds = {{
    {1200, B1200},
    {2400, B2400},
    {4800, B4800},
    {9600, B9600},
    {19200, B19200},
    {38400, B38400},
    {57600, B57600},
    {115200, B115200},
}};

speed_t speed_code(unsigned baud) {
    for (const SystemSpeed& known : kSpeeds) {
        if (known.baud == baud) {
            return known.code;
        }
    }
    throw support::Failure("The line refuses its settings: " + std::to_string(baud) + " baud");
}

}  // namespace

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
    const speed_t speed = speed_code(settings.speed_baud);
    ::cfsetispeed(&mode, speed);
    ::cfsetospeed(&mode, speed);
    if (::tcsetattr(descriptor, TCSANOW, &mode) != 0) {
        throw_system_failure("The line refuses its settings");
    }
    // The system reports success when it could set any part of it.
    termios set{};
    if (::tcgetattr(descriptor, &set) != 0 || ::cfgetospeed(&set) != speed ||
        ((set.c_cflag ^ mode.c_cflag) & CSTOPB) != 0 || (set.c_iflag & PARMRK) == 0) {
        throw support::Failure("The line refuses its settings");
    }
}

}  // namespace platform::posix
