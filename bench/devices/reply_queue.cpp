#include "bench/devices/reply_queue.h"

#include <algorithm>
#include <utility>

namespace bench {

ReplyQueue::ReplyQueue(platform::EventLoop& loop, ReplyTiming timing, std::function<void(const std::string&)> send)
    : loop_(loop),
      timing_(timing),
      send_(std::move(send)),
      timer_(loop, "bench replies", platform::Milliseconds(1), [this] { send_due_replies(); }) {}

void ReplyQueue::add(std::string bytes, platform::Duration think_time) {
    const platform::TimePoint start = std::max(loop_.now() + think_time, line_busy_until_);
    line_busy_until_ = start + timing_.byte_time * static_cast<std::int64_t>(bytes.size());
    replies_.push_back({start, std::move(bytes)});
    if (replies_.size() == 1) {
        wait_for_next_reply();
    }
}

void ReplyQueue::clear() {
    replies_.clear();
    timer_.stop();
}

void ReplyQueue::send_due_replies() {
    while (!replies_.empty() && replies_.front().due <= loop_.now()) {
        const std::string bytes = std::move(replies_.front().bytes);
        replies_.pop_front();
        send_(bytes);
    }
    wait_for_next_reply();
}

void ReplyQueue::wait_for_next_reply() {
    if (replies_.empty()) {
        timer_.stop();
        return;
    }
    const auto left = std::chrono::ceil<platform::Milliseconds>(replies_.front().due - loop_.now());
    timer_.set_interval(std::max(left, platform::Milliseconds(1)));
    timer_.start();
}

}  // namespace bench
