#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

// What the tests under Wine and the line server say to each other over a connection: frames of a kind, a length (two
// bytes, the low one first) and that many bytes. One connection is one serial line.
namespace line_server {

inline constexpr char kPlug = 'p';    // from the test; answered by itself
inline constexpr char kUnplug = 'u';  // from the test; answered by itself
inline constexpr char kBytes = 'b';   // both ways: what goes over the line
inline constexpr std::size_t kHead = 3;
inline constexpr std::size_t kLongest = 60'000;

inline std::string frame(char kind, std::string_view bytes) {
    std::string text(1, kind);
    text.push_back(static_cast<char>(bytes.size() & 0xFFU));
    text.push_back(static_cast<char>(bytes.size() >> 8U));
    return text.append(bytes);
}

inline std::size_t length_of(const std::array<char, kHead>& head) {
    return static_cast<std::size_t>(static_cast<unsigned char>(head[1])) +
           256U * static_cast<std::size_t>(static_cast<unsigned char>(head[2]));
}

}  // namespace line_server
