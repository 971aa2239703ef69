#pragma once

#include <array>
#include <cstdint>

#include "platform/event_loop.h"

namespace bench {

// Counts events of the last second, in slots of 100 ms.
class RateMeter {
  public:
    void add(std::uint64_t count, platform::TimePoint now);
    // Events in the second before `now`.
    std::uint64_t per_second(platform::TimePoint now) const;

  private:
    static constexpr std::int64_t kSlots = 10;
    static std::int64_t slot_number(platform::TimePoint now);

    std::array<std::uint64_t, kSlots> counts_{};
    std::array<std::int64_t, kSlots> numbers_{};  // which 100 ms each slot holds
};

}  // namespace bench
