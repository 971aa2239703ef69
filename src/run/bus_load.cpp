#include "run/bus_load.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace run {

namespace {

constexpr std::uint64_t kNearlyFullPercent = 80;
constexpr int kSecondsThatLast = 3;
constexpr std::uint64_t kLongestIntervalMs = 200;  // of the run panel's slider
constexpr std::uint64_t kIntervalStepMs = 10;

void append_number(std::string& text, std::uint64_t number) {
    std::array<char, 20> digits{};
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    text.append(digits.data(), result.ptr);
}

}  // namespace

void BusLoad::start(std::uint64_t bytes_written) {
    *this = {};
    written_before_ = bytes_written;
}

void BusLoad::take_second(std::uint64_t bytes_written, int capacity) {
    capacity_ = std::max(capacity, 1);
    bytes_per_second_ = bytes_written - written_before_;
    written_before_ = bytes_written;
    const auto full = static_cast<std::uint64_t>(capacity_);
    full_seconds_ = bytes_per_second_ > full ? std::min(full_seconds_ + 1, kSecondsThatLast) : 0;
    if (full_seconds_ == kSecondsThatLast) {
        state_ = State::too_slow;
    } else {
        state_ = bytes_per_second_ * 100 >= full * kNearlyFullPercent ? State::nearly_full : State::fits;
    }
}

void BusLoad::describe(int interval_ms, std::string& text) const {
    text.clear();
    append_number(text, bytes_per_second_);
    text.append(" of ");
    append_number(text, static_cast<std::uint64_t>(capacity_));
    if (state_ != State::too_slow) {
        return;
    }
    // The same frames, spread over longer intervals.
    const std::uint64_t needed_ms =
        bytes_per_second_ * static_cast<std::uint64_t>(interval_ms) / static_cast<std::uint64_t>(capacity_) + 1;
    const std::uint64_t proposed_ms = (needed_ms + kIntervalStepMs - 1) / kIntervalStepMs * kIntervalStepMs;
    if (proposed_ms <= kLongestIntervalMs) {
        text.append(": set ");
        append_number(text, proposed_ms);
        text.append(" ms");
    } else {
        text.append(": too many gauges");
    }
}

}  // namespace run
