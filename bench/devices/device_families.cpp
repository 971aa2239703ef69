#include "bench/devices/device_families.h"

#include <algorithm>
#include <array>

#include "bench/devices/adf_indicator.h"
#include "bench/devices/adf_radio.h"
#include "bench/devices/altimeter.h"
#include "bench/devices/attitude_indicator.h"
#include "bench/devices/audio_panel.h"
#include "bench/devices/autopilot_unit.h"
#include "bench/devices/clocks.h"
#include "bench/devices/com_nav_radio.h"
#include "bench/devices/dme_indicators.h"
#include "bench/devices/engine_cluster_gauge.h"
#include "bench/devices/generic_device.h"
#include "bench/devices/heading_indicator.h"
#include "bench/devices/needle_gauges.h"
#include "bench/devices/radio_magnetic_indicator.h"
#include "bench/devices/radios.h"
#include "bench/devices/transponders.h"
#include "bench/devices/trim_wheel.h"
#include "bench/devices/vor_indicators.h"

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
    {.type = 101, .face = "altimeter", .create = create<Altimeter>, .set_up = Altimeter::set_up},
    {.type = 103, .face = "attitude_indicator", .create = create<AttitudeIndicator>},
    {.type = 104, .face = "boeing_clock", .create = create<BoeingClock>, .set_up = BoeingClock::set_up},
    {.type = 105, .face = "heading_indicator", .create = create<HeadingIndicator>},
    {.type = 106, .face = "vor_indicator", .create = create<VorIndicator>},
    {.type = 107, .face = "vor_indicator", .create = create<VorIndicator>},
    {.type = 108, .face = "adf_indicator", .create = create<AdfIndicator>},
    {.type = 109, .face = "cessna_clock", .create = create<CessnaClock>},
    {.type = 110, .face = "radio", .create = create<Radio>, .set_up = Radio::set_up},
    {.type = 111, .face = "radio", .create = create<Radio>, .set_up = Radio::set_up},
    {.type = 112, .face = "transponder", .create = create<Transponder>, .set_up = Transponder::set_up},
    {.type = 113, .face = "dme", .create = create<DmeIndicator>},
    {.type = 114, .face = "transponder", .create = create<Transponder>, .set_up = Transponder::set_up},
    {.type = 120, .face = "com_nav_radio", .create = create<ComNavRadio>, .set_up = ComNavRadio::set_up},
    {.type = 121, .face = "adf_radio", .create = create<AdfRadio>, .set_up = AdfRadio::set_up},
    {.type = 122, .face = "bk_transponder", .create = create<BkTransponder>, .set_up = BkTransponder::set_up},
    {.type = 123, .face = "bk_dme", .create = create<BkDmeIndicator>},
    {.type = 124, .face = "autopilot", .create = create<AutopilotUnit>, .set_up = AutopilotUnit::set_up},
    {.type = 125, .face = "audio_panel", .create = create<AudioPanel>},
    {.type = 130, .face = "rmi", .create = create<RadioMagneticIndicator>, .set_up = RadioMagneticIndicator::set_up},
    {.type = 140, .face = "trim_wheel", .create = create<TrimWheel>},
});

constexpr DeviceFamily kUnknownFamily = {.type = 0, .face = "generic", .create = create<GenericDevice>};

}  // namespace

std::span<const DeviceFamily> device_families() {
    return kFamilies;
}

void set_up_device(Device& device, const tables::GaugeRow& row) {
    const DeviceFamily& family = device_family(row.GaugeType);
    if (family.set_up != nullptr) {
        family.set_up(device, row);
    }
}

void add_gauges(BusController& bus, const tables::CoreTables& tables) {
    constexpr int kOff = 1;
    Device* transponder = nullptr;
    for (int id = 1; id < tables::kGaugeRows; ++id) {
        const tables::GaugeRow& row = tables.gauges[static_cast<std::size_t>(id)];
        if (row.GaugeType == 0) {
            continue;
        }
        Device& device = bus.add(id, {.type = row.GaugeType, .model = row.GaugeModel, .version = row.GaugeVersion});
        set_up_device(device, row);
        const bool owns_code = row.GaugeType == 112 || row.GaugeType == 114 || row.GaugeType == 122;
        if (owns_code && transponder != nullptr) {
            transponder->operate("rotary", kOff);
        }
        transponder = owns_code ? &device : transponder;
    }
}

const DeviceFamily& device_family(int type) {
    const auto found = std::find_if(kFamilies.begin(), kFamilies.end(),
                                    [type](const DeviceFamily& family) { return family.type == type; });
    return found == kFamilies.end() ? kUnknownFamily : *found;
}

}  // namespace bench
