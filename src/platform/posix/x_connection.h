#pragma once

#include <optional>
#include <string>

#include "platform/posix/system_failure.h"
#include "platform/posix/x_keyboard.h"

struct xcb_connection_t;

namespace platform::posix {

enum class Delivery { done, connection_broken };

// A connection to the X server of a desktop, to press keys through its test extension (XTEST). It never waits long: a
// server that owes an answer is not asked again, and gets no keys, until it has given it.
class XConnection {
  public:
    // Connects to a display (":1"); empty means that of the session. Throws a Failure when there is no server, or one
    // that lets no program press keys. Waits for a server that accepts connections and then says nothing: ask
    // XServerProbe before.
    explicit XConnection(const std::string& display);
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;
    ~XConnection();

    // Presses and releases the keys of a keystroke in the window that has the keyboard. Keys that the user holds are
    // left as they are. Throws a Failure when the layout has no key for it or the server does not answer in time.
    Delivery press(const KeyChord& chord);

  private:
    bool broken() const;
    void take_events();
    void read_keyboard();
    // The reply to a request, to be freed; nothing when the connection has broken or the server refuses. Throws a
    // Failure when the time is up.
    void* wait_for(unsigned sequence);
    void check_owed_reply();

    xcb_connection_t* connection_;
    XKeyboard keyboard_;
    bool keyboard_is_stale_ = true;
    std::optional<unsigned> owed_reply_;  // the sequence number of the request
};

// Finds out whether an X server on this machine answers at all, without waiting for it again and again: one that has
// been stopped, or that another program keeps for itself, still accepts connections.
class XServerProbe {
  public:
    // Throws a Failure when the server of the display (empty = that of the session) does not answer. The first call
    // waits a short time, later ones only look until the answer is there. A server that is not there, or on another
    // machine, passes.
    void check(const std::string& display);

  private:
    Descriptor waiting_;  // a connection that has asked and has no answer yet
};

}  // namespace platform::posix
