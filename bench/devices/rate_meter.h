#pragma once

#include <array>
#include <cstdint>

#include "platform/event_loop.h"

namespace bench {

// Counts events of the last second: the ten last whole slots of 100 ms.
class RateMeter {
  public:
    void add(std::uint64_t count, platform::TimePoint now);
    // Events in the second before the slot of `now` began.
    std::uint64_t per_second(platform::TimePoint now) const;

  private:
    static constexpr std::int64_t kSlotMs = 100;
    static constexpr std::int64_t kSlots = 11;  // the one that is being filled stands beside ten whole ones
    static std::int64_t slot_number(platform::TimePoint now);

    std::array<std::uint64_t, kSlots> counts_{};
    std::array<std::int64_t, kSlots> numbers_{};  // which 100 ms each slot holds
};

}  // namespace bench
