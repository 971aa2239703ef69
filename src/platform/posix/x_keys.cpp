#include "platform/posix/x_keys.h"

#include "support/failure.h"

namespace platform::posix {

void XKeys::send(const std::string& keys) {
    const KeyChord chord = parse_send_keys(keys);
    if (connection_ && connection_->press(chord) == Delivery::done) {
        return;
    }
    connection_.reset();
    probe_.check(display_);
    connection_ = std::make_unique<XConnection>(display_);
    if (connection_->press(chord) != Delivery::done) {
        connection_.reset();
        throw support::Failure("The desktop has gone while the key was on its way");
    }
}

}  // namespace platform::posix
