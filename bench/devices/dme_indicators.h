#pragma once

#include <cstdint>
#include <string>

#include "bench/devices/device.h"

namespace bench {

// The DME indicators: type 113 with a rotary switch of four positions, and the Bendix/King type 123 with a switch
// "RMT", "FREQ", "GS/T" and a frequency of its own. Both show distance, speed and time by the words they are sent.
class DmeIndicator : public Device {
  public:
    using Device::Device;

    // The displays as they look: "12.3", "123", or spaces.
    std::string distance() const { return display(distance_word_, 3); }
    std::string speed() const;
    std::string time() const;
    int rotary() const { return rotary_; }
    bool testing() const { return testing_; }

    // Switch `rotary`.
    bool operate(std::string_view control, int amount) override;

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

    virtual int highest_position() const { return 4; }
    // Whether speed and time have their displays; the frequency may stand there instead.
    virtual bool shows_speed_and_time() const { return true; }
    bool powered() const;

  private:
    std::string display(std::uint16_t word, std::size_t places) const;

    std::uint16_t distance_word_ = kDark;
    std::uint16_t speed_word_ = kDark;
    std::uint16_t time_word_ = kDark;
    int rotary_ = first_position();
    bool testing_ = false;
    bool external_power_ = true;  // the displays' supply follows the bus; else it is the unit's own
    int display_level_ = kHighestLightLevel;

    static constexpr std::uint16_t kDark = 0x3000;
    int first_position() const { return identity().type == 123 ? 1 : 2; }
};

class BkDmeIndicator : public DmeIndicator {
  public:
    enum Position { rmt = 1, freq = 2, ground_speed_time = 3 };

    using DmeIndicator::DmeIndicator;

    // 108000..117950, in steps of 50 kHz.
    int frequency_khz() const { return frequency_khz_; }

    // Knobs `coarse` (1 MHz) and `fine` (50 kHz) too.
    bool operate(std::string_view control, int amount) override;

  protected:
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    int highest_position() const override { return ground_speed_time; }
    bool shows_speed_and_time() const override { return rotary() != freq; }

  private:
    int frequency_khz_ = 108000;
};

}  // namespace bench
