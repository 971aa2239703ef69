#pragma once

#include <sys/types.h>

#include <cstdint>
#include <string>
#include <vector>

struct xcb_connection_t;

namespace test_support {

// An X server without a screen, of the test's own; one at a time in a process. Its failures are thrown as
// std::runtime_error.
class XServer {
  public:
    // With further arguments of the server.
    explicit XServer(const std::vector<std::string>& arguments = {});
    XServer(const XServer&) = delete;
    XServer& operator=(const XServer&) = delete;
    ~XServer();

    // ":7"
    const std::string& display() const { return display_; }
    // Ends it at once, as a crash does.
    void crash();
    // Starts it again on the same display.
    void start_again();
    // Stops and continues the process.
    void freeze();
    void thaw();
    // Changes the keyboard as the user's desktop does: arguments of setxkbmap.
    void set_keyboard(const std::vector<std::string>& arguments);

  private:
    void start(const std::vector<std::string>& arguments);

    pid_t process_ = -1;
    std::string display_;
};

// A window that has the keyboard, and reads what is typed.
class TypedWindow {
  public:
    explicit TypedWindow(const std::string& display);
    TypedWindow(const TypedWindow&) = delete;
    TypedWindow& operator=(const TypedWindow&) = delete;
    ~TypedWindow();

    // The next key events until no key is down any more, such as "+Shift +A:S -A:S -Shift:S": pressed and released
    // keys by the symbol that they give, with the modifiers (C, S, 3 = AltGr) that were down before. Throws
    // std::runtime_error with what has come when there is no such end within ten seconds.
    std::string typed();
    // The modifiers that are down.
    std::string held();
    // The user's own keyboard; the window takes notice of the keys, typed() does not tell them.
    void user_presses(std::uint8_t keycode);
    void user_releases(std::uint8_t keycode);

  private:
    void fake_user_key(int action, std::uint8_t keycode);
    std::string symbol_name(std::uint8_t keycode, unsigned state, unsigned first_column);

    xcb_connection_t* connection_;
    std::uint32_t root_ = 0;
};

}  // namespace test_support
