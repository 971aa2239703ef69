#include "web/http_server.h"

#include <array>

#include "support/failure.h"
#include "test_page.h"

namespace {

using namespace web_test;

constexpr std::array<web::Asset, 2> kAssets = {{
    {"/", "text/html; charset=utf-8", "<p>page</p>"},
    {"/page.js", "text/javascript; charset=utf-8", "run();"},
}};

class HttpServerTest : public testing::Test {
  protected:
    std::string host() const { return "127.0.0.1:" + std::to_string(port_of(server)); }
    std::string get(const std::string& request_line, const std::string& host_name, const std::string& more = {}) {
        return answer_to(
            context, port_of(server),
            request_line + " HTTP/1.1\r\nHost: " + host_name + "\r\nConnection: close\r\n" + more + "\r\n");
    }

    asio::io_context context;
    web::HttpServer server{context, kTestPorts, kAssets};
};

TEST_F(HttpServerTest, only_requests_for_its_own_address_and_files_are_answered) {
    const std::string own = host();
    const std::string port = std::to_string(port_of(server));
    struct Case {
        std::string request_line;
        std::string host;
        std::string status;
    };
    const std::vector<Case> cases = {
        {"GET /", own, "200"},
        {"GET /page.js", own, "200"},
        {"HEAD /", own, "200"},
        {"GET /nothing", own, "404"},
        {"GET /../etc/passwd", own, "404"},
        {"GET //", own, "404"},
        {"GET /socket", own, "404"},
        {"POST /", own, "405"},
        {"DELETE /page.js", own, "405"},
        {"GET /", "localhost:" + port, "403"},
        {"GET /", "127.0.0.1", "403"},
        {"GET /", "rebound.example:" + port, "403"},
        {"GET /", own + ".rebound.example", "403"},
        {"GET /", "", "403"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(get(each.request_line, each.host).substr(9, 3), each.status) << each.request_line << " " << each.host;
    }
}

TEST_F(HttpServerTest, a_file_comes_with_its_type_and_a_policy_without_inline_code) {
    const std::string answer = get("GET /", host());
    for (const char* header :
         {"Content-Type: text/html; charset=utf-8\r\n", "default-src 'none'; script-src 'self'; style-src 'self';",
          "X-Content-Type-Options: nosniff\r\n", "frame-ancestors 'none'",
          "Cross-Origin-Resource-Policy: same-origin"}) {
        EXPECT_NE(answer.find(header), std::string::npos) << header;
    }
    EXPECT_EQ(answer.find("unsafe-inline"), std::string::npos);
    EXPECT_EQ(answer.substr(answer.find("\r\n\r\n") + 4), "<p>page</p>");
    const std::string head = get("HEAD /", host());
    EXPECT_NE(head.find("Content-Length: 11\r\n"), std::string::npos);
    EXPECT_EQ(head.substr(head.find("\r\n\r\n") + 4), "");
}

TEST_F(HttpServerTest, a_request_that_is_too_large_or_no_request_ends_the_connection) {
    const std::string large_header = "X: " + std::string(10000, 'x') + "\r\n";
    EXPECT_EQ(get("GET /", host(), large_header), "");
    EXPECT_EQ(get("POST /", host(), "Content-Length: 100000\r\n" + std::string("\r\n") + std::string(5000, 'x')), "");
    EXPECT_EQ(answer_to(context, port_of(server), std::string("\0\1\2\r\n\r\n", 7)), "");
    EXPECT_EQ(get("GET /", host()).substr(9, 3), "200");
}

TEST_F(HttpServerTest, only_a_page_of_its_own_address_may_open_a_socket) {
    const std::string own = host();
    struct Case {
        std::string host;
        std::string origin;
        std::string path;
        unsigned status;
    };
    const std::vector<Case> cases = {
        {own, "http://" + own, "/socket", 101},
        {own, "http://foreign.example", "/socket", 403},
        {own, "https://" + own, "/socket", 403},
        {own, "http://127.0.0.1", "/socket", 403},
        {own, "null", "/socket", 403},
        {own, "", "/socket", 403},
        {"foreign.example", "http://foreign.example", "/socket", 403},
        {own, "http://" + own, "/other", 403},
    };
    for (const Case& each : cases) {
        TestPage page(context);
        EXPECT_EQ(page.open(port_of(server), each.host, each.origin, each.path), each.status)
            << each.origin << " " << each.path;
    }
}

TEST_F(HttpServerTest, messages_come_whole_and_one_that_is_too_long_ends_the_socket) {
    std::vector<std::string> heard;
    server.on_message = [&](web::PageSession&, std::string_view text) { heard.emplace_back(text); };
    TestPage page(context);
    page.open(server);
    page.send("hello");
    page.send(std::string(16384, 'x'));
    ASSERT_TRUE(run_until(context, [&] { return heard.size() == 2; }));
    EXPECT_EQ(heard[0], "hello");
    EXPECT_EQ(heard[1].size(), 16384U);
    page.send(std::string(16385, 'x'));
    EXPECT_TRUE(page.sees_the_end());
    EXPECT_EQ(heard.size(), 2U);
    EXPECT_TRUE(run_until(context, [&] { return server.page_count() == 0; }));
}

TEST_F(HttpServerTest, a_page_that_takes_nothing_is_dropped_and_the_others_go_on) {
    tcp::socket sleeper = connected_socket(context, port_of(server));
    sleeper.set_option(asio::socket_base::receive_buffer_size(4096));
    asio::write(sleeper,
                asio::buffer("GET /socket HTTP/1.1\r\nHost: " + host() + "\r\nOrigin: http://" + host() +
                             "\r\nConnection: Upgrade\r\nUpgrade: websocket\r\n"
                             "Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: AAAAAAAAAAAAAAAAAAAAAA==\r\n\r\n"));
    TestPage page(context);
    page.open(server);
    ASSERT_TRUE(run_until(context, [&] { return server.page_count() == 2; }));
    const auto text =
        std::make_shared<const std::string>("{\"type\":\"x\",\"fill\":\"" + std::string(100000, 'x') + "\"}");
    int sent = 0;
    while (server.page_count() == 2 && sent < 1000) {
        server.broadcast(text);
        ++sent;
        page.receive("x");
    }
    EXPECT_EQ(server.page_count(), 1U);
    EXPECT_LT(sent, 200) << "the queue of a sleeping page is bounded";
    EXPECT_TRUE(page.is_open());
}

TEST_F(HttpServerTest, connections_beyond_the_limit_are_closed_at_once) {
    std::vector<tcp::socket> idle;
    for (int count = 0; count < 64; ++count) {
        idle.push_back(connected_socket(context, port_of(server)));
    }
    EXPECT_EQ(get("GET /", host()), "");
    idle.clear();
    std::string answer;
    for (int trial = 0; trial < 50 && answer.empty(); ++trial) {
        answer = get("GET /", host());
    }
    EXPECT_EQ(answer.substr(9, 3), "200");
}

TEST_F(HttpServerTest, the_next_free_port_of_the_range_is_taken) {
    const std::uint16_t first = port_of(server);
    web::HttpServer second(context, {first, kTestPorts.last}, kAssets);
    EXPECT_GT(port_of(second), first);
    EXPECT_THROW(web::HttpServer(context, {first, first}, kAssets), support::Failure);
}

}  // namespace
