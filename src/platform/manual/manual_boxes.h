#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/boxes.h"

namespace platform::manual {

// A scripted answer to a box. An input box takes `text`; `cancelled` answers it with nothing.
struct ScriptedAnswer {
    Answer answer = Answer::yes;
    std::string text;
    bool cancelled = false;
};

// Boxes that a test answers: by the queue of answers, else by the default, at once or after a delay in virtual time.
// With `leave_open` nothing answers by itself; the test answers through answer_question and its like, for example from
// a task that it has posted to the loop beforehand.
class ManualBoxes : public StackedBoxes {
  public:
    explicit ManualBoxes(EventLoop& loop);

    // Every text shown since the start, the latest last.
    const std::vector<std::string>& shown() const { return shown_; }
    void forget_shown() { shown_.clear(); }
    // Whether any text shown contains `part`.
    bool has_shown(const std::string& part) const;

    std::deque<ScriptedAnswer> answers;
    ScriptedAnswer default_answer;
    // How long a box stays open before it is answered.
    Duration answer_after = Duration::zero();
    bool leave_open = false;
    // Called when a box comes up, before it is answered.
    std::function<void(const OpenBox&)> on_open;

  protected:
    void opened(const OpenBox& box) override;

  private:
    void give_answer(const OpenBox& box, const ScriptedAnswer& scripted);

    EventLoop& loop_;
    std::vector<std::string> shown_;
};

}  // namespace platform::manual
