#pragma once

#include <cstdint>

#include "platform/wall_clock.h"

namespace simlink {

// Seconds of the day as the clocks take them: a sum above 65535 becomes 65535 minus the sum, so 18:12:16 gives -1.
std::int32_t seconds_for_clock(int hour, int minute, int second);

// The date `days` after December 31 of the year before: 1 is January 1, 0 the day before, 32 February 1. Any numbers
// may be given.
platform::DateTime date_of_year(int year, int days);

}  // namespace simlink
