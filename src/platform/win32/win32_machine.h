#pragma once

#include <random>

#include "platform/random.h"
#include "platform/wall_clock.h"

namespace platform::win32 {

class Win32WallClock : public WallClock {
  public:
    DateTime local_now() const override;
};

class Win32Random : public Random {
  public:
    std::uint32_t next() override { return device_(); }

  private:
    std::random_device device_;
};

}  // namespace platform::win32
