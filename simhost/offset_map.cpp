#include "simhost/offset_map.h"

#include <cmath>

#include "simhost/world.h"
#include "support/bytes.h"
#include "support/rounding.h"

namespace simhost {

namespace {

constexpr std::uint32_t kTitleOffset = 0x3D00;
constexpr std::size_t kTitleBytes = 256;
constexpr std::uint32_t kSimulationRateOffset = 0x0C1A;
constexpr std::uint16_t kNormalRate = 256;

// Places of the idents of the received stations; the name follows at once.
constexpr std::size_t kIdentBytes = 6;
constexpr std::size_t kNameBytes = 25;
constexpr std::uint32_t kNav1IdentOffset = 0x3000;
constexpr std::uint32_t kNav2IdentOffset = 0x301F;
constexpr std::uint32_t kAdf1IdentOffset = 0x303E;
constexpr std::uint32_t kAdf2IdentOffset = 0x02DC;

double limited(double value, double least, double most) {
    return std::isnan(value) ? 0.0 : std::clamp(value, least, most);
}

std::uint16_t rounded_u16(double value) {
    return static_cast<std::uint16_t>(support::round_to_i32(limited(value, 0.0, 65535.0)));
}

std::uint8_t low_byte(std::int16_t value) {
    return static_cast<std::uint8_t>(value & 0xFF);
}

void write_fixed(std::uint32_t offset, double value, OffsetSpace& space) {
    const double held = limited(value, -2147483648.0, 2147483647.0);
    const double whole = std::floor(held);
    const double fraction = (held - whole) * 65536.0;
    const double upper = std::floor(fraction);
    space.write_u16(offset, rounded_u16((fraction - upper) * 65535.0));
    space.write_u16(offset + 2, rounded_u16(upper));
    space.write_i32(offset + 4, support::round_to_i32(whole));
}

double read_fixed(std::uint32_t offset, const OffsetSpace& space) {
    return space.read_i32(offset + 4) + space.read_u32(offset) / 4294967296.0;
}

void write_ident(const Station* station, std::uint32_t offset, OffsetSpace& space) {
    space.write_text(offset, kIdentBytes, station == nullptr ? "" : station->identity);
    space.write_text(offset + kIdentBytes, kNameBytes, station == nullptr ? "" : station->name);
}

}  // namespace

std::uint32_t bytes_of(OffsetKind kind) {
    switch (kind) {
        case OffsetKind::u8:
        case OffsetKind::i8:
            return 1;
        case OffsetKind::u16:
        case OffsetKind::i16:
            return 2;
        case OffsetKind::i32:
        case OffsetKind::f32:
            return 4;
        case OffsetKind::f64:
        case OffsetKind::fixed32_32:
            return 8;
    }
    return 0;
}

OffsetMap::OffsetMap() {
    for (const auto& rows : {flight_offset_rows(), system_offset_rows(), radio_offset_rows()}) {
        rows_.insert(rows_.end(), rows.begin(), rows.end());
    }
    std::stable_sort(rows_.begin(), rows_.end(),
                     [](const OffsetRow& a, const OffsetRow& b) { return a.offset < b.offset; });
}

const OffsetRow* OffsetMap::find(std::string_view name) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const OffsetRow& row) { return row.name == name; });
    return found == rows_.end() ? nullptr : &*found;
}

void OffsetMap::write_constants(OffsetSpace& space) {
    space.write_text(kTitleOffset, kTitleBytes, "Light single, retractable");
    space.write_u16(kSimulationRateOffset, kNormalRate);
}

void OffsetMap::write(const OffsetRow& row, double value, OffsetSpace& space) {
    const double scaled = value * row.scale;
    switch (row.kind) {
        case OffsetKind::u8:
            space.write_u8(row.offset, support::round_to_u8(limited(scaled, 0.0, 255.0)));
            break;
        case OffsetKind::i8:
            space.write_u8(row.offset, low_byte(support::round_to_i16(limited(scaled, -128.0, 127.0))));
            break;
        case OffsetKind::u16:
            space.write_u16(row.offset, rounded_u16(scaled));
            break;
        case OffsetKind::i16:
            space.write_i16(row.offset, support::round_to_i16(limited(scaled, -32768.0, 32767.0)));
            break;
        case OffsetKind::i32:
            space.write_i32(row.offset, support::round_to_i32(limited(scaled, -2147483648.0, 2147483647.0)));
            break;
        case OffsetKind::f32:
            space.write_f32(row.offset, support::narrow_to_f32(limited(scaled, -1e30, 1e30)));
            break;
        case OffsetKind::f64:
            space.write_f64(row.offset, scaled);
            break;
        case OffsetKind::fixed32_32:
            write_fixed(row.offset, scaled, space);
            break;
    }
}

double OffsetMap::read(const OffsetRow& row, const OffsetSpace& space) {
    switch (row.kind) {
        case OffsetKind::u8:
            return space.read_u8(row.offset) / row.scale;
        case OffsetKind::i8:
            return space.read_i8(row.offset) / row.scale;
        case OffsetKind::u16:
            return space.read_u16(row.offset) / row.scale;
        case OffsetKind::i16:
            return space.read_i16(row.offset) / row.scale;
        case OffsetKind::i32:
            return space.read_i32(row.offset) / row.scale;
        case OffsetKind::f32:
            return static_cast<double>(space.read_f32(row.offset)) / row.scale;
        case OffsetKind::f64:
            return space.read_f64(row.offset) / row.scale;
        case OffsetKind::fixed32_32:
            return read_fixed(row.offset, space) / row.scale;
    }
    return 0;
}

void OffsetMap::publish(const Aircraft& aircraft, OffsetSpace& space) const {
    for (const OffsetRow& row : rows_) {
        if (row.get != nullptr) {
            write(row, row.get(aircraft), space);
        }
    }
    write_ident(aircraft.navigation.nav1.station, kNav1IdentOffset, space);
    write_ident(aircraft.navigation.nav2.station, kNav2IdentOffset, space);
    write_ident(aircraft.navigation.adf1.station, kAdf1IdentOffset, space);
    write_ident(aircraft.navigation.adf2.station, kAdf2IdentOffset, space);
}

void OffsetMap::take(std::uint32_t offset, std::uint32_t size, const OffsetSpace& space, Aircraft& aircraft) const {
    for (const OffsetRow& row : rows_) {
        const bool touched = row.offset < offset + size && offset < row.offset + bytes_of(row.kind);
        if (touched && row.set != nullptr) {
            const double value = read(row, space);
            if (std::isfinite(value)) {
                row.set(aircraft, value);
            }
        }
    }
}

}  // namespace simhost
