#pragma once

#include <bitset>

#include "bench/devices/device.h"

namespace bench {

// The Bendix/King audio panel, type 125: ten buttons that latch, each with its lamp, three marker lamps, and the switch
// that gives the microphone to a radio.
class AudioPanel : public Device {
  public:
    // In the order of the panel.
    enum Button { com1, com2, nav1, nav2, mkr, dme, adf, ics, aux, spkr };
    static constexpr std::size_t kButtons = 10;
    static constexpr int kRotaryPositions = 6;  // 1 COM3, COM2, COM1, COM12, COM21, TEL
    enum Marker : unsigned { outer = 1, middle = 2, inner = 4 };

    AudioPanel(platform::EventLoop& loop, Identity identity) : Device(loop, identity) { reset(); }

    bool pressed(Button button) const { return buttons_[button]; }
    bool marker_lamp(Marker marker) const { return lights().displays_on() && (markers_ & marker) != 0; }
    int rotary() const { return rotary_; }

    bool operate(std::string_view control, int amount) override;

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    std::bitset<kButtons> buttons_;
    unsigned markers_ = 0;
    int rotary_ = 3;
};

}  // namespace bench
