#include "simhost/block_server.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

#include "support/bytes.h"

namespace {

using simhost::BlockServer;
using simhost::OffsetSpace;
using simhost::ServerFault;
using Bytes = std::vector<std::uint8_t>;

// Builds a block by hand, byte for byte, without the server's own constants.
class BlockBytes {
  public:
    BlockBytes& word(std::uint32_t value) {
        const std::size_t at = bytes_.size();
        bytes_.resize(at + 4);
        support::put_u32le(bytes_.data() + at, value);
        return *this;
    }
    BlockBytes& read(std::uint32_t offset, std::uint32_t size, std::uint32_t destination) {
        word(1).word(offset).word(size).word(destination);
        bytes_.resize(bytes_.size() + size);
        return *this;
    }
    BlockBytes& write(std::uint32_t offset, const Bytes& data) {
        word(2).word(offset).word(static_cast<std::uint32_t>(data.size()));
        bytes_.insert(bytes_.end(), data.begin(), data.end());
        return *this;
    }
    Bytes closed() const {
        Bytes all = bytes_;
        all.resize(32768);
        return all;
    }
    Bytes bare() const { return bytes_; }

  private:
    Bytes bytes_;
};

struct ServerTest : testing::Test {
    std::uint32_t answer(Bytes& block) { return server.answer(block.data(), block.size()).value; }

    OffsetSpace space;
    BlockServer server{space};
};

TEST_F(ServerTest, a_block_of_reads_and_writes_is_answered_in_place_byte_for_byte) {
    space.write_u16(0x0330, 0x3F5A);
    Bytes block = BlockBytes().read(0x0330, 2, 0xCAFEBABE).write(0x07CC, {0x34, 0x12}).read(0x07CC, 3, 7).closed();

    EXPECT_EQ(answer(block), 1U);

    Bytes golden = {1, 0, 0, 0, 0x30, 3, 0, 0, 2, 0, 0, 0, 0xBE, 0xBA, 0xFE, 0xCA, 0x5A, 0x3F,  // read record
                    2, 0, 0, 0, 0xCC, 7, 0, 0, 2, 0, 0, 0, 0x34, 0x12,                          // write record
                    1, 0, 0, 0, 0xCC, 7, 0, 0, 3, 0, 0, 0, 7,    0,    0,    0,    0x34, 0x12, 0};
    golden.resize(32768);
    EXPECT_EQ(block, golden);
    EXPECT_EQ(space.read_u16(0x07CC), 0x1234);
}

TEST_F(ServerTest, every_applied_write_is_told_in_order_with_its_offset_and_size) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> told;
    server.on_write = [&](std::uint32_t offset, std::uint32_t size) { told.emplace_back(offset, size); };
    Bytes block =
        BlockBytes().write(0x3114, {0x45, 0x0A, 0, 0}).write(0x3110, {0x2E, 4, 0, 0}).write(0x20, {}).closed();
    EXPECT_EQ(answer(block), 1U);
    EXPECT_EQ(told, (std::vector<std::pair<std::uint32_t, std::uint32_t>>{{0x3114, 4}, {0x3110, 4}}));
}

TEST_F(ServerTest, the_version_words_stay_whatever_a_client_writes_over_them) {
    Bytes open = BlockBytes().read(0x3304, 4, 1).read(0x3308, 4, 2).write(0x330A, {0, 0}).closed();
    Bytes spoil = BlockBytes().write(0x3300, Bytes(16, 0x55)).closed();
    EXPECT_EQ(answer(spoil), 1U);
    EXPECT_EQ(answer(open), 1U);
    EXPECT_GE(support::as_i32(support::read_u32le(&open[16])), 0x19980005);
    EXPECT_EQ(support::read_u32le(&open[36]), 0xFADE0008U);
    Bytes half = BlockBytes().read(0x330A, 2, 1).closed();
    EXPECT_EQ(answer(half), 1U);
    EXPECT_EQ(support::read_u16le(&half[16]), 0xFADE);
}

TEST_F(ServerTest, a_block_with_bad_data_changes_nothing_and_is_told_from_a_good_one) {
    const Bytes good_write = {0x77};
    struct Case {
        const char* what;
        Bytes block;
    };
    const std::vector<Case> cases = {
        {"no stop word", BlockBytes().write(0x20, good_write).bare()},
        {"unknown id", BlockBytes().write(0x20, good_write).word(3).word(0).word(0).closed()},
        {"id in the upper half only", BlockBytes().write(0x20, good_write).word(0x10001).word(0).word(0).closed()},
        {"head cut off", BlockBytes().write(0x20, good_write).word(1).word(0x20).bare()},
        {"data beyond the block", BlockBytes().write(0x20, good_write).word(2).word(0x20).word(9999).bare()},
        {"size near 2^32", BlockBytes().write(0x20, good_write).word(1).word(0x20).word(0xFFFFFFF0).word(0).closed()},
        {"offset beyond the space", BlockBytes().write(0x20, good_write).read(0x10001, 0, 0).closed()},
        {"data over the end of the space", BlockBytes().write(0x20, good_write).read(0xFFFF, 2, 0).closed()},
        {"empty", {}},
        {"two bytes", {0, 0}},
    };
    for (const Case& c : cases) {
        Bytes block = c.block;
        EXPECT_NE(answer(block), 1U) << c.what;
        EXPECT_EQ(block, c.block) << c.what;
        EXPECT_EQ(space.read_u8(0x20), 0) << c.what;
    }
    EXPECT_EQ(server.bad_blocks(), cases.size());
    EXPECT_NE(server.answer(nullptr, 32768).value, 1U);
}

