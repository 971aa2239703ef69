#include "app/program.h"

#include <csignal>
#include <cstdlib>
#include <exception>

namespace app {

Program::Program(const std::string& folder, std::span<const web::Asset> page)
    : platform_(folder),
      cockpit_(platform_.platform()),
      server_(platform_.loop.io_context(), {}, page),
      presenter_(platform_.loop.io_context(), platform_.loop, cockpit_.panels(), platform_.boxes, server_,
                 std::string(tables::kProgramName)),
      signals_(platform_.loop.io_context(), SIGINT, SIGTERM) {
    platform_.loop.on_terminate = [this] { cockpit_.exit(); };
    await_second_signal();
}

// The first signal ends the program in good order, behind the task in hand, which may wait long for a simulator that
// hangs. Whoever asks again wants it gone; the system closes the ports.
void Program::await_second_signal() {
    signals_.async_wait([this](const boost::system::error_code& error, int) {
        if (error) {
            return;
        }
        if (++signal_count_ > 1) {
            std::_Exit(EXIT_FAILURE);
        }
        await_second_signal();
    });
}

void Program::run() {
    cockpit_.start();
    while (!platform_.loop.stopped()) {
        try {
            platform_.loop.run();
        } catch (const std::exception& mistake) {
            // Not a failure that a handler has foreseen: the handler has ended there, the cockpit goes on.
            platform_.loop.on_unhandled_failure(mistake.what());
        }
    }
}

}  // namespace app
