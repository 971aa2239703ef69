#include <chrono>
#include <cstdio>
#include <optional>
#include <string>

#include "app/native.h"
#include "simhost/control.h"
#include "simhost/simulator.h"
#include "support/failure.h"

// The stand-in simulator as a program: it flies its circuit, answers clients as the window class of a simulator would,
// and takes commands on standard input and, on Linux, on a socket in its working folder.
namespace {

constexpr const char* kUsualWindowClass = "UIPCMAIN";
#ifdef _WIN32
constexpr const char* kControlPlace = "its standard input";
#else
constexpr const char* kControlPlace = "simhost.control";
#endif
constexpr platform::Milliseconds kStepInterval{20};
constexpr std::chrono::milliseconds kLongestStep{250};  // after a pause of the machine the flight goes on where it was

class SimhostProgram {
  public:
    SimhostProgram() : step_timer_(loop_, "step", kStepInterval, [this] { step(); }) {
        start_clock();
        control_.on_quit = [this] { loop_.stop(); };
        control_.on_restart = [this](std::chrono::milliseconds away) { go_away(away); };
        control_.on_window = [this](const std::string& window_class) {
            window_class_ = window_class;
            server_.reset();
            open_server();
        };
        open_server();
        open_controls();
        last_step_ = loop_.now();
        step_timer_.start();
    }

    void run() {
        std::printf("simhost flies; clients find it as %s, commands go to %s (try \"help\")\n", window_class_.c_str(),
                    kControlPlace);
        std::fflush(stdout);
        loop_.run();
    }

  private:
    // The simulated day is the machine's day.
    void start_clock() {
        const platform::DateTime now = platform::native::WallClock().local_now();
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
        server_.emplace(loop_, window_class_,
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
            server_->set_fault(simulator_.server().silent() ? platform::ServerFault::silent
                                                            : platform::ServerFault::none);
            server_->set_answer_delay(simulator_.server().answer_delay());
        }
    }

    std::string execute(std::string_view line) {
        std::string answer = control_.execute(line);
        pass_faults_on();
        return answer;
    }

    void open_controls() {
        input_.emplace(loop_, platform::native::standard_input(), [this](std::string_view line) {
            std::printf("%s\n", execute(line).c_str());
            std::fflush(stdout);
        });
#ifndef _WIN32
        // The window class is ours by now, so a socket of that name is left over from a program that has ended.
        socket_.emplace(loop_, kControlPlace, [this](std::string_view line) { return execute(line); });
#endif
    }

    platform::native::Loop loop_;
    std::string window_class_ = kUsualWindowClass;
    simhost::Simulator simulator_;
    simhost::Control control_{simulator_};
    platform::Timer step_timer_;
    platform::TimePoint last_step_{};
    std::optional<platform::native::SimServer> server_;
    std::optional<platform::native::LineInput> input_;
#ifndef _WIN32
    std::optional<platform::posix::LineServer> socket_;
#endif
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
