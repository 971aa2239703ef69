#include "platform/win32/win32_files.h"

#include <windows.h>

#include <algorithm>
#include <functional>
#include <optional>

#include "platform/win32/file_names.h"
#include "support/windows_1252.h"

namespace platform::win32 {

namespace {

constexpr std::int64_t kLargestFile = 64 << 20;
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

// Virus scanners and indexers hold a file for a moment after it was written.
constexpr int kMostTries = 10;
constexpr DWORD kTryIntervalMs = 20;

std::wstring wide_name(const std::string& name) {
    return wide(support::to_utf8(name));
}

bool held_by_another(DWORD error) {
    return error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED || error == ERROR_LOCK_VIOLATION;
}

// Runs a call of the system until it succeeds or fails for another reason than another program's hold.
bool try_again_while_held(const std::function<bool()>& call) {
    for (int attempt = 1; !call(); ++attempt) {
        if (attempt >= kMostTries || !held_by_another(::GetLastError())) {
            return false;
        }
        ::Sleep(kTryIntervalMs);
    }
    return true;
}

// Nothing when there is no file of that name. Throws a Failure when that cannot be told.
std::optional<DWORD> attributes_of(const std::wstring& path) {
    const DWORD attributes = ::GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES) {
        return attributes;
    }
    const SystemError error = ::GetLastError();
    if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) {
        throw_system_failure("The file cannot be looked at", error);
    }
    return std::nullopt;
}

void move_over(const std::wstring& from, const std::wstring& to, const std::string& failure) {
    if (!try_again_while_held([&] {
            return ::MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != FALSE;
        })) {
        throw_system_failure(failure);
    }
}

void write_through(const std::wstring& path, std::string_view bytes) {
    const Handle file(::CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL | FILE_FLAG_WRITE_THROUGH, nullptr));
    if (!file.valid()) {
        throw_system_failure("The file cannot be written");
    }
    while (!bytes.empty()) {
        DWORD count = 0;
        const auto length = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), 1U << 20));
        if (::WriteFile(file.get(), bytes.data(), length, &count, nullptr) == FALSE) {
            throw_system_failure("The file cannot be written");
        }
        bytes.remove_prefix(count);
    }
    if (::FlushFileBuffers(file.get()) == FALSE) {
        throw_system_failure("The file cannot be written to disk");
    }
}

// Puts the old file under its second name in one step, so that its own name is never without a file.
void keep_backup(const std::wstring& path) {
    constexpr const char* kFailure = "The version before cannot be kept";
    const std::wstring link = path + L".bak.tmp";
    ::DeleteFileW(link.c_str());
    // A second name for the old file; a file system without such names gets a copy.
    if (::CreateHardLinkW(link.c_str(), path.c_str(), nullptr) == FALSE &&
        ::CopyFileW(path.c_str(), link.c_str(), TRUE) == FALSE) {
        throw_system_failure(kFailure);
    }
    try {
        move_over(link, path + L".bak", kFailure);
    } catch (const support::Failure&) {
        ::DeleteFileW(link.c_str());
        throw;
    }
}

}  // namespace

Win32Files::Win32Files(const std::string& folder) : folder_(wide(folder) + L"\\") {
    const DWORD attributes = ::GetFileAttributesW(folder_.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        throw_system_failure("The folder " + support::from_utf8(folder) + " cannot be opened");
    }
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
        throw support::Failure(support::from_utf8(folder) + " is not a folder");
    }
}

std::wstring Win32Files::path(const std::string& name) const {
    check_file_name(name);
    if (!is_file_name(name)) {
        throw support::Failure("Bad file name");
    }
    return folder_ + wide_name(name);
}

std::string Win32Files::read(const std::string& name) const {
    const std::wstring from = path(name);
    HANDLE opened = nullptr;
    try_again_while_held([&] {
        opened = ::CreateFileW(from.c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN,
                               nullptr);
        return opened != INVALID_HANDLE_VALUE;
    });
    const Handle file(opened);
    if (!file.valid()) {
        throw_system_failure("The file cannot be opened");
    }
    LARGE_INTEGER size{};
    if (::GetFileType(file.get()) != FILE_TYPE_DISK || ::GetFileSizeEx(file.get(), &size) == FALSE) {
        throw support::Failure("Not a file");
    }
    if (size.QuadPart > kLargestFile) {
        throw support::Failure("The file is too large");
    }
    std::string bytes(static_cast<std::size_t>(size.QuadPart), '\0');
    std::size_t done = 0;
    while (done < bytes.size()) {
        DWORD count = 0;
        if (::ReadFile(file.get(), bytes.data() + done, static_cast<DWORD>(bytes.size() - done), &count, nullptr) ==
            FALSE) {
            throw_system_failure("The file cannot be read");
        }
        if (count == 0) {
            break;
        }
        done += count;
    }
    bytes.resize(done);
    return bytes;
}

void Win32Files::replace(const std::string& name, std::string_view bytes) {
    const std::wstring target = path(name);
    const std::optional<DWORD> attributes = attributes_of(target);
    if (attributes && (*attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        throw support::Failure("Not a file");
    }
    if (attributes && (*attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        throw support::Failure("The file is write-protected");
    }
    const std::wstring temporary = target + L".tmp";
    try {
        ::DeleteFileW(temporary.c_str());  // left over from a crash
        write_through(temporary, bytes);
        if (attributes) {
            keep_backup(target);
        }
        move_over(temporary, target, "The file cannot be replaced");
    } catch (const support::Failure&) {
        ::DeleteFileW(temporary.c_str());
        throw;
    }
}

void Win32Files::remove(const std::string& name) {
    const std::wstring target = path(name);
    if (!try_again_while_held([&] { return ::DeleteFileW(target.c_str()) != FALSE; })) {
        throw_system_failure("The file cannot be deleted");
    }
}

bool Win32Files::exists(const std::string& name) const {
    return attributes_of(path(name)).has_value();
}

std::vector<std::string> Win32Files::list(std::string_view ending) const {
    std::vector<std::string> names;
    WIN32_FIND_DATAW entry{};
    const HANDLE search = ::FindFirstFileW((folder_ + L"*").c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) {
        return names;
    }
    do {
        const std::optional<std::string> name = file_name_of(utf8(entry.cFileName));
        if (name && (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && has_ending(*name, ending)) {
            names.push_back(*name);
        }
    } while (::FindNextFileW(search, &entry) != FALSE);
    ::FindClose(search);
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace platform::win32
