#include "simhost/block_server.h"

#include <algorithm>
#include <array>
#include <optional>

#include "support/bytes.h"

namespace simhost {

namespace {

// A version word just below the oldest that clients accept.
constexpr std::uint32_t kTooOldServerVersion = 0x19980004;
constexpr std::uint32_t kUnmarkedSimVersion = 0xBAD00008;
constexpr std::uint32_t kBadReplyValue = 2;
constexpr std::uint16_t kDestroyedRecordId = 77;

std::size_t head_bytes(std::uint32_t id) {
    return id == kReadRecordId ? kReadHeadBytes : kWriteHeadBytes;
}

// The length of the records of a block, without the stop; nothing when the block is not well formed.
std::optional<std::size_t> length_of_records(const std::uint8_t* block, std::size_t size) {
    std::size_t at = 0;
    while (size - at >= kStopBytes) {
        const std::uint32_t id = support::read_u32le(block + at);
        if (id == 0) {
            return at;
        }
        if ((id != kReadRecordId && id != kWriteRecordId) || size - at < head_bytes(id)) {
            return std::nullopt;
        }
        const std::uint32_t offset = support::read_u32le(block + at + kRecordOffsetAt);
        const std::uint32_t data_bytes = support::read_u32le(block + at + kRecordSizeAt);
        if (offset > kOffsetSpaceBytes || data_bytes > kOffsetSpaceBytes - offset) {
            return std::nullopt;
        }
        at += head_bytes(id);
        if (data_bytes > size - at) {
            return std::nullopt;
        }
        at += data_bytes;
    }
    return std::nullopt;
}

// Copies what of `word`, standing at `word_offset`, lies in the range that is being read.
void overlay_word(std::uint32_t word, std::uint32_t word_offset, std::uint32_t offset, std::uint8_t* data,
                  std::uint32_t size) {
    std::array<std::uint8_t, 4> bytes{};
    support::put_u32le(bytes.data(), word);
    for (std::uint32_t i = 0; i < bytes.size(); ++i) {
        if (word_offset + i >= offset && word_offset + i - offset < size) {
            data[word_offset + i - offset] = bytes[i];
        }
    }
}

}  // namespace

BlockAnswer BlockServer::answer(std::uint8_t* block, std::size_t size) {
    BlockAnswer result;
    result.delay = answer_delay();
    if (silent()) {
        result.kind = BlockAnswer::Kind::silence;
        result.value = kReplyBadData;
        return result;
    }
    // The block may lie in memory that the client shares, so what is checked and what is used is a copy of it.
    block_.assign(block, block + (block == nullptr ? 0 : size));
    const std::optional<std::size_t> length = length_of_records(block_.data(), block_.size());
    if (!length) {
        ++bad_blocks_;
        result.value = kReplyBadData;
        return result;
    }
    apply();
    std::copy_n(block_.begin(), *length, block);
    ++answered_blocks_;
    result.value = fault(ServerFault::bad_reply) ? kBadReplyValue : kReplyGood;
    return result;
}

std::uint32_t BlockServer::sim_word() const {
    if (fault(ServerFault::zero_versions)) {
        return 0;
    }
    return fault(ServerFault::wrong_sim_word) ? kUnmarkedSimVersion : kSimVersion;
}

void BlockServer::read_into(std::uint32_t offset, std::uint8_t* data, std::uint32_t size) const {
    space_.read_bytes(offset, {data, size});
    // The version words are the server's own: no write of a client reaches them, although the word at 0x330A that
    // clients write lies in the upper half of the one at 0x3308.
    const std::uint32_t server_word = fault(ServerFault::wrong_server_version) ? kTooOldServerVersion : kServerVersion;
    overlay_word(fault(ServerFault::zero_versions) ? 0 : server_word, kServerVersionOffset, offset, data, size);
    overlay_word(sim_word(), kSimVersionOffset, offset, data, size);
}

void BlockServer::apply() {
    std::size_t at = 0;
    for (std::uint32_t id = support::read_u32le(block_.data()); id != 0; id = support::read_u32le(&block_[at])) {
        std::uint8_t* const record = &block_[at];
        const std::uint32_t offset = support::read_u32le(record + kRecordOffsetAt);
        const std::uint32_t data_bytes = support::read_u32le(record + kRecordSizeAt);
        std::uint8_t* const data = record + head_bytes(id);
        at += head_bytes(id) + data_bytes;
        if (id == kReadRecordId) {
            ++read_records_;
            read_into(offset, data, data_bytes);
        } else {
            ++write_records_;
            space_.write_bytes(offset, {data, data_bytes});
            if (on_write && data_bytes > 0) {
                on_write(offset, data_bytes);
            }
        }
        if (fault(ServerFault::wrong_record_ids)) {
            support::put_u16le(record, kDestroyedRecordId);
        }
    }
}

}  // namespace simhost
