#pragma once

#include <string>

namespace platform {

// Delivers a key sequence to the active window of the desktop.
class KeyDelivery {
  public:
    virtual ~KeyDelivery() = default;
    // `keys` is a send-keys text of one character (send_keys.h): "^" Control, "+" Shift, then the character, special
    // characters in braces. Throws a Failure where keys cannot be delivered. Never waits long for the desktop.
    virtual void send(const std::string& keys) = 0;
};

}  // namespace platform
