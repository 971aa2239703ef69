#include "platform/win32/win32_instance_lock.h"

#include <windows.h>

#include <array>

namespace platform::win32 {

namespace {

constexpr int kMostTries = 5;
constexpr DWORD kTryIntervalMs = 100;

}  // namespace

Win32InstanceLock::Win32InstanceLock(const std::string& folder) : path_(wide(folder) + L"\\cockpit.lock") {}

bool Win32InstanceLock::acquire() {
    Handle file;
    SystemError error = 0;
    // A backup or a virus scanner may hold the file for a moment, too.
    for (int attempt = 0; attempt < kMostTries && !file.valid(); ++attempt) {
        if (attempt > 0) {
            ::Sleep(kTryIntervalMs);
        }
        file = Handle(::CreateFileW(path_.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr));
        error = ::GetLastError();
        if (!file.valid() && error != ERROR_SHARING_VIOLATION) {
            break;
        }
    }
    if (!file.valid()) {
        if (error == ERROR_SHARING_VIOLATION) {
            return false;
        }
        throw_system_failure("The working folder cannot be written", error);
    }
    file_ = std::move(file);
    publish("");
    return true;
}

void Win32InstanceLock::publish(const std::string& address) {
    DWORD count = 0;
    const LARGE_INTEGER begin{};
    if (::SetFilePointerEx(file_.get(), begin, nullptr, FILE_BEGIN) == FALSE || ::SetEndOfFile(file_.get()) == FALSE ||
        ::WriteFile(file_.get(), address.data(), static_cast<DWORD>(address.size()), &count, nullptr) == FALSE) {
        throw_system_failure("The working folder cannot be written");
    }
}

std::string Win32InstanceLock::other_address() const {
    const Handle file(::CreateFileW(path_.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    std::array<char, 256> buffer{};
    DWORD count = 0;
    if (!file.valid() ||
        ::ReadFile(file.get(), buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr) == FALSE) {
        return {};
    }
    return std::string(buffer.data(), count);
}

}  // namespace platform::win32
