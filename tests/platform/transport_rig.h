#pragma once

#include <unistd.h>

#include <boost/asio/post.hpp>
#include <functional>
#include <future>
#include <optional>
#include <string>
#include <thread>

#include "app/native.h"
#include "support/bytes.h"

namespace platform_tests {

inline constexpr std::uint32_t kMappingSize = 32768;

// A class of its own for each test process, so that a simulator on this machine is left alone.
inline std::string window_class() {
    return "TESTMAIN" + std::to_string(::getpid());
}

// Answers a block by adding 1 to its first byte, with its second byte as the reply value.
inline std::uint32_t answer_block(std::uint8_t* block) {
    block[0] = static_cast<std::uint8_t>(block[0] + 1);
    return block[1];
}

// A transport with a server at its other end.
class TransportRig {
  public:
    virtual ~TransportRig() = default;
    virtual platform::EventLoop& loop() = 0;
    virtual platform::SimTransport& transport() = 0;
    virtual void start_server() = 0;
    virtual void stop_server() = 0;
    enum class Answers { at_once, never };
    virtual void set_answers(Answers answers) = 0;
    // Sends that the server has taken or answered.
    virtual int answered() = 0;
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
        std::promise<void> done;
        boost::asio::post(loop_.io_context(), [&] {
            what();
            done.set_value();
        });
        done.get_future().wait();
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
    platform::native::SimServer& server() { return *server_; }

  private:
    platform::native::Loop loop_;
    std::optional<platform::native::SimServer> server_;
    std::thread thread_{[this] { loop_.run(); }};
};

class NativeTransportRig : public TransportRig {
  public:
    platform::EventLoop& loop() override { return loop_; }
    platform::SimTransport& transport() override { return transport_; }
    void start_server() override { server_.start(); }
    void stop_server() override { server_.stop(); }
    void set_answers(Answers answers) override {
        server_.do_there([&] {
            server_.server().set_fault(answers == Answers::never ? platform::ServerFault::silent
                                                                 : platform::ServerFault::none);
        });
    }
    int answered() override {
        int count = 0;
        server_.do_there([&] { count = static_cast<int>(server_.server().answered()); });
        return count;
    }
    ServerThread& server() { return server_; }

  private:
    ServerThread server_;
    platform::native::Loop loop_;
    platform::native::SimTransport transport_{loop_};
};

// One client's link, as the simulator's client opens it.
struct Link {
    platform::SimTransport& transport;
    platform::WindowHandle window = 0;
    std::uint32_t message = 0;
    std::uint16_t atom = 0;
    platform::MappingHandle mapping = 0;
    std::uint8_t* block = nullptr;

    explicit Link(platform::SimTransport& by) : transport(by) {
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

}  // namespace platform_tests
