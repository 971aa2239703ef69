#pragma once

#include "bench/devices/device.h"
#include "bench/devices/display_brightness.h"
#include "bench/devices/tuner.h"
#include "tables/core_tables.h"

namespace bench {

// The Bendix/King COM/NAV radio, type 120: two radios and a power switch in one unit.
class ComNavRadio : public Device {
  public:
    ComNavRadio(platform::EventLoop& loop, Identity identity) : Device(loop, identity) {}

    const Tuner& com() const { return com_; }
    const Tuner& nav() const { return nav_; }
    // Always, while the unit is set up to be switched from outside.
    bool on() const { return switch_on_ || external_on_off_; }
    int module_number() const { return module_number_; }

    bool operate(std::string_view control, int amount) override;

    static void set_up(Device& device, const tables::GaugeRow& row);

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    std::string digits(const Tuner& tuner, int frequency) const;

    Tuner com_{Band::com};
    Tuner nav_{Band::nav};
    DisplayBrightness brightness_;
    int module_number_ = 1;
    bool switch_on_ = true;
    bool external_on_off_ = false;
};

}  // namespace bench
