#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tables {

// The item format of the configuration file, the start file and the offset list: a stream of items, separated by commas
// and line ends. A text stands in double quotes, runs to the next double quote and may span lines; a number stands
// bare, in decimal.
//
// What the reader lets pass: blanks and tabs around items, empty lines, any of the three line ends, one comma at a line
// end, a text without quotes (it then ends at a comma or line end), decimals and exponents in whole numbers (they are
// rounded to nearest, ties to even), a byte order mark in front of everything. Two commas with nothing between them are
// an empty text, but no number. What it refuses, with a Failure that says where and why: a text in quotes where a
// number belongs, a number that does not fit its field, anything else than a separator behind a closing quote, and an
// end of the file inside a text or before an item.
class ItemReader {
  public:
    // `bytes` must outlive the reader.
    explicit ItemReader(std::string_view bytes);

    // Names the place for failures that follow: the section, and the row of its table.
    void enter_section(std::string_view name);
    void enter_row(int row);

    // Skips everything up to and including the first item that equals `text`, whatever stands in front of it.
    void skip_past(std::string_view text);
    // Skips a number of items of any kind.
    void skip(int items);

    // The next item as a text, without its quotes.
    std::string_view text();

    // The next item into a field. A float that is too small for its field becomes 0.
    void read(std::string& field);
    void read(std::uint8_t& field);
    void read(std::int16_t& field);
    void read(std::int32_t& field);
    void read(float& field);
    void read(double& field);

    // The next item as a count of rows, of which each takes at least `least_bytes_per_row` bytes. A negative count, or
    // one that the rest of the file cannot hold, is a failure.
    std::int16_t count(std::size_t least_bytes_per_row);

  private:
    struct Item {
        std::string_view text;
        bool quoted = false;
    };
    enum class Strictness { lenient, strict };

    bool next(Item& item, Strictness strictness);
    Item required();
    std::string_view number();
    bool skip_separator();
    template <typename Integer>
    void read_whole(Integer& field);
    template <typename Float>
    Float read_float(std::string_view text);
    [[noreturn]] void fail(const std::string& why) const;
    [[noreturn]] void fail_range(std::string_view text, const std::string& range) const;

    std::string_view bytes_;
    std::size_t position_ = 0;
    std::size_t item_start_ = 0;
    std::string section_;
    int row_ = -1;
};

// Writes items, with a comma between those of one line and CR LF behind each line. A double quote inside a text becomes
// a single quote, so that the text can be read back. Floats are written as the shortest text that reads back the same.
class ItemWriter {
  public:
    void write(std::string_view text);
    void write(std::int32_t value);
    void write(float value);
    void write(double value);
    void end_line();
    // One item on a line of its own.
    template <typename Value>
    void line(const Value& value) {
        write(value);
        end_line();
    }

    const std::string& bytes() const { return bytes_; }
    std::string take() { return std::move(bytes_); }

  private:
    template <typename Number>
    void append_number(Number value);
    void separate();

    std::string bytes_;
    bool line_begun_ = false;
};

}  // namespace tables
