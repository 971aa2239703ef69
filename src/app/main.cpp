// The control program. It takes no options and reads no environment: it runs in its working folder.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "app/native.h"
#include "app/program.h"
#include "support/failure.h"

namespace {

constexpr const char* kWorkingFolder = ".";

int tell_of_other(const platform::InstanceLock& lock) {
    const std::string address = lock.other_address();
    std::printf("The control program is running already in this folder%s%s\n", address.empty() ? "." : ": ",
                address.c_str());
    return EXIT_FAILURE;
}

int run_program() {
    platform::native::InstanceLock lock(kWorkingFolder);
    bool locked = false;
    try {
        locked = lock.acquire();
        if (!locked) {
            return tell_of_other(lock);
        }
    } catch (const support::Failure& failure) {
        // A folder that cannot be written still flies; only a second program would not notice this one.
        std::fprintf(stderr, "cockpit: %s\n", failure.what());
    }
    app::Program program(kWorkingFolder, web::page_assets());
    if (locked) {
        lock.publish(program.address());
    }
    std::printf("%s\n", program.address().c_str());
    std::fflush(stdout);
    program.run();
    return EXIT_SUCCESS;
}

}  // namespace

int main(int argument_count, char**) {
    if (argument_count > 1) {
        std::fprintf(stderr, "cockpit takes no options; it runs in its working folder.\n");
        return EXIT_FAILURE;
    }
    // A closed output is no reason to end.
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return run_program();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "cockpit: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
