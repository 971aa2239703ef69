#include "platform/manual/manual_serial.h"

#include <algorithm>

#include "support/failure.h"

namespace platform::manual {

namespace {

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
    to_device_free_ = std::max(to_device_free_, loop_.now()) + byte_time_ * static_cast<int>(bytes.size());
    loop_.post_after(to_device_free_ - loop_.now(), [this, passed = std::move(passed)] {
        if (plugged_ && to_device) {
            bytes_to_device += passed.size();
            to_device(passed);
        }
    });
}

void Wire::deliver(std::string_view bytes) {
    std::string passed = through(bytes, faults.loss_to_program, faults.noise_to_program);
    to_program_free_ = std::max(to_program_free_, loop_.now()) + byte_time_ * static_cast<int>(bytes.size());
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
            port_->drop_input();
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

ManualSerialPort::ManualSerialPort(ManualSerialPorts& ports) : BufferedSerialPort(ports.loop()), ports_(ports) {}

ManualSerialPort::~ManualSerialPort() {
    close();
}

void ManualSerialPort::set_settings(const std::string& settings) {
    if (wire_ != nullptr && wire_->faults.refuses_settings) {
        throw support::Failure("The port refuses the settings " + settings);
    }
    const LineSettings parsed = parse_line_settings(settings);
    settings_ = settings;
    byte_time_ = byte_time(parsed);
    if (wire_ != nullptr) {
        wire_->byte_time_ = byte_time_;
    }
}

void ManualSerialPort::open() {
    if (is_open()) {
        throw support::Failure("Port already open");
    }
    Wire* wire = ports_.find(number());
    if (wire == nullptr || wire->faults.missing || !wire->plugged()) {
        throw support::Failure("Port COM" + std::to_string(number()) + " does not exist");
    }
    if (wire->faults.busy || wire->port_ != nullptr) {
        throw support::Failure("Port COM" + std::to_string(number()) + " is in use by another program");
    }
    if (wire->faults.refuses_settings) {
        throw support::Failure("The port refuses the settings " + settings_);
    }
    wire_ = wire;
    wire_->port_ = this;
    wire_->byte_time_ = byte_time_;
    ++wire_->opens;
    drop_input();
}

void ManualSerialPort::close() {
    if (wire_ != nullptr) {
        wire_->port_ = nullptr;
        wire_ = nullptr;
    }
    drop_input();
}

void ManualSerialPort::clear_input() {
    drop_input();
    if (wire_ != nullptr) {
        ++wire_->input_clears;
    }
}

void ManualSerialPort::write(std::string_view bytes) {
    if (wire_ == nullptr) {
        throw support::Failure("Port COM" + std::to_string(number()) + " is not open");
    }
    if (!wire_->plugged()) {
        throw support::Failure("Port COM" + std::to_string(number()) + " has gone");
    }
    wire_->take_from_program(bytes);
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
