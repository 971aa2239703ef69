#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "web/assets.h"

namespace web {

// One open page. Its functions are called on the loop's thread.
class PageSession {
  public:
    virtual ~PageSession() = default;
    // Queues a text for the page. A page that does not keep up is dropped; it comes back and starts afresh.
    virtual void send(std::shared_ptr<const std::string> text) = 0;
    virtual void close() = 0;
};

struct ServerPorts {
    std::uint16_t first = 8790;
    std::uint16_t last = 8799;
};

// Serves a page's files and its WebSocket ("/socket") on the loopback address, on the first free port of a range.
// Answers only requests whose Host, and WebSockets whose Origin, is that address. All handlers are Asio's: they must
// not run logic, only queue tasks or send.
class HttpServer {
  public:
    // Throws a Failure when no port of the range is free.
    HttpServer(boost::asio::io_context& context, ServerPorts ports, std::span<const Asset> assets);
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    // "http://127.0.0.1:8790/"
    std::string address() const;

    std::function<void(PageSession&)> on_open;
    // A text of at most 16 KiB from a page.
    std::function<void(PageSession&, std::string_view)> on_message;
    std::function<void(PageSession&)> on_close;

    // Sends a text to all open pages.
    void broadcast(const std::shared_ptr<const std::string>& text);
    std::size_t page_count() const;

    class Shared;

  private:
    void accept();
    void accept_later();

    boost::asio::ip::tcp::acceptor acceptor_;
    boost::asio::steady_timer retry_;
    std::shared_ptr<Shared> shared_;
};

}  // namespace web
