#include "platform/posix/sim_wire.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace platform::posix {

namespace {

constexpr int kBacklog = 8;

// An address in the abstract namespace: a NUL, then the class text.
struct ClassAddress {
    sockaddr_un address{};
    socklen_t length = 0;

    explicit ClassAddress(const std::string& window_class) {
        address.sun_family = AF_UNIX;
        const std::size_t size = std::min(window_class.size(), sizeof(address.sun_path) - 1);
        std::memcpy(address.sun_path + 1, window_class.data(), size);
        length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + size);
    }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address); }
};

}  // namespace

Descriptor make_packet_socket() {
    return Descriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

int connect_to_class(int socket, const std::string& window_class) {
    const ClassAddress address(window_class);
    return ::connect(socket, address.get(), address.length) == 0 ? 0 : errno;
}

int listen_on_class(int socket, const std::string& window_class) {
    const ClassAddress address(window_class);
    return ::bind(socket, address.get(), address.length) == 0 && ::listen(socket, kBacklog) == 0 ? 0 : errno;
}

bool peer_is_trusted(int socket) {
    ucred peer{};
    socklen_t length = sizeof(peer);
    return ::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0 &&
           (peer.uid == ::geteuid() || peer.uid == 0);
}

}  // namespace platform::posix
