#include "web/http_session.h"

#include <utility>

namespace web {

namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace websocket = boost::beast::websocket;
using boost::system::error_code;

namespace {

constexpr std::uint32_t kHeaderLimit = 8192;
constexpr std::uint64_t kBodyLimit = 1024;  // nobody sends us one
constexpr std::chrono::seconds kIdleTimeout{30};
constexpr std::size_t kMessageLimit = 16384;
constexpr std::size_t kQueueLimit = 4U << 20;

constexpr std::string_view kSocketPath = "/socket";

void set_headers(http::fields& fields, const std::string& host) {
    fields.set("Content-Security-Policy",
               "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; font-src 'self'; "
               "connect-src 'self' ws://" +
                   host + "; base-uri 'none'; form-action 'none'; frame-ancestors 'none'");
    fields.set("X-Content-Type-Options", "nosniff");
    fields.set("Referrer-Policy", "no-referrer");
    fields.set("Cross-Origin-Resource-Policy", "same-origin");
    fields.set(http::field::cache_control, "no-store");
}

std::string_view view(beast::string_view text) {
    return {text.data(), text.size()};
}

}  // namespace

HttpSession::HttpSession(boost::asio::ip::tcp::socket socket, std::shared_ptr<HttpServer::Shared> shared)
    : stream_(std::move(socket)), shared_(std::move(shared)) {
    ++shared_->connections;
}

HttpSession::~HttpSession() {
    --shared_->connections;
}

void HttpSession::read() {
    parser_.emplace();
    parser_->header_limit(kHeaderLimit);
    parser_->body_limit(kBodyLimit);
    stream_.expires_after(kIdleTimeout);
    http::async_read(stream_, buffer_, *parser_, [self = shared_from_this()](error_code error, std::size_t) {
        if (error || self->shared_->server == nullptr) {
            return;
        }
        const Request request = self->parser_->release();
        if (websocket::is_upgrade(request) && view(request.target()) == kSocketPath && self->is_our_page(request) &&
            view(request[http::field::origin]) == "http://" + self->shared_->host) {
            self->open_socket(request);
        } else {
            self->answer(request);
        }
    });
}

bool HttpSession::is_our_page(const Request& request) const {
    return view(request[http::field::host]) == shared_->host;
}

void HttpSession::open_socket(const Request& request) {
    std::make_shared<SocketSession>(std::move(stream_), shared_)->accept(request);
}

HttpSession::Response HttpSession::respond(const Request& request) const {
    const auto refuse = [&](http::status status, const char* text) {
        Response response{status, request.version()};
        response.set(http::field::content_type, "text/plain; charset=utf-8");
        response.body() = text;
        return response;
    };
    if (!is_our_page(request)) {
        return refuse(http::status::forbidden, "This address is not served.\n");
    }
    if (websocket::is_upgrade(request)) {
        return refuse(http::status::forbidden, "This page may not open a socket here.\n");
    }
    if (request.method() != http::verb::get && request.method() != http::verb::head) {
        return refuse(http::status::method_not_allowed, "Only GET is answered.\n");
    }
    for (const Asset& asset : shared_->assets) {
        if (asset.path == view(request.target())) {
            Response response{http::status::ok, request.version()};
            response.set(http::field::content_type,
                         beast::string_view(asset.content_type.data(), asset.content_type.size()));
            response.body() = asset.bytes;
            return response;
        }
    }
    return refuse(http::status::not_found, "There is nothing here.\n");
}

void HttpSession::answer(const Request& request) {
    response_ = respond(request);
    set_headers(*response_, shared_->host);
    response_->keep_alive(request.keep_alive());
    response_->prepare_payload();
    if (request.method() == http::verb::head) {
        response_->body().clear();  // the length of the full answer stays in the header
    }
    stream_.expires_after(kIdleTimeout);
    http::async_write(stream_, *response_, [self = shared_from_this()](error_code error, std::size_t) {
        if (error) {
            return;
        }
        if (self->response_->keep_alive()) {
            self->read();
        } else {
            error_code ignored;
            self->stream_.socket().shutdown(boost::asio::ip::tcp::socket::shutdown_send, ignored);
        }
    });
}

SocketSession::SocketSession(beast::tcp_stream stream, std::shared_ptr<HttpServer::Shared> shared)
    : socket_(std::move(stream)), shared_(std::move(shared)) {
    ++shared_->connections;
}

SocketSession::~SocketSession() {
    --shared_->connections;
}

void SocketSession::accept(const http::request<http::string_body>& request) {
    beast::get_lowest_layer(socket_).expires_never();
    websocket::stream_base::timeout timeout = websocket::stream_base::timeout::suggested(beast::role_type::server);
    timeout.idle_timeout = kIdleTimeout;
    timeout.keep_alive_pings = true;
    socket_.set_option(timeout);
    socket_.read_message_max(kMessageLimit);
    socket_.text(true);
    socket_.async_accept(request, [self = shared_from_this()](error_code error) {
        if (error || self->shared_->server == nullptr) {
            return;
        }
        self->open_ = true;
        self->shared_->opened(self);
        self->read();
    });
}

void SocketSession::read() {
    socket_.async_read(buffer_, [self = shared_from_this()](error_code error, std::size_t) {
        if (error) {
            self->end();
            return;
        }
        const auto data = self->buffer_.cdata();
        if (self->socket_.got_text() && self->shared_->server != nullptr && self->shared_->server->on_message) {
            self->shared_->server->on_message(*self, {static_cast<const char*>(data.data()), data.size()});
        }
        self->buffer_.consume(self->buffer_.size());
        self->read();
    });
}

void SocketSession::send(std::shared_ptr<const std::string> text) {
    if (!open_) {
        return;
    }
    queued_bytes_ += text->size();
    if (queued_bytes_ > kQueueLimit) {
        close();
        return;
    }
    queue_.push_back(std::move(text));
    if (queue_.size() == 1) {
        write();
    }
}

void SocketSession::write() {
    socket_.async_write(boost::asio::buffer(*queue_.front()),
                        [self = shared_from_this()](error_code error, std::size_t) {
                            if (error) {
                                self->end();
                                return;
                            }
                            self->queued_bytes_ -= self->queue_.front()->size();
                            self->queue_.pop_front();
                            if (!self->queue_.empty()) {
                                self->write();
                            }
                        });
}

void SocketSession::close() {
    end();
    beast::get_lowest_layer(socket_).close();
}

void SocketSession::end() {
    if (open_) {
        open_ = false;
        shared_->closed(this);
    }
}

}  // namespace web
