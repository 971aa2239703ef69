#include "bench/face_print.h"

#include <algorithm>

#include "bench/devices/device_families.h"
#include "cluster/cluster_telegram.h"
#include "iomodule/io_module_telegram.h"
#include "iomodule/iom_rows.h"
#include "iomodule/switch_action.h"
#include "run/engine_cluster_gauge.h"
#include "simlink/keystrokes.h"

namespace bench {

namespace {

using tables::CoreTables;

constexpr int kClusterGaugeType = 8;

// Rows and values of the engine cluster settings.
constexpr std::size_t kEnginesRow = 9;
constexpr int kDualEngine = 2;
constexpr int kHasDisplay = 1;

// The points of a plate in ascending order; minimum and maximum alone when it has no others.
std::vector<ScalePoint> scale_of(const tables::Plate& plate) {
    std::vector<ScalePoint> points;
    // Any number may stand in a file; one that is none has no points.
    const double count = plate.PlateValue[1] > 0 ? std::min(plate.PlateValue[1], 1.0 * tables::kStoredPlateItems) : 0;
    const int last = std::min(tables::kFirstPlatePoint + static_cast<int>(count), tables::kLastPlatePoint);
    for (int item = tables::kFirstPlatePoint; item <= last; ++item) {
        const auto index = static_cast<std::size_t>(item);
        if (points.empty() || plate.PlateValue[index] > points.back().value) {
            points.push_back({plate.PlateValue[index], plate.PlatePosition[index]});
        }
    }
    if (points.size() < 2) {
        points = {{plate.PlateValue[2], plate.PlatePosition[2]}, {plate.PlateValue[3], plate.PlatePosition[3]}};
    }
    return points;
}

NeedlePrint print_needle(const CoreTables& tables, int function, int sequence, int plate) {
    NeedlePrint print;
    if (function > 0 && function < tables::kFunctionRows) {
        print.title = tables.functions[static_cast<std::size_t>(function)].FunctionShortName;
    }
    print.sequence = sequence;
    if (plate >= 0 && plate < tables.PlateCount()) {
        print.plate = tables.plates[static_cast<std::size_t>(plate)].PlateName;
        print.points = scale_of(tables.plates[static_cast<std::size_t>(plate)]);
    }
    return print;
}

// "<Ctrl+G>" for a key, the function's name for the rest, with the number of its offset where it has several.
std::string label_of(const CoreTables& tables, const tables::IomRow& row) {
    if (!iomodule::is_keystroke(row)) {
        const tables::FunctionRow& function = iomodule::function_of(tables, row);
        const bool several = function.FunctionOffset2 != 0 && function.FunctionOffset2 != function.FunctionOffset1;
        return function.FunctionShortName + (several ? " " + std::to_string(row.IomSeqNr) : "");
    }
    const auto code = static_cast<std::uint16_t>(row.IomKeyOffOn);
    std::string label = "<";
    label += (code & simlink::kKeyControl) != 0 ? "Ctrl+" : "";
    label += (code & simlink::kKeyShift) != 0 ? "Shift+" : "";
    label += simlink::key_name(static_cast<int>(code & simlink::kKeyMask));
    return label + ">";
}

}  // namespace

FacePrint print_face(const CoreTables& tables, const tables::GaugeRow& row) {
    FacePrint print;
    print.face = device_family(row.GaugeType).face;
    print.type_name = tables::gauge_type_name(tables, row.GaugeType);
    if (row.GaugeType == kClusterGaugeType) {
        for (const run::ClusterGaugeNeedle& needle : run::cluster_gauge_needles(row)) {
            print.needles.push_back(print_needle(tables, needle.function, needle.sequence_number, needle.plate));
        }
        return print;
    }
    print.needles.push_back(print_needle(tables, row.GaugeFunction1, row.GaugeSeqNr1, row.GaugePlate1));
    print.needles.push_back(print_needle(tables, row.GaugeFunction2, row.GaugeSeqNr2, row.GaugePlate2));
    return print;
}

FacePrint print_engine_cluster(const CoreTables& tables) {
    FacePrint print;
    print.face = "engine_cluster";
    print.type_name = "Engine cluster";
    print.needles.resize(cluster::kNeedles);
    const int engines = tables.cluster[kEnginesRow].ClusterSetting1 == kDualEngine ? 2 : 1;
    int display = 0;
    for (std::size_t number = 0; number < cluster::kNeedlesPerEngine; ++number) {
        const tables::ClusterRow& row = tables.cluster[number];
        for (int engine = 1; row.ClusterSetting2 != 0 && engine <= engines; ++engine) {
            NeedlePrint& needle = print.needles[number + (engine == 2 ? cluster::kNeedlesPerEngine : 0)];
            needle = print_needle(tables, row.ClusterSetting2, engine, row.ClusterSetting3);
            if (row.ClusterSetting1 == kHasDisplay) {
                needle.display = display % cluster::kDisplays + 1;
                ++display;
            }
        }
    }
    return print;
}

FacePrint print_yoke(const char* type_name) {
    FacePrint print;
    print.face = "yoke";
    print.type_name = type_name;
    return print;
}

FacePrint print_io_module(const CoreTables& tables, int device_id, const char* type_name) {
    FacePrint print;
    print.face = "io_module";
    print.type_name = type_name;
    print.switch_labels.resize(iomodule::kSwitches);
    print.led_labels.resize(iomodule::kLeds);
    print.analogue_labels.resize(iomodule::kAnalogueInputs);
    for (const tables::IomRow& row : tables.iom) {
        const bool is_led = row.IomSignalType == iomodule::kSignalLed;
        const bool is_input = row.IomSignalType == iomodule::kSignalAnalogue;
        std::vector<std::string>& labels = is_led     ? print.led_labels
                                           : is_input ? print.analogue_labels
                                                      : print.switch_labels;
        const auto at = static_cast<std::size_t>(row.IomSignalNumber);
        if (row.IomDeviceId == device_id && row.IomSignalNumber >= 0 && at < labels.size()) {
            labels[at] = label_of(tables, row);
        }
    }
    return print;
}

}  // namespace bench
