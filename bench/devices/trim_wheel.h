#pragma once

#include "bench/devices/device.h"
#include "bench/devices/stepper.h"

namespace bench {

// The motorised trim wheel, type 140. Its motor goes to a position, runs up or down as long as a trim switch says, or
// is off; a hand turns the wheel at any time.
class TrimWheel : public Device {
  public:
    enum class Motor { off = 0, switch1 = 1, switch2 = 2, autopilot = 4 };

    TrimWheel(platform::EventLoop& loop, Identity identity);

    // 0..1023, 512 = neutral.
    double wheel() const { return wheel_.position(now()) / kQuartersPerStep; }
    Motor motor() const { return motor_; }
    int autopilot_step_time_us() const { return autopilot_step_time_us_; }
    int manual_step_time_us() const { return manual_step_time_us_; }

    // Knob `wheel`: 8 positions a click.
    bool operate(std::string_view control, int amount) override;

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    Answer set_motor(int mode);
    Answer move_to(int position);
    Answer set_step_time(int& step_time_us, int value);
    void drive();

    Stepper wheel_;
    Motor motor_ = Motor::off;
    int wanted_;  // position in autopilot mode
    int deadband_ = 0;
    int autopilot_step_time_us_;
    int manual_step_time_us_;
};

}  // namespace bench
