#include "platform/posix/posix_files.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "support/windows_1252.h"

namespace platform::posix {

namespace {

constexpr std::size_t kLargestFile = 64U << 20;

// The system's name of a file.
std::string system_name(const std::string& name) {
    check_file_name(name);
    return support::to_utf8(name);
}

}  // namespace

PosixFiles::PosixFiles(const std::string& folder)
    : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (!folder_.valid()) {
        throw_system_failure("The folder " + folder + " cannot be opened");
    }
}

std::string PosixFiles::read(const std::string& name) const {
    return read_system_file(system_name(name));
}

std::string PosixFiles::read_system_file(const std::string& name) const {
    // Not blocking: a pipe of that name must not hold the program up.
    const Descriptor file(::openat(folder_.get(), name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.valid() || ::fstat(file.get(), &status) != 0) {
        throw_system_failure("The file cannot be opened");
    }
    if (!S_ISREG(status.st_mode)) {
        throw support::Failure("Not a file");
    }
    if (status.st_size < 0 || static_cast<std::size_t>(status.st_size) > kLargestFile) {
        throw support::Failure("The file is too large");
    }
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t count = ::read(file.get(), bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno != EINTR) {
            throw_system_failure("The file cannot be read");
        }
        if (count == 0) {
            break;
        }
        done += count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    bytes.resize(done);
    return bytes;
}

void PosixFiles::replace(const std::string& target, std::string_view bytes) {
    const std::string name = system_name(target);
    struct stat status {};
    const bool there = ::fstatat(folder_.get(), name.c_str(), &status, 0) == 0;
    if (there && !S_ISREG(status.st_mode)) {
        throw support::Failure("Not a file");
    }
    // A file without write permission is refused even where the system would let us rename over it.
    if (there && ((status.st_mode & S_IWUSR) == 0 || ::faccessat(folder_.get(), name.c_str(), W_OK, AT_EACCESS) != 0)) {
        throw support::Failure("The file is write-protected");
    }
    const std::string temporary = name + ".tmp";
    const mode_t mode = status.st_mode & 0777U;
    try {
        write_temporary(temporary, bytes, there ? std::optional<mode_t>(mode) : std::nullopt);
        if (there) {
            keep_backup(name, mode);
        }
        if (::renameat(folder_.get(), temporary.c_str(), folder_.get(), name.c_str()) != 0) {
            throw_system_failure("The file cannot be replaced");
        }
    } catch (const support::Failure&) {
        ::unlinkat(folder_.get(), temporary.c_str(), 0);
        throw;
    }
    ::fsync(folder_.get());
}

void PosixFiles::write_temporary(const std::string& name, std::string_view bytes, std::optional<mode_t> mode) {
    ::unlinkat(folder_.get(), name.c_str(), 0);  // left over from a crash
    const Descriptor file(
        ::openat(folder_.get(), name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode.value_or(0644)));
    if (!file.valid()) {
        throw_system_failure("The file cannot be written");
    }
    if (mode) {
        // Beyond what the process' mask lets through. A file system without permissions may refuse.
        static_cast<void>(::fchmod(file.get(), *mode) != 0);
    }
    while (!bytes.empty()) {
        const ssize_t count = ::write(file.get(), bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR) {
            throw_system_failure("The file cannot be written");
        }
        bytes.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    if (::fsync(file.get()) != 0) {
        throw_system_failure("The file cannot be written to disk");
    }
}

void PosixFiles::keep_backup(const std::string& name, mode_t mode) {
    // A second name for the old file, put in place of the former backup in one step.
    const std::string backup = name + ".bak";
    const std::string link = name + ".bak.tmp";
    ::unlinkat(folder_.get(), link.c_str(), 0);
    if (::linkat(folder_.get(), name.c_str(), folder_.get(), link.c_str(), 0) == 0) {
        if (::renameat(folder_.get(), link.c_str(), folder_.get(), backup.c_str()) != 0) {
            ::unlinkat(folder_.get(), link.c_str(), 0);
            throw_system_failure("The version before cannot be kept");
        }
        // Renaming a second name of the same file over the first does nothing and leaves it behind.
        ::unlinkat(folder_.get(), link.c_str(), 0);
        return;
    }
    // A file system without links: copy.
    write_temporary(link, read_system_file(name), mode);
    if (::renameat(folder_.get(), link.c_str(), folder_.get(), backup.c_str()) != 0) {
        throw_system_failure("The version before cannot be kept");
    }
}

void PosixFiles::remove(const std::string& name) {
    if (::unlinkat(folder_.get(), system_name(name).c_str(), 0) != 0) {
        throw_system_failure("The file cannot be deleted");
    }
}

bool PosixFiles::exists(const std::string& name) const {
    return ::faccessat(folder_.get(), system_name(name).c_str(), F_OK, 0) == 0;
}

std::vector<std::string> PosixFiles::list(std::string_view ending) const {
    std::vector<std::string> names;
    const int own = ::openat(folder_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(own >= 0 ? ::fdopendir(own) : nullptr, ::closedir);
    if (!entries) {
        return names;
    }
    while (const dirent* entry = ::readdir(entries.get())) {
        const std::optional<std::string> name = file_name_of(entry->d_name);
        struct stat status {};
        if (name && has_ending(*name, ending) && ::fstatat(folder_.get(), entry->d_name, &status, 0) == 0 &&
            S_ISREG(status.st_mode)) {
            names.push_back(*name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace platform::posix
