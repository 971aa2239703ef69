// The simulated hardware: puts the devices of the working folder's configuration on virtual serial ports, and shows
// them as a virtual cockpit in the browser. Prints the page's address; takes commands on standard input ("help").

#include <cstdio>
#include <exception>
#include <string>

#include "bench/bench_program.h"
#include "platform/log_line.h"
#include "platform/posix/line_input.h"
#include "platform/posix/posix_machine.h"
#include "support/failure.h"
#include "web/assets.h"

namespace {

void say(const std::string& text) {
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
}

void log(const std::string& text) {
    std::fprintf(stderr, "bench: %s\n", platform::log_line(text).c_str());
}

void run() {
    platform::posix::PosixLoop loop;
    tables::CoreTables tables;
    bench::load_tables(".", tables, log);
    bench::BenchProgram program(loop, ".", tables, web::bench_assets(), bench::kBenchPorts, log);
    say(program.address());
    const platform::posix::LineInput commands(loop, 0, [&program](std::string_view line) {
        const std::string answer = program.command(line);
        if (!answer.empty()) {
            say(answer);
        }
    });
    loop.run();
}

}  // namespace

int main() {
    try {
        run();
        return 0;
    } catch (const platform::LoopStopped&) {
        return 0;
    } catch (const support::Failure& failure) {
        log(failure.description());
    } catch (const std::exception& failure) {
        log(failure.what());
    }
    return 1;
}
