#pragma once

#include "bench/devices/lights.h"

namespace bench {

// How bright the digits of an instrument are: one level by day and one by night, which is when its lights are on. Both
// are stored in the unit.
class DisplayBrightness {
  public:
    // Command 13: the level in the low byte; both bits of 0x300 mean the level by night. False for anything else.
    bool take(int value) {
        const int period = value & ~0xFF;
        if (value < 0 || (period != 0 && period != kNight)) {
            return false;
        }
        (period == kNight ? night_ : day_) = value & 0xFF;
        return true;
    }

    int level(const Lights& lights) const { return lights.lit() ? night_ : day_; }

  private:
    static constexpr int kNight = 0x300;

    int day_ = 15;
    int night_ = 8;
};

}  // namespace bench
