#pragma once

#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/steady_timer.hpp>
#include <memory>
#include <string>

#include "platform/buffered_serial_port.h"
#include "platform/line_settings.h"
#include "platform/output_queue.h"
#include "platform/posix/parmrk_decoder.h"
#include "platform/posix/posix_loop.h"
#include "platform/posix/system_failure.h"

namespace platform::posix {

// A serial line of the system. Port N is the first that exists of ports/COMN in the working folder, /dev/COMN and
// /dev/ttyUSB<N-1>. A line that hangs up is looked for every half second until it can be opened again.
class PosixSerialPort : public BufferedSerialPort {
  public:
    // `folder` is the working folder.
    PosixSerialPort(PosixLoop& loop, std::string folder);
    ~PosixSerialPort() override;

    void set_settings(const std::string& settings) override;
    void open() override;
    void close() override;
    bool is_open() const override { return open_; }
    bool connected() const override { return line_ != nullptr; }
    void clear_input() override;
    void clear_output() override;
    // What the line does not take at once waits in an OutputQueue, so that a line that stands still neither blocks the
    // program nor fills its memory.
    void write(std::string_view bytes) override;
    bool carrier_detect() const override;

  private:
    // One opening of the line; Asio's handlers hold it, so that it outlives its port by as much as they need.
    struct Line {
        explicit Line(boost::asio::io_context& context) : descriptor(context) {}
        boost::asio::posix::stream_descriptor descriptor;
        PosixSerialPort* port = nullptr;  // null once closed
        bool writing = false;
        bool exclusive = false;  // the system keeps others out
    };

    std::string name() const { return "Port COM" + std::to_string(number()); }
    std::string path() const;
    Descriptor open_device() const;
    // Opens the line, without events. Throws a Failure.
    void connect();
    void drop_line();
    void await_input();
    void take_input();
    void await_output();
    bool send_pending();
    void lost();
    void await_return();

    PosixLoop& posix_loop_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
    std::string folder_;
    LineSettings settings_;
    bool open_ = false;
    std::shared_ptr<Line> line_;
    ParmrkDecoder decoder_;
    OutputQueue output_;
    std::shared_ptr<boost::asio::steady_timer> return_timer_;
};

class PosixSerialPorts : public SerialPorts {
  public:
    PosixSerialPorts(PosixLoop& loop, std::string folder) : loop_(loop), folder_(std::move(folder)) {}
    std::unique_ptr<SerialPort> create() override { return std::make_unique<PosixSerialPort>(loop_, folder_); }

  private:
    PosixLoop& loop_;
    std::string folder_;
};

}  // namespace platform::posix
