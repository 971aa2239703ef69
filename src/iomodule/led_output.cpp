#include "iomodule/led_output.h"

#include "support/rounding.h"

namespace iomodule {

namespace {

// NOTE: the crossover is measured from 0, not from the function's minimum. Values compare exactly, as floats.
bool any_condition_holds(const tables::IomRow& row, const tables::FunctionRow& function, float value) {
    const auto conditions = static_cast<unsigned>(row.IomKeyOffOn);
    const float crossover = (function.FunctionMaximum - function.FunctionMinimum) / 100.0F * row.IomValueA;
    return ((conditions & kLedOnAtMinimum) != 0 && value == function.FunctionMinimum) ||
           ((conditions & kLedOnAtMaximum) != 0 && value == function.FunctionMaximum) ||
           ((conditions & kLedOnAtCrossover) != 0 && value > crossover) ||
           ((conditions & kLedOnFreeValue) != 0 && value == static_cast<float>(row.IomValueC));
}

}  // namespace

float led_value(const tables::FunctionRow& function, float value) {
    if (function.FunctionMask == 0) {
        return value;
    }
    return (support::round_to_i32(value) & function.FunctionMask) != 0 ? 1.0F : 0.0F;
}

int led_state(const tables::IomRow& row, const tables::FunctionRow& function, float value) {
    const int met = any_condition_holds(row, function, value) ? 1 : 0;
    return met ^ (row.IomMode & kOutInvert);
}

}  // namespace iomodule
