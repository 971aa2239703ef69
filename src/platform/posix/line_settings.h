#pragma once

#include <termios.h>

#include <string>

namespace platform::posix {

// The line settings of a text such as "38400,N,8,1": speed, parity N, E or O, data bits 7 or 8, stop bits 1 or 2.
struct LineSettings {
    speed_t speed = B38400;
    char parity = 'N';
    int data_bits = 8;
    int stop_bits = 1;
};

// Throws a Failure for a text that names no settings of a serial line.
LineSettings parse_line_settings(const std::string& text);

// Puts an open terminal into raw mode with these settings; received breaks and framing errors are marked in the data.
// Throws a Failure.
void apply_line_settings(int descriptor, const LineSettings& settings);

}  // namespace platform::posix
