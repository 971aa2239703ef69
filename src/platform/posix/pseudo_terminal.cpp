#include "platform/posix/pseudo_terminal.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace platform::posix {

namespace {

constexpr const char* kPseudoTerminals = "/dev/pts/";
constexpr int kMostUnread = 2048;

}  // namespace

PseudoTerminal::PseudoTerminal(PosixLoop& loop, const std::string& folder, int number)
    : loop_(loop), link_(folder + "/ports/COM" + std::to_string(number)) {
    Descriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    std::array<char, 128> name{};
    if (!terminal.valid() || ::grantpt(terminal.get()) != 0 || ::unlockpt(terminal.get()) != 0 ||
        ::ptsname_r(terminal.get(), name.data(), name.size()) != 0) {
        throw_system_failure("No pseudo-terminal");
    }
    other_end_.reset(::open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios mode{};
    if (!other_end_.valid() || ::tcgetattr(other_end_.get(), &mode) != 0) {
        throw_system_failure("No pseudo-terminal");
    }
    ::cfmakeraw(&mode);
    ::tcsetattr(other_end_.get(), TCSANOW, &mode);

    name_ = name.data();
    if (::mkdir((folder + "/ports").c_str(), 0755) != 0 && errno != EEXIST) {
        throw_system_failure("The folder ports cannot be made");
    }
    put_link();
    side_ = std::make_shared<Side>(loop.io_context());
    side_->descriptor.assign(terminal.release());
    side_->terminal = this;
    await_input();
}

void PseudoTerminal::put_link() const {
    struct stat status {};
    if (::lstat(link_.c_str(), &status) == 0 && link_target().rfind(kPseudoTerminals, 0) != 0) {
        throw support::Failure(link_ + " is there already and leads to no pseudo-terminal; remove it first");
    }
    // The link is put in place in one step, so that nobody finds the port missing in between.
    const std::string fresh = link_ + ".new";
    ::unlink(fresh.c_str());
    if (::symlink(name_.c_str(), fresh.c_str()) != 0 || ::rename(fresh.c_str(), link_.c_str()) != 0) {
        throw_system_failure("The link " + link_ + " cannot be made");
    }
}

std::string PseudoTerminal::link_target() const {
    std::array<char, 256> target{};
    const ssize_t count = ::readlink(link_.c_str(), target.data(), target.size());
    return std::string(target.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
}

PseudoTerminal::~PseudoTerminal() {
    side_->terminal = nullptr;
    boost::system::error_code ignored;
    side_->descriptor.close(ignored);
    if (link_target() == name_) {
        ::unlink(link_.c_str());
    }
}

void PseudoTerminal::await_input() {
    side_->descriptor.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                                 [side = side_](const boost::system::error_code& error) {
                                     if (!error && side->terminal != nullptr) {
                                         side->terminal->take_input();
                                     }
                                 });
}

void PseudoTerminal::take_input() {
    std::array<char, 4096> buffer;
    const ssize_t count = ::read(side_->descriptor.native_handle(), buffer.data(), buffer.size());
    if (count > 0) {
        loop_.post([side = side_, bytes = std::string(buffer.data(), static_cast<std::size_t>(count))] {
            if (side->terminal != nullptr && side->terminal->on_bytes) {
                side->terminal->on_bytes(bytes);
            }
        });
    } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
        return;
    }
    await_input();
}

void PseudoTerminal::write(std::string_view bytes) {
    int unread = 0;
    if (::ioctl(other_end_.get(), FIONREAD, &unread) == 0 && unread >= kMostUnread) {
        return;
    }
    static_cast<void>(::write(side_->descriptor.native_handle(), bytes.data(), bytes.size()) < 0);
}

}  // namespace platform::posix
