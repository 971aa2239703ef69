#include "cluster/cluster_telegram.h"

#include <algorithm>
#include <cmath>

#include "run/plate_lookup.h"
#include "support/bytes.h"

namespace cluster {

namespace {

constexpr std::string_view kShownAsZero = "00.00";
constexpr std::string_view kShownAtMost = "999.90";
constexpr std::size_t kWholeDigitsBelow100 = 2;
constexpr std::size_t kMostWholeDigits = 3;

void put_byte(std::string& telegram, int byte_number, unsigned value) {
    telegram[static_cast<std::size_t>(byte_number - 1)] = static_cast<char>(value);
}

bool is_digit(char character) {
    return character >= '0' && character <= '9';
}

// The text as a display can show it: "ab.cd" or "abc.de".
std::string_view showable(std::string_view text) {
    const std::size_t whole_digits = text.find('.');
    if (whole_digits == std::string_view::npos || whole_digits < kWholeDigitsBelow100 ||
        whole_digits + 1 >= text.size() ||
        !std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(whole_digits), is_digit) ||
        !is_digit(text[whole_digits + 1])) {
        return kShownAsZero;
    }
    return whole_digits > kMostWholeDigits ? kShownAtMost : text;
}

unsigned digit_code(char digit) {
    return static_cast<unsigned>(digit - '0') + 1;
}

}  // namespace

void begin_telegram(std::string& telegram, char kind, char filling) {
    telegram.assign(kTelegramLength, filling);
    telegram.front() = kind;
}

void put_needle(std::string& telegram, int needle, int position) {
    const auto limited = static_cast<unsigned>(std::clamp(position, 0, kHighestClusterPosition));
    const int at = kNeedleByte[static_cast<std::size_t>(needle)];
    put_byte(telegram, at, limited >> 8);
    put_byte(telegram, at + 1, limited & 0xFFU);
}

// Four places of a nibble each, in this order: low and high nibble of the second byte, low and high nibble of the
// first. The point takes a place: "12.3" and "123.".
void put_display(std::string& telegram, int slot, std::string_view text) {
    const std::string_view shown = showable(text);
    const int at = kDisplayByte[static_cast<std::size_t>(slot)];
    const bool below_100 = shown.find('.') == kWholeDigitsBelow100;
    const unsigned third = below_100 ? static_cast<unsigned>(kDisplayPointNibble) : digit_code(shown[2]);
    const unsigned fourth = below_100 ? digit_code(shown[3]) : static_cast<unsigned>(kDisplayPointNibble);
    put_byte(telegram, at, fourth * 16 + third);
    put_byte(telegram, at + 1, digit_code(shown[1]) * 16 + digit_code(shown[0]));
}

void finish_telegram(std::string& telegram, const run::ClusterState& state) {
    unsigned lights = state.ClusterBrightness & 0xF0U;
    lights |= state.ClusterLights != 0 ? kLightsOnBit : 0;
    lights |= state.ClusterPower == 0 ? kNoPowerBit : 0;
    put_byte(telegram, kLightsByte, lights);
    put_byte(telegram, kBrightnessFlagByte, state.ClusterBrightnessFlag);
    put_byte(telegram, kEndByte, kTelegramEnd);
}

std::optional<int> cluster_position(const tables::Plate& plate, double& value) {
    const std::optional<double> position = run::plate_position(plate, value);
    if (!position) {
        return std::nullopt;
    }
    const double steps = std::floor(*position) * kClusterStepsPerPlateStep;
    return static_cast<int>(std::clamp(steps, 0.0, static_cast<double>(kHighestClusterPosition)));
}

std::optional<std::string_view> reply_version(std::string_view reply) {
    if (reply.size() < kShortestReply || support::byte_at(reply, 0) != kReplyMark) {
        return std::nullopt;
    }
    return reply.substr(std::min(reply.size(), kReplyVersionByte - 1));
}

}  // namespace cluster
