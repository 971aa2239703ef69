#include "platform/event_loop.h"

#include <vector>

#include "support/failure.h"
#include "tests/platform/machines.h"

namespace platform_tests {
namespace {

using platform::Duration;
using platform::LoopStopped;
using platform::TimePoint;
using platform::Timer;

class EventLoopContract : public ContractTest {};
INSTANTIATE_TEST_SUITE_P(BackEnds, EventLoopContract, testing::ValuesIn(kBackEnds), back_end_name);

TEST_P(EventLoopContract, a_timer_comes_at_the_end_of_each_period_until_it_is_stopped) {
    std::vector<Duration> calls;
    const TimePoint begin = loop_.now();
    Timer timer(loop_, "timer", Milliseconds(20), [&] { calls.push_back(loop_.now() - begin); });
    EXPECT_FALSE(machine_->run_until([&] { return !calls.empty(); }, Milliseconds(40))) << "it runs before its start";
    timer.start();
    const Duration started = loop_.now() - begin;
    ASSERT_TRUE(machine_->run_until([&] { return calls.size() == 3; }));
    for (std::size_t call = 0; call < calls.size(); ++call) {
        EXPECT_GE(calls[call], started + (static_cast<int>(call) + 1) * Milliseconds(20)) << call;
    }
    timer.stop();
    machine_->run_for(Milliseconds(60));
    EXPECT_EQ(calls.size(), 3U);
}

TEST_P(EventLoopContract, periods_missed_by_a_late_handler_collapse_into_one_call) {
    int calls = 0;
    Timer timer(loop_, "timer", Milliseconds(10), [&] {
        if (++calls == 1) {
            machine_->block(Milliseconds(55));
        }
    });
    const TimePoint begin = loop_.now();
    timer.start();
    ASSERT_TRUE(machine_->run_until([&] { return calls == 3; }));
    const auto periods = (loop_.now() - begin) / Milliseconds(10);
    EXPECT_GE(timer.missed_periods(), 5U);
    EXPECT_LE(static_cast<std::int64_t>(timer.missed_periods()) + calls, periods);
    EXPECT_GE(timer.longest_run(), Milliseconds(55));
}

TEST_P(EventLoopContract, a_handler_is_not_entered_again_while_it_waits_and_the_others_run_on) {
    int depth = 0;
    int deepest = 0;
    int others = 0;
    bool left = false;
    Timer other(loop_, "other", Milliseconds(5), [&] { ++others; });
    Timer timer(loop_, "timer", Milliseconds(5), [&] {
        deepest = std::max(deepest, ++depth);
        const int before = others;
        loop_.yield_until([&] { return others >= before + 5; });
        --depth;
        left = true;
    });
    other.start();
    timer.start();
    ASSERT_TRUE(machine_->run_until([&] { return left; }));
    EXPECT_EQ(deepest, 1);
}

TEST_P(EventLoopContract, starting_a_timer_or_changing_its_interval_begins_a_new_period) {
    int calls = 0;
    Timer timer(loop_, "timer", std::chrono::hours(1), [&] { ++calls; });
    timer.start();
    machine_->run_for(Milliseconds(20));
    const TimePoint changed = loop_.now();
    timer.set_interval(Milliseconds(30));
    ASSERT_TRUE(machine_->run_until([&] { return calls == 1; }));
    EXPECT_GE(loop_.now(), changed + Milliseconds(30));

    timer.stop();
    timer.set_interval(Milliseconds(50));
    EXPECT_FALSE(timer.enabled()) << "a new interval does not switch a timer on";
    timer.start();
    machine_->block(Milliseconds(40));
    const TimePoint restarted = loop_.now();
    timer.start();
    ASSERT_TRUE(machine_->run_until([&] { return calls == 2; }));
    EXPECT_GE(loop_.now(), restarted + Milliseconds(50));
}

TEST_P(EventLoopContract, a_handler_can_change_stop_and_destroy_its_own_timer) {
    int calls = 0;
    auto timer = std::make_unique<Timer>(loop_, "timer", Milliseconds(5), [&] {
        ++calls;
        loop_.timers().front()->set_interval(Milliseconds(7));
    });
    timer->start();
    ASSERT_TRUE(machine_->run_until([&] { return calls == 2; }));
    timer = std::make_unique<Timer>(loop_, "timer", Milliseconds(5), [&] {
        ++calls;
        timer.reset();
    });
    timer->start();
    ASSERT_TRUE(machine_->run_until([&] { return calls == 3; }));
    machine_->run_for(Milliseconds(30));
    EXPECT_EQ(calls, 3);
}

TEST_P(EventLoopContract, tasks_run_in_the_order_in_which_they_fell_due) {
    std::string order;
    loop_.post_after(Milliseconds(60), [&] { order += 'e'; });
    loop_.post_after(Milliseconds(20), [&] { order += 'c'; });
    loop_.post([&] { order += 'a'; });
    loop_.post_user_command([&] { order += 'b'; });
    loop_.post_after(Milliseconds(40), [&] { order += 'd'; });
    ASSERT_TRUE(machine_->run_until([&] { return order.size() == 5; }));
    EXPECT_EQ(order, "abcde");
}

TEST_P(EventLoopContract, what_is_late_runs_in_the_order_in_which_it_fell_due) {
    std::string order;
    Timer timer(loop_, "timer", Milliseconds(20), [&] { order += 't'; });
    timer.start();
    loop_.post_after(Milliseconds(10), [&] { order += 'a'; });
    loop_.post_after(Milliseconds(30), [&] { order += 'b'; });
    machine_->block(Milliseconds(35));
    loop_.post_user_command([&] { order += 'u'; });
    loop_.yield_once();
    timer.stop();
    EXPECT_EQ(order, "atbu");
}

TEST_P(EventLoopContract, one_look_at_the_queue_does_not_wait_for_what_comes_later) {
    int ran = 0;
    loop_.post([&] {
        ++ran;
        loop_.post_after(std::chrono::hours(1), [&] { ran += 100; });
    });
    loop_.yield_once();
    EXPECT_EQ(ran, 1);
}

TEST_P(EventLoopContract, user_commands_wait_while_a_box_is_open_and_tasks_do_not) {
    std::string order;
    bool closed = false;
    loop_.post([&] {
        loop_.yield_until_modal([&] { return closed; });
        order += "box closed ";
    });
    loop_.post_user_command([&] { order += "command"; });
    loop_.post_after(Milliseconds(20), [&] { order += "task "; });
    loop_.post_after(Milliseconds(30), [&] { closed = true; });
    ASSERT_TRUE(machine_->run_until([&] { return order.find("command") != std::string::npos; }));
    EXPECT_EQ(order, "task box closed command");
}

TEST_P(EventLoopContract, stopping_unwinds_every_wait_and_ends_the_loop) {
    int unwound = 0;
    struct Unwinding {
        int& count;
        ~Unwinding() { ++count; }
    };
    const auto wait_for_ever = [&] {
        const Unwinding unwinding{unwound};
        loop_.yield_until([] { return false; });
        FAIL() << "the wait has ended";
    };
    loop_.post(wait_for_ever);
    loop_.post_after(Milliseconds(5), wait_for_ever);
    loop_.post_after(Milliseconds(10), [&] { loop_.stop(); });
    loop_.run();
    EXPECT_EQ(unwound, 2);
    EXPECT_THROW(loop_.yield_until([] { return false; }), LoopStopped);
}

TEST_P(EventLoopContract, a_failure_that_nobody_deals_with_is_told_and_the_loop_goes_on) {
    std::vector<std::string> told;
    loop_.on_unhandled_failure = [&](const std::string& description) { told.push_back(description); };
    int calls = 0;
    Timer timer(loop_, "timer", Milliseconds(5), [&] {
        if (++calls == 1) {
            throw support::Failure("The gauge has gone");
        }
    });
    timer.start();
    ASSERT_TRUE(machine_->run_until([&] { return calls == 3; }));
    EXPECT_EQ(told, std::vector<std::string>{"The gauge has gone"});
}

}  // namespace
}  // namespace platform_tests
