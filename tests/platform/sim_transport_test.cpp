#include "platform/sim_transport.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <boost/asio/post.hpp>
#include <cstring>
#include <thread>

#include "platform/manual/manual_platform.h"
#include "platform/posix/posix_sim_server.h"
#include "platform/posix/posix_transport.h"
#include "platform/posix/sim_wire.h"
#include "support/bytes.h"
#include "support/failure.h"
#include "tests/platform/machines.h"

namespace platform_tests {
namespace {

using platform::SimTransport;
using platform::posix::PosixLoop;
using platform::posix::PosixSimServer;
using platform::ServerFault;

constexpr std::uint32_t kMappingSize = 32768;

// A class of its own for each test process, so that a simulator on this machine is left alone.
std::string window_class() {
    return "TESTMAIN" + std::to_string(::getpid());
}

// Answers a block by adding 1 to its first byte, with its second byte as the reply value.
std::uint32_t answer_block(std::uint8_t* block) {
    block[0] = static_cast<std::uint8_t>(block[0] + 1);
    return block[1];
}

// A transport with a server at its other end.
class TransportRig {
  public:
    virtual ~TransportRig() = default;
    virtual EventLoop& loop() = 0;
    virtual SimTransport& transport() = 0;
    virtual void start_server() = 0;
    virtual void stop_server() = 0;
    enum class Answers { at_once, never };
    virtual void set_answers(Answers answers) = 0;
    // Sends that the server has taken or answered.
    virtual int answered() = 0;
};

class ManualTransportRig : public TransportRig {
  public:
    ManualTransportRig() { machine_.sim_transport.windows.clear(); }
    EventLoop& loop() override { return machine_.loop; }
    SimTransport& transport() override { return machine_.sim_transport; }
    void start_server() override {
        machine_.sim_transport.windows = {window_class()};
        set_answers(Answers::at_once);
    }
    void stop_server() override { machine_.sim_transport.windows.clear(); }
    void set_answers(Answers answers) override {
        machine_.sim_transport.server = nullptr;
        if (answers == Answers::at_once) {
            machine_.sim_transport.server = [this](std::uint8_t* block, std::size_t) {
                ++answered_;
                return answer_block(block);
            };
        }
    }
    int answered() override { return answered_; }

  private:
    platform::manual::ManualPlatform machine_;
    int answered_ = 0;
};

// The server runs in a thread of its own, on a loop of its own, as another process would.
class ServerThread {
  public:
    ServerThread() {
        do_there([this] { loop_.post([] {}); });
    }
    ~ServerThread() {
        do_there([this] {
            server_.reset();
            loop_.stop();
        });
        thread_.join();
    }
    // Runs something in the server's thread and waits for its end.
    void do_there(const std::function<void()>& what) {
        std::atomic<bool> done = false;
        boost::asio::post(loop_.io_context(), [&] {
            what();
            done = true;
            done.notify_one();
        });
        done.wait(false);
    }
    void start() {
        do_there([this] {
            server_.emplace(loop_, window_class(),
                            [](std::uint8_t* block, std::size_t) { return answer_block(block); });
        });
    }
    void stop() {
        do_there([this] { server_.reset(); });
    }
    // Only inside do_there.
    PosixSimServer& server() { return *server_; }

  private:
    PosixLoop loop_;
    std::optional<PosixSimServer> server_;
    std::thread thread_{[this] { loop_.run(); }};
};

class PosixTransportRig : public TransportRig {
  public:
    EventLoop& loop() override { return loop_; }
    SimTransport& transport() override { return transport_; }
    void start_server() override { server_.start(); }
    void stop_server() override { server_.stop(); }
    void set_answers(Answers answers) override {
        server_.do_there(
            [&] { server_.server().set_fault(answers == Answers::never ? ServerFault::silent : ServerFault::none); });
    }
    int answered() override {
        int count = 0;
        server_.do_there([&] { count = static_cast<int>(server_.server().answered()); });
        return count;
    }
    ServerThread& server() { return server_; }

  private:
    ServerThread server_;
    PosixLoop loop_;
    platform::posix::PosixTransport transport_{loop_};
};

// One client's link, as the simulator's client opens it.
struct Link {
    SimTransport& transport;
    platform::WindowHandle window = 0;
    std::uint32_t message = 0;
    std::uint16_t atom = 0;
    platform::MappingHandle mapping = 0;
    std::uint8_t* block = nullptr;

    explicit Link(SimTransport& by) : transport(by) {
        window = transport.FindWindowExA(window_class());
        message = transport.RegisterWindowMessageA("FSASMLIB:IPC");
        const std::string name = "FSASMLIB:IPC:1A2B:" + std::to_string(::getpid());
        atom = transport.GlobalAddAtomA(name);
        mapping = transport.CreateFileMappingA(kMappingSize, name);
        block = transport.MapViewOfFile(mapping);
    }
    ~Link() {
        transport.GlobalDeleteAtom(atom);
        transport.UnmapViewOfFile(block);
        transport.CloseHandle(mapping);
    }
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

