#pragma once

#include <string>

#include "platform/key_delivery.h"

namespace platform::win32 {

// Presses keys as if typed: they go to the active window of the desktop, by the keyboard layout that it uses.
// keys_to_press tells which keys a character is. A window that runs as administrator gets no keys from a program that
// does not, and the system does not say so.
class Win32Keys : public KeyDelivery {
  public:
    void send(const std::string& keys) override;
};

}  // namespace platform::win32
