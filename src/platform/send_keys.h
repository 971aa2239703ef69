#pragma once

#include <string_view>

namespace platform {

// Characters that mean something in a send-keys text, and stand in braces where they are themselves meant.
inline constexpr std::string_view kBracedCharacters = "}{+%^)([]~";

// One keystroke: a character's key, with the modifier keys to hold.
struct KeyChord {
    bool control = false;
    bool shift = false;
    char character = 0;
    bool operator==(const KeyChord&) const = default;
};

// Reads a send-keys text: "^" for Control and "+" for Shift, then one character, or "{", the character and "}". Throws
// a Failure when it is anything else.
KeyChord parse_send_keys(std::string_view keys);

}  // namespace platform
