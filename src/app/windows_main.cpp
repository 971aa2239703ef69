// The control program on Windows: it has no window of its own, but an icon in the notification area and the page. It
// takes no options and reads no environment: it runs in its working folder.
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>
#include <thread>

#include "app/native.h"
#include "app/program.h"
#include "platform/win32/page_window.h"
#include "platform/win32/tray_icon.h"
#include "support/failure.h"
#include "support/windows_1252.h"

namespace {

using namespace std::chrono_literals;

constexpr const char* kWorkingFolder = ".";
constexpr const wchar_t* kTitle = L"Control program";

// The first start may not have opened its page yet.
constexpr auto kAddressPatience = 5s;
constexpr auto kAddressInterval = 100ms;

void log(const std::string& text) {
    std::fprintf(stderr, "cockpit: %s\n", text.c_str());
    std::fflush(stderr);
}

void open_page(const std::string& address) {
    try {
        platform::win32::open_page(address);
    } catch (const support::Failure& failure) {
        log(failure.description());  // the icon stays, and the cockpit needs no page to fly
    }
}

// A second start in the same folder shows the page of the first.
int show_other(const platform::InstanceLock& lock) {
    const auto limit = std::chrono::steady_clock::now() + kAddressPatience;
    while (lock.other_address().empty() && std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(kAddressInterval);
    }
    const std::string address = lock.other_address();
    if (address.empty()) {
        throw support::Failure("The control program is running already in this folder.");
    }
    std::printf("The control program is running already in this folder: %s\n", address.c_str());
    std::fflush(stdout);
    open_page(address);
    return EXIT_SUCCESS;
}

int run_program() {
    platform::native::InstanceLock lock(kWorkingFolder);
    bool locked = false;
    try {
        locked = lock.acquire();
        if (!locked) {
            return show_other(lock);
        }
    } catch (const support::Failure& failure) {
        // A folder that cannot be written still flies; only a second program would not notice this one.
        log(failure.description());
    }
    app::Program program(kWorkingFolder, web::page_assets());
    const std::string address = program.address();
    if (locked) {
        lock.publish(address);
    }
    std::printf("%s\n", address.c_str());
    std::fflush(stdout);
    const auto exit_cockpit = [&program] {
        program.loop().post_from_any_thread([&program] { program.cockpit().exit(); });
    };
    const platform::win32::TrayIcon icon({.open_panels = [address] { open_page(address); }, .exit = exit_cockpit},
                                         std::string(tables::kProgramName));
    open_page(address);
    program.run();
    return EXIT_SUCCESS;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    std::string trouble;
    try {
        return run_program();
    } catch (const std::exception& failure) {
        trouble = failure.what();
    }
    log(trouble);
    ::MessageBoxW(nullptr, platform::win32::wide(support::to_utf8(trouble)).c_str(), kTitle, MB_ICONERROR | MB_OK);
    return EXIT_FAILURE;
}
