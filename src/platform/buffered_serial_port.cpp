#include "platform/buffered_serial_port.h"

#include <algorithm>
#include <utility>

#include "support/failure.h"

namespace platform {

void BufferedSerialPort::set_number(int number) {
    if (is_open()) {
        throw support::Failure("The port number cannot change while the port is open");
    }
    number_ = number;
}

std::string BufferedSerialPort::read() {
    std::string taken;
    read_into(taken);
    return taken;
}

void BufferedSerialPort::read_into(std::string& bytes) {
    const std::size_t length = read_length_ == 0 ? input_.size() : std::min(read_length_, input_.size());
    bytes.assign(input_, 0, length);
    input_.erase(0, length);
    ++reads_;
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

void BufferedSerialPort::EventList::add(SerialEvent event) {
    if (std::find(begin(), end(), event) == end()) {
        events_[count_++] = event;
    }
}

BufferedSerialPort::EventList BufferedSerialPort::EventList::take() {
    return std::exchange(*this, EventList{});
}

void BufferedSerialPort::raise(SerialEvent event) {
    loop_.post([this, alive = std::weak_ptr<bool>(alive_), event] {
        if (!alive.expired()) {
            dispatch(event);
        }
    });
}

void BufferedSerialPort::dispatch(SerialEvent event) {
    if (in_handler_) {
        held_back_.add(event);  // the handler waits, in a box for example
        return;
    }
    if (event == SerialEvent::receive) {
        receive_queued_ = false;
        if (threshold_ == 0 || input_.size() < threshold_) {
            return;  // read or cleared meanwhile
        }
    }
    if (is_open() && handler_) {
        call_handler(event);
    }
}

void BufferedSerialPort::call_handler(SerialEvent event) {
    // Lets the handler in again also when it has thrown; it may have destroyed its port.
    struct Guard {
        BufferedSerialPort* port;
        std::weak_ptr<bool> alive;
        std::size_t reads_before;

        ~Guard() {
            if (alive.expired()) {
                return;
            }
            port->in_handler_ = false;
            for (const SerialEvent held_back : port->held_back_.take()) {
                port->raise(held_back);
            }
            // A handler that took something is called again for what still waits.
            if (port->reads_ != reads_before) {
                port->raise_receive_if_due();
            }
        }
    };
    in_handler_ = true;
    const Guard guard{this, alive_, reads_};
    handler_(event);
}

}  // namespace platform
