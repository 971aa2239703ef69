#include "platform/posix/x_keyboard.h"

#include <gtest/gtest.h>

#include "support/failure.h"

namespace {

using platform::KeyChord;
using platform::posix::KeyboardState;
using platform::posix::keys_to_press;
using platform::posix::XKeyboard;

// Five keys from keycode 8 on: Control, Shift, AltGr, then as told; six columns.
XKeyboard keyboard(const std::vector<std::uint32_t>& two_keys) {
    XKeyboard made;
    made.columns = 6;
    made.symbols.assign(18, 0);
    made.symbols.insert(made.symbols.end(), two_keys.begin(), two_keys.end());
    made.control = {8, 4};
    made.shift = {9, 1};
    made.third_level = {10, 128};
    return made;
}

TEST(XKeyboardTest, a_character_takes_the_key_that_bears_it_on_the_layout_in_use) {
    constexpr std::uint32_t kCyrillic = 0x6D0;
    // German and Russian; the second key bears a letter on one side, what the first key does not on the other.
    const XKeyboard two = keyboard({'7', '/', '7', '.', '{', 0, 'g', 'G', kCyrillic, kCyrillic + 1, 0, 0});
    struct Case {
        KeyChord chord;
        KeyboardState state;
        std::vector<std::uint8_t> keys;
    };
    const std::vector<Case> cases = {
        {{false, false, '7'}, {0, 0}, {11}},       {{false, false, '/'}, {0, 0}, {9, 11}},
        {{false, true, '/'}, {0, 0}, {9, 11}},     {{true, true, '/'}, {0, 0}, {8, 9, 11}},
        {{true, true, '/'}, {0, 1}, {8, 11}},      {{true, true, '/'}, {0, 1 | 4}, {11}},
        {{true, false, '{'}, {0, 0}, {8, 10, 11}}, {{true, false, '{'}, {0, 128}, {8, 11}},
        {{false, false, '.'}, {1, 0}, {9, 11}},    {{false, false, 'G'}, {0, 0}, {12}},
        {{true, true, 'g'}, {0, 0}, {8, 9, 12}},   {{false, false, 'G'}, {1, 0}, {12}},
        {{false, false, '{'}, {1, 0}, {}},         {{false, false, '.'}, {0, 0}, {}},
        {{false, false, '\x80'}, {0, 0}, {}},      {{false, false, 1}, {0, 0}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.chord.character << " on layout " << c.state.layout);
        if (c.keys.empty()) {
            EXPECT_THROW(keys_to_press(c.chord, two, c.state), support::Failure);
        } else {
            EXPECT_EQ(keys_to_press(c.chord, two, c.state), c.keys);
        }
    }
}

TEST(XKeyboardTest, poor_keyboards_fail_with_words) {
    XKeyboard poor = keyboard({'7', '/', 0, 0, '{', 0, 'G', 0, 0, 0, 0, 0});
    EXPECT_EQ(keys_to_press({false, false, '/'}, poor, {1, 0}), (std::vector<std::uint8_t>{9, 11}))
        << "a key without a second layout has the symbols of the first";
    poor.control = poor.shift = poor.third_level = {};
    EXPECT_EQ(keys_to_press({false, false, 'G'}, poor, {}), std::vector<std::uint8_t>{12});
    for (const KeyChord& chord : {KeyChord{true, false, 'G'}, KeyChord{false, true, 'G'}, KeyChord{false, false, '/'},
                                  KeyChord{false, false, '{'}}) {
        EXPECT_THROW(keys_to_press(chord, poor, {}), support::Failure) << chord.character;
    }
    try {
        keys_to_press({false, false, 'H'}, XKeyboard{}, {});
        FAIL() << "a keyboard without keys has pressed one";
    } catch (const support::Failure& failure) {
        EXPECT_EQ(failure.description(), "The keyboard layout has no key for the character \"H\"");
    }
}

}  // namespace
