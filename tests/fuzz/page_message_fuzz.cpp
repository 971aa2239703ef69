// Any bytes as a page's message: the decoder must take them or say what is wrong with them.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "panel/user_input.h"
#include "web/page_messages.h"

namespace {

// The bounds that the rest of the program relies on.
bool holds_its_bounds(const web::PageMessage& message) {
    if (const auto* control = std::get_if<web::ControlMessage>(&message)) {
        return !control->panel.empty() && control->panel.size() <= 64 && !control->control.empty() &&
               control->control.size() <= 64 && control->index >= -1 && control->index <= 1000 &&
               control->action.text.size() <= panel::kLongestUserText;
    }
    if (const auto* answer = std::get_if<web::AnswerMessage>(&message)) {
        return answer->id > 0 && answer->text.size() <= panel::kLongestUserText;
    }
    if (const auto* window = std::get_if<web::WindowMessage>(&message)) {
        return !window->panel.empty() && window->panel.size() <= 64;
    }
    return !std::get<web::BadMessage>(message).why.empty();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    if (!holds_its_bounds(web::decode_page_message(text))) {
        std::abort();
    }
    return 0;
}
