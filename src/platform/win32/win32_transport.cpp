#include "platform/win32/win32_transport.h"

#include <windows.h>

#include <algorithm>
#include <array>

namespace platform::win32 {

namespace {

void* find_window(const std::string& window_class) {
    return ::FindWindowExA(nullptr, nullptr, window_class.c_str(), nullptr);
}

HANDLE as_handle(MappingHandle mapping) {
    return reinterpret_cast<HANDLE>(mapping);  // NOLINT(performance-no-int-to-ptr)
}

}  // namespace

// A number that was a window of the simulator may have become a window of another program.
bool Win32Transport::is_there(const Window& window) {
    std::array<char, 64> name{};
    return window.window != nullptr &&
           ::GetClassNameA(static_cast<HWND>(window.window), name.data(), static_cast<int>(name.size())) > 0 &&
           window.window_class == name.data();
}

WindowHandle Win32Transport::FindWindowExA(const std::string& window_class) {
    auto window = std::find_if(windows_.begin(), windows_.end(),
                               [&](const Window& known) { return known.window_class == window_class; });
    if (window == windows_.end()) {
        windows_.push_back({window_class, nullptr});
        window = windows_.end() - 1;
    }
    window->window = find_window(window_class);
    return window->window == nullptr ? 0 : static_cast<WindowHandle>(window - windows_.begin() + 1);
}

std::uint32_t Win32Transport::RegisterWindowMessageA(const std::string& text) {
    return ::RegisterWindowMessageA(text.c_str());
}

std::uint32_t Win32Transport::GetCurrentProcessId() {
    return ::GetCurrentProcessId();
}

std::uint16_t Win32Transport::GlobalAddAtomA(const std::string& name) {
    return ::GlobalAddAtomA(name.c_str());
}

void Win32Transport::GlobalDeleteAtom(std::uint16_t atom) {
    ::GlobalDeleteAtom(atom);
}

MappingHandle Win32Transport::CreateFileMappingA(std::uint32_t size_bytes, const std::string& name) {
    ::SetLastError(0);
    const HANDLE mapping =
        ::CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size_bytes, name.c_str());
    last_error_ = ::GetLastError();
    return reinterpret_cast<MappingHandle>(mapping);
}

std::uint8_t* Win32Transport::MapViewOfFile(MappingHandle mapping) {
    void* view = ::MapViewOfFile(as_handle(mapping), FILE_MAP_WRITE, 0, 0, 0);
    last_error_ = view == nullptr ? ::GetLastError() : 0;
    return static_cast<std::uint8_t*>(view);
}

void Win32Transport::UnmapViewOfFile(std::uint8_t* view) {
    if (view != nullptr) {
        ::UnmapViewOfFile(view);
    }
}

void Win32Transport::CloseHandle(MappingHandle mapping) {
    if (mapping != 0) {
        ::CloseHandle(as_handle(mapping));
    }
}

bool Win32Transport::SendMessageTimeoutA(WindowHandle window, std::uint32_t message, std::int32_t atom,
                                         std::uint32_t timeout_ms, std::uint32_t& reply) {
    if (window < 1 || window > static_cast<WindowHandle>(windows_.size())) {
        last_error_ = ERROR_INVALID_WINDOW_HANDLE;
        return false;
    }
    Window& target = windows_[static_cast<std::size_t>(window - 1)];
    if (!is_there(target)) {
        target.window = find_window(target.window_class);
    }
    if (target.window == nullptr) {
        last_error_ = ERROR_INVALID_WINDOW_HANDLE;
        return false;
    }
    if (!send_thread_) {
        send_thread_.emplace(loop_);
    }
    const WindowReply result = send_thread_->send({target.window, message, atom, timeout_ms});
    reply = result.value;
    // Newer systems tell a time-out by a code of its own, older ones by 0.
    last_error_ = result.sent || result.error == ERROR_TIMEOUT ? 0 : result.error;
    return result.sent;
}

void Win32Transport::Sleep(std::uint32_t milliseconds) {
    loop_.serve_page_until(loop_.now() + Milliseconds(milliseconds));
}

}  // namespace platform::win32
