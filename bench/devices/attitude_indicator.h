#pragma once

#include "bench/devices/device.h"
#include "bench/devices/motor.h"

namespace bench {

// The attitude indicator, type 103. Positions above its zero positions stand for a bank to the left and the nose below
// the horizon.
class AttitudeIndicator : public Device {
  public:
    AttitudeIndicator(platform::EventLoop& loop, Identity identity);

    // As the pilot sees it: right wing down and nose up are positive.
    double bank_degrees() const;
    double pitch_degrees() const;
    bool flag_shows() const { return flag_shows_; }

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes&) const override {}
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    double bank_zero_;
    double pitch_zero_;
    Motor bank_;
    Motor pitch_;
    double slip_ = 0;  // -1..1
    bool flag_shows_ = false;
};

}  // namespace bench
