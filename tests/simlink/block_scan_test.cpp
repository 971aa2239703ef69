#include "simlink/block_scan.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "simlink/ipc_block.h"
#include "support/bytes.h"

namespace {

using simlink::BlockRequest;
using simlink::ScanOutcome;

// An answered block with a read of 4 bytes, a write of 2 and a read of 2, with places to which its data goes.
class AnsweredBlock {
  public:
    AnsweredBlock() : bytes(simlink::kBlockBytes, 0) {
        add(simlink::kReadId, 4, &first);
        add(simlink::kWriteId, 2, nullptr);
        add(simlink::kReadId, 2, &second);
        support::put_u32le(bytes.data() + 16, 0x11223344);
        support::put_u16le(bytes.data() + 50, 0x5566);
    }

    ScanOutcome scan() { return scan_answers(bytes, requests); }

    std::vector<std::uint8_t> bytes;
    std::vector<BlockRequest> requests;
    std::uint32_t first = 1;
    std::uint16_t second = 2;

  private:
    void add(std::uint16_t id, std::uint32_t size, void* destination) {
        requests.push_back({id, position_, size, destination});
        std::uint8_t* at = bytes.data() + position_;
        support::put_u32le(at + simlink::kIdAt, id);
        support::put_u32le(at + simlink::kSizeAt, size);
        position_ += size + simlink::kWriteHeadBytes;
        if (id == simlink::kReadId) {
            support::put_u32le(at + simlink::kDestinationAt, static_cast<std::uint32_t>(requests.size()));
            position_ += 4;
        }
    }

    std::uint32_t position_ = 0;
};

TEST(BlockScan, answers_reach_their_destinations_whatever_the_high_half_of_an_id_says) {
    AnsweredBlock block;
    support::put_u16le(block.bytes.data() + 2, 0xFFFF);
    EXPECT_EQ(block.scan(), ScanOutcome::complete);
    EXPECT_EQ(block.first, 0x11223344U);
    EXPECT_EQ(block.second, 0x5566U);
}

// Positions: read head 0, its data 16, write head 20, its data 32, read head 34, its data 50, stop bytes 52.
TEST(BlockScan, wrong_records_stop_the_scan_and_what_was_copied_stays) {
    struct Case {
        std::string what;
        std::size_t at;
        std::uint32_t value;
        ScanOutcome outcome;
        bool first_copied;
    };
    const Case cases[] = {
        {"unknown id at the start", 0, 3, ScanOutcome::unknown_id, false},
        {"unknown id later", 20, 0xFFFF, ScanOutcome::unknown_id, true},
        {"an id that is zero ends the scan", 20, 0, ScanOutcome::complete, true},
        {"a read that became a write", 0, 2, ScanOutcome::bad_head, false},
        {"a size beyond the block", 8, 0xFFFFFFFF, ScanOutcome::bad_head, false},
        {"a size that is one too large", 42, 3, ScanOutcome::bad_head, true},
        {"a write whose size lies", 28, 40000, ScanOutcome::bad_head, true},
        {"a destination that lies", 46, 1, ScanOutcome::bad_head, true},
        {"a destination that was cleared", 46, 0, ScanOutcome::bad_head, true},
        {"a record behind the last", 52, 1, ScanOutcome::bad_head, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        AnsweredBlock block;
        support::put_u32le(block.bytes.data() + c.at, c.value);
        EXPECT_EQ(block.scan(), c.outcome);
        EXPECT_EQ(block.first, c.first_copied ? 0x11223344U : 1U);
        EXPECT_EQ(block.second, c.at == 52 ? 0x5566U : 2U);
    }
}

TEST(BlockScan, a_request_without_a_destination_is_passed_over) {
    AnsweredBlock block;
    block.requests[0].destination = nullptr;
    support::put_u32le(block.bytes.data() + simlink::kDestinationAt, 0);
    EXPECT_EQ(block.scan(), ScanOutcome::complete);
    EXPECT_EQ(block.first, 1U);
    EXPECT_EQ(block.second, 0x5566U);
}

}  // namespace
