#pragma once

#include <boost/asio/posix/stream_descriptor.hpp>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/posix/posix_loop.h"
#include "platform/server_fault.h"

namespace platform::posix {

// The other end of PosixTransport: a window class that answers request blocks. Blocks are answered in tasks of the
// loop. A client that sends again has given up its sends before, so only its latest one is answered: its block may
// already be half filled with the next requests.
class PosixSimServer {
  public:
    // Answers a block in place and gives the reply value. It may call set_fault: with `silent` no reply goes out.
    using Server = std::function<std::uint32_t(std::uint8_t* block, std::size_t size)>;

    // Listens on a class text ("UIPCMAIN"). Throws a Failure when another program listens there.
    PosixSimServer(PosixLoop& loop, const std::string& window_class, Server server);
    ~PosixSimServer();
    PosixSimServer(const PosixSimServer&) = delete;
    PosixSimServer& operator=(const PosixSimServer&) = delete;

    // A silent server takes sends and never answers them.
    void set_fault(ServerFault fault) { fault_ = fault; }
    // Time that passes before each answer.
    void set_answer_delay(Duration delay) { answer_delay_ = delay; }

    // Drops all clients; they find the server again at their next send.
    void close_connections();
    std::size_t connection_count() const { return connections_.size(); }
    std::uint64_t answered() const { return answered_; }

  private:
    struct View {
        std::uint16_t atom = 0;
        std::uint8_t* block = nullptr;
    };
    // A send that waits for its answer.
    struct Send {
        std::uint16_t atom = 0;
        std::uint32_t number = 0;
    };
    struct Connection {
        explicit Connection(boost::asio::io_context& context) : socket(context) {}
        ~Connection();
        boost::asio::posix::stream_descriptor socket;
        std::vector<View> views;
        std::optional<Send> latest;
        bool open = true;
    };
    using ConnectionPointer = std::shared_ptr<Connection>;

    void await_client();
    void accept_clients();
    void await_send(const ConnectionPointer& connection);
    void take_sends(const ConnectionPointer& connection);
    enum class Taken { one, nothing, end };
    static Taken take_one_send(Connection& connection);
    void answer(Connection& connection, const Send& send);
    void close(const ConnectionPointer& connection);
    static std::uint8_t* view_of(const Connection& connection, std::uint16_t atom);
    static void keep_view(Connection& connection, std::uint16_t atom, int memory);

    PosixLoop& loop_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
    Server server_;
    ServerFault fault_ = ServerFault::none;
    Duration answer_delay_ = Duration::zero();
    boost::asio::posix::stream_descriptor listener_;
    std::list<ConnectionPointer> connections_;
    std::uint64_t answered_ = 0;
};

}  // namespace platform::posix
