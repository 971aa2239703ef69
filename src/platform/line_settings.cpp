#include "platform/line_settings.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "support/failure.h"

namespace platform {

namespace {

constexpr std::array<unsigned, 8> kSpeedsBaud = {1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> parts(1);
    for (const char letter : text) {
        if (letter == ',') {
            parts.emplace_back();
        } else {
            parts.back().push_back(letter);
        }
    }
    return parts;
}

bool is_one_of(const std::string& part, std::string_view letters) {
    return part.size() == 1 && letters.find(part[0]) != std::string_view::npos;
}

}  // namespace

LineSettings parse_line_settings(const std::string& text) {
    const std::vector<std::string> parts = split(text);
    if (parts.size() == 4 && is_one_of(parts[1], "NEO") && is_one_of(parts[2], "78") && is_one_of(parts[3], "12")) {
        const auto speed = std::find_if(kSpeedsBaud.begin(), kSpeedsBaud.end(),
                                        [&](unsigned known) { return std::to_string(known) == parts[0]; });
        if (speed != kSpeedsBaud.end()) {
            return {*speed, parts[1][0], parts[2][0] - '0', parts[3][0] - '0'};
        }
    }
    throw support::Failure("Bad line settings: " + text);
}

std::chrono::nanoseconds byte_time(const LineSettings& settings) {
    constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
    const int bits = 1 + settings.data_bits + (settings.parity == 'N' ? 0 : 1) + settings.stop_bits;
    return std::chrono::nanoseconds(bits * kNanosecondsPerSecond / settings.speed_baud);
}

}  // namespace platform
