#include "bench/devices/rate_meter.h"

namespace bench {

std::int64_t RateMeter::slot_number(platform::TimePoint now) {
    const auto passed = std::chrono::duration_cast<platform::Milliseconds>(now.time_since_epoch());
    return passed.count() / kSlotMs + 1;  // never 0, which marks a slot that was never used
}

void RateMeter::add(std::uint64_t count, platform::TimePoint now) {
    const std::int64_t number = slot_number(now);
    const auto slot = static_cast<std::size_t>(number % kSlots);
    if (numbers_[slot] != number) {
        numbers_[slot] = number;
        counts_[slot] = 0;
    }
    counts_[slot] += count;
}

std::uint64_t RateMeter::per_second(platform::TimePoint now) const {
    const std::int64_t newest = slot_number(now);
    std::uint64_t sum = 0;
    for (std::size_t slot = 0; slot < counts_.size(); ++slot) {
        if (numbers_[slot] > newest - kSlots && numbers_[slot] < newest) {
            sum += counts_[slot];
        }
    }
    return sum;
}

}  // namespace bench
