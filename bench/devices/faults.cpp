#include "bench/devices/faults.h"

#include <array>

namespace bench {

namespace {

constexpr std::array<std::string_view, 10> kNames = {"none",         "mute",        "deaf",     "drop_reply",
                                                     "corrupt_byte", "half_report", "wrong_id", "wrong_type",
                                                     "late_reply",   "noise"};
static_assert(kNames.size() == static_cast<std::size_t>(Fault::noise) + 1);

}  // namespace

std::string_view fault_name(Fault fault) {
    return kNames[static_cast<std::size_t>(fault)];
}

std::optional<Fault> fault_of_name(std::string_view name) {
    for (std::size_t index = 0; index < kNames.size(); ++index) {
        if (kNames[index] == name) {
            return static_cast<Fault>(index);
        }
    }
    return std::nullopt;
}

}  // namespace bench
