#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "simhost/offset_space.h"

namespace simhost {

// The request block as the client hands it over: records one behind the other without padding, four zero bytes behind
// the last. All numbers are 32-bit little-endian.
inline constexpr std::uint32_t kReadRecordId = 1;
inline constexpr std::uint32_t kWriteRecordId = 2;
inline constexpr std::size_t kRecordOffsetAt = 4;   // simulator offset
inline constexpr std::size_t kRecordSizeAt = 8;     // number of data bytes
inline constexpr std::size_t kReadHeadBytes = 16;   // id, offset, size, destination (the client's own)
inline constexpr std::size_t kWriteHeadBytes = 12;  // id, offset, size
inline constexpr std::size_t kStopBytes = 4;
inline constexpr std::uint32_t kReplyGood = 1;
inline constexpr std::uint32_t kReplyBadData = 0;

// Version words that a client asks for when it opens the link.
inline constexpr std::uint32_t kServerVersionOffset = 0x3304;
inline constexpr std::uint32_t kSimVersionOffset = 0x3308;
inline constexpr std::uint32_t kClientVersionOffset = 0x330A;  // the client's own version, written by it; kept apart
inline constexpr std::uint32_t kServerVersion = 0x50000000;
inline constexpr std::uint32_t kSimVersion = 0xFADE0008;  // the high half is the mark, the low half tells the simulator

// What can go wrong with the server on demand. Faults add up, and each lasts until it is switched off.
enum class ServerFault : std::uint8_t {
    silence,               // no answer at all
    slow_answers,          // the answer comes after slow_answer_delay
    wrong_server_version,  // the word at 0x3304 is too old
    wrong_sim_word,        // the word at 0x3308 lacks its mark
    zero_versions,         // both version words are 0
    bad_reply,             // the block is answered, the reply value is not 1
    wrong_record_ids,      // the ids of the answered records are destroyed
};
inline constexpr int kServerFaults = 7;

struct BlockAnswer {
    enum class Kind : std::uint8_t { reply, silence };
    Kind kind = Kind::reply;
    std::uint32_t value = kReplyGood;
    std::chrono::milliseconds delay{0};  // wait this long before the reply is sent
};

// Answers request blocks out of an offset space, in place. It knows nothing of the way a block comes; the transport
// asks it whether to answer at all and how late.
class BlockServer {
  public:
    explicit BlockServer(OffsetSpace& space) : space_(space) {}

    // Called after a client's write record has been applied: first offset and number of bytes, at least 1.
    std::function<void(std::uint32_t offset, std::uint32_t size)> on_write;

    // Answers a block in place, faults included. Safe on any bytes, and on bytes that
    // another process changes meanwhile: a block that is not well formed (unknown id, data beyond its end or beyond the
    // offset space, no stop) changes nothing and gets kReplyBadData.
    BlockAnswer answer(std::uint8_t* block, std::size_t size);

    // What the transport is to do with the sends that come in: nothing at all, or answer after this time.
    bool silent() const { return fault(ServerFault::silence); }
    std::chrono::milliseconds answer_delay() const {
        return fault(ServerFault::slow_answers) ? slow_answer_delay : std::chrono::milliseconds(0);
    }

    void set_fault(ServerFault fault, bool on) { faults_[static_cast<std::size_t>(fault)] = on; }
    bool fault(ServerFault fault) const { return faults_[static_cast<std::size_t>(fault)]; }
    void clear_faults() { faults_.fill(false); }
    std::chrono::milliseconds slow_answer_delay{0};

    std::uint64_t answered_blocks() const { return answered_blocks_; }
    std::uint64_t bad_blocks() const { return bad_blocks_; }
    std::uint64_t read_records() const { return read_records_; }
    std::uint64_t write_records() const { return write_records_; }

  private:
    void read_into(std::uint32_t offset, std::uint8_t* data, std::uint32_t size) const;
    void apply();
    std::uint32_t sim_word() const;

    OffsetSpace& space_;
    std::vector<std::uint8_t> block_;  // the block that is being answered
    std::array<bool, kServerFaults> faults_{};
    std::uint64_t answered_blocks_ = 0;
    std::uint64_t bad_blocks_ = 0;
    std::uint64_t read_records_ = 0;
    std::uint64_t write_records_ = 0;
};

}  // namespace simhost
