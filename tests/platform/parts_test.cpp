#include <gtest/gtest.h>

#include "platform/log_line.h"
#include "platform/output_queue.h"
#include "support/failure.h"

namespace platform_tests {
namespace {

using platform::OutputQueue;

TEST(OutputQueue, the_oldest_whole_blocks_go_when_no_more_fits_and_a_begun_block_stays) {
    OutputQueue queue;
    const std::size_t third = OutputQueue::kLimit / 3;
    for (const char letter : {'a', 'b', 'c'}) {
        queue.add(std::string(third, letter));
    }
    queue.taken(10);
    queue.add(std::string(third, 'd'));
    EXPECT_EQ(queue.dropped_blocks(), 1U);
    EXPECT_EQ(queue.next(), std::string(third - 10, 'a') + std::string(third, 'c') + std::string(third, 'd'));
    queue.taken(third - 10 + third);
    EXPECT_EQ(queue.next(), std::string(third, 'd'));
    queue.add(std::string(OutputQueue::kLimit, 'e'));
    EXPECT_EQ(queue.next(), std::string(OutputQueue::kLimit, 'e'));
    EXPECT_THROW(queue.add(std::string(OutputQueue::kLimit + 1, 'f')), support::Failure);
    queue.taken(OutputQueue::kLimit);
    EXPECT_TRUE(queue.empty());
}

TEST(LogLine, a_line_of_the_log_stays_one_line_of_plain_text) {
    EXPECT_EQ(platform::log_line("Error 9\r\nGo on?\x1B[2J\t\x9Cz"), "Error 9 / Go on?\\x1B[2J\\x09\\x9Cz");
}

}  // namespace
}  // namespace platform_tests
