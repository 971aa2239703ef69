#pragma once

#include "bench/devices/device.h"
#include "bench/devices/motor.h"

namespace bench {

// The heading indicator, type 105: a card that is turned to the heading plus what its knob has added, and a bug.
class HeadingIndicator : public Device {
  public:
    HeadingIndicator(platform::EventLoop& loop, Identity identity);

    // Under the lubber line, 0..360.
    double card_degrees() const;
    double bug_degrees() const;
    // What the heading knob has added, -180..180.
    double drift_degrees() const;

    bool operate(std::string_view control, int amount) override;

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    Motor card_;
    Motor bug_;
    Motor knob_;
};

}  // namespace bench
