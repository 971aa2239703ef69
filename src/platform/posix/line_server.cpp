#include "platform/posix/line_server.h"

#include <boost/asio/read_until.hpp>
#include <boost/asio/streambuf.hpp>
#include <boost/asio/write.hpp>
#include <filesystem>
#include <memory>
#include <utility>

#include "support/failure.h"

namespace platform::posix {

namespace {

using Protocol = boost::asio::local::stream_protocol;

constexpr std::size_t kLongestLine = 4096;

}  // namespace

// One connection. Asio's handlers only queue tasks of the loop.
class LineServer::Conversation : public std::enable_shared_from_this<Conversation> {
  public:
    Conversation(PosixLoop& loop, Protocol::socket socket, Handler handler)
        : loop_(loop), socket_(std::move(socket)), handler_(std::move(handler)) {}

    void read_next() {
        boost::asio::async_read_until(
            socket_, buffer_, '\n',
            [self = shared_from_this()](const boost::system::error_code& error, std::size_t length) {
                if (!error) {
                    self->loop_.post([self, length] { self->take_line(length); });
                }
            });
    }

  private:
    void take_line(std::size_t length) {
        const auto data = buffer_.data();
        const std::string line(boost::asio::buffers_begin(data),
                               boost::asio::buffers_begin(data) + static_cast<std::ptrdiff_t>(length));
        buffer_.consume(length);
        auto answer = std::make_shared<std::string>(handler_(line) + "\n\n");
        boost::asio::async_write(
            socket_, boost::asio::buffer(*answer),
            [self = shared_from_this(), answer](const boost::system::error_code& error, std::size_t) {
                if (!error) {
                    self->read_next();
                }
            });
    }

    PosixLoop& loop_;
    Protocol::socket socket_;
    Handler handler_;
    boost::asio::streambuf buffer_{kLongestLine};
};

LineServer::LineServer(PosixLoop& loop, std::string path, Handler handler)
    : loop_(loop), path_(std::move(path)), handler_(std::move(handler)), acceptor_(loop.io_context()) {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
    boost::system::error_code error;
    acceptor_.open(Protocol(), error);
    if (!error) {
        acceptor_.bind(Protocol::endpoint(path_), error);
    }
    if (!error) {
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
        acceptor_.listen(boost::asio::socket_base::max_listen_connections, error);
    }
    if (error) {
        throw support::Failure("The control socket can't be made: " + error.message());
    }
    accept_next();
}

LineServer::~LineServer() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
}

void LineServer::accept_next() {
    acceptor_.async_accept([this](const boost::system::error_code& error, Protocol::socket socket) {
        if (!error) {
            std::make_shared<Conversation>(loop_, std::move(socket), handler_)->read_next();
            accept_next();
        }
    });
}

}  // namespace platform::posix
