#pragma once

#include "bench/devices/device.h"
#include "bench/devices/motor.h"

namespace bench {

// The ADF direction indicator, type 108: a needle, and a card that is turned by hand.
class AdfIndicator : public Device {
  public:
    AdfIndicator(platform::EventLoop& loop, Identity identity);

    // Clockwise from the top of the case, 0..360.
    double needle_degrees() const;
    int card_degrees() const { return card_degrees_; }

    bool operate(std::string_view control, int amount) override;

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override { needle_.place(0); }

  private:
    Motor needle_;
    int card_degrees_ = 0;
};

}  // namespace bench
