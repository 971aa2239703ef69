#include "bench/devices/adf_radio.h"

namespace bench {

namespace {

constexpr int kModel = 3;
constexpr int kCoarseStep = 1000;  // tenths of a kHz
constexpr int kFineStep = 10;

constexpr int kCommandBrightness = 13;

constexpr int kReportActive = 7;    // 7, 8
constexpr int kReportStandby = 10;  // 10, 11
constexpr int kReportMode = 13;     // 1 ADF, 0 ANT
constexpr int kReportBfo = 15;

}  // namespace

AdfRadio::AdfRadio(platform::EventLoop& loop, Identity identity) : Device(loop, identity), tuner_(Band::adf_to_1700) {
    set_model(kModel);
    tuner_.set_steps(kCoarseStep, kFineStep);
}

void AdfRadio::set_up(Device& device, const tables::GaugeRow& row) {
    tune_as_delivered(static_cast<AdfRadio&>(device).tuner_, row.GaugeSeqNr1);
}

bool AdfRadio::operate(std::string_view control, int amount) {
    if (control == "coarse") {
        tuner_.turn_coarse(amount);
    } else if (control == "fine") {
        tuner_.turn_fine(amount);
    } else if (control == "swap") {
        tuner_.swap();
    } else if (control == "mode") {
        adf_mode_ = !adf_mode_;
    } else if (control == "bfo") {
        bfo_ = !bfo_;
    } else {
        return false;
    }
    return true;
}

Device::Answer AdfRadio::take_command(const Command& command) {
    if (command.number != kCommandBrightness) {
        return Answer::unknown_command;
    }
    return brightness_.take(command.value) ? Answer::done : Answer::bad_value;
}

void AdfRadio::fill_report(ReportBytes& report) const {
    report.set_byte(bus::kReportFirstTagByte, 'A');
    report.set_word(kReportActive, tuner_.active());
    report.set_byte(bus::kReportSecondTagByte, 'S');
    report.set_word(kReportStandby, tuner_.standby());
    report.set_byte(kReportMode, adf_mode_ ? 1 : 0);
    report.set_byte(kReportBfo, bfo_ ? 1 : 0);
}

void AdfRadio::show_state(StateSink& sink) const {
    sink.text("active", shown(tuner_.text(tuner_.active())));
    sink.text("standby", shown(tuner_.text(tuner_.standby())));
    sink.flag("adfMode", adf_mode_);
    sink.flag("bfo", bfo_);
    sink.number("brightness", brightness_.level(lights()));
}

void AdfRadio::reset() {
    tuner_.power_on();
    adf_mode_ = true;
    bfo_ = false;
}

}  // namespace bench
