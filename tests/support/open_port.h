#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/serial_port.h"

namespace test_support {

// A port that takes everything at once and keeps only how much it was, and that gives what a test puts into it. It
// allocates nothing itself.
class OpenPort : public platform::SerialPort {
  public:
    void set_number(int number) override { number_ = number; }
    int number() const override { return number_; }
    void set_settings(const std::string&) override {}
    void set_receive_threshold(std::size_t) override {}
    void set_read_length(std::size_t) override {}
    void set_event_handler(EventHandler handler) override { handler_ = std::move(handler); }
    void open() override { open_ = true; }
    void close() override { open_ = false; }
    bool is_open() const override { return open_; }
    bool connected() const override { return open_; }
    std::string read() override { return std::string(std::exchange(input_, {})); }
    void read_into(std::string& bytes) override { bytes = std::exchange(input_, {}); }
    void clear_input() override { input_ = {}; }
    void clear_output() override {}
    void write(std::string_view bytes) override {
        ++writes;
        last_write_size = bytes.size();
    }
    bool carrier_detect() const override { return false; }

    // Bytes arrive, with their receive event.
    void give(std::string_view bytes) {
        input_ = bytes;
        handler_(platform::SerialEvent::receive);
    }

    int writes = 0;
    std::size_t last_write_size = 0;

  private:
    EventHandler handler_;
    std::string_view input_;
    int number_ = 0;
    bool open_ = false;
};

// Makes such ports; `made` holds them in the order of their making, as long as their owners do.
struct OpenPorts : platform::SerialPorts {
    std::unique_ptr<platform::SerialPort> create() override {
        auto port = std::make_unique<OpenPort>();
        made.push_back(port.get());
        return port;
    }
    std::vector<OpenPort*> made;
};

}  // namespace test_support
