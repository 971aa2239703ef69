#pragma once

#include "tables/core_tables.h"

// The rows of the IOM table as the modules read them.
namespace iomodule {

// IomSignalType.
inline constexpr int kSignalSwitch = 1;
inline constexpr int kSignalAnalogue = 2;
inline constexpr int kSignalLed = 3;
inline constexpr int kSignalSwitchOfOld = 7;  // treated as 1

// The function that a row works on; the empty row 0 for a number that the table does not have.
inline const tables::FunctionRow& function_of(const tables::CoreTables& tables, const tables::IomRow& row) {
    const bool there = row.IomFunction > 0 && row.IomFunction < tables::kFunctionRows;
    return tables.functions[there ? static_cast<std::size_t>(row.IomFunction) : 0];
}

}  // namespace iomodule
