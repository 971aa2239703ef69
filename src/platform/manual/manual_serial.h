#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/buffered_serial_port.h"
#include "platform/event_loop.h"
#include "platform/line_settings.h"
#include "platform/random.h"

namespace platform::manual {

// Faults of a wire that a test can set.
struct WireFaults {
    bool missing = false;           // open fails: there is no such port
    bool busy = false;              // open fails: another program has it
    bool refuses_settings = false;  // open fails on the line settings
    double loss_to_program = 0.0;   // share of the bytes that get lost, 0..1
    double loss_to_device = 0.0;
    double noise_to_program = 0.0;  // share of the bytes that arrive as another byte
    double noise_to_device = 0.0;
    Random* random = nullptr;  // decides which bytes; needed for loss and noise
};

class ManualSerialPort;

// One serial line, by its port number: the program's port at one end, a device model at the other. Bytes take their
// time at the speed of the program's line settings (38400 baud with one stop bit before the first opening).
class Wire {
  public:
    Wire(EventLoop& loop, int number) : loop_(loop), number_(number) {}
    Wire(const Wire&) = delete;
    Wire& operator=(const Wire&) = delete;

    // Gets what the program has written, when it has arrived.
    std::function<void(std::string_view bytes)> to_device;
    // Sends bytes of the device to the program. They are lost while the wire is unplugged or nobody has the port open.
    void deliver(std::string_view bytes);

    // Pulls the plug and puts it in again.
    void unplug();
    void plug();
    bool plugged() const { return plugged_; }

    void send_break();
    void send_framing_error();

    WireFaults faults;
    bool carrier = false;

    int number() const { return number_; }
    // The program's port while it has this line open.
    ManualSerialPort* port() const { return port_; }
    // All blocks that the program has written, until forgotten. Recording can be switched off for long runs.
    bool record = true;
    std::string written;
    int opens = 0;
    int writes = 0;
    int input_clears = 0;
    std::uint64_t bytes_to_device = 0;

  private:
    friend class ManualSerialPort;

    void take_from_program(std::string_view bytes);
    std::string through(std::string_view bytes, double loss, double noise);

    EventLoop& loop_;
    int number_;
    bool plugged_ = true;
    ManualSerialPort* port_ = nullptr;
    std::chrono::nanoseconds byte_time_ = byte_time(LineSettings{});
    TimePoint to_device_free_{};
    TimePoint to_program_free_{};
};

class ManualSerialPorts;

class ManualSerialPort : public BufferedSerialPort {
  public:
    explicit ManualSerialPort(ManualSerialPorts& ports);
    ~ManualSerialPort() override;

    void set_settings(const std::string& settings) override;
    void open() override;
    void close() override;
    bool is_open() const override { return wire_ != nullptr; }
    bool connected() const override { return wire_ != nullptr && wire_->plugged(); }
    void clear_input() override;
    void clear_output() override {}
    void write(std::string_view bytes) override;
    bool carrier_detect() const override { return wire_ != nullptr && wire_->carrier; }

    const std::string& settings() const { return settings_; }

  private:
    friend class Wire;

    ManualSerialPorts& ports_;
    std::string settings_;
    std::chrono::nanoseconds byte_time_ = byte_time(LineSettings{});
    Wire* wire_ = nullptr;
};

// The numbered lines of one machine.
class ManualSerialPorts : public SerialPorts {
  public:
    explicit ManualSerialPorts(EventLoop& loop) : loop_(loop) {}

    std::unique_ptr<SerialPort> create() override { return std::make_unique<ManualSerialPort>(*this); }

    // The line of a number; made at the first use. Only lines made so exist: the program can't open another.
    Wire& wire(int number);
    Wire* find(int number);

    EventLoop& loop() { return loop_; }

  private:
    EventLoop& loop_;
    std::map<int, std::unique_ptr<Wire>> wires_;
};

}  // namespace platform::manual
