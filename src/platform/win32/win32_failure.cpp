#include "platform/win32/win32_failure.h"

#include <windows.h>

#include <array>

#include "support/windows_1252.h"

namespace platform::win32 {

namespace {

// INVALID_HANDLE_VALUE is an integer dressed up as a pointer.
bool is_no_handle(void* value) {
    return value == nullptr || reinterpret_cast<std::intptr_t>(value) == -1;
}

int length_of(std::size_t size) {
    if (size > 1U << 20) {
        throw support::Failure("A text is too long");
    }
    return static_cast<int>(size);
}

}  // namespace

std::string system_words(SystemError error) {
    std::array<wchar_t, 512> buffer{};
    constexpr DWORD kFlags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    const auto size = static_cast<DWORD>(buffer.size());
    // In English like the program's own texts where the system has it, else in the user's language.
    constexpr DWORD kEnglish = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US);
    DWORD length = ::FormatMessageW(kFlags, nullptr, error, kEnglish, buffer.data(), size, nullptr);
    if (length == 0) {
        length = ::FormatMessageW(kFlags, nullptr, error, 0, buffer.data(), size, nullptr);
    }
    // The words end with a line break, and a full stop before it.
    while (length > 0 && (buffer[length - 1] <= L' ' || buffer[length - 1] == L'.')) {
        --length;
    }
    if (length == 0) {
        return "system error " + std::to_string(error);
    }
    return support::from_utf8(utf8(std::wstring_view(buffer.data(), length)));
}

void throw_system_failure(const std::string& what, SystemError error) {
    throw support::Failure(what + ": " + system_words(error));
}

void throw_system_failure(const std::string& what) {
    throw_system_failure(what, ::GetLastError());
}

std::wstring wide(std::string_view utf8) {
    const int size = length_of(utf8.size());
    std::wstring text(utf8.size(), L'\0');
    const int length = size == 0 ? 0 : ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, text.data(), size);
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::string utf8(std::wstring_view text) {
    const int size = length_of(text.size());
    std::string bytes(text.size() * 3, '\0');  // the longest that one unit becomes
    const int length = size == 0 ? 0
                                 : ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, bytes.data(),
                                                         length_of(bytes.size()), nullptr, nullptr);
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

Handle::Handle(void* value) : value_(is_no_handle(value) ? nullptr : value) {}

void Handle::reset() {
    if (value_ != nullptr) {
        ::CloseHandle(value_);
        value_ = nullptr;
    }
}

Handle make_event() {
    Handle event(::CreateEventW(nullptr, FALSE, FALSE, nullptr));
    if (!event.valid()) {
        throw_system_failure("No event");
    }
    return event;
}

}  // namespace platform::win32
