#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <cstring>

#include "platform/posix/posix_sim_server.h"
#include "platform/posix/posix_transport.h"
#include "platform/posix/sim_wire.h"
#include "support/failure.h"
#include "tests/platform/transport_rig.h"

namespace platform_tests {
namespace {

using platform::Milliseconds;
using platform::posix::PosixLoop;
using platform::posix::PosixSimServer;

TEST(PosixTransport, the_registered_message_is_the_number_that_both_sides_work_out) {
    PosixLoop loop;
    platform::posix::PosixTransport transport(loop);
    // FNV-1a-32 of "" is 0x811C9DC5, of "a" 0xE40C292C.
    EXPECT_EQ(transport.RegisterWindowMessageA(""), 0xC000U + 0x1DC5U);
    EXPECT_EQ(transport.RegisterWindowMessageA("a"), 0xC000U + 0x292CU);
}

// A server written byte by byte as docs/simulator-link.md tells authors of servers.
class RawServer {
  public:
    RawServer() : listener_(platform::posix::make_packet_socket()) {
        EXPECT_EQ(platform::posix::listen_on_class(listener_.get(), window_class()), 0);
    }
    void accept() {
        client_.reset(::accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        EXPECT_TRUE(client_.valid());
    }
    // The next packet, as bytes, and whether a descriptor came with it.
    std::string take(bool& with_memory) {
        std::array<char, 64> buffer{};
        std::array<char, CMSG_SPACE(sizeof(int))> control{};
        iovec part{buffer.data(), buffer.size()};
        msghdr header{};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        header.msg_control = control.data();
        header.msg_controllen = control.size();
        const ssize_t count = ::recvmsg(client_.get(), &header, MSG_CMSG_CLOEXEC);
        with_memory = CMSG_FIRSTHDR(&header) != nullptr;
        if (with_memory) {
            int memory = -1;
            std::memcpy(&memory, CMSG_DATA(CMSG_FIRSTHDR(&header)), sizeof(memory));
            memory_.reset(memory);
        }
        return std::string(buffer.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    void reply(const std::string& packet) {
        EXPECT_EQ(::send(client_.get(), packet.data(), packet.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(packet.size()));
    }

  private:
    platform::posix::Descriptor listener_;
    platform::posix::Descriptor client_;
    platform::posix::Descriptor memory_;
};

TEST(PosixTransport, its_packets_are_those_of_the_wire_and_late_replies_are_dropped) {
    RawServer server;
    PosixLoop loop;
    platform::posix::PosixTransport transport(loop);
    const Link link(transport);
    server.accept();
    std::uint32_t reply = 0;
    EXPECT_FALSE(link.send(reply, 30)) << "no reply in time";
    EXPECT_EQ(transport.GetLastError(), 0U);
    bool with_memory = false;
    std::string expected(16, '\0');
    const auto put = [&](std::size_t at, std::uint32_t value) {
        std::array<std::uint8_t, 4> bytes{};
        support::put_u32le(bytes.data(), value);
        std::memcpy(expected.data() + at, bytes.data(), bytes.size());
    };
    put(0, platform::posix::registered_message("FSASMLIB:IPC"));
    put(4, 0xFFFF0000U | link.atom);
    put(12, 1);
    EXPECT_EQ(server.take(with_memory), expected);
    EXPECT_TRUE(with_memory);

    // Late, foreign and malformed packets, then the right one.
    server.reply(std::string("\x63\0\0\0\x01\0\0\0", 8));
    server.reply(std::string("\x63\0\0\0\x09\0\0\0", 8));
    server.reply(std::string("\x63\0\0\0\x02\0\0", 7));
    server.reply(std::string("\x05\0\0\0\x02\0\0\0", 8));
    ASSERT_TRUE(link.send(reply));
    EXPECT_EQ(reply, 5U);
    put(12, 2);
    EXPECT_EQ(server.take(with_memory), expected);
    EXPECT_FALSE(with_memory) << "only the first packet of an atom brings its memory";
}

TEST(PosixSimServer, a_late_answer_is_dropped_and_only_the_latest_send_is_answered) {
    NativeTransportRig rig;
    rig.start_server();
    const Link link(rig.transport());
    std::uint32_t reply = 0;
    link.block[1] = 3;
    rig.server().do_there([&] { rig.server().server().set_answer_delay(Milliseconds(60)); });
    EXPECT_FALSE(link.send(reply, 10)) << "answered too late";
    EXPECT_FALSE(link.send(reply, 10)) << "answered too late";
    ASSERT_TRUE(link.send(reply));
    EXPECT_EQ(reply, 3U);
    EXPECT_EQ(link.block[0], 1) << "one answer for three sends";
    rig.server().do_there([&] { rig.server().server().close_connections(); });
    rig.server().do_there([&] { rig.server().server().set_answer_delay(platform::Duration::zero()); });
    EXPECT_FALSE(link.send(reply)) << "the connection has gone";
    EXPECT_TRUE(link.send(reply)) << "and is made again";
}

TEST(PosixSimServer, strangers_with_bad_packets_are_dropped_and_do_no_harm) {
    NativeTransportRig rig;
    rig.start_server();
    const auto converse = [](const std::string& packet) {
        const platform::posix::Descriptor stranger = platform::posix::make_packet_socket();
        EXPECT_EQ(platform::posix::connect_to_class(stranger.get(), window_class()), 0);
        ::send(stranger.get(), packet.data(), packet.size(), MSG_NOSIGNAL);
        const timeval limit{5, 0};
        ::setsockopt(stranger.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
        ::fcntl(stranger.get(), F_SETFL, 0);
        std::array<char, 16> buffer{};
        return ::recv(stranger.get(), buffer.data(), buffer.size(), 0);
    };
    EXPECT_EQ(converse("x"), 0) << "too short: the server hangs up";
    EXPECT_EQ(converse(std::string(16, '\0')), 0) << "a message of another number";
    EXPECT_EQ(converse(std::string(4000, 'x')), 0) << "too long";
    std::string good(16, '\0');
    std::array<std::uint8_t, 4> message{};
    support::put_u32le(message.data(), platform::posix::registered_message("FSASMLIB:IPC"));
    std::memcpy(good.data(), message.data(), message.size());
    EXPECT_EQ(converse(good), 8) << "no memory came: a reply of 0";
    const Link link(rig.transport());
    std::uint32_t reply = 0;
    EXPECT_TRUE(link.send(reply));
    EXPECT_THROW(PosixSimServer(static_cast<PosixLoop&>(rig.loop()), window_class(), {}), support::Failure)
        << "the class is taken";
}

}  // namespace
}  // namespace platform_tests
