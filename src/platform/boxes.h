#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "platform/event_loop.h"

namespace platform {

enum class BoxKind { message, question, input };
enum class Answer { yes, no };

// Message boxes, questions and the input box. Each call blocks its caller and every user command until the user has
// answered, but not the cockpit: timers and receive events go on meanwhile.
class Boxes {
  public:
    virtual ~Boxes() = default;

    // Shows a text with an OK button.
    virtual void message(const std::string& text) = 0;
    // Asks with Yes and No. When `settled` is given and becomes true while the box is open, the cause of the question
    // has gone: the box is withdrawn and the answer is yes.
    virtual Answer question(const std::string& text, const std::function<bool()>& settled = {}) = 0;
    // Asks for a line of text, `preset` standing in the field. Nothing when the user cancels.
    virtual std::optional<std::string> input(const std::string& text, const std::string& preset) = 0;
};

// A box that waits for its answer. `id` never comes twice in one program run.
struct OpenBox {
    std::uint32_t id = 0;
    BoxKind kind = BoxKind::message;
    std::string text;
    std::string preset;
};

// The boxes of every back end: they stack, the top one is answered first, and the text also goes to a log (standard
// error), so that an unattended program says why it stands still.
class StackedBoxes : public Boxes {
  public:
    using Log = std::function<void(const std::string& line)>;

    StackedBoxes(EventLoop& loop, Log log);

    void message(const std::string& text) override;
    Answer question(const std::string& text, const std::function<bool()>& settled = {}) override;
    std::optional<std::string> input(const std::string& text, const std::string& preset) override;

    // The open boxes, the top one last.
    const std::vector<OpenBox>& open_boxes() const { return open_; }

    // Answers of the presentation. False when `id` is not the top box or the answer does not fit its kind.
    bool answer_message(std::uint32_t id);
    bool answer_question(std::uint32_t id, Answer answer);
    // Nothing = cancelled.
    bool answer_input(std::uint32_t id, std::optional<std::string> text);

    // Called after a box has come up or gone.
    std::function<void()> on_change;

  protected:
    // Called when a box has come up, before the wait begins. The manual back end answers here.
    virtual void opened(const OpenBox&) {}

  private:
    struct Given {
        Answer answer = Answer::yes;
        std::optional<std::string> text;
    };

    Given wait_for(BoxKind kind, const std::string& text, const std::string& preset,
                   const std::function<bool()>& settled);
    bool give(std::uint32_t id, BoxKind kind, Given given);

    EventLoop& loop_;
    Log log_;
    std::vector<OpenBox> open_;
    std::vector<std::optional<Given>> given_;  // the answer to each open box, until its caller has taken it
    std::uint32_t last_id_ = 0;
};

}  // namespace platform
