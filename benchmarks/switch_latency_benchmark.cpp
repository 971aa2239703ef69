// How long it takes from a contact that a hand closes to the value in the simulator, of which 3 ms are the module's
// debouncing.
// In virtual time: the design, with lines that take their time and a simulator that takes none, at random phases of the
// module's cycle and the simulator's. On this machine: the whole program on pseudo-terminals, against module and
// simulator in another process.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "app/program.h"
#include "bench/devices/connect.h"
#include "bench/devices/io_module.h"
#include "bench/unattended_boxes.h"
#include "platform/posix/posix_files.h"
#include "platform/posix/posix_machine.h"
#include "platform/posix/posix_sim_server.h"
#include "platform/posix/pseudo_terminal.h"
#include "support/failure.h"
#include "tables/configuration_store.h"
#include "tests/iomodule/iom_world.h"
#include "tests/platform/scratch_folder.h"
#include "web/assets.h"

namespace {

using Millis = std::chrono::duration<double, std::milli>;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;

void print(const char* what, std::vector<double> latencies_ms) {
    if (latencies_ms.empty()) {
        throw support::Failure(std::string(what) + ": no switch has acted");
    }
    std::sort(latencies_ms.begin(), latencies_ms.end());
    const auto at = [&](double share) {
        return latencies_ms[std::min(latencies_ms.size() - 1,
                                     static_cast<std::size_t>(share * static_cast<double>(latencies_ms.size())))];
    };
    std::printf("%-22s %5zu flips   least %5.1f ms   median %5.1f ms   p90 %5.1f ms   p99 %5.1f ms   worst %5.1f ms\n",
                what, latencies_ms.size(), latencies_ms.front(), at(0.5), at(0.9), at(0.99), latencies_ms.back());
    std::fflush(stdout);
}

// --- In virtual time ------------------------------------------------------------------------------------------------

constexpr int kStarts = 40;  // each with another distance between the two cycles
constexpr int kFlipsOfStart = 50;
constexpr int kWorldFunction = 10;
constexpr int kLongestCycleUs = 40'000;

void flip_in_virtual_time(std::mt19937& random, std::vector<double>& latencies_ms) {
    iom_test::IomWorld world;
    world.line1.record = false;
    world.add_switch(0, kWorldFunction);
    bench::IoModule module(world.machine.loop);
    bench::connect(module, world.line1);
    world.start();
    auto& loop = world.machine.loop;
    const auto pause = [&] { loop.advance(milliseconds(100) + microseconds(random() % kLongestCycleUs)); };
    world.sim_com.StopSimcom();
    pause();
    world.sim_com.RunSimcom();
    module.set_contact(0, true);  // the first one that is on makes all act
    pause();
    platform::TimePoint written;
    world.server.on_write = [&](std::uint32_t, std::uint32_t) { written = loop.now(); };
    for (int flip = 0; flip < kFlipsOfStart; ++flip) {
        pause();
        const platform::TimePoint flipped = loop.now();
        written = {};
        module.set_contact(0, flip % 2 != 0);
        loop.advance(milliseconds(200));
        if (written == platform::TimePoint{}) {
            throw support::Failure("a switch has not acted");
        }
        latencies_ms.push_back(Millis(written - flipped).count());
    }
}

// --- On this machine ------------------------------------------------------------------------------------------------

constexpr int kFlips = 150;
constexpr std::int16_t kPort = 3;
constexpr int kFunction = 51;
constexpr int kFramesOfRun = 50;  // so many from the program: it runs
constexpr seconds kPatience{90};

constexpr std::int32_t function_offset(int number) {
    return 0x5000 + 8 * number;
}

void write_configuration(const std::string& folder) {
    const auto tables = std::make_unique<tables::CoreTables>();
    tables::SetConstants(*tables);
    tables->ProgramName = tables::kProgramName;
    tables->ConfigFileName = tables::kDefaultConfigFileName;
    tables->AutoStartDelay = 1;
    tables->IomPort1 = kPort;
    // The run itself reads some of the standard functions.
    for (int number = 1; number <= kFunction; ++number) {
        tables::FunctionRow& function = tables->functions[static_cast<std::size_t>(number)];
        function.FunctionShortName = function.FunctionFullName = "Function";
        function.FunctionNumber = static_cast<std::int16_t>(number);
        function.FunctionDataType = tables::kDouble;
        function.FunctionOffset1 = function_offset(number);
        function.FunctionMultiplier = function.FunctionDivider = 1;
        function.FunctionMaximum = 100;
    }
    tables->IomRowCount = 2;  // row 0 is never used
    tables->iom.resize(3);
    tables::IomRow& row = tables->iom[1];
    row.IomDeviceId = bus::kIoModule1Id;
    row.IomSignalType = iomodule::kSignalSwitch;
    row.IomFunction = kFunction;
    row.IomSeqNr = 1;
    row.IomValueA = 100;
    platform::posix::PosixFiles files(folder);
    platform::posix::PosixWallClock clock;
    bench::UnattendedBoxes boxes([](const std::string& text) { std::fprintf(stderr, "%s\n", text.c_str()); });
    tables::ConfigurationStore store(*tables, files, boxes, clock);
    store.prepare_header("N/A", "N/A");
    store.SaveConfiguration();
    store.SaveStartFile(tables->ConfigFileName);
}

// The far ends of the lines: the simulator, and the module on a line whose telegrams come when their last byte would.
class FarEnd {
  public:
    explicit FarEnd(const std::string& folder)
        : line_(loop_, folder, kPort), hand_(loop_, "hand", milliseconds(1), [this] { move_hand(); }) {
        bench::IoModule& module = module_;
        line_.on_bytes = [&module](std::string_view bytes) { module.receive(bytes); };
        module_.on_send = [this](std::string_view bytes) { line_.write(bytes); };
        server_.on_write = [this](std::uint32_t offset, std::uint32_t) {
            if (offset == function_offset(kFunction) && waiting_) {
                waiting_ = false;
                latencies_ms_.push_back(Millis(loop_.now() - flipped_).count());
                rest();
            }
        };
        hand_.start();
        loop_.post_after(kPatience, [this] { loop_.stop(); });
    }

