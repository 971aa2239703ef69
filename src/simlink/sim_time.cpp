#include "simlink/sim_time.h"

#include <chrono>

namespace simlink {

std::int32_t seconds_for_clock(int hour, int minute, int second) {
    constexpr std::int32_t kMost = 65535;
    const std::int32_t sum = hour * 3600 + minute * 60 + second;
    return sum > kMost ? kMost - sum : sum;
}

platform::DateTime date_of_year(int year, int days) {
    // The calendar repeats every 400 years, so that a year beyond the calendar's range can be taken as one in it.
    constexpr int kCycle = 400;
    const int in_cycle = 2000 + ((year % kCycle) + kCycle) % kCycle;
    const auto first = std::chrono::sys_days{std::chrono::year{in_cycle} / 1 / 1};
    const std::chrono::year_month_day date{first + std::chrono::days{days - 1}};
    return {int{date.year()} - in_cycle + year,
            static_cast<int>(unsigned{date.month()}),
            static_cast<int>(unsigned{date.day()}),
            0,
            0,
            0};
}

}  // namespace simlink
