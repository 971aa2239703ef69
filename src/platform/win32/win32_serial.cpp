#include "platform/win32/win32_serial.h"

#include "platform/win32/line_events.h"
#include "support/failure.h"

namespace platform::win32 {

namespace {

constexpr Milliseconds kReturnInterval{500};

}  // namespace

Win32SerialPort::Win32SerialPort(Win32Loop& loop) : BufferedSerialPort(loop), win32_loop_(loop) {}

Win32SerialPort::~Win32SerialPort() {
    close();
}

void Win32SerialPort::set_settings(const std::string& settings) {
    const LineSettings parsed = parse_line_settings(settings);
    if (line_) {
        line_->apply(parsed);
    }
    settings_ = parsed;
}

void Win32SerialPort::open() {
    if (open_) {
        throw support::Failure("Port already open");
    }
    connect();
    open_ = true;
}

void Win32SerialPort::connect() {
    line_ = SerialLine::open(win32_loop_.io_context(), number(), settings_);
    drop_input();
    line_->start(
        {.arrived = [this](std::string_view bytes) { arrived(bytes); },
         .line_errors =
             [this](std::uint32_t errors) { raise_line_errors(errors, [this](SerialEvent event) { raise(event); }); },
         .lost = [this] { lost(); }});
}

void Win32SerialPort::drop_line() {
    if (line_) {
        line_->close();
        line_.reset();
    }
}

void Win32SerialPort::close() {
    open_ = false;
    if (return_timer_) {
        return_timer_->cancel();
        return_timer_.reset();
    }
    drop_line();
    drop_input();
}

void Win32SerialPort::lost() {
    drop_line();
    drop_input();
    raise(SerialEvent::disconnected);
    await_return();
}

void Win32SerialPort::await_return() {
    return_timer_ = std::make_shared<boost::asio::steady_timer>(win32_loop_.io_context(), kReturnInterval);
    return_timer_->async_wait(
        [this, timer = return_timer_, alive = std::weak_ptr<int>(alive_)](const boost::system::error_code& error) {
            if (error || alive.expired() || timer != return_timer_ || !open_) {
                return;
            }
            try {
                connect();
                raise(SerialEvent::reconnected);
            } catch (const support::Failure&) {
                await_return();  // not there yet
            }
        });
}

void Win32SerialPort::clear_input() {
    // What waits in the system is dropped with what waits here; what has come in and was not yet taken is taken first.
    if (line_) {
        win32_loop_.io_context().poll();
    }
    if (line_) {
        line_->clear_input();
    }
    BufferedSerialPort::clear_input();
}

void Win32SerialPort::clear_output() {
    if (line_) {
        line_->clear_output();
    }
}

void Win32SerialPort::write(std::string_view bytes) {
    if (!open_) {
        throw support::Failure(name() + " is not open");
    }
    if (!line_) {
        throw support::Failure(name() + " has gone");
    }
    line_->write(bytes);
}

bool Win32SerialPort::carrier_detect() const {
    return line_ && line_->carrier_detect();
}

}  // namespace platform::win32
