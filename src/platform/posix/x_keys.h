#pragma once

#include <memory>
#include <string>

#include "platform/key_delivery.h"
#include "platform/posix/x_connection.h"

namespace platform::posix {

// Presses keys on the desktop through the X server's test extension: they go to the window that has the keyboard, as
// if typed. In a Wayland session only windows of X programs are reached. keys_to_press tells which keys a character is.
//
// The connection is opened at the first key and kept; when the server has gone, the next key opens a new one.
class XKeys : public KeyDelivery {
  public:
    // A display like ":1"; empty means that of the session.
    explicit XKeys(std::string display = {}) : display_(std::move(display)) {}

    void send(const std::string& keys) override;

  private:
    std::string display_;
    XServerProbe probe_;
    std::unique_ptr<XConnection> connection_;
};

}  // namespace platform::posix
