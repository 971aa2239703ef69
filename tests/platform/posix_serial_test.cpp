#include "platform/posix/posix_serial.h"

#include <gtest/gtest.h>

#include "platform/posix/posix_platform.h"
#include "platform/posix/pseudo_terminal.h"
#include "support/failure.h"
#include "tests/platform/scratch_folder.h"

namespace platform_tests {
namespace {

using platform::Milliseconds;
using support::Failure;

constexpr int kNumber = 41;

TEST(PosixSerialPort, a_line_that_nobody_reads_neither_blocks_the_program_nor_tears_a_frame) {
    const ScratchFolder folder;
    platform::posix::PosixPlatform machine(folder.path());
    platform::posix::PseudoTerminal terminal(machine.loop, folder.path(), kNumber);
    std::string received;
    terminal.on_bytes = [&](std::string_view bytes) { received.append(bytes); };
    const auto port = machine.serial_ports.create();
    port->set_number(kNumber);
    port->open();
    // The device's end takes nothing while the loop does not run.
    const int frames = 50000;
    for (int frame = 0; frame < frames; ++frame) {
        std::string text = std::to_string(frame);
        port->write("<" + std::string(6 - text.size(), '0') + text + ">");
    }
    const platform::TimePoint limit = machine.loop.now() + std::chrono::seconds(10);
    platform::Timer heartbeat(machine.loop, "heartbeat", Milliseconds(5), [] {});
    heartbeat.start();
    machine.loop.yield_until(
        [&] { return received.find("<049999>") != std::string::npos || machine.loop.now() > limit; });
    ASSERT_EQ(received.size() % 8, 0U);
    EXPECT_LT(received.size(), 200000U) << "what is old goes when too much waits";
    int last = -1;
    for (std::size_t at = 0; at < received.size(); at += 8) {
        ASSERT_EQ(received[at], '<') << "at " << at;
        ASSERT_EQ(received[at + 7], '>') << "at " << at;
        const int frame = std::stoi(received.substr(at + 1, 6));
        ASSERT_GT(frame, last);
        last = frame;
    }
    EXPECT_EQ(last, frames - 1) << "the newest arrives";
}

TEST(PosixSerialPort, a_device_that_nobody_listens_to_loses_its_bytes_and_a_real_port_keeps_its_name) {
    const ScratchFolder folder;
    platform::posix::PosixPlatform machine(folder.path());
    {
        platform::posix::PseudoTerminal terminal(machine.loop, folder.path(), 1);
        EXPECT_TRUE(std::filesystem::is_symlink(folder.file("ports/COM1")));
        for (int telegram = 0; telegram < 10000; ++telegram) {
            terminal.write(std::string(25, 't'));
        }
        const auto port = machine.serial_ports.create();
        port->set_number(1);
        port->open();
        const platform::TimePoint end = machine.loop.now() + Milliseconds(50);
        machine.loop.post_after(Milliseconds(50), [] {});
        machine.loop.yield_until([&] { return machine.loop.now() >= end; });
        EXPECT_EQ(port->read(), "") << "from before the opening";
        // A bench that was killed leaves its link behind; the next one takes the name over.
        const platform::posix::PseudoTerminal next(machine.loop, folder.path(), 1);
        EXPECT_NE(terminal.link(), "");
    }
    EXPECT_FALSE(std::filesystem::is_symlink(folder.file("ports/COM1")));
    std::filesystem::create_symlink("/dev/ttyUSB7", folder.file("ports/COM1"));
    EXPECT_THROW(platform::posix::PseudoTerminal(machine.loop, folder.path(), 1), Failure);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("ports/COM1")));
}

TEST(PosixSerialPort, what_is_no_serial_line_is_refused) {
    const ScratchFolder folder;
    std::filesystem::create_directory(folder.file("ports"));
    platform::posix::PosixPlatform machine(folder.path());
    const auto port = machine.serial_ports.create();
    port->set_number(1);
    for (const char* target : {"/dev/null", "/dev/shm", "/nowhere"}) {
        std::filesystem::create_symlink(target, folder.file("ports/COM1"));
        EXPECT_THROW(port->open(), Failure) << target;
        EXPECT_FALSE(port->is_open()) << target;
        std::filesystem::remove(folder.file("ports/COM1"));
    }
}

}  // namespace
}  // namespace platform_tests
