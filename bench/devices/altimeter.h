#pragma once

#include "bench/devices/device.h"
#include "bench/devices/motor.h"

namespace bench {

// The altimeter, type 101, with hands or five digits, and its pressure window with a knob.
class Altimeter : public Device {
  public:
    Altimeter(platform::EventLoop& loop, Identity identity);

    // Feet, as the hands stand now.
    double altitude_feet() const { return hands_.position(now()); }
    double target_feet() const { return hands_.target(); }
    bool in_inches() const { return identity().model == kInches; }
    // As the window shows it: 29.92 or 1013.
    double pressure() const { return in_inches() ? pressure_ / kHundredths : pressure_; }
    // The knob does not move the window; its clicks go to the simulator.
    bool knob_mode() const { return knob_mode_; }

    bool operate(std::string_view control, int amount) override;

    static void set_up(Device& device, const tables::GaugeRow& row);

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void reported() override { clicks_ = 0; }
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    static constexpr int kInches = 1;  // model; any other shows millibar
    static constexpr double kHundredths = 100;

    void choose_unit(int bits);

    Motor hands_;
    int pressure_;  // hundredths of an inch of mercury, or millibar
    bool knob_mode_ = false;
    int clicks_ = 0;  // since the last report
    int digits_ = 5;
};

}  // namespace bench
