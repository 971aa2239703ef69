#include "platform/boxes.h"

#include <utility>

namespace platform {

StackedBoxes::StackedBoxes(EventLoop& loop, Log log) : loop_(loop), log_(std::move(log)) {}

void StackedBoxes::message(const std::string& text) {
    wait_for(BoxKind::message, text, "", {});
}

Answer StackedBoxes::question(const std::string& text, const std::function<bool()>& settled) {
    return wait_for(BoxKind::question, text, "", settled).answer;
}

std::optional<std::string> StackedBoxes::input(const std::string& text, const std::string& preset) {
    return wait_for(BoxKind::input, text, preset, {}).text;
}

bool StackedBoxes::answer_message(std::uint32_t id) {
    return give(id, BoxKind::message, {});
}

bool StackedBoxes::answer_question(std::uint32_t id, Answer answer) {
    return give(id, BoxKind::question, {answer, {}});
}

bool StackedBoxes::answer_input(std::uint32_t id, std::optional<std::string> text) {
    return give(id, BoxKind::input, {Answer::yes, std::move(text)});
}

bool StackedBoxes::give(std::uint32_t id, BoxKind kind, Given given) {
    if (open_.empty() || open_.back().id != id || open_.back().kind != kind || given_.back()) {
        return false;
    }
    given_.back() = std::move(given);
    return true;
}

StackedBoxes::Given StackedBoxes::wait_for(BoxKind kind, const std::string& text, const std::string& preset,
                                           const std::function<bool()>& settled) {
    // Takes the box off the stack also when the wait is unwound because the program ends.
    struct Entry {
        StackedBoxes& boxes;
        ~Entry() {
            boxes.open_.pop_back();
            boxes.given_.pop_back();
            if (boxes.on_change) {
                boxes.on_change();
            }
        }
    };
    const std::uint32_t id = ++last_id_;
    const std::size_t place = open_.size();
    open_.push_back({id, kind, text, preset});
    given_.emplace_back();
    const Entry entry{*this};
    if (log_) {
        log_(text);
    }
    if (on_change) {
        on_change();
    }
    opened(OpenBox(open_.back()));
    // A box that lies on top of this one belongs to a task that runs inside this wait, so it has gone when we look
    // again. An answer may have been given before that one came up, so each box keeps its own.
    loop_.yield_until_modal([this, place, &settled] { return given_[place].has_value() || (settled && settled()); });
    return given_[place].value_or(Given{});
}

}  // namespace platform
