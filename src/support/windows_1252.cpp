#include "support/windows_1252.h"

#include <array>
#include <cstdint>

#include "support/bytes.h"

namespace support {

namespace {

// Characters of the bytes 128..159; all other bytes are the characters of their number.
constexpr std::array<std::uint16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char byte_of(std::uint32_t character) {
    for (std::size_t at = 0; at < kHighControls.size(); ++at) {
        if (kHighControls[at] == character) {
            return static_cast<char>(128 + at);
        }
    }
    const bool has_own_byte = character < 128 || (character >= 160 && character < 256);
    return has_own_byte ? static_cast<char>(character) : '?';
}

// Length of a sequence by its first byte; 0 for a byte that begins none.
std::size_t sequence_length(unsigned first) {
    if (first < 0x80) {
        return 1;
    }
    if (first >= 0xC2 && first < 0xE0) {
        return 2;
    }
    if (first >= 0xE0 && first < 0xF0) {
        return 3;
    }
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

// The smallest character that needs a sequence of this length; a smaller one in it is no UTF-8.
std::uint32_t smallest_of(std::size_t length) {
    constexpr std::array<std::uint32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
    return kSmallest[length];
}

}  // namespace

void append_utf8(std::string& out, std::string_view windows_1252) {
    for (std::size_t at = 0; at < windows_1252.size(); ++at) {
        const unsigned byte = byte_at(windows_1252, at);
        const unsigned character = byte >= 128 && byte < 160 ? kHighControls[byte - 128] : byte;
        if (character < 0x80) {
            out.push_back(static_cast<char>(character));
        } else if (character < 0x800) {
            out.push_back(static_cast<char>(0xC0U | (character >> 6)));
            out.push_back(static_cast<char>(0x80U | (character & 0x3FU)));
        } else {
            out.push_back(static_cast<char>(0xE0U | (character >> 12)));
            out.push_back(static_cast<char>(0x80U | ((character >> 6) & 0x3FU)));
            out.push_back(static_cast<char>(0x80U | (character & 0x3FU)));
        }
    }
}

std::string to_utf8(std::string_view windows_1252) {
    std::string out;
    append_utf8(out, windows_1252);
    return out;
}

std::string from_utf8(std::string_view utf8) {
    std::string out;
    std::size_t at = 0;
    while (at < utf8.size()) {
        const unsigned first = byte_at(utf8, at);
        const std::size_t length = sequence_length(first);
        if (length == 0 || at + length > utf8.size()) {
            out.push_back('?');
            ++at;
            continue;
        }
        std::uint32_t character = length == 1 ? first : first & (0xFFU >> (length + 1));
        bool good = true;
        for (std::size_t next = 1; next < length; ++next) {
            const unsigned byte = byte_at(utf8, at + next);
            good = good && (byte & 0xC0U) == 0x80U;
            character = (character << 6) | (byte & 0x3FU);
        }
        good = good && character >= smallest_of(length);
        out.push_back(good ? byte_of(character) : '?');
        at += good ? length : 1;
    }
    return out;
}

}  // namespace support
