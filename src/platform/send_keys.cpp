#include "platform/send_keys.h"

#include <string>

#include "support/failure.h"

namespace platform {

KeyChord parse_send_keys(std::string_view keys) {
    KeyChord chord;
    std::string_view rest = keys;
    while (!rest.empty() && (rest.front() == '^' || rest.front() == '+')) {
        (rest.front() == '^' ? chord.control : chord.shift) = true;
        rest.remove_prefix(1);
    }
    if (rest.size() == 3 && rest.front() == '{' && rest.back() == '}') {
        chord.character = rest[1];
    } else if (rest.size() == 1 && kBracedCharacters.find(rest.front()) == std::string_view::npos) {
        chord.character = rest.front();
    } else {
        throw support::Failure("\"" + std::string(keys) + "\" is not a keystroke of one character");
    }
    return chord;
}

}  // namespace platform
