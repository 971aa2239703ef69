// The scan of an answered block: whatever a server leaves in the shared memory, nothing outside the block is read and
// each destination gets only the data of its own request.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "simlink/block_scan.h"
#include "simlink/ipc_block.h"
#include "support/bytes.h"

namespace {

// A request that the input asks for: its first byte is kind and presence of a destination, the next its size.
struct Wanted {
    std::uint16_t id;
    bool has_destination;
    std::uint32_t size;
};

constexpr std::size_t kMostWanted = 16;

std::vector<Wanted> wanted_requests(const std::uint8_t*& data, std::size_t& size) {
    std::vector<Wanted> wanted;
    const std::size_t count = size == 0 ? 0 : std::min<std::size_t>(data[0] % (kMostWanted + 1), (size - 1) / 2);
    for (std::size_t number = 0; number < count; ++number) {
        const std::uint8_t kind = data[1 + 2 * number];
        wanted.push_back(
            {(kind & 1U) != 0 ? simlink::kReadId : simlink::kWriteId, (kind & 2U) != 0, data[2 + 2 * number]});
    }
    const std::size_t used = size == 0 ? 0 : 1 + 2 * count;
    data += used;
    size -= used;
    return wanted;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<Wanted> wanted = wanted_requests(data, size);
    // Exactly as large as the block and the variables, so that the sanitizer sees every byte beyond.
    const auto block = std::make_unique<std::uint8_t[]>(simlink::kBlockBytes);
    std::vector<std::unique_ptr<std::uint8_t[]>> variables;
    std::vector<simlink::BlockRequest> requests;
    std::uint32_t position = 0;
    for (const Wanted& request : wanted) {
        const bool reads_into = request.id == simlink::kReadId && request.has_destination;
        variables.push_back(reads_into ? std::make_unique<std::uint8_t[]>(request.size) : nullptr);
        std::uint8_t* at = block.get() + position;
        support::put_u32le(at + simlink::kIdAt, request.id);
        support::put_u32le(at + simlink::kSizeAt, request.size);
        std::uint32_t head_bytes = simlink::kWriteHeadBytes;
        if (request.id == simlink::kReadId) {
            head_bytes = simlink::kReadHeadBytes;
            const std::size_t entry = reads_into ? requests.size() + 1 : 0;
            support::put_u32le(at + simlink::kDestinationAt, static_cast<std::uint32_t>(entry));
        }
        requests.push_back({request.id, position, request.size, variables.back().get()});
        position += head_bytes + request.size;
    }
    // The server's doing: pairs of a position and a byte, each laid over the block as it was sent.
    for (; size >= 3; data += 3, size -= 3) {
        block[support::read_u16le(data) % simlink::kBlockBytes] = data[2];
    }
    const simlink::ScanOutcome outcome = scan_answers({block.get(), simlink::kBlockBytes}, requests);
    if (outcome == simlink::ScanOutcome::complete) {
        for (const simlink::BlockRequest& request : requests) {
            if (support::read_u16le(block.get() + request.position) == simlink::kEndId) {
                break;
            }
            if (request.destination != nullptr &&
                !std::equal(block.get() + request.position + simlink::kReadHeadBytes,
                            block.get() + request.position + simlink::kReadHeadBytes + request.size,
                            static_cast<const std::uint8_t*>(request.destination))) {
                std::abort();
            }
        }
    }
    return 0;
}
