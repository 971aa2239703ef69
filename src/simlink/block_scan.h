#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace simlink {

// What the client remembers of a record that it has put into the block.
struct BlockRequest {
    std::uint16_t id = 0;        // kReadId or kWriteId
    std::uint32_t position = 0;  // of the head, from the start of the block
    std::uint32_t size = 0;      // bytes of data behind the head
    void* destination = nullptr;
};

enum class ScanOutcome {
    complete,    // the end was reached
    unknown_id,  // a record bears an id that is none
    bad_head,    // a record is not the one that was put there
};

// Scatters the data of the answered read records to their destinations, in order, until the end or the first record
// that is wrong; data already copied stays copied. The bytes of the block may be anything: a destination gets only data
// of its own request, in its own size. `requests` are those of the block, whose records lie wholly inside it with the
// stop bytes behind them.
ScanOutcome scan_answers(std::span<const std::uint8_t> block, std::span<const BlockRequest> requests);

}  // namespace simlink
