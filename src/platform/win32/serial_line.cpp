#include "platform/win32/serial_line.h"

#include <windows.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <chrono>
#include <cstring>
#include <utility>

#include "platform/win32/line_events.h"

namespace platform::win32 {

namespace {

using boost::system::error_code;

constexpr DWORD kReadGapMs = 1;
constexpr DWORD kDriverBuffer = 4096;
constexpr int kMostEmptyReads = 3;  // in a row, before the line is asked whether it lives
constexpr std::chrono::milliseconds kWatchInterval{500};
constexpr std::chrono::milliseconds kEmptyReadPause{20};

Handle take_lock(const std::string& name) {
    // The system itself gives a line to one program only, but not every driver does. It is the mutex' being there that
    // keeps others out; nobody waits for it.
    const std::wstring lock_name = wide("Local\\cockpit " + name);
    ::SetLastError(0);
    Handle lock(::CreateMutexW(nullptr, FALSE, lock_name.c_str()));
    if (!lock.valid() || ::GetLastError() == ERROR_ALREADY_EXISTS) {
        throw support::Failure(name + " is in use by another program");
    }
    return lock;
}

[[noreturn]] void throw_open_failure(const std::string& name, DWORD error) {
    switch (error) {
        case ERROR_FILE_NOT_FOUND:
        case ERROR_PATH_NOT_FOUND:
            throw support::Failure(name + " does not exist");
        case ERROR_ACCESS_DENIED:
        case ERROR_SHARING_VIOLATION:
            throw support::Failure(name + " is in use by another program");
        default:
            throw_system_failure(name + " cannot be opened", error);
    }
}

DCB control_block(const LineSettings& settings) {
    DCB block{};
    block.DCBlength = sizeof(block);
    block.BaudRate = settings.speed_baud;
    block.fBinary = TRUE;
    block.fParity = settings.parity != 'N' ? TRUE : FALSE;
    block.fDtrControl = DTR_CONTROL_ENABLE;
    block.fRtsControl = RTS_CONTROL_ENABLE;
    block.ByteSize = static_cast<BYTE>(settings.data_bits);
    block.Parity = settings.parity == 'E' ? EVENPARITY : (settings.parity == 'O' ? ODDPARITY : NOPARITY);
    block.StopBits = settings.stop_bits == 2 ? TWOSTOPBITS : ONESTOPBIT;
    return block;
}

}  // namespace

// A wait for line events. The system writes into it until the event is set.
struct SerialLine::EventWait {
    explicit EventWait(boost::asio::io_context& context)
        : event(context, ::CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

    // The lowest bit keeps the completion away from Asio's port.
    void prepare() {
        mask = 0;
        overlapped = {};
        void* handle = event.native_handle();
        overlapped.hEvent = static_cast<char*>(handle) + 1;
    }

    boost::asio::windows::object_handle event;
    OVERLAPPED overlapped{};
    DWORD mask = 0;
    bool under_way = false;
};

std::shared_ptr<SerialLine> SerialLine::open(boost::asio::io_context& context, int number,
                                             const LineSettings& settings) {
    const std::string name = "Port COM" + std::to_string(number);
    Handle lock = take_lock(name);
    const std::wstring path = L"\\\\.\\COM" + std::to_wstring(number);
    Handle handle(::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                                FILE_FLAG_OVERLAPPED, nullptr));
    if (!handle.valid()) {
        throw_open_failure(name, ::GetLastError());
    }
    DCB present{};
    present.DCBlength = sizeof(present);
    if (::GetCommState(handle.get(), &present) == FALSE) {
        throw support::Failure(name + " is not a serial line");
    }
    std::shared_ptr<SerialLine> line;
    try {
        line = std::make_shared<SerialLine>(context, std::move(handle), std::move(lock), name);
    } catch (const boost::system::system_error& error) {
        throw support::Failure(name + " cannot be used: " + error.what());
    }
    line->apply(settings);
    ::SetupComm(line->native(), kDriverBuffer, kDriverBuffer);
    // A read comes back with what has arrived when nothing more follows, and waits without end for a first byte.
    COMMTIMEOUTS times{};
    times.ReadIntervalTimeout = kReadGapMs;
    if (::SetCommTimeouts(line->native(), &times) == FALSE) {
        throw_system_failure(name + " refuses its time limits");
    }
    // What the line has kept from before is not for us.
    ::PurgeComm(line->native(), PURGE_RXCLEAR | PURGE_TXCLEAR);
    return line;
}

SerialLine::SerialLine(boost::asio::io_context& context, Handle handle, Handle lock, std::string name)
    : handle_(context),
      lock_(std::move(lock)),
      name_(std::move(name)),
      watch_timer_(context),
      read_timer_(context),
      event_wait_(std::make_unique<EventWait>(context)) {
    handle_.assign(handle.get());
    handle.release();
}

SerialLine::~SerialLine() {
    close();
}

void* SerialLine::native() {
    return handle_.native_handle();
}

void SerialLine::start(Owner owner) {
    owner_ = std::move(owner);
    read_next();
    if (::SetCommMask(native(), EV_BREAK | EV_ERR) != FALSE) {
        await_line_event();
    }
    watch();
}

void SerialLine::close() {
    owner_ = {};
    watch_timer_.cancel();
    read_timer_.cancel();
    output_.clear();
    if (!handle_.is_open()) {
        return;
    }
    if (event_wait_->under_way) {
        ::CancelIoEx(native(), &event_wait_->overlapped);
        DWORD ignored = 0;
        ::GetOverlappedResult(native(), &event_wait_->overlapped, &ignored, TRUE);
    }
    error_code ignored;
    event_wait_->event.close(ignored);
    handle_.close(ignored);
    lock_.reset();
}

void SerialLine::apply(const LineSettings& settings) {
    DCB block = control_block(settings);
    if (::SetCommState(native(), &block) == FALSE) {
        throw_system_failure(name_ + " refuses its settings");
    }
}

void SerialLine::clear_input() {
    ::PurgeComm(native(), PURGE_RXCLEAR);
}

void SerialLine::clear_output() {
    output_.clear();
    sending_cleared_ = !sending_.empty();
    ::PurgeComm(native(), PURGE_TXABORT | PURGE_TXCLEAR);
}

bool SerialLine::carrier_detect() {
    DWORD state = 0;
    return ::GetCommModemStatus(native(), &state) != FALSE && (state & MS_RLSD_ON) != 0;
}

void SerialLine::read_next() {
    handle_.async_read_some(boost::asio::buffer(input_),
                            [self = shared_from_this()](const error_code& error, std::size_t count) {
                                if (!self->closed()) {
                                    self->take(error, count);
                                }
                            });
}

void SerialLine::take(const error_code& error, std::size_t count) {
    if (error || count == 0) {
        // Some drivers end a read when a plug is pulled, some when the line has only hiccupped.
        if (++empty_reads_ > kMostEmptyReads || (error && error != boost::asio::error::operation_aborted) ||
            !take_line_errors()) {
            lost();
        } else {
            read_later();
        }
        return;
    }
    empty_reads_ = 0;
    owner_.arrived(std::string_view(input_.data(), count));
    if (!closed()) {
        read_next();
    }
}

void SerialLine::read_later() {
    read_timer_.expires_after(kEmptyReadPause);
    read_timer_.async_wait([self = shared_from_this()](const error_code& error) {
        if (!error && !self->closed()) {
            self->read_next();
        }
    });
}

void SerialLine::write(std::string_view bytes) {
    output_.add(bytes);
    if (sending_.empty()) {
        send_next();
    }
}

void SerialLine::send_next() {
    sending_ = output_.next();
    if (sending_.empty()) {
        return;
    }
    handle_.async_write_some(boost::asio::buffer(sending_),
                             [self = shared_from_this()](const error_code& error, std::size_t count) {
                                 if (self->closed()) {
                                     return;
                                 }
                                 const bool cleared = std::exchange(self->sending_cleared_, false);
                                 if (!cleared && error) {
                                     self->lost();
                                     return;
                                 }
                                 if (!cleared) {
                                     self->output_.taken(count);
                                 }
                                 self->send_next();
                             });
}

void SerialLine::await_line_event() {
    EventWait& wait = *event_wait_;
    wait.prepare();
    ::ResetEvent(wait.event.native_handle());
    if (::WaitCommEvent(native(), &wait.mask, &wait.overlapped) == FALSE && ::GetLastError() != ERROR_IO_PENDING) {
        return;  // the driver knows no line events
    }
    wait.under_way = true;
    wait.event.async_wait([self = shared_from_this()](const error_code& error) {
        if (!error && !self->closed()) {
            self->take_line_event();
        }
    });
}

void SerialLine::take_line_event() {
    EventWait& wait = *event_wait_;
    wait.under_way = false;
    DWORD ignored = 0;
    const bool good = ::GetOverlappedResult(native(), &wait.overlapped, &ignored, FALSE) != FALSE;
    if (!good || (wait.mask & (EV_BREAK | EV_ERR)) == 0) {
        return;  // the driver knows no line events, or the line is going: the reads will tell
    }
    if (!take_line_errors()) {
        lost();
    } else if (!closed()) {
        await_line_event();
    }
}

void SerialLine::watch() {
    watch_timer_.expires_after(kWatchInterval);
    watch_timer_.async_wait([self = shared_from_this()](const error_code& error) {
        if (error || self->closed()) {
            return;
        }
        if (!self->take_line_errors()) {
            self->lost();
        } else if (!self->closed()) {
            self->watch();
        }
    });
}

bool SerialLine::take_line_errors() {
    DWORD errors = 0;
    COMSTAT state{};
    if (::ClearCommError(native(), &errors, &state) == FALSE) {
        return false;
    }
    if (errors != 0) {
        owner_.line_errors(errors);
    }
    return true;
}

void SerialLine::lost() {
    const std::function<void()> tell = owner_.lost;
    close();
    tell();
}

}  // namespace platform::win32
