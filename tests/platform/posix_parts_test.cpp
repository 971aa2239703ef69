#include <gtest/gtest.h>

#include <sys/resource.h>

#include <array>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <csignal>

#include "platform/posix/parmrk_decoder.h"
#include "platform/posix/posix_loop.h"

namespace platform_tests {
namespace {

using platform::Milliseconds;
using platform::SerialEvent;
using platform::Timer;
using platform::posix::ParmrkDecoder;
using platform::posix::PosixLoop;

// What the decoder makes of the pieces: data as it is, "<break>" and "<framing>" for the events.
std::string decoded(const std::vector<std::string>& pieces) {
    ParmrkDecoder decoder;
    std::string result;
    for (const std::string& piece : pieces) {
        decoder.decode(
            piece, [&](std::string_view bytes) { result.append(bytes); },
            [&](SerialEvent event) { result += event == SerialEvent::break_received ? "<break>" : "<framing>"; });
    }
    return result;
}

TEST(ParmrkDecoder, marks_become_events_wherever_the_stream_is_cut) {
    struct Case {
        std::string marked;
        std::string expected;
    };
    const std::array<Case, 8> cases = {{
        {std::string("abc"), "abc"},
        {std::string("a\0b", 3), std::string("a\0b", 3)},
        {std::string("\xFF\xFF", 2), "\xFF"},
        {std::string("\xFF\x00\x00", 3), "<break>"},
        {std::string("a\xFF\x00\x00z", 5), "a<break>z"},
        {std::string("\xFF\x00\x41z", 4), "<framing>z"},
        {std::string("\xFF\xFF\x00\xFF\xFF\xFF\x00\xFF\xFF\xFF", 10), std::string("\xFF\x00\xFF<framing>\xFF", 13)},
        {std::string("\xFF\x00\x00\xFF\x00\x00", 6), "<break><break>"},
    }};
    for (const Case& line : cases) {
        for (std::size_t cut = 0; cut <= line.marked.size(); ++cut) {
            EXPECT_EQ(decoded({line.marked.substr(0, cut), line.marked.substr(cut)}), line.expected)
                << testing::PrintToString(line.marked) << " cut at " << cut;
        }
    }
}

double processor_seconds() {
    rusage usage{};
    ::getrusage(RUSAGE_THREAD, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

TEST(PosixLoop, it_sleeps_between_its_tasks_also_when_an_outside_event_has_come_first) {
    PosixLoop loop;
    bool over = false;
    loop.post_after(Milliseconds(500), [&] { over = true; });
    boost::asio::steady_timer outside(loop.io_context(), Milliseconds(10));
    outside.async_wait([](const boost::system::error_code&) {});
    const double before = processor_seconds();
    loop.yield_until([&] { return over; });
    EXPECT_LT(processor_seconds() - before, 0.1) << "of half a second";
}

TEST(PosixLoop, while_the_page_is_served_asios_handlers_run_and_tasks_wait) {
    PosixLoop loop;
    int handlers = 0;
    int tasks = 0;
    boost::asio::steady_timer outside(loop.io_context(), Milliseconds(10));
    outside.async_wait([&](const boost::system::error_code&) {
        ++handlers;
        loop.post([&] { ++tasks; });
    });
    const platform::TimePoint end = loop.now() + Milliseconds(50);
    loop.serve_page_until(end);
    EXPECT_GE(loop.now(), end);
    EXPECT_EQ(handlers, 1);
    EXPECT_EQ(tasks, 0);
    loop.yield_once();
    EXPECT_EQ(tasks, 1);
}

TEST(PosixLoop, the_first_signal_asks_the_program_to_end_and_the_second_ends_the_loop) {
    PosixLoop loop;
    int asked = 0;
    loop.on_terminate = [&] {
        ++asked;
        std::raise(SIGTERM);
        loop.yield_until([] { return false; });
    };
    loop.post([] { std::raise(SIGTERM); });
    loop.run();
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(loop.stopped());
}

}  // namespace
}  // namespace platform_tests
