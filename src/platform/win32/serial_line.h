#pragma once

#include <array>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/windows/object_handle.hpp>
#include <boost/asio/windows/stream_handle.hpp>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/line_settings.h"
#include "platform/output_queue.h"
#include "platform/win32/win32_failure.h"

namespace platform::win32 {

// One opening of a serial line of the system, from its opening until it is closed or has gone. Asio's handlers hold it.
//
// A line is watched in three ways: its reads fail when its device goes; its line events tell of breaks and framing
// errors, where the driver knows them; and every half second it is asked whether it still lives, for drivers that let a
// read wait for ever when the device has gone.
class SerialLine : public std::enable_shared_from_this<SerialLine> {
  public:
    // Called by Asio's handlers, never after close().
    struct Owner {
        std::function<void(std::string_view bytes)> arrived;
        std::function<void(std::uint32_t errors)> line_errors;  // bits of line_events.h
        std::function<void()> lost;
    };

    // Opens COM port `number`. Throws a Failure.
    static std::shared_ptr<SerialLine> open(boost::asio::io_context& context, int number, const LineSettings& settings);
    // Begins to read.
    void start(Owner owner);
    void close();

    // Throws a Failure.
    void apply(const LineSettings& settings);
    void clear_input();
    void clear_output();
    // Sends in the background, what the line does not take waits in an OutputQueue. Throws a Failure for too much.
    void write(std::string_view bytes);
    // The carrier-detect input; false where the driver does not tell it.
    bool carrier_detect();

    SerialLine(boost::asio::io_context& context, Handle handle, Handle lock, std::string name);
    ~SerialLine();
    SerialLine(const SerialLine&) = delete;
    SerialLine& operator=(const SerialLine&) = delete;

  private:
    struct EventWait;

    void* native();
    bool closed() const { return owner_.lost == nullptr; }
    void read_next();
    void read_later();
    void take(const boost::system::error_code& error, std::size_t count);
    void send_next();
    void await_line_event();
    void take_line_event();
    void watch();
    // Takes the line's error bits. False when it does not answer any more.
    bool take_line_errors();
    void lost();

    boost::asio::windows::stream_handle handle_;
    Handle lock_;  // keeps other openings of ours out
    std::string name_;
    Owner owner_;
    boost::asio::steady_timer watch_timer_;
    boost::asio::steady_timer read_timer_;
    std::array<char, 64> input_{};
    int empty_reads_ = 0;
    OutputQueue output_;
    std::string sending_;
    bool sending_cleared_ = false;  // what is on its way was dropped by clear_output
    std::unique_ptr<EventWait> event_wait_;
};

}  // namespace platform::win32
