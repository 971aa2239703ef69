#include "simhost/offset_space.h"

#include <algorithm>
#include <bit>

#include "support/bytes.h"

namespace simhost {

void OffsetSpace::read_bytes(std::uint32_t offset, std::span<std::uint8_t> out) const {
    const std::size_t start = std::min<std::size_t>(offset, kOffsetSpaceBytes);
    const std::size_t held = std::min(out.size(), kOffsetSpaceBytes - start);
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(start), held, out.begin());
    std::fill(out.begin() + static_cast<std::ptrdiff_t>(held), out.end(), std::uint8_t{0});
}

void OffsetSpace::write_bytes(std::uint32_t offset, std::span<const std::uint8_t> bytes) {
    const std::size_t start = std::min<std::size_t>(offset, kOffsetSpaceBytes);
    const std::size_t held = std::min(bytes.size(), kOffsetSpaceBytes - start);
    std::copy_n(bytes.begin(), held, bytes_.begin() + static_cast<std::ptrdiff_t>(start));
}

std::uint8_t OffsetSpace::read_u8(std::uint32_t offset) const {
    return offset < kOffsetSpaceBytes ? bytes_[offset] : std::uint8_t{0};
}

std::uint16_t OffsetSpace::read_u16(std::uint32_t offset) const {
    std::array<std::uint8_t, 2> raw{};
    read_bytes(offset, raw);
    return support::read_u16le(raw.data());
}

std::uint32_t OffsetSpace::read_u32(std::uint32_t offset) const {
    std::array<std::uint8_t, 4> raw{};
    read_bytes(offset, raw);
    return support::read_u32le(raw.data());
}

std::uint64_t OffsetSpace::read_u64(std::uint32_t offset) const {
    std::array<std::uint8_t, 8> raw{};
    read_bytes(offset, raw);
    return support::read_u64le(raw.data());
}

std::int8_t OffsetSpace::read_i8(std::uint32_t offset) const {
    return std::bit_cast<std::int8_t>(read_u8(offset));
}
std::int16_t OffsetSpace::read_i16(std::uint32_t offset) const {
    return support::as_i16(read_u16(offset));
}
std::int32_t OffsetSpace::read_i32(std::uint32_t offset) const {
    return support::as_i32(read_u32(offset));
}
float OffsetSpace::read_f32(std::uint32_t offset) const {
    return std::bit_cast<float>(read_u32(offset));
}
double OffsetSpace::read_f64(std::uint32_t offset) const {
    return std::bit_cast<double>(read_u64(offset));
}

void OffsetSpace::write_u8(std::uint32_t offset, std::uint8_t value) {
    if (offset < kOffsetSpaceBytes) {
        bytes_[offset] = value;
    }
}

void OffsetSpace::write_u16(std::uint32_t offset, std::uint16_t value) {
    std::array<std::uint8_t, 2> raw{};
    support::put_u16le(raw.data(), value);
    write_bytes(offset, raw);
}

void OffsetSpace::write_u32(std::uint32_t offset, std::uint32_t value) {
    std::array<std::uint8_t, 4> raw{};
    support::put_u32le(raw.data(), value);
    write_bytes(offset, raw);
}

void OffsetSpace::write_u64(std::uint32_t offset, std::uint64_t value) {
    std::array<std::uint8_t, 8> raw{};
    support::put_u64le(raw.data(), value);
    write_bytes(offset, raw);
}

void OffsetSpace::write_i8(std::uint32_t offset, std::int8_t value) {
    write_u8(offset, std::bit_cast<std::uint8_t>(value));
}
void OffsetSpace::write_i16(std::uint32_t offset, std::int16_t value) {
    write_u16(offset, std::bit_cast<std::uint16_t>(value));
}
void OffsetSpace::write_i32(std::uint32_t offset, std::int32_t value) {
    write_u32(offset, std::bit_cast<std::uint32_t>(value));
}
void OffsetSpace::write_f32(std::uint32_t offset, float value) {
    write_u32(offset, std::bit_cast<std::uint32_t>(value));
}
void OffsetSpace::write_f64(std::uint32_t offset, double value) {
    write_u64(offset, std::bit_cast<std::uint64_t>(value));
}

void OffsetSpace::write_text(std::uint32_t offset, std::size_t width, std::string_view text) {
    for (std::size_t i = 0; i < width; ++i) {
        const bool held = i < text.size() && i + 1 < width;
        write_u8(offset + static_cast<std::uint32_t>(i), held ? support::byte_at(text, i) : std::uint8_t{0});
    }
}

}  // namespace simhost
