#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "simhost/aircraft.h"
#include "simhost/offset_space.h"

namespace simhost {

// How a value lies in the offset space. fixed32_32 is a 64-bit number with the whole units in its upper half.
enum class OffsetKind : std::uint8_t { u8, i8, u16, i16, i32, f32, f64, fixed32_32 };

// One value of the simulator: where it lies, how it is scaled (stored = value * scale), and how the aircraft gives it
// and takes it. The facts are those of the interface's published list of offsets. A row without `get` is memory that
// the simulator does not write; a row without `set` is read-only: what a client writes there is gone at the next turn.
struct OffsetRow {
    std::uint32_t offset;
    OffsetKind kind;
    double scale;
    std::string_view name;
    std::string_view unit;
    double (*get)(const Aircraft& aircraft);
    void (*set)(Aircraft& aircraft, double value);
};

std::uint32_t bytes_of(OffsetKind kind);

// The rows by subject; together they are the whole map. Offsets of different rows do not overlap.
std::span<const OffsetRow> flight_offset_rows();  // position, attitude, speeds, weather, time
std::span<const OffsetRow> system_offset_rows();  // engine, fuel, electrics, controls, lights
std::span<const OffsetRow> radio_offset_rows();   // radios, receivers, autopilot, events

// Carries values between the aircraft and the offset space.
class OffsetMap {
  public:
    OffsetMap();

    const std::vector<OffsetRow>& rows() const { return rows_; }
    const OffsetRow* find(std::string_view name) const;

    // Writes what never changes (title, fixed figures).
    static void write_constants(OffsetSpace& space);
    // Writes all values of the aircraft into the space; limits each to what its place can hold.
    void publish(const Aircraft& aircraft, OffsetSpace& space) const;
    // A client has written these bytes: hands every value that they touch to the aircraft.
    void take(std::uint32_t offset, std::uint32_t size, const OffsetSpace& space, Aircraft& aircraft) const;

    // A row's value as it stands in the space, in the row's unit.
    static double read(const OffsetRow& row, const OffsetSpace& space);
    static void write(const OffsetRow& row, double value, OffsetSpace& space);

  private:
    std::vector<OffsetRow> rows_;  // by offset
};

}  // namespace simhost
