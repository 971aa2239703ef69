#include "platform/posix/x_keyboard.h"

#include <array>
#include <optional>
#include <string>

#include "support/failure.h"

namespace platform::posix {

namespace {

// A symbol of a key that is no character: 0xFF00 and the code that terminals know it by.
constexpr std::uint32_t kKeySymbols = 0xFF00;

// Columns of a layout by level: plain, Shift, AltGr, AltGr and Shift.
using Columns = std::array<std::size_t, 4>;
constexpr std::size_t kNoColumn = 255;
constexpr Columns kFirstLayout = {0, 1, 4, 5};
// NOTE: where the further levels of a second layout stand depends on keys that the mapping does not tell.
constexpr Columns kSecondLayout = {2, 3, kNoColumn, kNoColumn};

struct Place {
    std::uint8_t keycode;
    std::size_t level;
};

bool is_capital(std::uint32_t symbol) {
    return symbol >= 'A' && symbol <= 'Z';
}

std::uint32_t lower(std::uint32_t symbol) {
    return is_capital(symbol) ? symbol + ('a' - 'A') : symbol;
}

bool is_letter(std::uint32_t symbol) {
    return is_capital(symbol) || (symbol >= 'a' && symbol <= 'z');
}

// 0 for a character that no key is known for.
std::uint32_t symbol_of(char character) {
    const auto code = static_cast<unsigned char>(character);
    switch (code) {
        case 8:   // BackSpace
        case 9:   // Tab
        case 13:  // Return
        case 27:  // Esc
            return kKeySymbols + code;
        default:
            return (code >= 32 && code < 127) || code >= 160 ? code : 0U;
    }
}

// The lowest keycode that bears the symbol on the levels from `first` to `last`.
std::optional<Place> find(const XKeyboard& keyboard, const Columns& columns, std::uint32_t symbol, std::size_t first,
                          std::size_t last) {
    const std::size_t keys = keyboard.columns == 0 ? 0 : keyboard.symbols.size() / keyboard.columns;
    for (std::size_t key = 0; key < keys; ++key) {
        const auto keycode = static_cast<std::uint8_t>(keyboard.first_keycode + key);
        for (std::size_t level = first; level <= last; ++level) {
            const std::uint32_t there = keyboard.symbol(keycode, columns[level]);
            if (there == symbol || (is_letter(symbol) && lower(there) == lower(symbol))) {
                return Place{keycode, level};
            }
        }
    }
    return std::nullopt;
}

std::optional<Place> find(const XKeyboard& keyboard, std::uint32_t symbol, unsigned layout) {
    const Columns& columns = layout == 1 ? kSecondLayout : kFirstLayout;
    const Columns& others = layout == 1 ? kFirstLayout : kSecondLayout;
    std::optional<Place> place = find(keyboard, columns, symbol, 0, 1);
    if (!place) {
        place = find(keyboard, columns, symbol, 2, 3);
    }
    if (!place && is_letter(symbol)) {
        place = find(keyboard, others, symbol, 0, 1);
    }
    return place;
}

std::string name_of(char character) {
    const auto code = static_cast<unsigned char>(character);
    if (code > 32 && code != 127) {
        return std::string("\"") + character + "\"";
    }
    return "with the code " + std::to_string(code);
}

// Adds the key of a modifier unless it is down.
void hold(std::vector<std::uint8_t>& keys, const XKeyboard::Modifier& modifier, KeyboardState state, const char* name) {
    if ((state.modifiers & modifier.mask) != 0) {
        return;
    }
    if (modifier.keycode == 0) {
        throw support::Failure(std::string("The keyboard layout has no key ") + name);
    }
    keys.push_back(modifier.keycode);
}

}  // namespace

std::uint32_t XKeyboard::symbol(std::uint8_t keycode, std::size_t column) const {
    if (column >= columns || keycode < first_keycode) {
        return 0;
    }
    const std::size_t row = static_cast<std::size_t>(keycode - first_keycode) * columns;
    if (row + columns > symbols.size()) {
        return 0;
    }
    // A key without symbols of a second layout has those of the first one there.
    const bool second = column == 2 || column == 3;
    if (second && symbols[row + 2] == 0 && (columns < 4 || symbols[row + 3] == 0)) {
        column -= 2;
    }
    return symbols[row + column];
}

std::vector<std::uint8_t> keys_to_press(const KeyChord& chord, const XKeyboard& keyboard, KeyboardState state) {
    const std::uint32_t symbol = symbol_of(chord.character);
    const std::optional<Place> place = symbol == 0 ? std::nullopt : find(keyboard, symbol, state.layout);
    if (!place) {
        throw support::Failure("The keyboard layout has no key for the character " + name_of(chord.character));
    }
    const bool level_shift = !is_letter(symbol) && place->level % 2 == 1;
    std::vector<std::uint8_t> keys;
    if (chord.control) {
        hold(keys, keyboard.control, state, "Ctrl");
    }
    if (chord.shift || level_shift) {
        hold(keys, keyboard.shift, state, "Shift");
    }
    if (place->level >= 2) {
        hold(keys, keyboard.third_level, state, "AltGr");
    }
    keys.push_back(place->keycode);
    return keys;
}

}  // namespace platform::posix
