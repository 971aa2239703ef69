#include "platform/posix/line_input.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace platform::posix {

namespace {
constexpr std::size_t kLongestLine = 1000;
}

LineInput::LineInput(PosixLoop& loop, int descriptor, std::function<void(std::string_view)> on_line)
    : loop_(loop), on_line_(std::move(on_line)), side_(std::make_shared<Side>(loop.io_context())) {
    side_->input = this;
    // A descriptor of our own, so that the given one is left as it is.
    const int own = ::dup(descriptor);
    boost::system::error_code refused;
    side_->descriptor.assign(own, refused);
    if (refused) {
        ::close(own);
        return;
    }
    await_input();
}

LineInput::~LineInput() {
    side_->input = nullptr;
    boost::system::error_code ignored;
    side_->descriptor.close(ignored);
}

void LineInput::await_input() {
    side_->descriptor.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                                 [side = side_](const boost::system::error_code& error) {
                                     if (!error && side->input != nullptr) {
                                         side->input->take_input();
                                     }
                                 });
}

void LineInput::take_input() {
    std::array<char, 4096> buffer;
    const ssize_t count = ::read(side_->descriptor.native_handle(), buffer.data(), buffer.size());
    if (count > 0) {
        waiting_.append(buffer.data(), static_cast<std::size_t>(count));
        take_lines();
    } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
        return;
    }
    await_input();
}

void LineInput::take_lines() {
    while (!waiting_.empty()) {
        const std::size_t line_break = waiting_.find('\n');
        if (line_break == std::string::npos && waiting_.size() < kLongestLine) {
            return;
        }
        const std::size_t length = std::min(line_break, kLongestLine);
        loop_.post([side = side_, line = waiting_.substr(0, length)] {
            if (side->input != nullptr) {
                side->input->on_line_(line);
            }
        });
        waiting_.erase(0, length == line_break ? length + 1 : length);
    }
}

}  // namespace platform::posix
