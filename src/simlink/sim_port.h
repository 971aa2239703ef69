#pragma once

#include <cstdint>

#include "tables/core_tables.h"

namespace simlink {

// No port: every operation on it does nothing.
inline constexpr std::int16_t kNoPort = -1;

// One entry of the port table: the last raw value of one offset of a function, on its way from or to the simulator.
struct SimPort {
    std::int16_t FxNumber = 0;
    std::uint8_t FxSeqnr = 0;  // which of the function's four offsets; 0 counts as 1
    std::uint8_t ReadEnabled = 0;
    std::uint8_t WritePending = 0;
    // Another port has put a bit of this port's byte, which the slot holds already: the coming cycle would still read
    // the byte of before where this port's record stands in front of that write.
    std::uint8_t ByteShared = 0;

    // Raw slots, one for each width.
    std::uint8_t ByteValue = 0;
    std::int16_t IntValue = 0;  // Integer, Unsigned Int. and BCD code
    std::int32_t LongValue = 0;
    double DoubleValue = 0;
};

// The slot of a data type and the size of one transfer; no slot for types that are not transferred.
struct SlotBytes {
    void* slot = nullptr;
    std::uint32_t size = 0;
};
SlotBytes slot_of(SimPort& port, std::uint8_t data_type);

// The offset that a port uses; none for a sequence number above 4.
struct PortOffset {
    bool exists = false;
    std::uint32_t offset = 0;
};
PortOffset offset_of(const tables::FunctionRow& function, std::uint8_t FxSeqnr);

}  // namespace simlink
