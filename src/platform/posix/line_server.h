#pragma once

#include <boost/asio/local/stream_protocol.hpp>
#include <functional>
#include <string>
#include <string_view>

#include "platform/posix/posix_loop.h"

namespace platform::posix {

// A Unix socket that takes text lines and answers each; an empty line ends an answer, which may have several lines.
// Only its owner may connect. The longest line is 4096 bytes.
class LineServer {
  public:
    // Gives the answer to a line, as a task of the loop.
    using Handler = std::function<std::string(std::string_view line)>;

    // A socket that was left over under that name is replaced. Throws a Failure.
    LineServer(PosixLoop& loop, std::string path, Handler handler);
    ~LineServer();
    LineServer(const LineServer&) = delete;
    LineServer& operator=(const LineServer&) = delete;

  private:
    class Conversation;

    void accept_next();

    PosixLoop& loop_;
    std::string path_;
    Handler handler_;
    boost::asio::local::stream_protocol::acceptor acceptor_;
};

}  // namespace platform::posix
