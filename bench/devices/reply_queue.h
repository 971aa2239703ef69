#pragma once

#include <deque>
#include <functional>
#include <string>

#include "platform/event_loop.h"

namespace bench {

// How long a device takes to begin its answer, and how long each byte keeps the line busy. A report is handed over in
// one piece when it begins; the line takes its own time for it.
struct ReplyTiming {
    platform::Duration think_time = std::chrono::milliseconds(2);
    platform::Duration byte_time = std::chrono::microseconds(260);  // 10 bits at 38400 baud
};

// For a line that takes no time, such as a pseudo-terminal: a report is there when its last byte would have come.
inline constexpr ReplyTiming kTimelessLine = {std::chrono::microseconds(2000 + 25 * 260),
                                              std::chrono::microseconds(260)};

// Beyond every wait of a running program.
inline constexpr platform::Milliseconds kLateReply{300};

// The replies of a line on their way: each begins when the device has made up its mind and the one before it has left
// the line, so that they never overlap.
class ReplyQueue {
  public:
    // `send` hands a whole reply to the line.
    ReplyQueue(platform::EventLoop& loop, ReplyTiming timing, std::function<void(const std::string&)> send);

    void add(std::string bytes) { add(std::move(bytes), timing_.think_time); }
    void add(std::string bytes, platform::Duration think_time);
    void clear();

  private:
    struct PendingReply {
        platform::TimePoint due;  // when its first byte goes out
        std::string bytes;
    };

    void send_due_replies();
    void wait_for_next_reply();

    platform::EventLoop& loop_;
    ReplyTiming timing_;
    std::function<void(const std::string&)> send_;
    std::deque<PendingReply> replies_;
    platform::TimePoint line_busy_until_{};
    platform::Timer timer_;
};

}  // namespace bench
