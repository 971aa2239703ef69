// The device's end of serial lines for tests that run under Wine, where a program cannot make a terminal itself:
// line_server FOLDER NUMBER. The line is there from the start, as FOLDER/ports/COMNUMBER. Prints the port of the
// loopback address where it listens.
#include <boost/asio/connect.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <cstdio>
#include <memory>
#include <optional>

#include "platform/posix/pseudo_terminal.h"
#include "tests/windows/line_server.h"

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;
using platform::posix::PosixLoop;
using platform::posix::PseudoTerminal;

class LineServer {
  public:
    LineServer(PosixLoop& loop, std::string folder, int number)
        : loop_(loop),
          folder_(std::move(folder)),
          number_(number),
          acceptor_(loop.io_context(), tcp::endpoint(boost::asio::ip::address_v4::loopback(), 0)),
          socket_(loop.io_context()) {
        plug();
        accept();
    }
    int port() const { return acceptor_.local_endpoint().port(); }

  private:
    // One test after the other; the next one finds the line plugged in.
    void accept() {
        acceptor_.async_accept([this](const error_code& error, tcp::socket socket) {
            if (!error) {
                socket_ = std::move(socket);
                read_head();
            }
        });
    }
    void plug() {
        terminal_.emplace(loop_, folder_, number_);
        terminal_->on_bytes = [this](std::string_view bytes) {
            if (socket_.is_open()) {
                send(line_server::kBytes, bytes);
            }
        };
    }
    void send(char kind, std::string_view bytes) {
        error_code ignored;
        boost::asio::write(socket_, boost::asio::buffer(line_server::frame(kind, bytes)), ignored);
    }
    void read_head() {
        boost::asio::async_read(socket_, boost::asio::buffer(head_), [this](const error_code& error, std::size_t) {
            if (error) {
                end_of_test();
                return;
            }
            bytes_.resize(line_server::length_of(head_));
            boost::asio::async_read(socket_, boost::asio::buffer(bytes_), [this](const error_code& cut, std::size_t) {
                if (cut) {
                    end_of_test();
                    return;
                }
                loop_.post([this] { obey(); });
            });
        });
    }
    void end_of_test() {
        loop_.post([this] {
            socket_.close();
            plug();
            accept();
        });
    }
    void obey() {
        switch (head_[0]) {
            case line_server::kPlug:
                plug();
                send(line_server::kPlug, {});
                break;
            case line_server::kUnplug:
                terminal_.reset();
                send(line_server::kUnplug, {});
                break;
            default:
                terminal_->write(bytes_);
        }
        read_head();
    }

    PosixLoop& loop_;
    std::string folder_;
    int number_;
    tcp::acceptor acceptor_;
    tcp::socket socket_;
    std::array<char, line_server::kHead> head_{};
    std::string bytes_;
    std::optional<PseudoTerminal> terminal_;
};

}  // namespace

int main(int count, char** words) {
    if (count != 3) {
        std::fprintf(stderr, "line_server FOLDER NUMBER\n");
        return 2;
    }
    try {
        PosixLoop loop;
        LineServer server(loop, words[1], std::atoi(words[2]));
        std::printf("%d\n", server.port());
        std::fflush(stdout);
        loop.run();
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "line_server: %s\n", failure.what());
        return 1;
    }
}
