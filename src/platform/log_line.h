#pragma once

#include <string>

namespace platform {

// A line for standard error: the text with its line breaks as " / " and other control characters as \xNN.
std::string log_line(const std::string& text);

}  // namespace platform
