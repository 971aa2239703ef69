#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace simhost {

inline constexpr std::size_t kOffsetSpaceBytes = 65536;

// The simulator's offset space: 64 KiB of little-endian values, each known by its offset. Every access is safe: bytes
// beyond the end read as 0 and are dropped when written.
class OffsetSpace {
  public:
    std::uint8_t read_u8(std::uint32_t offset) const;
    std::uint16_t read_u16(std::uint32_t offset) const;
    std::uint32_t read_u32(std::uint32_t offset) const;
    std::uint64_t read_u64(std::uint32_t offset) const;
    std::int8_t read_i8(std::uint32_t offset) const;
    std::int16_t read_i16(std::uint32_t offset) const;
    std::int32_t read_i32(std::uint32_t offset) const;
    float read_f32(std::uint32_t offset) const;
    double read_f64(std::uint32_t offset) const;

    void write_u8(std::uint32_t offset, std::uint8_t value);
    void write_u16(std::uint32_t offset, std::uint16_t value);
    void write_u32(std::uint32_t offset, std::uint32_t value);
    void write_u64(std::uint32_t offset, std::uint64_t value);
    void write_i8(std::uint32_t offset, std::int8_t value);
    void write_i16(std::uint32_t offset, std::int16_t value);
    void write_i32(std::uint32_t offset, std::int32_t value);
    void write_f32(std::uint32_t offset, float value);
    void write_f64(std::uint32_t offset, double value);
    // Writes a text and fills the rest of `width` bytes with NUL; the last byte is always NUL.
    void write_text(std::uint32_t offset, std::size_t width, std::string_view text);

    void read_bytes(std::uint32_t offset, std::span<std::uint8_t> out) const;
    void write_bytes(std::uint32_t offset, std::span<const std::uint8_t> bytes);

    void clear() { bytes_.fill(0); }

  private:
    std::array<std::uint8_t, kOffsetSpaceBytes> bytes_{};
};

}  // namespace simhost
