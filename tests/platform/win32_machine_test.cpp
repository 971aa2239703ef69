#include <gtest/gtest.h>

#include <array>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "platform/win32/win32_platform.h"
#include "tests/platform/machines.h"
#include "tests/platform/scratch_folder.h"
#include "tests/windows/line_server.h"

namespace platform_tests {
namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;

// The port of the line server on the loopback address, whose line is the COM port that the tests use.
std::uint16_t line_server_port() {
    const char* port = std::getenv("LINE_SERVER_PORT");
    if (port == nullptr) {
        throw std::runtime_error("LINE_SERVER_PORT does not tell where the line server is");
    }
    return static_cast<std::uint16_t>(std::atoi(port));
}

// Speaks to the line server, whose replies come in on the machine's own loop.
class Win32DeviceEnd : public DeviceEnd {
  public:
    explicit Win32DeviceEnd(platform::win32::Win32Loop& loop) : loop_(loop), socket_(loop.io_context()) {
        socket_.connect(tcp::endpoint(boost::asio::ip::address_v4::loopback(), line_server_port()));
        socket_.set_option(tcp::no_delay(true));
        read_head();
        plug();
    }
    void deliver(std::string_view bytes) override { send(line_server::kBytes, bytes); }
    void unplug() override { order(line_server::kUnplug); }
    void plug() override { order(line_server::kPlug); }

  private:
    void send(char kind, std::string_view bytes) {
        boost::asio::write(socket_, boost::asio::buffer(line_server::frame(kind, bytes)));
    }
    void order(char kind) {
        done_ = 0;
        send(kind, {});
        while (done_ != kind) {
            loop_.io_context().run_one();
        }
    }
    void read_head() {
        boost::asio::async_read(socket_, boost::asio::buffer(head_), [this](const error_code& error, std::size_t) {
            if (error) {
                return;
            }
            bytes_.resize(line_server::length_of(head_));
            boost::asio::async_read(socket_, boost::asio::buffer(bytes_), [this](const error_code& cut, std::size_t) {
                if (!cut) {
                    take();
                    read_head();
                }
            });
        });
    }
    void take() {
        if (head_[0] == line_server::kBytes) {
            received += bytes_;
        } else {
            done_ = head_[0];
        }
    }

    platform::win32::Win32Loop& loop_;
    tcp::socket socket_;
    std::array<char, line_server::kHead> head_{};
    std::string bytes_;
    char done_ = 0;
};

class Win32Machine : public Machine {
  public:
    ~Win32Machine() override {
        end_.reset();
        platform_.loop.io_context().poll();  // its last read ends
    }
    EventLoop& loop() override { return platform_.loop; }
    platform::StackedBoxes& boxes() override { return boxes_; }
    platform::FileStore& files() override { return platform_.files; }
    void write_protect(const std::string& name) override {
        std::filesystem::permissions(folder_.file(name), std::filesystem::perms::owner_read);
    }
    platform::SerialPorts& serial_ports() override { return platform_.serial_ports; }
    DeviceEnd& line(int) override {
        end_ = std::make_unique<Win32DeviceEnd>(platform_.loop);
        return *end_;
    }
    void block(Milliseconds duration) override { std::this_thread::sleep_for(duration); }

  private:
    ScratchFolder folder_;
    platform::win32::Win32Platform platform_{folder_.path()};
    platform::StackedBoxes boxes_{platform_.loop, {}};
    std::unique_ptr<Win32DeviceEnd> end_;
};

}  // namespace

std::unique_ptr<Machine> native_machine() {
    return std::make_unique<Win32Machine>();
}

}  // namespace platform_tests