TEST_F(ServerTest, legal_edges_are_answered) {
    const std::vector<Bytes> blocks = {
        BlockBytes().closed(),                     // only the stop
        BlockBytes().word(0).bare(),               // a block of four bytes
        BlockBytes().read(0x20, 0, 0).closed(),    // size 0
        BlockBytes().read(0xFFFF, 1, 1).closed(),  // the last byte of the space
        BlockBytes().read(0, 32492, 1).closed(),   // the largest read of a client
    };
    for (const Bytes& bytes : blocks) {
        Bytes block = bytes;
        EXPECT_EQ(answer(block), 1U);
    }
}

TEST_F(ServerTest, any_bytes_are_survived) {
    std::mt19937 random(20240621);
    for (int run = 0; run < 20000; ++run) {
        Bytes block(random() % 200);
        for (std::uint8_t& byte : block) {
            // Small numbers are frequent, so that many blocks get past the first record.
            byte = static_cast<std::uint8_t>(random() % 4 == 0 ? random() : random() % 3);
        }
        const std::uint32_t value = answer(block);
        EXPECT_TRUE(value == 1U || value == 0U);
    }
    EXPECT_GT(server.answered_blocks(), 0U);
    EXPECT_GT(server.bad_blocks(), 0U);
}

TEST_F(ServerTest, every_fault_shows_at_the_client_and_ends_when_it_is_switched_off) {
    struct Case {
        ServerFault fault;
        std::uint32_t value;
        std::uint32_t server_word;
        std::uint32_t sim_word;
        std::uint16_t first_id;
    };
    const std::vector<Case> cases = {
        {ServerFault::wrong_server_version, 1, 0x19980004, 0xFADE0008, 1},
        {ServerFault::wrong_sim_word, 1, simhost::kServerVersion, 0xBAD00008, 1},
        {ServerFault::zero_versions, 1, 0, 0, 1},
        {ServerFault::bad_reply, 2, simhost::kServerVersion, 0xFADE0008, 1},
        {ServerFault::wrong_record_ids, 1, simhost::kServerVersion, 0xFADE0008, 77},
    };
    const Bytes open = BlockBytes().read(0x3304, 4, 1).read(0x3308, 4, 2).closed();
    for (const Case& c : cases) {
        server.set_fault(c.fault, true);
        Bytes block = open;
        EXPECT_EQ(answer(block), c.value);
        EXPECT_EQ(support::read_u32le(&block[16]), c.server_word);
        EXPECT_EQ(support::read_u32le(&block[36]), c.sim_word);
        EXPECT_EQ(support::read_u16le(block.data()), c.first_id);
        server.set_fault(c.fault, false);
        block = open;
        EXPECT_EQ(answer(block), 1U);
        EXPECT_EQ(support::read_u32le(&block[16]), simhost::kServerVersion);
    }
}

TEST_F(ServerTest, a_silent_server_neither_answers_nor_applies_and_a_slow_one_tells_its_delay) {
    Bytes block = BlockBytes().write(0x20, {9}).closed();
    server.set_fault(ServerFault::silence, true);
    EXPECT_TRUE(server.silent());
    EXPECT_NE(answer(block), 1U);
    EXPECT_EQ(space.read_u8(0x20), 0);

    server.clear_faults();
    server.set_fault(ServerFault::slow_answers, true);
    server.slow_answer_delay = std::chrono::milliseconds(300);
    EXPECT_FALSE(server.silent());
    EXPECT_EQ(server.answer_delay().count(), 300);
    EXPECT_EQ(answer(block), 1U);
    EXPECT_EQ(space.read_u8(0x20), 9);
}

TEST(OffsetSpaceTest, values_are_little_endian_and_accesses_over_the_end_are_cut) {
    OffsetSpace space;
    space.write_u32(0x100, 0x04030201);
    EXPECT_EQ(space.read_u8(0x100), 1);
    EXPECT_EQ(space.read_u16(0x102), 0x0403);
    space.write_i16(0x110, -2);
    EXPECT_EQ(space.read_u16(0x110), 0xFFFE);
    space.write_f64(0x120, -1.5);
    EXPECT_EQ(space.read_u64(0x120), 0xBFF8000000000000U);
    EXPECT_EQ(space.read_f64(0x120), -1.5);
    space.write_u32(0xFFFE, 0xAABBCCDD);
    EXPECT_EQ(space.read_u32(0xFFFE), 0x0000CCDDU);
    EXPECT_EQ(space.read_u8(0), 0);
    EXPECT_EQ(space.read_u64(0x12345678), 0U);
    space.write_text(0x200, 4, "abcdef");
    EXPECT_EQ(space.read_u32(0x200), 0x00636261U);
}

}  // namespace
