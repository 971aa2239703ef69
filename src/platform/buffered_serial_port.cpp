#include "platform/buffered_serial_port.h"

#include <algorithm>

#include "support/failure.h"

namespace platform {

void BufferedSerialPort::set_number(int number) {
    if (is_open()) {
        throw support::Failure("The port number cannot change while the port is open");
    }
    number_ = number;
}

std::string BufferedSerialPort::read() {
    const std::size_t length = read_length_ == 0 ? input_.size() : std::min(read_length_, input_.size());
    std::string taken = input_.substr(0, length);
    input_.erase(0, length);
    return taken;
}

void BufferedSerialPort::arrived(std::string_view bytes) {
    input_.append(bytes);
    if (input_.size() > kInputLimit) {
        input_.erase(0, input_.size() - kInputLimit);
    }
    raise_receive_if_due();
}

void BufferedSerialPort::raise_receive_if_due() {
    if (threshold_ > 0 && input_.size() >= threshold_ && !receive_queued_) {
        receive_queued_ = true;
        raise(SerialEvent::receive);
    }
}

void BufferedSerialPort::raise(SerialEvent event) {
    queue(event, Duration::zero());
}

void BufferedSerialPort::queue(SerialEvent event, Duration delay) {
    loop_.post_after(delay, [this, alive = std::weak_ptr<bool>(alive_), event] {
        if (!alive.expired()) {
            dispatch(event);
        }
    });
}

void BufferedSerialPort::dispatch(SerialEvent event) {
    if (in_handler_) {
        // The handler waits in a box: it has its event later.
        queue(event, Milliseconds(1));
        return;
    }
    if (event == SerialEvent::receive) {
        receive_queued_ = false;
        if (threshold_ == 0 || input_.size() < threshold_) {
            return;  // read or cleared meanwhile
        }
    }
    if (!is_open() || !handler_) {
        return;
    }
    struct Guard {
        BufferedSerialPort* port;
        std::weak_ptr<bool> alive;
        ~Guard() {
            if (!alive.expired()) {
                port->in_handler_ = false;
            }
        }
    };
    const std::weak_ptr<bool> alive = alive_;
    const std::size_t waiting = input_.size();
    {
        in_handler_ = true;
        const Guard guard{this, alive};
        handler_(event);
    }
    // A handler that took something is called again for what still waits.
    if (!alive.expired() && input_.size() != waiting) {
        raise_receive_if_due();
    }
}

}  // namespace platform
