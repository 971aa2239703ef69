#include "platform/boxes.h"

#include <map>
#include <vector>

#include "tests/platform/machines.h"

namespace platform_tests {
namespace {

using platform::Answer;
using platform::OpenBox;
using platform::Timer;

class BoxesContract : public ContractTest {
  protected:
    using Action = std::function<void(std::uint32_t id)>;

    // A task that opens a box stands in its wait, so what a test does meanwhile is a task too: it comes once, `delay`
    // after the box of that text has come up.
    void when_open(const std::string& text, Action action, Milliseconds delay = Milliseconds(5)) {
        script_[text] = {std::move(action), delay};
        boxes_.on_change = [this] {
            if (boxes_.open_boxes().empty()) {
                return;
            }
            const OpenBox& top = boxes_.open_boxes().back();
            const auto entry = script_.find(top.text);
            if (entry != script_.end()) {
                loop_.post_after(entry->second.second, [what = entry->second.first, id = top.id] { what(id); });
                script_.erase(entry);
            }
        };
    }

    platform::StackedBoxes& boxes_ = machine_->boxes();

  private:
    std::map<std::string, std::pair<Action, Milliseconds>> script_;
};
INSTANTIATE_TEST_SUITE_P(BackEnds, BoxesContract, testing::ValuesIn(kBackEnds), back_end_name);

TEST_P(BoxesContract, each_kind_of_box_gives_its_answer_to_its_caller) {
    when_open("Check", [&](std::uint32_t id) { EXPECT_TRUE(boxes_.answer_message(id)); });
    when_open("Continue?", [&](std::uint32_t id) { EXPECT_TRUE(boxes_.answer_question(id, Answer::yes)); });
    when_open("Again?", [&](std::uint32_t id) { EXPECT_TRUE(boxes_.answer_question(id, Answer::no)); });
    when_open("Name?", [&](std::uint32_t id) {
        EXPECT_EQ(boxes_.open_boxes().back().preset, "Altimeter");
        EXPECT_TRUE(boxes_.answer_input(id, "Compass"));
    });
    when_open("Other?", [&](std::uint32_t id) { EXPECT_TRUE(boxes_.answer_input(id, std::nullopt)); });
    std::vector<std::string> results;
    loop_.post([&] {
        boxes_.message("Check");
        results.push_back("checked");
        results.push_back(boxes_.question("Continue?") == Answer::yes ? "yes" : "no");
        results.push_back(boxes_.question("Again?") == Answer::yes ? "yes" : "no");
        results.push_back(boxes_.input("Name?", "Altimeter").value_or("cancelled"));
        results.push_back(boxes_.input("Other?", "").value_or("cancelled"));
    });
    ASSERT_TRUE(machine_->run_until([&] { return results.size() == 5; }));
    EXPECT_EQ(results, (std::vector<std::string>{"checked", "yes", "no", "Compass", "cancelled"}));
    EXPECT_TRUE(boxes_.open_boxes().empty());
}

TEST_P(BoxesContract, the_box_on_top_is_answered_first_and_only_as_its_kind_asks) {
    std::string order;
    when_open("below", [&](std::uint32_t below) {
        loop_.post([&] {
            EXPECT_EQ(boxes_.question("above"), Answer::no);
            order += "above ";
        });
        when_open("above", [&, below](std::uint32_t above) {
            EXPECT_EQ(boxes_.open_boxes().size(), 2U);
            EXPECT_FALSE(boxes_.answer_message(below)) << "not on top";
            EXPECT_FALSE(boxes_.answer_message(above)) << "a question takes yes or no";
            EXPECT_FALSE(boxes_.answer_question(above + 1, Answer::yes)) << "no such box";
            EXPECT_TRUE(boxes_.answer_question(above, Answer::no));
            EXPECT_FALSE(boxes_.answer_question(above, Answer::yes)) << "answered already";
            loop_.post_after(Milliseconds(5), [&, below] { EXPECT_TRUE(boxes_.answer_message(below)); });
        });
    });
    loop_.post([&] {
        boxes_.message("below");
        order += "below";
    });
    ASSERT_TRUE(machine_->run_until([&] { return order.size() > 6; }));
    EXPECT_EQ(order, "above below");
}

TEST_P(BoxesContract, an_answer_stays_with_its_box_when_another_box_comes_up_before_it_is_taken) {
    std::string order;
    when_open("first", [&](std::uint32_t id) {
        // The same task answers the first box and opens the second.
        EXPECT_TRUE(boxes_.answer_question(id, Answer::no));
        EXPECT_EQ(boxes_.question("second"), Answer::yes);
        order += "second ";
    });
    when_open("second", [&](std::uint32_t id) { EXPECT_TRUE(boxes_.answer_question(id, Answer::yes)); });
    loop_.post([&] {
        EXPECT_EQ(boxes_.question("first"), Answer::no);
        order += "first";
    });
    ASSERT_TRUE(machine_->run_until([&] { return order.size() > 7; }));
    EXPECT_EQ(order, "second first");
}

TEST_P(BoxesContract, a_question_whose_cause_has_gone_is_withdrawn_and_counts_as_yes) {
    bool settled = false;
    std::string result;
    when_open("Port missing. Continue?", [&](std::uint32_t) { settled = true; });
    loop_.post([&] {
        const Answer answer = boxes_.question("Port missing. Continue?", [&] { return settled; });
        result = answer == Answer::yes ? "yes" : "no";
    });
    ASSERT_TRUE(machine_->run_until([&] { return !result.empty(); }));
    EXPECT_EQ(result, "yes");
    EXPECT_TRUE(boxes_.open_boxes().empty());
}

TEST_P(BoxesContract, an_open_box_holds_back_its_caller_and_the_user_but_not_the_cockpit) {
    int ticks = 0;
    int calls = 0;
    int commands = 0;
    int ticks_at_command = 0;
    Timer other(loop_, "other", Milliseconds(5), [&] { ++ticks; });
    Timer failing(loop_, "failing", Milliseconds(5), [&] {
        if (++calls == 1) {
            boxes_.message("Error 13");
        }
    });
    when_open("Error 13", [&](std::uint32_t id) {
        loop_.post_user_command([&] {
            ++commands;
            ticks_at_command = ticks;
        });
        const int before = ticks;
        loop_.yield_until([&] { return ticks >= before + 5; });
        EXPECT_EQ(calls, 1) << "a handler that waits in its box is not entered again";
        EXPECT_EQ(commands, 0);
        EXPECT_TRUE(boxes_.answer_message(id));
    });
    other.start();
    failing.start();
    ASSERT_TRUE(machine_->run_until([&] { return commands == 1 && calls > 1; }));
    EXPECT_GE(ticks_at_command, 5);
}

TEST_P(BoxesContract, stopping_the_loop_takes_the_boxes_away) {
    when_open("below", [&](std::uint32_t) { boxes_.message("above"); });
    when_open("above", [&](std::uint32_t) { loop_.stop(); });
    loop_.post([&] {
        boxes_.message("below");
        FAIL() << "nobody has answered";
    });
    loop_.run();
    EXPECT_TRUE(boxes_.open_boxes().empty());
}

}  // namespace
}  // namespace platform_tests