    bool send(std::uint32_t& reply, std::uint32_t timeout_ms = 5000) const {
        return transport.SendMessageTimeoutA(window, message, support::as_i16(atom), timeout_ms, reply);
    }
};

struct TransportBackEnd {
    const char* name;
    std::unique_ptr<TransportRig> (*make)();
};

class SimTransportContract : public testing::TestWithParam<TransportBackEnd> {
  protected:
    std::unique_ptr<TransportRig> rig_ = GetParam().make();
    SimTransport& transport_ = rig_->transport();
};
constexpr TransportBackEnd kTransports[] = {
    {"manual", []() -> std::unique_ptr<TransportRig> { return std::make_unique<ManualTransportRig>(); }},
    {"posix", []() -> std::unique_ptr<TransportRig> { return std::make_unique<PosixTransportRig>(); }},
};
INSTANTIATE_TEST_SUITE_P(BackEnds, SimTransportContract, testing::ValuesIn(kTransports),
                         [](const auto& of) { return of.param.name; });

TEST_P(SimTransportContract, a_window_is_found_while_its_server_is_there) {
    EXPECT_EQ(transport_.FindWindowExA(window_class()), 0);
    rig_->start_server();
    const auto window = transport_.FindWindowExA(window_class());
    EXPECT_NE(window, 0);
    EXPECT_EQ(transport_.FindWindowExA(window_class()), window);
    EXPECT_EQ(transport_.FindWindowExA("OTHERMAIN"), 0);
    rig_->stop_server();
    EXPECT_EQ(transport_.FindWindowExA(window_class()), 0);
}

TEST_P(SimTransportContract, a_block_is_answered_in_place_with_the_servers_reply_value) {
    rig_->start_server();
    const Link link(transport_);
    ASSERT_NE(link.block, nullptr);
    EXPECT_EQ(std::count(link.block, link.block + kMappingSize, 0), kMappingSize) << "a new mapping is empty";
    for (int send = 0; send < 300; ++send) {
        link.block[1] = static_cast<std::uint8_t>(send);
        std::uint32_t reply = 0xFFFFFFFF;
        ASSERT_TRUE(link.send(reply)) << send;
        ASSERT_EQ(reply, static_cast<std::uint32_t>(send % 256));
        ASSERT_EQ(link.block[0], (send + 1) % 256);
    }
}

TEST_P(SimTransportContract, a_server_that_does_not_answer_fails_the_send_after_its_time_without_an_error_code) {
    rig_->start_server();
    rig_->set_answers(TransportRig::Answers::never);
    const Link link(transport_);
    std::uint32_t reply = 0;
    const auto begin = rig_->loop().now();
    EXPECT_FALSE(link.send(reply, 60));
    EXPECT_EQ(transport_.GetLastError(), 0U);
    EXPECT_GE(rig_->loop().now() - begin, Milliseconds(60));
    rig_->set_answers(TransportRig::Answers::at_once);
    link.block[1] = 1;
    EXPECT_TRUE(link.send(reply));
    EXPECT_EQ(reply, 1U);
    EXPECT_EQ(rig_->answered(), 1) << "a send that was given up is not answered later";
}

TEST_P(SimTransportContract, a_server_that_has_gone_fails_the_send_with_an_error_code_until_it_is_back) {
    rig_->start_server();
    const Link link(transport_);
    std::uint32_t reply = 0;
    link.block[1] = 7;
    ASSERT_TRUE(link.send(reply));
    rig_->stop_server();
    for (int attempt = 0; attempt < 3; ++attempt) {
        EXPECT_FALSE(link.send(reply));
        EXPECT_NE(transport_.GetLastError(), 0U);
    }
    rig_->start_server();
    EXPECT_TRUE(link.send(reply)) << "the same link serves on";
    EXPECT_EQ(reply, 7U);
}

TEST_P(SimTransportContract, a_link_can_be_closed_and_opened_again_and_again) {
    rig_->start_server();
    for (int opening = 0; opening < 20; ++opening) {
        const Link link(transport_);
        ASSERT_NE(link.block, nullptr);
        link.block[1] = static_cast<std::uint8_t>(opening);
        std::uint32_t reply = 99;
        ASSERT_TRUE(link.send(reply)) << opening;
        EXPECT_EQ(reply, static_cast<std::uint32_t>(opening));
        EXPECT_EQ(link.block[0], 1) << "each opening has a mapping of its own";
    }
}

TEST_P(SimTransportContract, no_task_runs_while_a_send_or_a_sleep_waits) {
    rig_->start_server();
    rig_->set_answers(TransportRig::Answers::never);
    const Link link(transport_);
    int ran = 0;
    rig_->loop().post([&] { ++ran; });
    std::uint32_t reply = 0;
    const auto begin = rig_->loop().now();
    link.send(reply, 20);
    transport_.Sleep(20);
    EXPECT_GE(rig_->loop().now() - begin, Milliseconds(40));
    EXPECT_EQ(ran, 0);
    rig_->loop().yield_once();
    EXPECT_EQ(ran, 1);
}

TEST_P(SimTransportContract, a_send_to_no_window_fails_with_an_error_code) {
    std::uint32_t reply = 0;
    EXPECT_FALSE(transport_.SendMessageTimeoutA(0, 0xC000, 0, 100, reply));
    EXPECT_NE(transport_.GetLastError(), 0U);
    EXPECT_FALSE(transport_.SendMessageTimeoutA(17, 0xC000, 0, 100, reply));
}

TEST(PosixTransport, a_mapping_of_the_same_name_is_there_already) {
    PosixLoop loop;
    platform::posix::PosixTransport transport(loop);
    const auto first = transport.CreateFileMappingA(kMappingSize, "name");
    EXPECT_NE(first, 0);
    EXPECT_EQ(transport.GetLastError(), 0U);
    transport.CreateFileMappingA(kMappingSize, "name");
    EXPECT_EQ(transport.GetLastError(), platform::kErrorAlreadyExists);
    transport.CloseHandle(first);
    EXPECT_NE(transport.CreateFileMappingA(kMappingSize, "name"), 0);
    EXPECT_EQ(transport.GetLastError(), 0U);
}

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
    PosixTransportRig rig;
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
    PosixTransportRig rig;
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
