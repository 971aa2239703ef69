#include "platform/log_line.h"

#include <string_view>

#include "support/bytes.h"

namespace platform {

std::string log_line(const std::string& text) {
    static constexpr std::string_view kHex = "0123456789ABCDEF";
    std::string line;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const unsigned byte = support::byte_at(text, at);
        if (byte == '\r' && at + 1 < text.size() && text[at + 1] == '\n') {
            continue;
        }
        if (byte == '\n' || byte == '\r') {
            line += " / ";
        } else if (byte < 32 || byte >= 127) {
            line += "\\x";
            line += kHex[byte >> 4];
            line += kHex[byte & 15U];
        } else {
            line += text[at];
        }
    }
    return line;
}

}  // namespace platform
