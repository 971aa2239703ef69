#include "tables/config_items.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "support/failure.h"
#include "support/rounding.h"

namespace tables {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

bool is_line_end(char c) {
    return c == '\r' || c == '\n';
}

std::string_view without_trailing_blanks(std::string_view text) {
    while (!text.empty() && is_blank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// The first bytes of an item, fit for a message.
std::string excerpt(std::string_view text) {
    constexpr std::size_t kLongest = 40;
    std::string shown(text.substr(0, kLongest));
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '.');
    return "\"" + shown + (text.size() > kLongest ? "...\"" : "\"");
}

// Whether a decimal number that no float can hold is one that is too near to 0, rather than one that is too large:
// looks at the place of its first digit above 0.
bool is_tiny(std::string_view text) {
    const std::size_t exponent_mark = std::min(text.find_first_of("eE"), text.size());
    const std::string_view mantissa = text.substr(0, exponent_mark);
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first_digit = std::min(mantissa.find_first_of("123456789"), mantissa.size());
    std::int64_t exponent = 0;
    if (exponent_mark + 1 < text.size()) {
        const std::string_view digits = text.substr(exponent_mark + (text[exponent_mark + 1] == '+' ? 2 : 1));
        const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
        if (result.ec == std::errc::result_out_of_range) {
            return digits.front() == '-';
        }
    }
    return static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first_digit) + exponent < 0;
}

template <typename Integer>
std::string range_of() {
    return std::to_string(std::numeric_limits<Integer>::min()) + " to " +
           std::to_string(std::numeric_limits<Integer>::max());
}

}  // namespace

ItemReader::ItemReader(std::string_view bytes) : bytes_(bytes) {
    if (bytes_.substr(0, kByteOrderMark.size()) == kByteOrderMark) {
        position_ = kByteOrderMark.size();
    }
}

void ItemReader::enter_section(std::string_view name) {
    section_ = name;
    row_ = -1;
}

void ItemReader::enter_row(int row) {
    row_ = row;
}

bool ItemReader::next(Item& item, Strictness strictness) {
    while (position_ < bytes_.size() && (is_blank(bytes_[position_]) || is_line_end(bytes_[position_]))) {
        ++position_;
    }
    item_start_ = position_;
    if (position_ >= bytes_.size()) {
        return false;
    }
    if (bytes_[position_] != '"') {
        std::size_t end = position_;
        while (end < bytes_.size() && bytes_[end] != ',' && !is_line_end(bytes_[end])) {
            ++end;
        }
        item = {without_trailing_blanks(bytes_.substr(position_, end - position_)), false};
        position_ = end;
        skip_separator();
        return true;
    }
    const std::size_t close = bytes_.find('"', position_ + 1);
    if (close == std::string_view::npos && strictness == Strictness::strict) {
        fail("the closing quote is missing");
    }
    item = {bytes_.substr(position_ + 1, std::min(close, bytes_.size()) - position_ - 1), true};
    position_ = close == std::string_view::npos ? bytes_.size() : close + 1;
    if (!skip_separator() && strictness == Strictness::strict) {
        fail(excerpt(item.text) + " is followed by something else than a comma or a line end");
    }
    return true;
}

// Steps over the one separator behind an item: blanks, then a comma, a line end or the end of the file. False when
// something else follows.
bool ItemReader::skip_separator() {
    while (position_ < bytes_.size() && is_blank(bytes_[position_])) {
        ++position_;
    }
    if (position_ == bytes_.size()) {
        return true;
    }
    if (bytes_[position_] != ',' && !is_line_end(bytes_[position_])) {
        return false;
    }
    ++position_;
    return true;
}

ItemReader::Item ItemReader::required() {
    Item item;
    if (!next(item, Strictness::strict)) {
        fail("the file ends too early");
    }
    return item;
}

void ItemReader::skip_past(std::string_view text) {
    Item item;
    do {
        if (!next(item, Strictness::lenient)) {
            fail("there is no section \"" + std::string(text) + "\"");
        }
    } while (item.text != text);
}

void ItemReader::skip(int items) {
    for (int skipped = 0; skipped < items; ++skipped) {
        required();
    }
}

std::string_view ItemReader::text() {
    return required().text;
}

