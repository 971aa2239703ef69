#pragma once

#include <string>

namespace platform::win32 {

// Opens the page at an address of this machine: as a window of its own where Microsoft Edge or Google Chrome is
// installed, else in the default browser. Does not wait for it. Throws a Failure for any other address, and when there
// is no browser.
void open_page(const std::string& address);

}  // namespace platform::win32
