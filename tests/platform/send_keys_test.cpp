#include "platform/send_keys.h"

#include <gtest/gtest.h>

#include "simlink/keystrokes.h"
#include "support/failure.h"

namespace {

using platform::KeyChord;
using platform::parse_send_keys;

TEST(SendKeysTest, every_key_code_is_read_back_from_its_text) {
    for (unsigned flags : {0U, simlink::kKeyControl, simlink::kKeyShift, simlink::kKeyControl | simlink::kKeyShift}) {
        for (unsigned code = 1; code <= simlink::kKeyMask; ++code) {
            const KeyChord wanted{(flags & simlink::kKeyControl) != 0, (flags & simlink::kKeyShift) != 0,
                                  static_cast<char>(code)};
            const std::string text = simlink::send_keys_text(static_cast<std::uint16_t>(flags | code));
            EXPECT_EQ(parse_send_keys(text), wanted) << text;
        }
    }
}

TEST(SendKeysTest, other_texts_are_refused) {
    for (const char* text :
         {"", "^", "^+", "gh", "{", "{}", "{g", "{gh}", "}", "%g", "~", "(g)", "g^", "{g}{h}", "{}}}"}) {
        EXPECT_THROW(parse_send_keys(text), support::Failure) << text;
    }
}

}  // namespace
