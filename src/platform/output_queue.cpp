#include "platform/output_queue.h"

#include "support/failure.h"

namespace platform {

void OutputQueue::add(std::string_view block) {
    if (block.size() > kLimit) {
        throw support::Failure("Too much to send at once");
    }
    if (block.empty()) {
        return;
    }
    while (bytes_.size() + block.size() > kLimit && blocks_.size() > (begun_ > 0 ? 1U : 0U)) {
        drop_oldest_waiting();
    }
    bytes_.append(block);
    blocks_.push_back(block.size());
}

void OutputQueue::drop_oldest_waiting() {
    const bool first_has_begun = begun_ > 0;
    const auto oldest = blocks_.begin() + (first_has_begun ? 1 : 0);
    bytes_.erase(first_has_begun ? blocks_.front() : 0, *oldest);
    blocks_.erase(oldest);
    ++dropped_blocks_;
}

void OutputQueue::taken(std::size_t count) {
    begun_ += count;
    std::size_t done_bytes = 0;
    auto block = blocks_.begin();
    while (block != blocks_.end() && begun_ >= *block) {
        begun_ -= *block;
        done_bytes += *block++;
    }
    blocks_.erase(blocks_.begin(), block);
    bytes_.erase(0, done_bytes);
}

void OutputQueue::clear() {
    bytes_.clear();
    blocks_.clear();
    begun_ = 0;
}

}  // namespace platform
