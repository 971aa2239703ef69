#pragma once

#include <cstdint>

// The request block that the client and the simulator's server share. Its facts come from the simulator's interface:
// the block's mapping, its records, and the offsets that tell the versions. All numbers are little-endian; records
// follow each other without padding, and four zero bytes stand behind the last one. The server answers in place: read
// records come back with their data filled in, everything else as it was.
namespace simlink {

// The mapping and the part of it that requests may use; the last 256 bytes are never used.
inline constexpr std::uint32_t kBlockBytes = 0x8000;
inline constexpr std::uint32_t kBlockLimit = 0x7F00;

// Record ids. The client writes 32 bits and reads back 16.
inline constexpr std::uint16_t kEndId = 0;
inline constexpr std::uint16_t kReadId = 1;
inline constexpr std::uint16_t kWriteId = 2;

// Both records begin alike: id, simulator offset, size of the data. A read record goes on with the destination, which
// only the client uses: 0 = the data is skipped, else 1 + the number of the request in the block. The data follows.
inline constexpr std::uint32_t kIdAt = 0;
inline constexpr std::uint32_t kOffsetAt = 4;
inline constexpr std::uint32_t kSizeAt = 8;
inline constexpr std::uint32_t kDestinationAt = 12;
inline constexpr std::uint32_t kReadHeadBytes = 16;
inline constexpr std::uint32_t kWriteHeadBytes = 12;
inline constexpr std::uint32_t kStopBytes = 4;

// The most requests that one block holds: write records without data.
inline constexpr std::uint32_t kMostRequests = (kBlockLimit - kStopBytes) / kWriteHeadBytes;

// Window classes of the server: the simulator's own, and the one that a networked client bears.
inline constexpr const char* kServerClass = "UIPCMAIN";
inline constexpr const char* kNetworkedServerClass = "FS98MAIN";
// The registered message; the mapping's name begins with it too.
inline constexpr const char* kMessageText = "FSASMLIB:IPC";

// The reply that says that the block holds the answers.
inline constexpr std::uint32_t kReplyOkay = 1;

inline constexpr std::uint32_t kSendTimeoutMs = 2000;
inline constexpr std::uint32_t kRetryPauseMs = 100;
inline constexpr int kMostRetries = 10;
inline constexpr std::uint32_t kOpenPauseMs = 100;
inline constexpr int kMostOpenTries = 5;

// Simulator offsets of the versions: 4, 4 and 2 bytes.
inline constexpr std::uint32_t kOffsetFsuipcVersion = 0x3304;
inline constexpr std::uint32_t kOffsetSimVersion = 0x3308;
inline constexpr std::uint32_t kOffsetClientVersion = 0x330A;

inline constexpr std::int32_t kLeastFsuipcVersion = 0x19980005;
// The high half of the word at kOffsetSimVersion.
inline constexpr std::uint32_t kSimVersionMark = 0xFADE;

}  // namespace simlink
