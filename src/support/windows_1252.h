#pragma once

#include <string>
#include <string_view>

namespace support {

// Texts of the tables and panels are bytes of Windows-1252; the page speaks UTF-8. The five bytes that the character
// set leaves open become the control characters of the same number, so that every byte comes back as it went.
void append_utf8(std::string& out, std::string_view windows_1252);
std::string to_utf8(std::string_view windows_1252);
// Characters that Windows-1252 does not have, and bytes that are no UTF-8, become '?'.
std::string from_utf8(std::string_view utf8);

}  // namespace support