    std::vector<double> run() {
        loop_.run();
        if (!latencies_ms_.empty()) {
            latencies_ms_.erase(latencies_ms_.begin());  // the first one waits for the run to begin
        }
        return latencies_ms_;
    }

  private:
    void rest() { next_flip_ = loop_.now() + milliseconds(100) + microseconds(random_() % 100'000); }
    void move_hand() {
        if (module_.statistics().frames_in < kFramesOfRun || waiting_ || loop_.now() < next_flip_) {
            return;
        }
        if (latencies_ms_.size() > kFlips) {
            loop_.stop();
            return;
        }
        closed_ = !closed_;
        waiting_ = true;
        flipped_ = loop_.now();
        module_.set_contact(0, closed_);
    }

    platform::posix::PosixLoop loop_;
    simhost::OffsetSpace space_;
    simhost::BlockServer server_{space_};
    platform::posix::PosixSimServer simulator_{
        loop_, "UIPCMAIN", [this](std::uint8_t* block, std::size_t size) { return server_.answer(block, size).value; }};
    bench::IoModule module_{loop_, bench::kTimelessLine};
    platform::posix::PseudoTerminal line_;
    platform::Timer hand_;
    std::mt19937 random_{20240517};
    std::vector<double> latencies_ms_;
    platform::TimePoint flipped_{};
    platform::TimePoint next_flip_{};
    bool closed_ = false;
    bool waiting_ = false;
};

// The child's ends of the lines are there before the program looks for them or come soon after.
int flip_on_this_machine() {
    const platform_tests::ScratchFolder folder;
    write_configuration(folder.path());
    const pid_t far_end = ::fork();
    if (far_end == 0) {
        try {
            print("on this machine", FarEnd(folder.path()).run());
            std::_Exit(EXIT_SUCCESS);
        } catch (const std::exception& failure) {
            std::fprintf(stderr, "%s\n", failure.what());
            std::_Exit(EXIT_FAILURE);
        }
    }
    int status = 0;
    bool ended = false;
    try {
        app::Program program(folder.path(), web::page_assets());
        platform::Timer watch(program.loop(), "watch", milliseconds(200), [&] {
            if (::waitpid(far_end, &status, WNOHANG) == far_end) {
                ended = true;
                watch.stop();
                program.cockpit().exit();
            }
        });
        watch.start();
        program.run();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
    }
    if (!ended) {
        ::kill(far_end, SIGTERM);
        ::waitpid(far_end, &status, 0);
    }
    return ended && WIFEXITED(status) ? WEXITSTATUS(status) : EXIT_FAILURE;
}

}  // namespace

int main() {
    try {
        std::mt19937 random(20240517);
        std::vector<double> latencies_ms;
        for (int start = 0; start < kStarts; ++start) {
            flip_in_virtual_time(random, latencies_ms);
        }
        print("in virtual time", std::move(latencies_ms));
        return flip_on_this_machine();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return EXIT_FAILURE;
    }
}
