#include "web/page_messages.h"

#include <algorithm>
#include <array>
#include <boost/json.hpp>
#include <limits>
#include <optional>

#include "support/windows_1252.h"

namespace web {

namespace json = boost::json;

namespace {

constexpr std::size_t kLongestName = 64;
constexpr int kLargestIndex = 1000;

// Ends the decoding; the text says why.
struct Refusal {
    std::string why;
};

std::string text_of(const json::object& message, std::string_view key, std::size_t longest) {
    const json::value* value = message.if_contains(json::string_view(key.data(), key.size()));
    if (value == nullptr) {
        return {};
    }
    if (!value->is_string()) {
        throw Refusal{std::string(key) + " is not a text"};
    }
    const json::string& text = value->get_string();
    // A character of the page's encoding takes up to three bytes and becomes one.
    if (text.size() > 3 * longest) {
        throw Refusal{std::string(key) + " is too long"};
    }
    std::string decoded = support::from_utf8(std::string_view(text.data(), text.size()));
    if (decoded.size() > longest) {
        throw Refusal{std::string(key) + " is too long"};
    }
    // The fields of the panels have one line, and a line end would break the file that they are saved in.
    if (std::any_of(decoded.begin(), decoded.end(), [](char byte) { return byte >= 0 && byte < ' '; })) {
        throw Refusal{std::string(key) + " holds a control character"};
    }
    return decoded;
}

std::string name_of(const json::object& message, std::string_view key) {
    std::string name = text_of(message, key, kLongestName);
    if (name.empty()) {
        throw Refusal{std::string(key) + " is missing"};
    }
    return name;
}

std::optional<int> number_of(const json::object& message, std::string_view key, int lowest, int highest) {
    const json::value* value = message.if_contains(json::string_view(key.data(), key.size()));
    if (value == nullptr) {
        return std::nullopt;
    }
    if (!value->is_int64() || value->get_int64() < lowest || value->get_int64() > highest) {
        throw Refusal{std::string(key) + " is no whole number in range"};
    }
    return static_cast<int>(value->get_int64());
}

template <typename Value, std::size_t count>
Value choice_of(const json::object& message, std::string_view key,
                const std::array<std::pair<std::string_view, Value>, count>& choices) {
    const std::string name = name_of(message, key);
    for (const auto& [known, value] : choices) {
        if (known == name) {
            return value;
        }
    }
    throw Refusal{std::string(key) + " is unknown"};
}

PageMessage decode_control(const json::object& message) {
    static constexpr std::array<std::pair<std::string_view, panel::UserEvent>, 3> kEvents = {{
        {"click", panel::UserEvent::click},
        {"double_click", panel::UserEvent::double_click},
        {"change", panel::UserEvent::change},
    }};
    ControlMessage decoded;
    decoded.panel = name_of(message, "panel");
    decoded.control = name_of(message, "control");
    decoded.index = number_of(message, "index", 0, kLargestIndex).value_or(-1);
    decoded.action.event = choice_of(message, "event", kEvents);
    decoded.action.value =
        number_of(message, "value", std::numeric_limits<int>::min(), std::numeric_limits<int>::max()).value_or(0);
    decoded.action.text = text_of(message, "text", panel::kLongestUserText);
    return decoded;
}

PageMessage decode_answer(const json::object& message) {
    static constexpr std::array<std::pair<std::string_view, AnswerMessage::Given>, 4> kAnswers = {{
        {"ok", AnswerMessage::Given::ok},
        {"yes", AnswerMessage::Given::yes},
        {"no", AnswerMessage::Given::no},
        {"cancel", AnswerMessage::Given::cancel},
    }};
    const std::optional<int> id = number_of(message, "id", 1, std::numeric_limits<int>::max());
    if (!id) {
        throw Refusal{"id is missing"};
    }
    return AnswerMessage{static_cast<std::uint32_t>(*id), choice_of(message, "answer", kAnswers),
                         text_of(message, "text", panel::kLongestUserText)};
}

PageMessage decode(std::string_view text) {
    json::parse_options options;
    options.max_depth = 4;
    boost::system::error_code error;
    const json::value parsed = json::parse(json::string_view(text.data(), text.size()), error, {}, options);
    if (error || !parsed.is_object()) {
        throw Refusal{"not a JSON object"};
    }
    const json::object& message = parsed.get_object();
    const std::string type = name_of(message, "type");
    if (type == "control") {
        return decode_control(message);
    }
    if (type == "activate") {
        return WindowMessage{WindowMessage::Wish::activate, name_of(message, "panel")};
    }
    if (type == "minimise") {
        return WindowMessage{WindowMessage::Wish::minimise, name_of(message, "panel")};
    }
    if (type == "answer") {
        return decode_answer(message);
    }
    throw Refusal{"type is unknown"};
}

}  // namespace

PageMessage decode_page_message(std::string_view text) {
    try {
        return decode(text);
    } catch (const Refusal& refusal) {
        return BadMessage{refusal.why};
    }
}

}  // namespace web
