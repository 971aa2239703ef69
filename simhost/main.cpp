#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/read_until.hpp>
#include <boost/asio/streambuf.hpp>
#include <boost/asio/write.hpp>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/posix/posix_loop.h"
#include "platform/posix/posix_machine.h"
#include "platform/posix/posix_sim_server.h"
#include "simhost/control.h"
#include "simhost/simulator.h"
#include "support/failure.h"

// The stand-in simulator as a program: it flies its circuit, answers clients as the window class of a simulator would,
// and takes commands on standard input and on a socket in its working folder.
namespace {

using platform::posix::PosixLoop;
using platform::posix::PosixSimServer;
using ControlProtocol = boost::asio::local::stream_protocol;

constexpr const char* kWindowClass = "UIPCMAIN";
constexpr const char* kControlSocket = "simhost.control";
constexpr platform::Milliseconds kStepInterval{20};
constexpr std::chrono::milliseconds kLongestStep{250};  // after a pause of the machine the flight goes on where it was
constexpr std::size_t kLongestLine = 4096;

using LineHandler = std::function<std::string(std::string_view line)>;

// Lines from a stream, each answered on it or on standard output. Asio's handlers only queue tasks of the loop.
template <typename Stream>
class LineReader : public std::enable_shared_from_this<LineReader<Stream>> {
  public:
    LineReader(PosixLoop& loop, Stream stream, std::FILE* answers, LineHandler handler)
        : loop_(loop), stream_(std::move(stream)), answers_(answers), handler_(std::move(handler)) {}

    void read_next() {
        boost::asio::async_read_until(
            stream_, buffer_, '\n',
            [self = this->shared_from_this()](const boost::system::error_code& error, std::size_t length) {
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
        // An empty line ends the answer, which may have several lines.
        answer(handler_(line) + (answers_ != nullptr ? "\n" : "\n\n"));
    }

    void answer(std::string text) {
        if (answers_ != nullptr) {
            std::fputs(text.c_str(), answers_);
            std::fflush(answers_);
            read_next();
            return;
        }
        auto kept = std::make_shared<std::string>(std::move(text));
        boost::asio::async_write(
            stream_, boost::asio::buffer(*kept),
            [self = this->shared_from_this(), kept](const boost::system::error_code& error, std::size_t) {
                if (!error) {
                    self->read_next();
                }
            });
    }

    PosixLoop& loop_;
    Stream stream_;
    std::FILE* answers_;
    LineHandler handler_;
    boost::asio::streambuf buffer_{kLongestLine};
};

class SimhostProgram {
  public:
    SimhostProgram() : step_timer_(loop_, "step", kStepInterval, [this] { step(); }), acceptor_(loop_.io_context()) {
        start_clock();
        control_.on_quit = [this] { loop_.stop(); };
        control_.on_restart = [this](std::chrono::milliseconds away) { go_away(away); };
        open_server();
        open_control_socket();
        read_standard_input();
        last_step_ = loop_.now();
        step_timer_.start();
    }

    ~SimhostProgram() {
        std::error_code ignored;
        std::filesystem::remove(kControlSocket, ignored);
    }

    SimhostProgram(const SimhostProgram&) = delete;
    SimhostProgram& operator=(const SimhostProgram&) = delete;

    void run() {
        std::printf("simhost flies; clients find it as %s, commands go to %s (try \"help\")\n", kWindowClass,
                    kControlSocket);
        std::fflush(stdout);
        loop_.run();
    }

  private:
    // The simulated day is the machine's day.
    void start_clock() {
        const platform::DateTime now = platform::posix::PosixWallClock().local_now();
        using namespace std::chrono;
        const auto day = sys_days(year(now.year) / month(static_cast<unsigned>(now.month)) /
                                  std::chrono::day(static_cast<unsigned>(now.day)));
        const int day_of_year = static_cast<int>((day - sys_days(year(now.year) / 1 / 1)).count()) + 1;
        simulator_.aircraft().clock =
            simhost::SimClock(now.year, day_of_year, now.hour * 3600.0 + now.minute * 60.0 + now.second);
    }

    void step() {
        const platform::TimePoint now = loop_.now();
        const auto elapsed = std::min<platform::Duration>(now - last_step_, kLongestStep);
        last_step_ = now;
        simulator_.step(elapsed);
    }

    void open_server() {
        server_.emplace(loop_, kWindowClass,
                        [this](std::uint8_t* block, std::size_t size) { return simulator_.answer(block, size); });
        pass_faults_on();
    }

    void go_away(std::chrono::milliseconds away) {
        server_.reset();
        loop_.post_after(away, [this] {
            if (!server_) {
                open_server();
            }
        });
    }

    // Silence and lateness are the transport's part.
    void pass_faults_on() {
        if (server_) {
            server_->fault = simulator_.server().silent() ? platform::posix::ServerFault::silent
                                                          : platform::posix::ServerFault::none;
            server_->answer_delay = simulator_.server().answer_delay();
        }
    }

    std::string execute(std::string_view line) {
        std::string answer = control_.execute(line);
        pass_faults_on();
        return answer;
    }

    void open_control_socket() {
        // The window class is ours by now, so a socket of that name is left over from a program that has ended.
        std::error_code ignored;
        std::filesystem::remove(kControlSocket, ignored);
        boost::system::error_code error;
        acceptor_.open(ControlProtocol(), error);
        if (!error) {
            acceptor_.bind(ControlProtocol::endpoint(kControlSocket), error);
        }
        if (!error) {
            std::filesystem::permissions(kControlSocket, std::filesystem::perms::owner_all, ignored);
            acceptor_.listen(boost::asio::socket_base::max_listen_connections, error);
        }
        if (error) {
            throw support::Failure(std::string("The control socket can't be made: ") + error.message());
        }
        accept_next();
    }

    void accept_next() {
        acceptor_.async_accept([this](const boost::system::error_code& error, ControlProtocol::socket socket) {
            if (!error) {
                std::make_shared<LineReader<ControlProtocol::socket>>(
                    loop_, std::move(socket), nullptr, [this](std::string_view line) { return execute(line); })
                    ->read_next();
                accept_next();
            }
        });
    }

    // Commands also come from standard input where it is a terminal or a pipe.
    void read_standard_input() {
        using Descriptor = boost::asio::posix::stream_descriptor;
        Descriptor input(loop_.io_context());
        boost::system::error_code error;
        input.assign(0, error);
        if (!error) {
            std::make_shared<LineReader<Descriptor>>(loop_, std::move(input), stdout, [this](std::string_view line) {
                return execute(line);
            })->read_next();
        }
    }

    PosixLoop loop_;
    simhost::Simulator simulator_;
    simhost::Control control_{simulator_};
    platform::Timer step_timer_;
    platform::TimePoint last_step_{};
    std::optional<PosixSimServer> server_;
    ControlProtocol::acceptor acceptor_;
};

}  // namespace

int main() {
    try {
        SimhostProgram().run();
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "simhost: %s\n", failure.what());
        return 1;
    }
}
