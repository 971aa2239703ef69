#pragma once

#include <string_view>

namespace platform::win32 {

// Whether a plain file name (no folders) means a file here: no characters that the system keeps for itself, no name of
// a device ("COM1.cfg" is the port), no dot or blank at its end, which the system would drop.
bool is_file_name(std::string_view name);

}  // namespace platform::win32
