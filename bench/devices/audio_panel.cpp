#include "bench/devices/audio_panel.h"

#include <algorithm>
#include <array>

namespace bench {

namespace {

constexpr int kCommandMarkers = 6;
constexpr int kAllMarkers = 7;

constexpr int kReportButtons1 = 7;
constexpr int kReportButtons2 = 8;
constexpr int kReportRotary = 10;

// A button: its name on the panel and in the report.
struct ButtonPlace {
    AudioPanel::Button button;
    std::string_view name;
    int report_byte;
    int report_bit;
};
constexpr std::array<ButtonPlace, AudioPanel::kButtons> kButtonPlaces = {{
    {AudioPanel::com1, "com1", kReportButtons1, 32},
    {AudioPanel::com2, "com2", kReportButtons1, 1},
    {AudioPanel::nav1, "nav1", kReportButtons2, 1},
    {AudioPanel::nav2, "nav2", kReportButtons1, 2},
    {AudioPanel::mkr, "mkr", kReportButtons2, 2},
    {AudioPanel::dme, "dme", kReportButtons2, 8},
    {AudioPanel::adf, "adf", kReportButtons2, 4},
    {AudioPanel::ics, "ics", kReportButtons1, 4},
    {AudioPanel::aux, "aux", kReportButtons1, 8},
    {AudioPanel::spkr, "spkr", kReportButtons1, 16},
}};

}  // namespace

bool AudioPanel::operate(std::string_view control, int amount) {
    if (control == "rotary") {
        rotary_ = std::clamp(amount, 1, kRotaryPositions);
        return true;
    }
    const auto* const found = std::find_if(kButtonPlaces.begin(), kButtonPlaces.end(),
                                           [control](const ButtonPlace& place) { return place.name == control; });
    if (found == kButtonPlaces.end()) {
        return false;
    }
    buttons_.flip(found->button);
    return true;
}

Device::Answer AudioPanel::take_command(const Command& command) {
    if (command.number != kCommandMarkers) {
        return Answer::unknown_command;
    }
    if (command.value < 0 || command.value > kAllMarkers) {
        return Answer::bad_value;
    }
    markers_ = static_cast<unsigned>(command.value);
    return Answer::done;
}

void AudioPanel::fill_report(ReportBytes& report) const {
    int bytes[] = {0, 0};
    for (const ButtonPlace& place : kButtonPlaces) {
        bytes[place.report_byte - kReportButtons1] |= pressed(place.button) ? place.report_bit : 0;
    }
    report.set_byte(kReportButtons1, bytes[0]);
    report.set_byte(kReportButtons2, bytes[1]);
    report.set_byte(kReportRotary, rotary_);
}

void AudioPanel::show_state(StateSink& sink) const {
    for (const ButtonPlace& place : kButtonPlaces) {
        sink.flag(place.name, pressed(place.button) && lights().displays_on());
    }
    sink.flag("outer", marker_lamp(outer));
    sink.flag("middle", marker_lamp(middle));
    sink.flag("inner", marker_lamp(inner));
    sink.number("rotary", rotary_);
}

// The pilot hears the first radio; the switch stands where it stood.
void AudioPanel::reset() {
    buttons_.reset();
    buttons_.set(com1);
    markers_ = 0;
}

}  // namespace bench
