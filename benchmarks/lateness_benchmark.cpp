// How late the 50 ms tick of the demo and the 40 ms ticks of its yokes come in the whole program, against a bare
// timerfd loop of another process in the same run. Usage: benchmark_lateness FOLDER SECONDS   (a working folder;
// simulator and hardware should be there)
#include <sys/timerfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <vector>

#include "app/program.h"
#include "web/assets.h"

namespace {

using std::chrono::steady_clock;
using Micros = std::chrono::duration<double, std::micro>;

constexpr std::chrono::milliseconds kTick{50};
constexpr std::chrono::milliseconds kYokeTick{40};

void print(const char* what, std::vector<double> late_us) {
    if (late_us.empty()) {
        std::printf("%-22s no ticks\n", what);
        return;
    }
    std::sort(late_us.begin(), late_us.end());
    const auto at = [&](double share) {
        return late_us[std::min(late_us.size() - 1,
                                static_cast<std::size_t>(share * static_cast<double>(late_us.size())))];
    };
    std::printf("%-22s %6zu ticks   median %7.1f us   p90 %7.1f us   p99 %7.1f us   worst %7.1f us\n", what,
                late_us.size(), at(0.5), at(0.9), at(0.99), late_us.back());
    std::fflush(stdout);
}

// The least that a program can do: sleep on a timer of the system and look at the clock.
void run_bare_loop(int seconds) {
    const int timer = ::timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
    const timespec interval{0, std::chrono::nanoseconds(kTick).count()};
    const itimerspec setting{interval, interval};
    const auto start = steady_clock::now();
    ::timerfd_settime(timer, 0, &setting, nullptr);
    std::vector<double> late_us;
    std::uint64_t ticks = 0;
    while (steady_clock::now() - start < std::chrono::seconds(seconds)) {
        std::uint64_t expired = 0;
        if (::read(timer, &expired, sizeof expired) != static_cast<ssize_t>(sizeof expired)) {
            return;
        }
        ticks += expired;
        late_us.push_back(Micros(steady_clock::now() - start - ticks * kTick).count());
    }
    print("bare timerfd loop", late_us);
}

void run_program(const std::string& folder, int seconds) {
    app::Program program(folder, web::page_assets());
    std::vector<double> late_us;
    late_us.reserve(static_cast<std::size_t>(seconds) * 30);
    const platform::Timer& tick = program.cockpit().run_panel().process_timer();
    std::vector<double> yokes_late_us;
    yokes_late_us.reserve(late_us.capacity() * 3);
    const std::array<const platform::Timer*, 2> yoke_ticks = {&program.cockpit().yoke1().ProcessTimer,
                                                              &program.cockpit().yoke2().ProcessTimer};
    // Looks halfway between two ticks, so that it sees each of them and is in nobody's way.
    platform::Timer probe(program.loop(), "probe", kTick, [&] {
        if (program.cockpit().run_panel().running()) {
            late_us.push_back(Micros(tick.last_delay()).count());
        }
    });
    platform::Timer yoke_probe(program.loop(), "yoke probe", kYokeTick, [&] {
        for (const platform::Timer* const yoke_tick : yoke_ticks) {
            if (yoke_tick->enabled()) {
                yokes_late_us.push_back(Micros(yoke_tick->last_delay()).count());
            }
        }
    });
    platform::Timer watch(program.loop(), "watch", std::chrono::milliseconds(1), [&] {
        if (program.cockpit().run_panel().running()) {
            watch.stop();
            program.loop().post_after(kTick * 3 / 2, [&] { probe.start(); });
            // The yokes start with the run, 40 ms apart from nothing else.
            program.loop().post_after(kYokeTick * 3 / 2, [&] { yoke_probe.start(); });
            program.loop().post_after(std::chrono::seconds(seconds), [&] { program.cockpit().exit(); });
        }
    });
    watch.start();
    program.loop().post_after(std::chrono::seconds(seconds + 30), [&] { program.cockpit().exit(); });
    program.run();
    print("tick of the program", late_us);
    print("ticks of the yokes", yokes_late_us);
}

}  // namespace

int main(int count, char** words) {
    if (count != 3) {
        std::fprintf(stderr, "usage: benchmark_lateness FOLDER SECONDS\n");
        return 2;
    }
    const int seconds = std::atoi(words[2]);
    // The start of a run takes about ten seconds; both measure the same span.
    const pid_t bare = ::fork();
    if (bare == 0) {
        ::sleep(10);
        run_bare_loop(seconds);
        return 0;
    }
    try {
        run_program(words[1], seconds);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
    }
    ::waitpid(bare, nullptr, 0);
    return 0;
}
