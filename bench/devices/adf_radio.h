#pragma once

#include "bench/devices/device.h"
#include "bench/devices/display_brightness.h"
#include "bench/devices/tuner.h"
#include "tables/core_tables.h"

namespace bench {

// The Bendix/King ADF radio, type 121: 100 to 1700 kHz, with the buttons ADF and BFO.
class AdfRadio : public Device {
  public:
    AdfRadio(platform::EventLoop& loop, Identity identity);

    const Tuner& tuner() const { return tuner_; }
    bool adf_mode() const { return adf_mode_; }  // else ANT: listening only
    bool bfo() const { return bfo_; }

    bool operate(std::string_view control, int amount) override;

    static void set_up(Device& device, const tables::GaugeRow& row);

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    Tuner tuner_;
    DisplayBrightness brightness_;
    bool adf_mode_ = true;
    bool bfo_ = false;
};

}  // namespace bench
