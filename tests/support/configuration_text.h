#pragma once

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>

namespace test_support {

// How many rows the tables of free size get.
struct ConfigurationSize {
    int iom_rows = 12;
    int plates = 5;
};

// Writes configuration files full of random values, from nothing but the widths of their items, so that reader and
// writer can be held against something that knows neither. Widths: t text, b byte, h 16 bits, l 32 bits, f and d floats
// of 32 and 64 bits. Whole numbers take the ends of their range often; texts hold every byte but 0 and the double
// quote.
class ConfigurationText {
  public:
    explicit ConfigurationText(std::uint32_t seed) : random_(seed) {}

    // A file of the present format, its switch lists marked as such.
    std::string present(ConfigurationSize size = {}) {
        start("10.1.3");
        iom_port_ = number<std::int16_t>();
        items(",hhhhh");
        bytes_ += "," + iom_port_;
        items(",hhhhhhtttttt");
        bytes_ += "," + iom_port_ + "\r\n";
        tables("bbbbbhbbhbhh", size);
        name("GeneralFFB");
        lines("hhbbbbbb" + std::string(52, 'f'));
        for (const char* yoke : {"Yoke1", "Yoke2"}) {
            name(yoke);
            lines("hhb" + std::string(19, 'h') + "bbb" + std::string(13, 'h') + "b");
            bytes_ += "255\r\n";
            lines(std::string(18, 'b') + "bbhhhhh");
        }
        name("EOF");
        name("end");
        return std::move(bytes_);
    }

    // A file of format 9, without yokes.
    std::string old(ConfigurationSize size = {}) {
        start("9.3.12");
        items(",hhhhhhtttttthh");
        bytes_ += "\r\n";
        tables("bbbbhbbhbhh", size);
        name("end");
        return std::move(bytes_);
    }

    static std::string header(std::string_view version) {
        return "Program Name: Control Program for FSUIPC based Simulators , Version: " + std::string(version) +
               "         ,Connected Sim: FSX, FSUIPC version: 4.974 ,Date/Time saved: 1-1-2020 10:11:12\r\n";
    }

  private:
    void start(std::string_view version) {
        bytes_.clear();
        name("General");
        bytes_ += "\"" + header(version) + "\"";
    }

    void tables(const std::string& gauge, ConfigurationSize size) {
        name("IOM");
        rows(size.iom_rows, "hhhhhbffhhdhh", Counted::yes);
        name("Functions");
        rows(301, "tthbbllllfbbffffhbbbb", Counted::no);
        name("Gaugetypes");
        rows(128, "ht", Counted::no);
        name("Gauges");
        rows(256, gauge, Counted::no);
        name("Engine Cluster Settings");
        rows(11, "hhh", Counted::no);
        if (size.plates > 0) {
            name("Plates");
            bytes_ += std::to_string(size.plates) + "\r\n";
            for (int plate = 0; plate < size.plates; ++plate) {
                rows(1, "t" + std::string(25, 'd'), Counted::no);
                rows(1, std::string(25, 'h'), Counted::no);
            }
        }
    }

    enum class Counted { no, yes };

    void rows(int count, const std::string& widths, Counted counted) {
        if (counted == Counted::yes) {
            bytes_ += std::to_string(count) + "\r\n";
        }
        for (int row = 0; row < count; ++row) {
            items(widths);
            bytes_ += "\r\n";
        }
    }

    void lines(const std::string& widths) {
        for (const char width : widths) {
            items(std::string(1, width));
            bytes_ += "\r\n";
        }
    }

    // A comma in front of the widths goes on in the line begun.
    void items(std::string_view widths) {
        const bool goes_on = widths.substr(0, 1) == ",";
        widths.remove_prefix(goes_on ? 1 : 0);
        for (std::size_t item = 0; item < widths.size(); ++item) {
            bytes_ += item > 0 || goes_on ? "," : "";
            bytes_ += one(widths[item]);
        }
    }

    std::string one(char width) {
        switch (width) {
            case 't':
                return text();
            case 'b':
                return number<std::uint8_t>();
            case 'h':
                return number<std::int16_t>();
            case 'l':
                return number<std::int32_t>();
            case 'f':
                return real<float, std::uint32_t>();
            default:
                return real<double, std::uint64_t>();
        }
    }

    std::string text() {
        std::string text(random_() % 24, ' ');
        for (char& character : text) {
            const auto byte = static_cast<char>(1 + random_() % 255);
            character = byte == '"' ? '\'' : byte;
        }
        return "\"" + text + "\"";
    }

    template <typename Integer>
    std::string number() {
        using Limits = std::numeric_limits<Integer>;
        const std::array<std::int64_t, 4> ends = {Limits::min(), Limits::max(), 0, 1};
        const std::uint32_t choice = random_() % 16;
        return std::to_string(choice < ends.size() ? ends[choice] : static_cast<Integer>(random_()));
    }

    template <typename Float, typename Bits>
    std::string real() {
        Float value = 0;
        do {
            const std::uint64_t bits = static_cast<std::uint64_t>(random_()) << 32 | random_();
            value = std::bit_cast<Float>(static_cast<Bits>(bits));
        } while (!std::isfinite(value));
        std::array<char, 64> buffer;
        const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
        return std::string(buffer.data(), result.ptr);
    }

    void name(std::string_view section) { bytes_.append("\"").append(section).append("\"\r\n"); }

    std::mt19937 random_;
    std::string bytes_;
    std::string iom_port_;
};

// `text` with the first `from` replaced by `to`; an empty text when `from` is not there, so that no test goes on with a
// file that it did not change.
inline std::string with_replaced(std::string text, std::string_view from, std::string_view to) {
    const std::size_t at = text.find(from);
    return at == std::string::npos ? std::string{} : text.replace(at, from.size(), to);
}

}  // namespace test_support
