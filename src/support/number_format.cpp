#include "support/number_format.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace support {

namespace {

struct Picture {
    std::size_t least_whole_digits = 0;
    std::size_t least_decimals = 0;
    std::size_t most_decimals = 0;
    bool has_point = false;
};

Picture read_picture(std::string_view text) {
    Picture picture;
    const std::size_t point = text.find('.');
    picture.has_point = point != std::string_view::npos;
    const std::string_view whole = text.substr(0, point);
    const std::size_t first_zero = whole.find('0');
    picture.least_whole_digits = first_zero == std::string_view::npos ? 0 : whole.size() - first_zero;
    if (picture.has_point) {
        const std::string_view decimals = text.substr(point + 1);
        picture.most_decimals = decimals.size();
        const std::size_t last_zero = decimals.rfind('0');
        picture.least_decimals = last_zero == std::string_view::npos ? 0 : last_zero + 1;
    }
    return picture;
}

double rounded_to(double value, std::size_t decimals) {
    static constexpr std::array<double, 7> kPowers = {1.0, 10.0, 100.0, 1e3, 1e4, 1e5, 1e6};
    const double power = kPowers[std::min(decimals, kPowers.size() - 1)];
    // Beyond 2^53 every float is whole already, and scaling could overflow.
    return value < 9.0e15 / power ? std::floor(value * power + 0.5) / power : value;
}

template <typename Float>
std::string shortest_text(Float value) {
    std::array<char, 64> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    return std::string(buffer.data(), result.ptr);
}

}  // namespace

void format_number(double value, std::string_view picture_text, std::string& out) {
    out.clear();
    if (std::isnan(value)) {
        out = "nan";
        return;
    }
    if (std::isinf(value)) {
        out = value < 0 ? "-inf" : "inf";
        return;
    }
    const Picture picture = read_picture(picture_text);
    const double magnitude = rounded_to(std::fabs(value), picture.most_decimals);
    std::array<char, 400> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), magnitude, std::chars_format::fixed,
                                      static_cast<int>(picture.most_decimals));
    const std::string_view digits(buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data()));
    const std::size_t point = digits.find('.');
    std::string_view whole = digits.substr(0, point);
    std::string_view decimals = point == std::string_view::npos ? std::string_view{} : digits.substr(point + 1);
    if (whole == "0") {
        whole = {};
    }
    while (decimals.size() > picture.least_decimals && decimals.back() == '0') {
        decimals.remove_suffix(1);
    }
    if (value < 0 && magnitude != 0.0) {
        out.push_back('-');
    }
    if (whole.size() < picture.least_whole_digits) {
        out.append(picture.least_whole_digits - whole.size(), '0');
    }
    out.append(whole);
    if (picture.has_point) {
        out.push_back('.');
        out.append(decimals);
    }
}

std::string format_number(double value, std::string_view picture) {
    std::string out;
    format_number(value, picture, out);
    return out;
}

std::string shortest(float value) {
    return shortest_text(value);
}

std::string shortest(double value) {
    return shortest_text(value);
}

}  // namespace support
