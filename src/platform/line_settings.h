#pragma once

#include <chrono>
#include <string>

namespace platform {

// The settings of a serial line as a text such as "38400,N,8,1" tells them.
struct LineSettings {
    unsigned speed_baud = 38400;  // one of the usual speeds from 1200 to 115200
    char parity = 'N';            // N none, E even, O odd
    int data_bits = 8;            // 7 or 8
    int stop_bits = 1;            // 1 or 2
};

// Throws a Failure for a text that names no settings of a serial line.
LineSettings parse_line_settings(const std::string& text);

// The time that one byte takes on the line, its start, parity and stop bits included.
std::chrono::nanoseconds byte_time(const LineSettings& settings);

}  // namespace platform
