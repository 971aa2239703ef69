#include "platform/posix/posix_instance_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace platform::posix {

bool PosixInstanceLock::acquire() {
    Descriptor file(::open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644));
    if (!file.valid()) {
        throw_system_failure("The working folder cannot be written");
    }
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK) {
            return false;
        }
        throw_system_failure("The working folder cannot be locked");
    }
    file_ = std::move(file);
    publish("");
    return true;
}

void PosixInstanceLock::publish(const std::string& address) {
    if (::ftruncate(file_.get(), 0) != 0 || ::pwrite(file_.get(), address.data(), address.size(), 0) < 0) {
        throw_system_failure("The working folder cannot be written");
    }
}

std::string PosixInstanceLock::other_address() const {
    const Descriptor file(::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    std::array<char, 256> buffer{};
    const ssize_t count = file.valid() ? ::read(file.get(), buffer.data(), buffer.size()) : 0;
    return std::string(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
}

}  // namespace platform::posix
