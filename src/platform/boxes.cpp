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
    if (given_ || open_.empty() || open_.back().id != id || open_.back().kind != kind) {
        return false;
    }
    given_ = std::move(given);
    return true;
}

StackedBoxes::Given StackedBoxes::wait_for(BoxKind kind, const std::string& text, const std::string& preset,
                                           const std::function<bool()>& settled) {
    // Takes the box off the stack also when the wait is unwound because the program ends.
    struct Entry {
        StackedBoxes& boxes;
        ~Entry() {
            boxes.open_.pop_back();
            boxes.given_.reset();
            if (boxes.on_change) {
                boxes.on_change();
            }
        }
    };
    const std::uint32_t id = ++last_id_;
    open_.push_back({id, kind, text, preset});
    const Entry entry{*this};
    if (log_) {
        log_(text);
    }
    if (on_change) {
        on_change();
    }
    opened(open_.back());
    // A box that lies on top of this one belongs to a task that runs inside this wait, so it has gone when we look
    // again.
    loop_.yield_until_modal([this, &settled] { return given_.has_value() || (settled && settled()); });
    return given_ ? *given_ : Given{};
}

}  // namespace platform
