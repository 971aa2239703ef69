#include "simlink/block_scan.h"

#include <cstring>

#include "simlink/ipc_block.h"
#include "support/bytes.h"

namespace simlink {

namespace {

// Whether the head at `at` is still that of the request. Its simulator offset is the server's business.
bool head_is_intact(const std::uint8_t* at, std::uint16_t id, const BlockRequest& request, std::size_t number) {
    if (id != request.id || support::read_u32le(at + kSizeAt) != request.size) {
        return false;
    }
    const auto destination = static_cast<std::uint32_t>(request.destination == nullptr ? 0 : number + 1);
    return id != kReadId || support::read_u32le(at + kDestinationAt) == destination;
}

}  // namespace

// NOTE: The server may still write to the block while it is scanned (a late answer to a send that timed out). So sizes
// and positions come from the client's own list, never from the block, and what the block says is only compared.
ScanOutcome scan_answers(std::span<const std::uint8_t> block, std::span<const BlockRequest> requests) {
    std::size_t number = 0;
    std::size_t position = 0;
    for (;;) {
        const std::uint8_t* at = block.data() + position;
        const std::uint16_t id = support::read_u16le(at + kIdAt);
        if (id == kEndId) {
            return ScanOutcome::complete;
        }
        if (id != kReadId && id != kWriteId) {
            return ScanOutcome::unknown_id;
        }
        if (number == requests.size() || !head_is_intact(at, id, requests[number], number)) {
            return ScanOutcome::bad_head;
        }
        const BlockRequest& request = requests[number];
        const std::uint32_t head_bytes = id == kReadId ? kReadHeadBytes : kWriteHeadBytes;
        if (id == kReadId && request.destination != nullptr && request.size != 0) {
            std::memcpy(request.destination, at + head_bytes, request.size);
        }
        position = std::size_t{request.position} + head_bytes + request.size;
        ++number;
    }
}

}  // namespace simlink
