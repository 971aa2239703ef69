#include "run/unsupported_gauges.h"

namespace run {

void set_up_bus_io_module(RunContext& run, int) {
    run.platform.boxes.message("The Bus type IO Module is not supported in this program; Use USB type");
}

}  // namespace run
