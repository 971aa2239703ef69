#include "platform/manual/manual_boxes.h"

#include <algorithm>

namespace platform::manual {

namespace {

// How often a delayed answer looks again whether its box has come to the top of the stack.
constexpr Duration kRetry = std::chrono::milliseconds(1);

}  // namespace

ManualBoxes::ManualBoxes(EventLoop& loop) : StackedBoxes(loop, {}), loop_(loop) {}

bool ManualBoxes::has_shown(const std::string& part) const {
    return std::any_of(shown_.begin(), shown_.end(),
                       [&part](const std::string& text) { return text.find(part) != std::string::npos; });
}

void ManualBoxes::opened(const OpenBox& box) {
    shown_.push_back(box.text);
    if (on_open) {
        on_open(box);
    }
    if (leave_open) {
        return;
    }
    ScriptedAnswer scripted = default_answer;
    if (!answers.empty()) {
        scripted = answers.front();
        answers.pop_front();
    }
    if (answer_after == Duration::zero()) {
        give_answer(box, scripted);
    } else {
        loop_.post_after(answer_after, [this, box, scripted] { give_answer(box, scripted); });
    }
}

void ManualBoxes::give_answer(const OpenBox& box, const ScriptedAnswer& scripted) {
    const bool still_open = std::any_of(open_boxes().begin(), open_boxes().end(),
                                        [&box](const OpenBox& open) { return open.id == box.id; });
    if (!still_open) {
        return;  // withdrawn meanwhile
    }
    bool given = false;
    switch (box.kind) {
        case BoxKind::message:
            given = answer_message(box.id);
            break;
        case BoxKind::question:
            given = answer_question(box.id, scripted.answer);
            break;
        case BoxKind::input:
            given = answer_input(box.id, scripted.cancelled ? std::nullopt : std::optional<std::string>(scripted.text));
            break;
    }
    if (!given) {
        // Another box lies on top; this one has its turn later.
        loop_.post_after(kRetry, [this, box, scripted] { give_answer(box, scripted); });
    }
}

}  // namespace platform::manual
