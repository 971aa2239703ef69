#pragma once

#include <gtest/gtest.h>

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>
#include <boost/json.hpp>
#include <chrono>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "web/http_server.h"

namespace web_test {

namespace asio = boost::asio;
namespace json = boost::json;
using asio::ip::tcp;
using boost::system::error_code;

// Apart from the ports of a program that may run on the same machine.
inline constexpr web::ServerPorts kTestPorts{18790, 18889};

inline std::uint16_t port_of(const web::HttpServer& server) {
    const std::string address = server.address();
    return static_cast<std::uint16_t>(std::stoi(address.substr(address.rfind(':') + 1)));
}

// Runs the context until `done`; false when that takes longer than anything here may.
inline bool run_until(asio::io_context& context, const std::function<bool()>& done) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!done()) {
        context.restart();
        context.run_one_until(deadline);
        if (std::chrono::steady_clock::now() >= deadline) {
            return false;
        }
    }
    return true;
}

inline tcp::socket connected_socket(asio::io_context& context, std::uint16_t port) {
    tcp::socket socket(context);
    socket.connect({asio::ip::address_v4::loopback(), port});
    return socket;
}

// Sends raw bytes as a request and gives all that comes back until the server closes or has answered in full.
inline std::string answer_to(asio::io_context& context, std::uint16_t port, std::string_view request) {
    tcp::socket socket = connected_socket(context, port);
    std::string answer;
    bool over = false;
    asio::write(socket, asio::buffer(request));
    asio::async_read(socket, asio::dynamic_buffer(answer), [&](error_code, std::size_t) { over = true; });
    EXPECT_TRUE(run_until(context, [&] { return over; })) << "no end of the answer to " << request;
    return answer;
}

// A browser's page as far as the server can tell: a WebSocket with an Origin.
class TestPage {
  public:
    explicit TestPage(asio::io_context& context) : context_(context), socket_(context) {}

    // The status with which the server has taken or refused the socket.
    unsigned open(std::uint16_t port, const std::string& host, const std::string& origin,
                  const std::string& path = "/socket") {
        socket_.next_layer().connect({asio::ip::address_v4::loopback(), port});
        socket_.set_option(
            boost::beast::websocket::stream_base::decorator([origin](boost::beast::websocket::request_type& request) {
                request.set(boost::beast::http::field::origin, origin);
            }));
        socket_.read_message_max(0);
        bool over = false;
        socket_.async_handshake(response_, host, path, [&](error_code error) {
            over = true;
            open_ = !error;
        });
        EXPECT_TRUE(run_until(context_, [&] { return over; }));
        if (open_) {
            read();
        }
        return response_.result_int();
    }

    unsigned open(const web::HttpServer& server) {
        const std::string host = "127.0.0.1:" + std::to_string(port_of(server));
        return open(port_of(server), host, "http://" + host);
    }

    bool is_open() const { return open_; }

    void send(const std::string& text) {
        bool over = false;
        socket_.async_write(asio::buffer(text), [&](error_code, std::size_t) { over = true; });
        EXPECT_TRUE(run_until(context_, [&] { return over; }));
    }

    // Queues a message without waiting; for use while the program's loop runs.
    void post(std::string text) {
        unsent_.push_back(std::move(text));
        if (unsent_.size() == 1) {
            write();
        }
    }

    // Called with every message that comes, besides receive().
    std::function<void(const json::object&)> on_message;

    // The next message of a type; those of other types are dropped.
    json::object receive(std::string_view type) {
        json::object found;
        const bool came = run_until(context_, [&] {
            while (!messages_.empty()) {
                found = json::parse(messages_.front()).as_object();
                messages_.pop_front();
                if (found.at("type").as_string() == json::string_view(type.data(), type.size())) {
                    return true;
                }
            }
            return !open_;
        });
        EXPECT_TRUE(came && open_) << "no message " << type;
        return found;
    }

    // What has come and was not asked for yet.
    const std::deque<std::string>& waiting() const { return messages_; }

    // Runs until the server has closed the socket.
    bool sees_the_end() {
        return run_until(context_, [this] { return !open_; });
    }

    void close() {
        error_code ignored;
        socket_.next_layer().close(ignored);
    }

  private:
    void read() {
        socket_.async_read(buffer_, [this](error_code error, std::size_t) {
            if (error) {
                open_ = false;
                return;
            }
            messages_.push_back(boost::beast::buffers_to_string(buffer_.data()));
            buffer_.consume(buffer_.size());
            if (on_message) {
                on_message(json::parse(messages_.back()).as_object());
            }
            read();
        });
    }

    void write() {
        socket_.async_write(asio::buffer(unsent_.front()), [this](error_code error, std::size_t) {
            unsent_.pop_front();
            if (!error && !unsent_.empty()) {
                write();
            }
        });
    }

    asio::io_context& context_;
    boost::beast::websocket::stream<tcp::socket> socket_;
    boost::beast::websocket::response_type response_;
    boost::beast::flat_buffer buffer_;
    std::deque<std::string> messages_;
    std::deque<std::string> unsent_;
    bool open_ = false;
};

}  // namespace web_test
