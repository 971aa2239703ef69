#include "simlink/sim_port.h"

namespace simlink {

SlotBytes slot_of(SimPort& port, std::uint8_t data_type) {
    switch (data_type) {
        case tables::kByte:
            return {&port.ByteValue, sizeof port.ByteValue};
        case tables::kInteger:
        case tables::kUnsignedInteger:
        case tables::kBcd:
            return {&port.IntValue, sizeof port.IntValue};
        case tables::kLong:
            return {&port.LongValue, sizeof port.LongValue};
        case tables::kDouble:
            return {&port.DoubleValue, sizeof port.DoubleValue};
        default:
            return {};
    }
}

PortOffset offset_of(const tables::FunctionRow& function, std::uint8_t FxSeqnr) {
    switch (FxSeqnr) {
        case 0:
        case 1:
            return {true, static_cast<std::uint32_t>(function.FunctionOffset1)};
        case 2:
            return {true, static_cast<std::uint32_t>(function.FunctionOffset2)};
        case 3:
            return {true, static_cast<std::uint32_t>(function.FunctionOffset3)};
        case 4:
            return {true, static_cast<std::uint32_t>(function.FunctionOffset4)};
        default:
            return {};
    }
}

}  // namespace simlink
