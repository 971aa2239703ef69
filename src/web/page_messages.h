#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "panel/user_input.h"

namespace web {

// What a page asks for; docs/panels.md tells the messages. Texts are Windows-1252 here.
struct ControlMessage {
    std::string panel;
    std::string control;
    int index = -1;
    panel::UserAction action;
};
struct WindowMessage {
    enum class Wish { activate, minimise };
    Wish wish = Wish::activate;
    std::string panel;
};
struct AnswerMessage {
    enum class Given { ok, yes, no, cancel };
    std::uint32_t id = 0;
    Given given = Given::ok;
    std::string text;
};
// A message that is not understood, and why.
struct BadMessage {
    std::string why;
};
using PageMessage = std::variant<ControlMessage, WindowMessage, AnswerMessage, BadMessage>;

// Takes a page's text apart. Never throws, whatever the bytes.
PageMessage decode_page_message(std::string_view text);

}  // namespace web
