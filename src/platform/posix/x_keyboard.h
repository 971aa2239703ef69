#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/send_keys.h"

namespace platform::posix {

// What stands on the keys, as the X server's keyboard mapping tells it. A key is known by its keycode; a symbol is the
// server's number of a character (Latin-1 has its own codes) or of a key such as Return. The symbols of a key are in
// columns: 0 and 1 without and with Shift, 2 and 3 the same of the second layout of a keyboard that has two, 4 and 5
// the third and fourth level (AltGr) of the first layout.
struct XKeyboard {
    std::uint8_t first_keycode = 8;
    std::size_t columns = 0;
    std::vector<std::uint32_t> symbols;  // of all keys, a row of columns each; 0 = none
    // Keys to hold.
    struct Modifier {
        std::uint8_t keycode = 0;  // 0 = the keyboard has none
        unsigned mask = 0;         // its bit in KeyboardState::modifiers
    };
    Modifier control;
    Modifier shift;
    Modifier third_level;

    // The symbol in a column of a key; 0 = none.
    std::uint32_t symbol(std::uint8_t keycode, std::size_t column) const;
};

inline constexpr std::uint32_t kSymbolThirdLevel = 0xFE03;  // the AltGr key

// How the keyboard stands at present.
struct KeyboardState {
    unsigned layout = 0;     // the one in use of the keyboard's layouts, from 0
    unsigned modifiers = 0;  // the masks of those that are down
};

// The keycodes to press for a keystroke, in that order; they are released in reverse. Modifiers that are down already
// are not among them, so that they stay as they are.
//
// A letter is its key: it goes with the told modifiers only, whether it is written as a capital or not, and its key is
// found on the other layout too when the one in use has another alphabet. Any other character is the key that bears it,
// with the told modifiers and those that the character needs. The characters of the keys BackSpace, Tab, Return and Esc
// (8, 9, 13, 27) are these keys. Throws a Failure for a character or a modifier that the keyboard has no key for: a
// character that must be composed of two keystrokes is none.
std::vector<std::uint8_t> keys_to_press(const KeyChord& chord, const XKeyboard& keyboard, KeyboardState state);

}  // namespace platform::posix
