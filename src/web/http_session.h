#pragma once

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "web/http_server.h"

namespace web {

// What the sessions of a server share; outlives the server by as much as they need.
class HttpServer::Shared {
  public:
    HttpServer* server = nullptr;  // null once the server has gone
    std::string host;              // "127.0.0.1:8790"
    std::span<const Asset> assets;
    std::size_t connections = 0;
    std::vector<std::shared_ptr<PageSession>> pages;

    void opened(const std::shared_ptr<PageSession>& page);
    void closed(PageSession* page);
};

inline constexpr std::size_t kMostConnections = 64;

// One connection that asks for files; a WebSocket takes it over.
class HttpSession : public std::enable_shared_from_this<HttpSession> {
  public:
    HttpSession(boost::asio::ip::tcp::socket socket, std::shared_ptr<HttpServer::Shared> shared);
    ~HttpSession();

    void read();

  private:
    using Request = boost::beast::http::request<boost::beast::http::string_body>;
    using Response = boost::beast::http::response<boost::beast::http::string_body>;

    void answer(const Request& request);
    Response respond(const Request& request) const;
    bool is_our_page(const Request& request) const;
    void open_socket(const Request& request);

    boost::beast::tcp_stream stream_;
    std::shared_ptr<HttpServer::Shared> shared_;
    boost::beast::flat_buffer buffer_;
    std::optional<boost::beast::http::request_parser<boost::beast::http::string_body>> parser_;
    std::optional<Response> response_;
};

// A page's WebSocket.
class SocketSession : public PageSession, public std::enable_shared_from_this<SocketSession> {
  public:
    SocketSession(boost::beast::tcp_stream stream, std::shared_ptr<HttpServer::Shared> shared);
    ~SocketSession() override;

    void accept(const boost::beast::http::request<boost::beast::http::string_body>& request);
    void send(std::shared_ptr<const std::string> text) override;
    void close() override;

  private:
    void read();
    void write();
    void end();

    boost::beast::websocket::stream<boost::beast::tcp_stream> socket_;
    std::shared_ptr<HttpServer::Shared> shared_;
    boost::beast::flat_buffer buffer_;
    std::deque<std::shared_ptr<const std::string>> queue_;
    std::size_t queued_bytes_ = 0;
    bool open_ = false;
};

}  // namespace web
