#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/posix/system_failure.h"

namespace platform::posix {

// The simulator's conversation over a Unix socket, as docs/simulator-link.md tells it. All numbers are little-endian.

// One send: message number, atom (signed), 0, number of the send. The first packet of an atom on a connection carries
// the memfd of its mapping.
inline constexpr std::size_t kSendPacketSize = 16;
inline constexpr std::size_t kSendMessageAt = 0;
inline constexpr std::size_t kSendAtomAt = 4;
inline constexpr std::size_t kSendZeroAt = 8;
inline constexpr std::size_t kSendNumberAt = 12;
using SendPacket = std::array<std::uint8_t, kSendPacketSize>;

// One reply: reply value, number of the send that it answers.
inline constexpr std::size_t kReplyPacketSize = 8;
inline constexpr std::size_t kReplyValueAt = 0;
inline constexpr std::size_t kReplyNumberAt = 4;
using ReplyPacket = std::array<std::uint8_t, kReplyPacketSize>;

// Registered messages and atoms count from here.
inline constexpr std::uint32_t kFirstRegistered = 0xC000;

// The number of a registered message: both sides work it out from its text.
constexpr std::uint32_t registered_message(std::string_view text) {
    std::uint32_t hash = 2166136261U;  // FNV-1a, 32 bits
    for (const char letter : text) {
        hash = (hash ^ static_cast<std::uint8_t>(letter)) * 16777619U;
    }
    return kFirstRegistered + (hash & 0x3FFFU);
}

// Makes a packet socket, not blocking, not inherited. Not valid, with the reason in errno, when there is none.
Descriptor make_packet_socket();
// Connects a packet socket to a window class, or listens on it. Gives 0 or the system's error code.
int connect_to_class(int socket, const std::string& window_class);
int listen_on_class(int socket, const std::string& window_class);
// Whether the other side of a connected socket is the same user or root.
bool peer_is_trusted(int socket);

}  // namespace platform::posix
