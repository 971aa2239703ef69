#pragma once

namespace platform {

// A local date and time of day.
struct DateTime {
    int year = 2000;
    int month = 1;  // 1..12
    int day = 1;    // 1..31
    int hour = 0;
    int minute = 0;
    int second = 0;
};

// Date and time of day; steady intervals come from the event loop.
class WallClock {
  public:
    virtual ~WallClock() = default;
    virtual DateTime local_now() const = 0;
};

}  // namespace platform
