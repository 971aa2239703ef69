#pragma once

#include <array>
#include <cstddef>

#include "bench/devices/device.h"
#include "bench/devices/stepper.h"

namespace bench {

// The engine cluster on the gauge bus, type 8: eight needles with a command each.
class EngineClusterGauge : public Device {
  public:
    static constexpr int kNeedleCount = 8;
    // Needle 1..8, in the order of their commands.
    enum Needle { fuel_left = 1, fuel_right, egt, fuel_flow, oil_temperature, oil_pressure, vacuum, ampere };

    EngineClusterGauge(platform::EventLoop& loop, Identity identity);

    // Where a needle was sent, and where its pointer stands: steps, 0..1079.
    double target_steps(int needle) const;
    double pointer_steps(int needle) const;
    bool calibrating() const;
    int step_time_us() const { return needles_[0].step_time_us(); }

    bool knock(int needle, int steps) override;

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    Stepper& stepper(int needle) { return needles_[static_cast<std::size_t>(needle - 1)]; }
    const Stepper& stepper(int needle) const { return needles_[static_cast<std::size_t>(needle - 1)]; }
    Answer set_speed(int value);
    Answer move_needle(int needle, int value);
    void find_zero();

    std::array<Stepper, kNeedleCount> needles_;
};

}  // namespace bench
