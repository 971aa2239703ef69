#include "platform/win32/key_plan.h"

#include <string>

#include "support/failure.h"

namespace platform::win32 {

namespace {

std::string name_of(char character) {
    const auto code = static_cast<unsigned char>(character);
    if (code > 32 && code != 127) {
        return std::string("\"") + character + "\"";
    }
    return "with the code " + std::to_string(code);
}

// The key of a letter or a key's own character; its number is that of the capital, or the character itself.
std::optional<LayoutKey> own_key(char character) {
    switch (character) {
        case 8:   // Backspace
        case 9:   // Tab
        case 13:  // Return
        case 27:  // Esc
            return LayoutKey{static_cast<std::uint8_t>(character)};
        default:
            break;
    }
    if (character >= 'A' && character <= 'Z') {
        return LayoutKey{static_cast<std::uint8_t>(character)};
    }
    if (character >= 'a' && character <= 'z') {
        return LayoutKey{static_cast<std::uint8_t>(character - 'a' + 'A')};
    }
    return std::nullopt;
}

}  // namespace

std::vector<std::uint8_t> keys_to_press(const KeyChord& chord,
                                        const std::function<std::optional<LayoutKey>(char)>& find,
                                        const HeldKeys& held) {
    std::optional<LayoutKey> key = own_key(chord.character);
    // Other control characters are on no key, though layouts tell combinations for some.
    if (!key && static_cast<unsigned char>(chord.character) >= 32) {
        key = find(chord.character);
    }
    if (!key || key->virtual_key == 0) {
        throw support::Failure("The keyboard layout has no key for the character " + name_of(chord.character));
    }
    std::vector<std::uint8_t> keys;
    const auto hold = [&keys](bool wanted, bool is_held, std::uint8_t modifier) {
        if (wanted && !is_held) {
            keys.push_back(modifier);
        }
    };
    hold(chord.control || key->control, held.control, kKeyLeftControl);
    hold(chord.shift || key->shift, held.shift, kKeyLeftShift);
    hold(key->alt, held.alt, kKeyRightAlt);
    keys.push_back(key->virtual_key);
    return keys;
}

}  // namespace platform::win32
