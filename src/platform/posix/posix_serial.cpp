#include "platform/posix/posix_serial.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "platform/posix/line_settings.h"
#include "platform/posix/system_failure.h"

namespace platform::posix {

namespace {

constexpr std::size_t kOutputLimit = 65536;
constexpr Milliseconds kReturnInterval{500};

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
    throw support::Failure("Port COM" + number_text + " does not exist");
}

void PosixSerialPort::set_settings(const std::string& settings) {
    const LineSettings parsed = parse_line_settings(settings);
    settings_ = settings;
    if (line_) {
        apply_line_settings(line_->descriptor.native_handle(), parsed);
    }
}

void PosixSerialPort::open() {
    if (open_) {
        throw support::Failure("Port already open");
    }
    connect();
    open_ = true;
}

void PosixSerialPort::connect() {
    const std::string device = path();
    Descriptor descriptor(::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!descriptor.valid()) {
        throw_system_failure("Port COM" + std::to_string(number()) + " cannot be opened");
    }
    // Both locks: the first keeps other programs out, the second also those that run as root.
    if (::flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0 || ::ioctl(descriptor.get(), TIOCEXCL) != 0) {
        const int error = errno;
        if (error == ENOTTY) {
            throw support::Failure("Port COM" + std::to_string(number()) + " is not a serial line");
        }
        throw support::Failure("Port COM" + std::to_string(number()) + " is in use by another program");
    }
    apply_line_settings(descriptor.get(), parse_line_settings(settings_));
    auto line = std::make_shared<Line>(posix_loop_.io_context());
    line->descriptor.assign(descriptor.release());
    line->port = this;
    line_ = std::move(line);
    decoder_.reset();
    drop_input();
    pending_output_.clear();
    await_input();
}

void PosixSerialPort::drop_line() {
    if (line_) {
        line_->port = nullptr;
        const int descriptor = line_->descriptor.native_handle();
        ::ioctl(descriptor, TIOCNXCL);
        boost::system::error_code ignored;
        line_->descriptor.close(ignored);
        line_.reset();
    }
    pending_output_.clear();
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
    pending_output_.clear();
}

void PosixSerialPort::write(std::string_view bytes) {
    if (!open_) {
        throw support::Failure("Port COM" + std::to_string(number()) + " is not open");
    }
    if (!line_) {
        throw support::Failure("Port COM" + std::to_string(number()) + " has gone");
    }
    if (pending_output_.size() + bytes.size() > kOutputLimit) {
        pending_output_.clear();
    }
    pending_output_.append(bytes);
    if (!send_pending()) {
        lost();
        throw support::Failure("Port COM" + std::to_string(number()) + " has gone");
    }
}

bool PosixSerialPort::send_pending() {
    while (!pending_output_.empty()) {
        const ssize_t count =
            ::write(line_->descriptor.native_handle(), pending_output_.data(), pending_output_.size());
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            if (errno == EAGAIN) {
                await_output();
                return true;
            }
            return false;
        }
        pending_output_.erase(0, static_cast<std::size_t>(count));
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
