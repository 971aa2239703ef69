#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "platform/send_keys.h"

namespace platform::win32 {

// The key that bears a character on a keyboard layout, and the keys to hold with it. Control and Alt together are
// AltGr.
struct LayoutKey {
    std::uint8_t virtual_key = 0;
    bool shift = false;
    bool control = false;
    bool alt = false;
};

// Which modifier keys are down already.
struct HeldKeys {
    bool shift = false;
    bool control = false;
    bool alt = false;
};

// The system's numbers of keys.
inline constexpr std::uint8_t kKeyLeftShift = 0xA0;
inline constexpr std::uint8_t kKeyLeftControl = 0xA2;
inline constexpr std::uint8_t kKeyRightAlt = 0xA5;

// The keys to press for a keystroke, in that order; they are released in reverse. Keys that are down already are not
// among them, so that they stay as they are.
//
// A letter is its key: it goes with the told modifiers only, whether it is written as a capital or not, also on a
// layout of another alphabet. Any other character is the key that bears it, with the told modifiers and those that the
// character needs; `find` tells what the layout says. The characters of the keys Backspace, Tab, Return and Esc
// (8, 9, 13, 27) are these keys. Throws a Failure for a character that the layout has no key for.
std::vector<std::uint8_t> keys_to_press(const KeyChord& chord,
                                        const std::function<std::optional<LayoutKey>(char)>& find,
                                        const HeldKeys& held);

}  // namespace platform::win32
