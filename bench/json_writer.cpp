#include "bench/json_writer.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

namespace bench {

namespace {

// The characters 0x80..0x9F of Windows-1252; the five unused places keep their numbers.
constexpr std::array<std::uint16_t, 32> kUpperControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

void append_escape(std::string& text, unsigned code) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    text += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) {
        text.push_back(kDigits[(code >> shift) & 15U]);
    }
}

}  // namespace

void JsonWriter::clear() {
    text_.clear();
    comma_due_ = false;
}

void JsonWriter::separate() {
    if (comma_due_) {
        text_.push_back(',');
    }
    comma_due_ = true;
}

JsonWriter& JsonWriter::open(char bracket) {
    separate();
    text_.push_back(bracket);
    comma_due_ = false;
    return *this;
}

JsonWriter& JsonWriter::close(char bracket) {
    text_.push_back(bracket);
    comma_due_ = true;
    return *this;
}

JsonWriter& JsonWriter::name(std::string_view name) {
    separate();
    text_.push_back('"');
    text_.append(name);
    text_ += "\":";
    comma_due_ = false;
    return *this;
}

JsonWriter& JsonWriter::value(double number) {
    separate();
    if (!std::isfinite(number)) {
        text_ += "null";
        return *this;
    }
    std::array<char, 32> digits{};
    const double rounded = std::nearbyint(number * 1000.0) / 1000.0;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), rounded);
    text_.append(digits.data(), end.ptr);
    return *this;
}

JsonWriter& JsonWriter::value(bool flag) {
    separate();
    text_ += flag ? "true" : "false";
    return *this;
}

JsonWriter& JsonWriter::value(std::string_view text) {
    separate();
    text_.push_back('"');
    for (const char byte : text) {
        append_escaped(static_cast<unsigned char>(byte));
    }
    text_.push_back('"');
    return *this;
}

void JsonWriter::append_escaped(unsigned char byte) {
    if (byte == '"' || byte == '\\') {
        text_.push_back('\\');
        text_.push_back(static_cast<char>(byte));
    } else if (byte < 0x20 || byte >= 0x7F) {
        append_escape(text_, byte >= 0x80 && byte < 0xA0 ? kUpperControls[byte - 0x80U] : byte);
    } else {
        text_.push_back(static_cast<char>(byte));
    }
}

}  // namespace bench