std::string_view ItemReader::number() {
    const Item item = required();
    if (item.quoted) {
        fail("a number belongs here, not the text " + excerpt(item.text));
    }
    if (item.text.empty()) {
        fail("a number is missing");
    }
    std::string_view text = item.text;
    if (text.front() == '+' && text.size() > 1 && text[1] != '-') {
        text.remove_prefix(1);
    }
    return text;
}

void ItemReader::fail_range(std::string_view text, const std::string& range) const {
    fail("the number " + excerpt(text) + " does not fit (" + range + ")");
}

template <typename Float>
Float ItemReader::read_float(std::string_view text) {
    Float value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ptr != end || result.ec == std::errc::invalid_argument) {
        fail(excerpt(text) + " is not a number");
    }
    if (result.ec == std::errc::result_out_of_range) {
        if (!is_tiny(text)) {
            fail_range(text, "too large for its field");
        }
        return text.front() == '-' ? -Float{0} : Float{0};
    }
    return value;
}

template <typename Integer>
void ItemReader::read_whole(Integer& field) {
    const std::string_view text = number();
    const char* end = text.data() + text.size();
    std::int64_t value = 0;
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ptr == end && result.ec == std::errc{}) {
        if (value < std::numeric_limits<Integer>::min() || value > std::numeric_limits<Integer>::max()) {
            fail_range(text, range_of<Integer>());
        }
        field = static_cast<Integer>(value);
        return;
    }
    // Decimals, an exponent, or far too large.
    const double rounded = support::round_half_even(read_float<double>(text));
    if (!(rounded >= std::numeric_limits<Integer>::min() && rounded <= std::numeric_limits<Integer>::max())) {
        fail_range(text, range_of<Integer>());
    }
    field = static_cast<Integer>(rounded);
}

void ItemReader::read(std::string& field) {
    field = text();
}

void ItemReader::read(std::uint8_t& field) {
    read_whole(field);
}

void ItemReader::read(std::int16_t& field) {
    read_whole(field);
}

void ItemReader::read(std::int32_t& field) {
    read_whole(field);
}

void ItemReader::read(float& field) {
    field = read_float<float>(number());
}

void ItemReader::read(double& field) {
    field = read_float<double>(number());
}

std::int16_t ItemReader::count(std::size_t least_bytes_per_row) {
    std::int16_t rows = 0;
    read(rows);
    if (rows < 0) {
        fail("the number of rows is negative (" + std::to_string(rows) + ")");
    }
    // The last item of a file needs no separator behind it.
    if (static_cast<std::size_t>(rows) * least_bytes_per_row > bytes_.size() - position_ + 1) {
        fail("the file is too short for " + std::to_string(rows) + " rows");
    }
    return rows;
}

void ItemReader::fail(const std::string& why) const {
    const auto upto = bytes_.begin() + static_cast<std::ptrdiff_t>(std::min(item_start_, bytes_.size()));
    std::string place = "Line " + std::to_string(1 + std::count(bytes_.begin(), upto, '\n'));
    if (!section_.empty()) {
        place += ", section \"" + section_ + "\"";
    }
    if (row_ >= 0) {
        place += ", row " + std::to_string(row_);
    }
    throw support::Failure(place + ": " + why + ".");
}

void ItemWriter::separate() {
    if (line_begun_) {
        bytes_.push_back(',');
    }
    line_begun_ = true;
}

void ItemWriter::write(std::string_view text) {
    separate();
    bytes_.push_back('"');
    const std::size_t start = bytes_.size();
    bytes_.append(text);
    std::replace(bytes_.begin() + static_cast<std::ptrdiff_t>(start), bytes_.end(), '"', '\'');
    bytes_.push_back('"');
}

template <typename Number>
void ItemWriter::append_number(Number value) {
    separate();
    std::array<char, 64> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    bytes_.append(buffer.data(), result.ptr);
}

void ItemWriter::write(std::int32_t value) {
    append_number(value);
}

void ItemWriter::write(float value) {
    append_number(value);
}

void ItemWriter::write(double value) {
    append_number(value);
}

void ItemWriter::end_line() {
    bytes_.append("\r\n");
    line_begun_ = false;
}

}  // namespace tables
