#include "platform/manual/manual_serial.h"

#include <algorithm>

#include "support/failure.h"

namespace platform::manual {

namespace {

// 38400 baud, 10 bits a byte.
constexpr std::chrono::nanoseconds kByteTime{260417};

bool falls(Random* random, double share) {
    return share > 0.0 && random != nullptr && static_cast<double>(random->next()) < share * 4294967296.0;
}

}  // namespace

std::string Wire::through(std::string_view bytes, double loss, double noise) {
    std::string passed;
    passed.reserve(bytes.size());
    for (const char byte : bytes) {
        if (falls(faults.random, loss)) {
            continue;
        }
        passed.push_back(falls(faults.random, noise) ? static_cast<char>(faults.random->next() & 0xFFU) : byte);
    }
    return passed;
}

void Wire::take_from_program(std::string_view bytes) {
    ++writes;
    if (record) {
        written.append(bytes);
    }
    std::string passed = through(bytes, faults.loss_to_device, faults.noise_to_device);
    to_device_free_ = std::max(to_device_free_, loop_.now()) + kByteTime * static_cast<int>(bytes.size());
    loop_.post_after(to_device_free_ - loop_.now(), [this, passed = std::move(passed)] {
        if (plugged_ && to_device) {
            bytes_to_device += passed.size();
            to_device(passed);
        }
    });
}

void Wire::deliver(std::string_view bytes) {
    std::string passed = through(bytes, faults.loss_to_program, faults.noise_to_program);
    to_program_free_ = std::max(to_program_free_, loop_.now()) + kByteTime * static_cast<int>(bytes.size());
    loop_.post_after(to_program_free_ - loop_.now(), [this, passed = std::move(passed)] {
        if (plugged_ && port_ != nullptr) {
            port_->arrived(passed);
        }
    });
}

void Wire::unplug() {
    if (plugged_) {
        plugged_ = false;
        if (port_ != nullptr) {
            port_->input_.clear();
            port_->raise(SerialEvent::disconnected);
        }
    }
}

void Wire::plug() {
    if (!plugged_) {
        plugged_ = true;
        if (port_ != nullptr) {
            port_->raise(SerialEvent::reconnected);
        }
    }
}

void Wire::send_break() {
    if (plugged_ && port_ != nullptr) {
        port_->raise(SerialEvent::break_received);
    }
}

void Wire::send_framing_error() {
    if (plugged_ && port_ != nullptr) {
        port_->raise(SerialEvent::framing_error);
    }
}

ManualSerialPort::~ManualSerialPort() {
    close();
}

void ManualSerialPort::set_number(int number) {
    if (is_open()) {
        throw support::Failure("The port number cannot change while the port is open");
    }
    number_ = number;
}

void ManualSerialPort::set_settings(const std::string& settings) {
    if (wire_ != nullptr && wire_->faults.refuses_settings) {
        throw support::Failure("The port refuses the settings " + settings);
    }
    settings_ = settings;
}

void ManualSerialPort::open() {
    if (is_open()) {
        throw support::Failure("Port already open");
    }
    Wire* wire = ports_.find(number_);
    if (wire == nullptr || wire->faults.missing || !wire->plugged()) {
        throw support::Failure("Port COM" + std::to_string(number_) + " does not exist");
    }
    if (wire->faults.busy || wire->port_ != nullptr) {
        throw support::Failure("Port COM" + std::to_string(number_) + " is in use by another program");
    }
    if (wire->faults.refuses_settings) {
        throw support::Failure("The port refuses the settings " + settings_);
    }
    wire_ = wire;
    wire_->port_ = this;
    ++wire_->opens;
    input_.clear();
}

void ManualSerialPort::close() {
    if (wire_ != nullptr) {
        wire_->port_ = nullptr;
        wire_ = nullptr;
    }
    input_.clear();
}

std::string ManualSerialPort::read() {
    const std::size_t length = read_length_ == 0 ? input_.size() : std::min(read_length_, input_.size());
    std::string taken = input_.substr(0, length);
    input_.erase(0, length);
    return taken;
}

void ManualSerialPort::clear_input() {
    input_.clear();
    if (wire_ != nullptr) {
        ++wire_->input_clears;
    }
}

void ManualSerialPort::write(std::string_view bytes) {
    if (wire_ == nullptr) {
        throw support::Failure("Port COM" + std::to_string(number_) + " is not open");
    }
    if (!wire_->plugged()) {
        throw support::Failure("Port COM" + std::to_string(number_) + " has gone");
    }
    wire_->take_from_program(bytes);
}

void ManualSerialPort::arrived(std::string_view bytes) {
    input_.append(bytes);
    raise_receive_if_due();
}

void ManualSerialPort::raise_receive_if_due() {
    if (threshold_ > 0 && input_.size() >= threshold_ && !receive_queued_) {
        receive_queued_ = true;
        raise(SerialEvent::receive);
    }
}

void ManualSerialPort::raise(SerialEvent event) {
    ports_.loop().post([this, alive = std::weak_ptr<bool>(alive_), event] {
        if (!alive.expired()) {
            dispatch(event);
        }
    });
}

void ManualSerialPort::dispatch(SerialEvent event) {
    if (in_handler_) {
        // The handler waits in a box: it has its event later.
        ports_.loop().post_after(Milliseconds(1), [this, alive = std::weak_ptr<bool>(alive_), event] {
            if (!alive.expired()) {
                dispatch(event);
            }
        });
        return;
    }
    const std::weak_ptr<bool> alive = alive_;
    if (event == SerialEvent::receive) {
        receive_queued_ = false;
        if (threshold_ == 0 || input_.size() < threshold_) {
            return;  // read or cleared meanwhile
        }
    }
    if (is_open() && handler_) {
        struct Guard {
            ManualSerialPort* port;
            std::weak_ptr<bool> alive;
            ~Guard() {
                if (!alive.expired()) {
                    port->in_handler_ = false;
                }
            }
        };
        const std::size_t waiting = input_.size();
        {
            in_handler_ = true;
            const Guard guard{this, alive};
            handler_(event);
        }
        // A handler that took something is called again for what still waits, as a real port does it.
        if (!alive.expired() && input_.size() != waiting) {
            raise_receive_if_due();
        }
    }
}

Wire& ManualSerialPorts::wire(int number) {
    auto& wire = wires_[number];
    if (!wire) {
        wire = std::make_unique<Wire>(loop_, number);
    }
    return *wire;
}

Wire* ManualSerialPorts::find(int number) {
    const auto found = wires_.find(number);
    return found == wires_.end() ? nullptr : found->second.get();
}

}  // namespace platform::manual
