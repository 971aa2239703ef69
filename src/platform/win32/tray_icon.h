#pragma once

#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace platform::win32 {

// An icon beside the clock with the menu "Open panels" and "Exit"; a double click opens the panels too. It comes again
// when the Explorer is started anew, and where there is no taskbar nothing is shown. When the user signs out or shuts
// the system down, the program is asked to end and given a few seconds for it.
//
// The icon has a thread of its own, so that its menu holds nothing up. Both functions are called there.
class TrayIcon {
  public:
    struct Actions {
        std::function<void()> open_panels;
        std::function<void()> exit;
    };

    // The tool tip in UTF-8, 127 characters at most are shown.
    TrayIcon(Actions actions, const std::string& tool_tip);
    ~TrayIcon();
    TrayIcon(const TrayIcon&) = delete;
    TrayIcon& operator=(const TrayIcon&) = delete;

  private:
    struct Window;

    std::unique_ptr<Window> window_;
    std::thread thread_;
};

}  // namespace platform::win32
