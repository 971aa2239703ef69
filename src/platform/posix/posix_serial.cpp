#include "platform/posix/posix_serial.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/posix/terminal_mode.h"

namespace platform::posix {

namespace {

constexpr Milliseconds kReturnInterval{500};

bool is_pseudo_terminal(int terminal) {
    constexpr unsigned kFirstMajor = 136;  // device numbers of the Unix98 pseudo-terminals
    constexpr unsigned kLastMajor = 143;
    struct stat status {};
    if (::fstat(terminal, &status) != 0) {
        return false;
    }
    const unsigned device_major = major(status.st_rdev);
    return device_major >= kFirstMajor && device_major <= kLastMajor;
}

}  // namespace

PosixSerialPort::PosixSerialPort(PosixLoop& loop, std::string folder)
    : BufferedSerialPort(loop), posix_loop_(loop), folder_(std::move(folder)) {}

PosixSerialPort::~PosixSerialPort() {
    close();
}

std::string PosixSerialPort::path() const {
    const std::string number_text = std::to_string(number());
    const std::array<std::string, 3> candidates = {folder_ + "/ports/COM" + number_text, "/dev/COM" + number_text,
                                                   "/dev/ttyUSB" + std::to_string(number() - 1)};
    for (const std::string& candidate : candidates) {
        if (::access(candidate.c_str(), F_OK) == 0) {
            return candidate;
        }
    }
    throw support::Failure(name() + " does not exist");
}

void PosixSerialPort::set_settings(const std::string& settings) {
    const LineSettings parsed = parse_line_settings(settings);
    if (line_) {
        apply_line_settings(line_->descriptor.native_handle(), parsed);
    }
    settings_ = parsed;
}

void PosixSerialPort::open() {
    if (open_) {
        throw support::Failure("Port already open");
    }
    connect();
    open_ = true;
}

Descriptor PosixSerialPort::open_device() const {
    // Not blocking: a line without carrier must not hold the program up.
    Descriptor device(::open(path().c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!device.valid() && errno == EBUSY) {
        throw support::Failure(name() + " is in use by another program");
    }
    if (!device.valid()) {
        throw_system_failure(name() + " cannot be opened");
    }
    if (::isatty(device.get()) == 0) {
        throw support::Failure(name() + " is not a serial line");
    }
    // The lock keeps out a second program of ours whoever runs it.
    if (::flock(device.get(), LOCK_EX | LOCK_NB) != 0) {
        throw support::Failure(name() + " is in use by another program");
    }
    return device;
}

void PosixSerialPort::connect() {
    Descriptor device = open_device();
    apply_line_settings(device.get(), settings_);
    // What the line has kept from before is not for us.
    ::tcflush(device.get(), TCIOFLUSH);
    auto line = std::make_shared<Line>(posix_loop_.io_context());
    // Exclusive use keeps out programs that know no lock. A pseudo-terminal would stay exclusive after a crash, as long
    // as its device's end lives.
    line->exclusive = !is_pseudo_terminal(device.get()) && ::ioctl(device.get(), TIOCEXCL) == 0;
    line->descriptor.assign(device.release());
    line->port = this;
    line_ = std::move(line);
    decoder_.reset();
    drop_input();
    output_.clear();
    await_input();
}

void PosixSerialPort::drop_line() {
    if (line_) {
        line_->port = nullptr;
        if (line_->exclusive) {
            ::ioctl(line_->descriptor.native_handle(), TIOCNXCL);
        }
        boost::system::error_code ignored;
        line_->descriptor.close(ignored);
        line_.reset();
    }
    output_.clear();
}

void PosixSerialPort::close() {
    open_ = false;
    if (return_timer_) {
        return_timer_->cancel();
        return_timer_.reset();
    }
    drop_line();
    drop_input();
}

void PosixSerialPort::await_input() {
    line_->descriptor.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                                 [line = line_](const boost::system::error_code& error) {
                                     if (!error && line->port != nullptr) {
                                         line->port->take_input();
                                     }
                                 });
}

void PosixSerialPort::take_input() {
    std::array<char, 4096> buffer;
    const ssize_t count = ::read(line_->descriptor.native_handle(), buffer.data(), buffer.size());
    if (count > 0) {
        decoder_.decode(
            std::string_view(buffer.data(), static_cast<std::size_t>(count)),
            [this](std::string_view bytes) { arrived(bytes); }, [this](SerialEvent event) { raise(event); });
    } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
        lost();
        return;
    }
    await_input();
}

void PosixSerialPort::lost() {
    drop_line();
    drop_input();
    raise(SerialEvent::disconnected);
    await_return();
}

void PosixSerialPort::await_return() {
    return_timer_ = std::make_shared<boost::asio::steady_timer>(posix_loop_.io_context(), kReturnInterval);
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

void PosixSerialPort::clear_input() {
    // What waits in the system is dropped with what waits here.
    if (line_) {
        ::tcflush(line_->descriptor.native_handle(), TCIFLUSH);
    }
    decoder_.reset();
    BufferedSerialPort::clear_input();
}

void PosixSerialPort::clear_output() {
    if (line_) {
        ::tcflush(line_->descriptor.native_handle(), TCOFLUSH);
    }
    output_.clear();
}

void PosixSerialPort::write(std::string_view bytes) {
    if (!open_) {
        throw support::Failure(name() + " is not open");
    }
    if (!line_) {
        throw support::Failure(name() + " has gone");
    }
    output_.add(bytes);
    if (!send_pending()) {
        lost();
        throw support::Failure(name() + " has gone");
    }
}

bool PosixSerialPort::send_pending() {
    while (!output_.empty()) {
        const std::string_view next = output_.next();
        const ssize_t count = ::write(line_->descriptor.native_handle(), next.data(), next.size());
        if (count >= 0) {
            output_.taken(static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            await_output();
            return true;
        } else if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

void PosixSerialPort::await_output() {
    if (line_->writing) {
        return;
    }
    line_->writing = true;
    line_->descriptor.async_wait(boost::asio::posix::stream_descriptor::wait_write,
                                 [line = line_](const boost::system::error_code& error) {
                                     line->writing = false;
                                     if (!error && line->port != nullptr && !line->port->send_pending()) {
                                         line->port->lost();
                                     }
                                 });
}

bool PosixSerialPort::carrier_detect() const {
    int lines = 0;
    return line_ && ::ioctl(line_->descriptor.native_handle(), TIOCMGET, &lines) == 0 && (lines & TIOCM_CAR) != 0;
}

}  // namespace platform::posix
