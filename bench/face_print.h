#pragma once

#include <string>
#include <vector>

#include "tables/core_tables.h"

namespace bench {

// One point of a printed scale: at this value the needle stands at this position (0..1079).
struct ScalePoint {
    double value = 0;
    int position = 0;
};

// What is printed for one needle of an instrument: its function's name and its plate.
struct NeedlePrint {
    std::string title;  // empty = the needle has no function
    int sequence = 1;   // engine or side
    std::string plate;
    std::vector<ScalePoint> points;
    int display = 0;  // which display of the instrument shows its value in figures, 0 = none
};

// What is printed on the face of an instrument.
struct FacePrint {
    const char* face = "";  // name of a face of the page
    std::string type_name;
    std::vector<NeedlePrint> needles;
    // What an IO module's inputs and outputs are for, empty texts where they are free; empty on other instruments.
    std::vector<std::string> switch_labels;
    std::vector<std::string> led_labels;
    std::vector<std::string> analogue_labels;
};

// The face of a gauge row: two needles, or what its family has.
FacePrint print_face(const tables::CoreTables& tables, const tables::GaugeRow& row);

// The face of the stand-alone engine cluster: needles 0..7 of engine 1, 8..15 of engine 2.
FacePrint print_engine_cluster(const tables::CoreTables& tables);

// The face of a yoke; `type_name` tells it from the other.
FacePrint print_yoke(const char* type_name);

// The face of an IO module by its device id; `type_name` tells it from the other.
FacePrint print_io_module(const tables::CoreTables& tables, int device_id, const char* type_name);

}  // namespace bench
