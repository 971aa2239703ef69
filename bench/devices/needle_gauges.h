#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "bench/devices/device.h"
#include "bench/devices/stepper.h"

namespace bench {

inline constexpr int kDefaultStepTimeUs = 1300;  // a turn in 1.4 s
inline constexpr int kShortestStepTimeUs = 100;  // the motor follows no faster
inline constexpr std::uint16_t kBlankDisplay = 0xBBBB;

// The plain needle gauges, types 1 to 6: one needle (1, 4), one needle and a display (2), two needles (3, 5, 6).
class NeedleGauge : public Device {
  public:
    enum class Resolution { low, high };  // 1080 or 4320 positions to the turn
    enum class Direction { clockwise, counterclockwise };

    // `identity.type` is 1..6.
    NeedleGauge(platform::EventLoop& loop, Identity identity);

    int needle_count() const { return needle_count_; }
    bool has_display() const { return has_display_; }

    // Where needle 1 or 2 stands by its motor, and where it was sent: steps of low resolution, 0..1079.75.
    double needle_steps(int needle) const;
    double target_steps(int needle) const;
    // Where the pointer really stands on the dial, from the zero mark: with the calibration point, and with the steps
    // that the needle has lost. Steps clockwise; negative when it turns the other way.
    double pointer_steps(int needle) const;
    bool moving(int needle) const { return stepper(needle).moving(now()); }
    bool calibrating() const;

    Resolution resolution() const { return resolution_; }
    Direction direction(int needle) const { return direction_[index(needle)]; }
    int step_time_us() const { return needles_[0].step_time_us(); }
    // Quarter steps, 0..4319: as it stands now, and as it is stored.
    int calibration_point() const { return calibration_point_; }
    int stored_calibration_point() const { return stored_calibration_point_; }
    // The value of the last extra command, -1 before the first.
    int last_extra_command() const { return last_extra_command_; }
    std::uint16_t display_word() const { return display_word_; }
    // The four places of the display as they look, "45.6" or "123 "; blank without power.
    std::string display_text() const;

    // Knocks a needle out of its place by so many steps, until the next calibration.
    void lose_steps(int needle, int steps);
    bool knock(int needle, int steps) override;

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    static std::size_t index(int needle) { return needle == 2 ? 1 : 0; }
    Stepper& stepper(int needle) { return needles_[index(needle)]; }
    const Stepper& stepper(int needle) const { return needles_[index(needle)]; }

    Answer find_zero();
    Answer set_speed(int value);
    Answer set_direction(int value);
    Answer move_needle(int needle, int value);
    Answer take_second(int value);
    Answer set_resolution(int value);
    Answer move_calibration_point(int quarters);
    Answer store_calibration_point(int quarters);

    int needle_count_;
    bool has_display_;
    std::array<Stepper, 2> needles_{Stepper(kDefaultStepTimeUs), Stepper(kDefaultStepTimeUs)};
    std::array<Direction, 2> direction_{Direction::clockwise, Direction::clockwise};
    Resolution resolution_ = Resolution::low;
    int calibration_point_ = 0;
    int stored_calibration_point_ = 0;
    int last_extra_command_ = -1;
    std::uint16_t display_word_ = kBlankDisplay;
};

}  // namespace bench
