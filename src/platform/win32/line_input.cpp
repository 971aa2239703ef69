#include "platform/win32/line_input.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <thread>
#include <utility>

namespace platform::win32 {

namespace {

constexpr std::size_t kLongestLine = 1000;

}  // namespace

// What the reading thread and the input share. The thread may outlive the input and its loop.
struct LineInput::Side {
    std::mutex mutex;
    Win32Loop* loop = nullptr;  // null once the input has gone
    std::function<void(std::string_view line)> on_line;

    static void read(const std::shared_ptr<Side>& side, HANDLE handle);
    static void post(const std::shared_ptr<Side>& side, std::string line);
};

void LineInput::Side::post(const std::shared_ptr<Side>& side, std::string line) {
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    const std::scoped_lock lock(side->mutex);
    if (side->loop != nullptr) {
        side->loop->post_from_any_thread([side, line = std::move(line)] {
            if (side->loop != nullptr) {
                side->on_line(line);
            }
        });
    }
}

void LineInput::Side::read(const std::shared_ptr<Side>& side, HANDLE handle) {
    std::string waiting;
    std::array<char, 4096> buffer{};
    DWORD count = 0;
    while (::ReadFile(handle, buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) != FALSE &&
           count > 0) {
        waiting.append(buffer.data(), count);
        std::size_t line_break = waiting.find('\n');
        while (line_break != std::string::npos || waiting.size() >= kLongestLine) {
            const std::size_t length = std::min(line_break, kLongestLine);
            post(side, waiting.substr(0, length));
            waiting.erase(0, length == line_break ? length + 1 : length);
            line_break = waiting.find('\n');
        }
    }
    if (!waiting.empty()) {
        post(side, waiting);
    }
}

LineInput::LineInput(Win32Loop& loop, void* handle, std::function<void(std::string_view)> on_line)
    : side_(std::make_shared<Side>()) {
    side_->loop = &loop;
    side_->on_line = std::move(on_line);
    if (handle != nullptr) {
        std::thread([side = side_, handle] { Side::read(side, handle); }).detach();
    }
}

LineInput::~LineInput() {
    const std::scoped_lock lock(side_->mutex);
    side_->loop = nullptr;
}

void* standard_input() {
    const HANDLE handle = ::GetStdHandle(STD_INPUT_HANDLE);
    return handle == INVALID_HANDLE_VALUE ? nullptr : handle;
}

}  // namespace platform::win32
