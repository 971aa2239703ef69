#include "bench/devices/device_families.h"

#include <algorithm>
#include <array>

#include "bench/devices/engine_cluster_gauge.h"
#include "bench/devices/generic_device.h"
#include "bench/devices/needle_gauges.h"

namespace bench {

namespace {

template <typename Kind>
std::unique_ptr<Device> create(platform::EventLoop& loop, Identity identity) {
    return std::make_unique<Kind>(loop, identity);
}

// In ascending order, one row a type.
constexpr auto kFamilies = std::to_array<DeviceFamily>({
    {.type = 1, .face = "needle_gauge", .create = create<NeedleGauge>},
    {.type = 2, .face = "needle_gauge", .create = create<NeedleGauge>},
    {.type = 3, .face = "needle_gauge", .create = create<NeedleGauge>},
    {.type = 4, .face = "needle_gauge", .create = create<NeedleGauge>},
    {.type = 5, .face = "needle_gauge", .create = create<NeedleGauge>},
    {.type = 6, .face = "needle_gauge", .create = create<NeedleGauge>},
    {.type = 8, .face = "engine_cluster_gauge", .create = create<EngineClusterGauge>},
});

constexpr DeviceFamily kUnknownFamily = {.type = 0, .face = "generic", .create = create<GenericDevice>};

}  // namespace

std::span<const DeviceFamily> device_families() {
    return kFamilies;
}

const DeviceFamily& device_family(int type) {
    const auto found = std::find_if(kFamilies.begin(), kFamilies.end(),
                                    [type](const DeviceFamily& family) { return family.type == type; });
    return found == kFamilies.end() ? kUnknownFamily : *found;
}

}  // namespace bench
