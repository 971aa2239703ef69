#pragma once

#include <random>

#include "platform/random.h"
#include "platform/wall_clock.h"

namespace platform::posix {

class PosixWallClock : public WallClock {
  public:
    DateTime local_now() const override;
};

class PosixRandom : public Random {
  public:
    std::uint32_t next() override { return device_(); }

  private:
    std::random_device device_;
};

}  // namespace platform::posix
