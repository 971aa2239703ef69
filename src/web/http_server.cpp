#include "web/http_server.h"

#include <algorithm>
#include <chrono>

#include "support/failure.h"
#include "web/http_session.h"

namespace web {

namespace asio = boost::asio;
using boost::system::error_code;

namespace {

// How long the server waits when the system gives it no further connection (no free descriptors).
constexpr std::chrono::milliseconds kAcceptRetry{250};

// What lets a program take its port again at once after its end. Windows lets it do so anyway; there the option of that
// name would let two programs have one port, and another one keeps the port to one.
#ifdef _WIN32
using PortOption = asio::detail::socket_option::boolean<SOL_SOCKET, SO_EXCLUSIVEADDRUSE>;
#else
using PortOption = asio::socket_base::reuse_address;
#endif

// Binds the first free port of the range.
asio::ip::tcp::acceptor listen(asio::io_context& context, ServerPorts ports) {
    for (unsigned port = ports.first; port <= ports.last; ++port) {
        asio::ip::tcp::acceptor acceptor(context);
        const asio::ip::tcp::endpoint endpoint(asio::ip::address_v4::loopback(), static_cast<std::uint16_t>(port));
        error_code error;
        acceptor.open(endpoint.protocol(), error);
        if (!error) {
            acceptor.set_option(PortOption(true), error);
        }
        if (!error) {
            acceptor.bind(endpoint, error);
        }
        if (!error) {
            acceptor.listen(asio::socket_base::max_listen_connections, error);
        }
        if (!error) {
            return acceptor;
        }
    }
    throw support::Failure("No free port from " + std::to_string(ports.first) + " to " + std::to_string(ports.last) +
                           " for the page");
}

}  // namespace

void HttpServer::Shared::opened(const std::shared_ptr<PageSession>& page) {
    pages.push_back(page);
    if (server != nullptr && server->on_open) {
        server->on_open(*page);
    }
}

void HttpServer::Shared::closed(PageSession* page) {
    const auto found =
        std::find_if(pages.begin(), pages.end(), [page](const auto& open) { return open.get() == page; });
    if (found != pages.end()) {
        const std::shared_ptr<PageSession> kept = *found;
        pages.erase(found);
        if (server != nullptr && server->on_close) {
            server->on_close(*kept);
        }
    }
}

HttpServer::HttpServer(asio::io_context& context, ServerPorts ports, std::span<const Asset> assets)
    : acceptor_(listen(context, ports)), retry_(context), shared_(std::make_shared<Shared>()) {
    shared_->server = this;
    shared_->host = "127.0.0.1:" + std::to_string(acceptor_.local_endpoint().port());
    shared_->assets = assets;
    accept();
}

HttpServer::~HttpServer() {
    shared_->server = nullptr;
    const auto pages = shared_->pages;
    for (const auto& page : pages) {
        page->close();
    }
}

std::string HttpServer::address() const {
    return "http://" + shared_->host + "/";
}

void HttpServer::accept() {
    acceptor_.async_accept([this, shared = shared_](error_code error, asio::ip::tcp::socket socket) {
        if (shared->server == nullptr || error == asio::error::operation_aborted) {
            return;
        }
        if (error) {
            accept_later();
            return;
        }
        // One connection too many is closed at once, by the end of its socket.
        if (shared->connections < kMostConnections) {
            std::make_shared<HttpSession>(std::move(socket), shared)->read();
        }
        accept();
    });
}

void HttpServer::accept_later() {
    retry_.expires_after(kAcceptRetry);
    retry_.async_wait([this, shared = shared_](error_code error) {
        if (!error && shared->server != nullptr) {
            accept();
        }
    });
}

void HttpServer::broadcast(const std::shared_ptr<const std::string>& text) {
    // A copy: a page that is dropped while sending leaves the list.
    const auto pages = shared_->pages;
    for (const auto& page : pages) {
        page->send(text);
    }
}

std::size_t HttpServer::page_count() const {
    return shared_->pages.size();
}

}  // namespace web
