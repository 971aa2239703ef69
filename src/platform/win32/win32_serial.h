#pragma once

#include <boost/asio/steady_timer.hpp>
#include <memory>
#include <string>

#include "platform/buffered_serial_port.h"
#include "platform/line_settings.h"
#include "platform/win32/serial_line.h"
#include "platform/win32/win32_loop.h"

namespace platform::win32 {

// A serial line of the system: port N is COMN. A line whose device goes is looked for every half second until it can be
// opened again.
class Win32SerialPort : public BufferedSerialPort {
  public:
    explicit Win32SerialPort(Win32Loop& loop);
    ~Win32SerialPort() override;

    void set_settings(const std::string& settings) override;
    void open() override;
    void close() override;
    bool is_open() const override { return open_; }
    bool connected() const override { return line_ != nullptr; }
    void clear_input() override;
    void clear_output() override;
    void write(std::string_view bytes) override;
    bool carrier_detect() const override;

  private:
    std::string name() const { return "Port COM" + std::to_string(number()); }
    // Opens the line, without events. Throws a Failure.
    void connect();
    void drop_line();
    void lost();
    void await_return();

    Win32Loop& win32_loop_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
    LineSettings settings_;
    bool open_ = false;
    std::shared_ptr<SerialLine> line_;
    std::shared_ptr<boost::asio::steady_timer> return_timer_;
};

class Win32SerialPorts : public SerialPorts {
  public:
    explicit Win32SerialPorts(Win32Loop& loop) : loop_(loop) {}
    std::unique_ptr<SerialPort> create() override { return std::make_unique<Win32SerialPort>(loop_); }

  private:
    Win32Loop& loop_;
};

}  // namespace platform::win32
