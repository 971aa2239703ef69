#include "run/plate_lookup.h"

#include <algorithm>
#include <cmath>

namespace run {

namespace {

constexpr std::size_t kPointCount = 1;
constexpr std::size_t kMinimum = 2;
constexpr std::size_t kMaximum = 3;
constexpr std::size_t kFirstPoint = tables::kFirstPlatePoint;
constexpr std::size_t kLastPoint = tables::kLastPlatePoint;

double between(const tables::Plate& plate, std::size_t from, std::size_t to, double value) {
    const double t = (value - plate.PlateValue[from]) / (plate.PlateValue[to] - plate.PlateValue[from]);
    const double start = plate.PlatePosition[from];
    return start + (plate.PlatePosition[to] - start) * t;
}

bool has_no_points(const tables::Plate& plate) {
    if (plate.PlateValue[kPointCount] != 0) {
        return false;
    }
    for (std::size_t point = kFirstPoint; point <= kLastPoint; ++point) {
        if (plate.PlateValue[point] != 0 || plate.PlatePosition[point] != 0) {
            return false;
        }
    }
    return true;
}

}  // namespace

const tables::Plate* find_plate(const tables::CoreTables& tables, int plate_number) {
    if (plate_number < 0 || static_cast<std::size_t>(plate_number) >= tables.plates.size()) {
        return nullptr;
    }
    return &tables.plates[static_cast<std::size_t>(plate_number)];
}

std::optional<double> plate_position(const tables::Plate& plate, double& value) {
    // 1. Clamp.
    if (value < plate.PlateValue[kMinimum]) {
        value = plate.PlateValue[kMinimum];
    }
    if (value > plate.PlateValue[kMaximum]) {
        value = plate.PlateValue[kMaximum];
    }
    // 2., 3. The ends, exactly.
    if (value == plate.PlateValue[kMinimum]) {
        return plate.PlatePosition[kMinimum];
    }
    if (value == plate.PlateValue[kMaximum]) {
        return plate.PlatePosition[kMaximum];
    }
    double position = 0;
    if (has_no_points(plate)) {
        position = between(plate, kMinimum, kMaximum, value);
    } else {
        // 4. The first item above the value; behind the last point when there is none.
        std::size_t above = kFirstPoint;
        while (above <= kLastPoint && plate.PlateValue[above] <= value) {
            ++above;
        }
        // 5., 6. Between it and the item before it.
        position = between(plate, above - 1, above, value);
    }
    return std::isnan(position) ? std::nullopt : std::optional<double>(position);
}

}  // namespace run
