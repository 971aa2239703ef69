#pragma once

#include <random>
#include <string>

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

// A line for standard error: the text with its line breaks as " / " and other control characters as \xNN.
std::string log_line(const std::string& text);

}  // namespace platform::posix
