#include "bench/devices/device.h"

namespace bench {

void Device::take(const Command& command) {
    Answer answer = Answer::done;
    if (command.number == bus::kCommandLights) {
        if (command.value < 0) {
            answer = Answer::bad_value;
        } else {
            lights_.take(command.value);
        }
    } else {
        answer = take_command(command);
    }
    unknown_commands_ += answer == Answer::unknown_command ? 1 : 0;
    bad_values_ += answer == Answer::bad_value ? 1 : 0;
}

ReportBytes Device::report(int id) {
    ReportBytes report;
    fill_report(report);
    report.set_byte(1, bus::kReportStart);
    report.set_byte(bus::kReportGaugeIdByte, id);
    report.set_byte(bus::kReportTypeByte, identity_.type);
    report.set_byte(bus::kReportModelByte, identity_.model);
    report.set_byte(bus::kReportVersionByte, identity_.version);
    report.set_byte(static_cast<int>(bus::kReportLength), bus::kReportEnd);
    reported();
    return report;
}

void Device::show(StateSink& sink) const {
    sink.flag("lit", lights_.lit());
    sink.number("level", lights_.level());
    sink.flag("power", lights_.displays_on());
    show_state(sink);
}

void Device::power_on() {
    lights_.power_on();
    reset();
}

}  // namespace bench
