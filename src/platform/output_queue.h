#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// Written blocks that a line has not taken yet, 16 KiB at most (four seconds at 38400 baud). When another block does
// not fit, the oldest ones go, whole: the line never carries a part of a frame, and what is new matters more than what
// is old. A block that has begun to go out stays.
class OutputQueue {
  public:
    static constexpr std::size_t kLimit = 16384;

    // Throws a Failure for a block beyond the limit.
    void add(std::string_view block);
    // What goes out next; empty when nothing waits.
    std::string_view next() const { return std::string_view(bytes_).substr(begun_); }
    // The first `count` bytes of next() have gone out.
    void taken(std::size_t count);
    void clear();
    bool empty() const { return begun_ == bytes_.size(); }
    std::uint64_t dropped_blocks() const { return dropped_blocks_; }

  private:
    void drop_oldest_waiting();

    std::string bytes_;                // all blocks, the begun one from its beginning
    std::vector<std::size_t> blocks_;  // their sizes, the oldest first
    std::size_t begun_ = 0;            // bytes of the first block that have gone out
    std::uint64_t dropped_blocks_ = 0;
};

}  // namespace platform
