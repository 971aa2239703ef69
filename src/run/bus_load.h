#pragma once

#include <cstdint>
#include <string>

namespace run {

// How full the gauge bus line is, looked at once a second of a run. A start of a run and a change of the lights fill it
// for a moment and settle by themselves; only what lasts means that the configuration does not fit its interval.
class BusLoad {
  public:
    enum class State { fits, nearly_full, too_slow };

    // A run begins: `bytes_written` is the line's running count of bytes.
    void start(std::uint64_t bytes_written);
    // A second later. `capacity` is what the line carries in a second, in bytes, above 0.
    void take_second(std::uint64_t bytes_written, int capacity);

    State state() const { return state_; }
    std::uint64_t bytes_per_second() const { return bytes_per_second_; }
    // Writes what the user reads into `text`: "412 of 3840", and what to do about a line that is too slow.
    // `interval_ms` is the time between updates in force. Allocates nothing once `text` has its capacity.
    void describe(int interval_ms, std::string& text) const;

  private:
    std::uint64_t written_before_ = 0;
    std::uint64_t bytes_per_second_ = 0;
    int capacity_ = 1;
    int full_seconds_ = 0;
    State state_ = State::fits;
};

}  // namespace run
