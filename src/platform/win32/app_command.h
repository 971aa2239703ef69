#pragma once

#include <string>
#include <string_view>

namespace platform::win32 {

// Whether an address is one of a page on this machine: "http://127.0.0.1:", and nothing in it that a command line or a
// shell could take for anything else.
bool is_page_address(std::string_view address);

// The command line that opens a page as an application window of a browser that knows how (Edge, Chrome).
std::wstring app_command(const std::wstring& browser, const std::wstring& address);

}  // namespace platform::win32
