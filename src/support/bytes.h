#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace support {

// A serial message is a byte string: every char is one byte 0..255, whatever the sign of char.
inline std::uint8_t byte_at(std::string_view bytes, std::size_t index) {
    return static_cast<std::uint8_t>(bytes[index]);
}

inline void append_byte(std::string& bytes, unsigned value) {
    bytes.push_back(static_cast<char>(value & 0xFFU));
}

inline std::uint16_t read_u16le(const std::uint8_t* at) {
    return static_cast<std::uint16_t>(at[0] | (at[1] << 8));
}

inline std::uint32_t read_u32le(const std::uint8_t* at) {
    return static_cast<std::uint32_t>(at[0]) | (static_cast<std::uint32_t>(at[1]) << 8) |
           (static_cast<std::uint32_t>(at[2]) << 16) | (static_cast<std::uint32_t>(at[3]) << 24);
}

inline std::uint64_t read_u64le(const std::uint8_t* at) {
    return static_cast<std::uint64_t>(read_u32le(at)) | (static_cast<std::uint64_t>(read_u32le(at + 4)) << 32);
}

inline std::uint16_t read_u16be(const std::uint8_t* at) {
    return static_cast<std::uint16_t>((at[0] << 8) | at[1]);
}

// Reads a 16-bit big-endian value of a report; index counts from 0. The caller has checked the length.
inline std::uint16_t read_u16be(std::string_view bytes, std::size_t index) {
    return static_cast<std::uint16_t>((byte_at(bytes, index) << 8) | byte_at(bytes, index + 1));
}

inline void put_u16le(std::uint8_t* at, std::uint16_t value) {
    at[0] = static_cast<std::uint8_t>(value & 0xFFU);
    at[1] = static_cast<std::uint8_t>(value >> 8);
}

inline void put_u32le(std::uint8_t* at, std::uint32_t value) {
    put_u16le(at, static_cast<std::uint16_t>(value & 0xFFFFU));
    put_u16le(at + 2, static_cast<std::uint16_t>(value >> 16));
}

inline void put_u64le(std::uint8_t* at, std::uint64_t value) {
    put_u32le(at, static_cast<std::uint32_t>(value & 0xFFFFFFFFU));
    put_u32le(at + 4, static_cast<std::uint32_t>(value >> 32));
}

inline void put_u16be(std::uint8_t* at, std::uint16_t value) {
    at[0] = static_cast<std::uint8_t>(value >> 8);
    at[1] = static_cast<std::uint8_t>(value & 0xFFU);
}

// A 16-bit or 32-bit bit pattern taken as a signed value (two's complement).
constexpr std::int16_t as_i16(std::uint16_t bits) {
    return static_cast<std::int16_t>(bits);
}
constexpr std::int32_t as_i32(std::uint32_t bits) {
    return static_cast<std::int32_t>(bits);
}

}  // namespace support
