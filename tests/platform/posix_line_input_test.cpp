#include "platform/posix/line_input.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

namespace platform::posix {
namespace {

TEST(LineInput, gives_lines_however_the_bytes_come_and_ends_with_its_descriptor) {
    PosixLoop loop;
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    std::vector<std::string> lines;
    {
        const LineInput input(loop, pipe[0], [&](std::string_view line) { lines.emplace_back(line); });
        const auto send = [&](const std::string& text) {
            ASSERT_EQ(::write(pipe[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        };
        send("one\ntw");
        loop.yield_until([&] { return lines.size() == 1; });
        send("o\n\n" + std::string(1500, 'x') + "\n");
        loop.yield_until([&] { return lines.size() == 5; });
        ::close(pipe[1]);
        loop.yield_once();
    }
    ::close(pipe[0]);
    EXPECT_EQ(lines, (std::vector<std::string>{"one", "two", "", std::string(1000, 'x'), std::string(500, 'x')}));
}

TEST(LineInput, takes_no_harm_from_a_descriptor_without_lines) {
    PosixLoop loop;
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    const LineInput input(loop, nothing, [](std::string_view) { FAIL(); });
    const LineInput closed(loop, -1, [](std::string_view) { FAIL(); });
    loop.yield_once();
    ::close(nothing);
}

}  // namespace
}  // namespace platform::posix
