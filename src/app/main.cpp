// The control program: the cockpit on this machine, with its page. It runs in its working folder and takes no options.
#include <cstdio>
#include <exception>
#include <string>

#include "app/cockpit.h"
#include "platform/posix/posix_instance_lock.h"
#include "platform/posix/posix_platform.h"
#include "web/http_server.h"
#include "web/presenter.h"

namespace {

constexpr const char* kFolder = ".";

// Tells a user who starts the program twice where the first one is.
int leave_to_the_other(const platform::InstanceLock& lock) {
    const std::string address = lock.other_address();
    std::printf("The control program is running already in this folder%s%s\n", address.empty() ? "." : ": ",
                address.c_str());
    return 1;
}

int run_program() {
    platform::posix::PosixInstanceLock lock(kFolder);
    if (!lock.acquire()) {
        return leave_to_the_other(lock);
    }
    platform::posix::PosixPlatform machine(kFolder);
    app::Cockpit cockpit(machine.platform());
    web::HttpServer server(machine.loop.io_context(), web::ServerPorts{}, web::page_assets());
    const web::Presenter presenter(machine.loop.io_context(), machine.loop, cockpit.panels(), machine.boxes, server,
                                   std::string(tables::kProgramName));
    lock.publish(server.address());
    std::printf("%s\n", server.address().c_str());
    std::fflush(stdout);
    machine.loop.on_terminate = [&cockpit] { cockpit.exit(); };
    cockpit.start();
    machine.loop.run();
    return 0;
}

}  // namespace

int main() {
    try {
        return run_program();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "cockpit: %s\n", failure.what());
        return 1;
    }
}
