#include "iomodule/analogue_input.h"

#include <cmath>
#include <cstdlib>

#include "support/failure.h"
#include "support/rounding.h"

namespace iomodule {

namespace {

double scaled(double value, double low, double centre, double high, const tables::FunctionRow& function) {
    if (centre <= 0) {
        return value / high * function.FunctionMaximum;
    }
    if (value >= centre) {
        return std::fabs((value - centre) / (high - centre)) * function.FunctionMaximum;
    }
    return std::fabs((centre - value) / (centre - low)) * function.FunctionMinimum;
}

}  // namespace

bool beyond_deadband(const tables::IomRow& row, int old_value, int new_value) {
    return std::abs(new_value - old_value) > row.IomKeyOnOff;
}

float analogue_output(const tables::IomRow& row, const tables::FunctionRow& function, int raw_value) {
    const double low = row.IomValueA;
    const double high = row.IomValueC;
    double value = raw_value;
    if (value > high) {
        value = high;
    }
    if (value < low) {
        value = low;
    }
    const double output = scaled(value, low, row.IomValueB, high, function);
    if (!std::isfinite(output)) {
        throw support::Failure("Division by zero");
    }
    return support::narrow_to_f32(output);
}

}  // namespace iomodule
