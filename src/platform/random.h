#pragma once

#include <cstdint>

namespace platform {

// Random numbers; a fixed series in the manual back end.
class Random {
  public:
    virtual ~Random() = default;
    virtual std::uint32_t next() = 0;
};

}  // namespace platform
