#include "platform/posix/posix_sim_server.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "platform/posix/sim_wire.h"
#include "platform/posix/system_failure.h"
#include "support/bytes.h"

namespace platform::posix {

namespace {

constexpr std::size_t kBlockSize = 32768;
constexpr std::size_t kMostConnections = 8;
constexpr std::size_t kMostViews = 4;  // atoms a connection

// A client's mapping can be used only if it can't be shortened under us and has the size of a block.
bool is_good_mapping(int memory) {
    struct stat status {};
    const int seals = ::fcntl(memory, F_GET_SEALS);
    return ::fstat(memory, &status) == 0 && status.st_size == static_cast<off_t>(kBlockSize) && seals >= 0 &&
           (seals & F_SEAL_SHRINK) != 0;
}

}  // namespace

PosixSimServer::Connection::~Connection() {
    for (const View& view : views) {
        ::munmap(view.block, kBlockSize);
    }
}

PosixSimServer::PosixSimServer(PosixLoop& loop, const std::string& window_class, Server server)
    : loop_(loop), server_(std::move(server)), listener_(loop.io_context()) {
    Descriptor socket = make_packet_socket();
    if (!socket.valid()) {
        throw_system_failure("No socket");
    }
    if (const int error = listen_on_class(socket.get(), window_class)) {
        throw_system_failure("Another simulator answers as " + window_class, error);
    }
    listener_.assign(socket.release());
    await_client();
}

PosixSimServer::~PosixSimServer() {
    close_connections();
}

void PosixSimServer::close_connections() {
    while (!connections_.empty()) {
        close(connections_.front());
    }
}

void PosixSimServer::close(const ConnectionPointer& connection) {
    // The reference may be to the list's own entry, which goes below.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const ConnectionPointer kept = connection;
    kept->open = false;
    boost::system::error_code ignored;
    kept->socket.close(ignored);
    connections_.remove(kept);
}

void PosixSimServer::await_client() {
    listener_.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                         [this, alive = std::weak_ptr<int>(alive_)](const boost::system::error_code& error) {
                             if (!error && !alive.expired()) {
                                 accept_clients();
                                 await_client();
                             }
                         });
}

void PosixSimServer::accept_clients() {
    while (true) {
        Descriptor socket(::accept4(listener_.native_handle(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
        if (!socket.valid()) {
            return;
        }
        if (!peer_is_trusted(socket.get()) || connections_.size() >= kMostConnections) {
            continue;
        }
        auto connection = std::make_shared<Connection>(loop_.io_context());
        connection->socket.assign(socket.release());
        connections_.push_back(connection);
        await_send(connection);
    }
}

void PosixSimServer::await_send(const ConnectionPointer& connection) {
    connection->socket.async_wait(
        boost::asio::posix::stream_descriptor::wait_read,
        [this, alive = std::weak_ptr<int>(alive_), connection](const boost::system::error_code& error) {
            if (!error && !alive.expired() && connection->open) {
                take_sends(connection);
            }
        });
}

void PosixSimServer::take_sends(const ConnectionPointer& connection) {
    Taken taken = Taken::one;
    while ((taken = take_one_send(*connection)) == Taken::one) {
    }
    if (taken == Taken::end) {
        close(connection);
        return;
    }
    if (connection->latest && fault_ != ServerFault::silent) {
        loop_.post_after(answer_delay_, [this, alive = std::weak_ptr<int>(alive_), connection,
                                         number = connection->latest->number] {
            if (!alive.expired() && connection->open && connection->latest && connection->latest->number == number) {
                answer(*connection, *std::exchange(connection->latest, std::nullopt));
            }
        });
    }
    await_send(connection);
}

PosixSimServer::Taken PosixSimServer::take_one_send(Connection& connection) {
    SendPacket packet{};
    iovec part{packet.data(), packet.size()};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(int))> control{};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control.data();
    header.msg_controllen = control.size();
    const ssize_t count = ::recvmsg(connection.socket.native_handle(), &header, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
    if (count <= 0) {
        return count < 0 && (errno == EAGAIN || errno == EINTR) ? Taken::nothing : Taken::end;
    }
    Descriptor memory;
    const cmsghdr* rights = CMSG_FIRSTHDR(&header);
    if (rights != nullptr && rights->cmsg_level == SOL_SOCKET && rights->cmsg_type == SCM_RIGHTS &&
        rights->cmsg_len == CMSG_LEN(sizeof(int))) {
        int received = -1;
        std::memcpy(&received, CMSG_DATA(rights), sizeof(received));
        memory.reset(received);
    }
    if (count != static_cast<ssize_t>(kSendPacketSize) ||
        support::read_u32le(packet.data() + kSendMessageAt) != registered_message("FSASMLIB:IPC")) {
        return Taken::end;
    }
    const auto atom = static_cast<std::uint16_t>(support::read_u32le(packet.data() + kSendAtomAt));
    if (memory.valid() && is_good_mapping(memory.get())) {
        keep_view(connection, atom, memory.get());
    }
    connection.latest = Send{atom, support::read_u32le(packet.data() + kSendNumberAt)};
    return Taken::one;
}

std::uint8_t* PosixSimServer::view_of(const Connection& connection, std::uint16_t atom) {
    for (const View& view : connection.views) {
        if (view.atom == atom) {
            return view.block;
        }
    }
    return nullptr;
}

void PosixSimServer::keep_view(Connection& connection, std::uint16_t atom, int memory) {
    void* mapped = ::mmap(nullptr, kBlockSize, PROT_READ | PROT_WRITE, MAP_SHARED, memory, 0);
    if (mapped == MAP_FAILED) {
        return;
    }
    auto* block = static_cast<std::uint8_t*>(mapped);
    for (View& view : connection.views) {
        if (view.atom == atom) {
            ::munmap(view.block, kBlockSize);
            view.block = block;
            return;
        }
    }
    if (connection.views.size() >= kMostViews) {
        ::munmap(connection.views.front().block, kBlockSize);
        connection.views.erase(connection.views.begin());
    }
    connection.views.push_back({atom, block});
}

void PosixSimServer::answer(Connection& connection, const Send& send) {
    std::uint8_t* block = view_of(connection, send.atom);
    const std::uint32_t value = block == nullptr ? 0 : server_(block, kBlockSize);
    if (fault_ == ServerFault::silent || !connection.open) {
        return;
    }
    ReplyPacket packet{};
    support::put_u32le(packet.data() + kReplyValueAt, value);
    support::put_u32le(packet.data() + kReplyNumberAt, send.number);
    ++answered_;
    // A client that does not read its replies loses them.
    static_cast<void>(
        ::send(connection.socket.native_handle(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT));
}

}  // namespace platform::posix
