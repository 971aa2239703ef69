#pragma once

#include "bench/devices/device.h"
#include "bench/devices/display_brightness.h"
#include "bench/devices/tuner.h"
#include "tables/core_tables.h"

namespace bench {

// A radio of one band: the generic radio module, type 110, and its CTL30 sibling with a rotary switch, type 111. The
// model that it reports is its kind: 0 COM, 1 NAV, 2 and 3 ADF.
class Radio : public Device {
  public:
    static constexpr int kLastRotaryPosition = 4;

    Radio(platform::EventLoop& loop, Identity identity);

    const Tuner& tuner() const { return tuner_; }
    // CTL30 unit: 1 off, which darkens the displays unless the unit is switched from outside; 2..4.
    int rotary() const { return rotary_; }
    // What the indicators beside the digits of an ADF show: bits left up, left down, right up, right down.
    int indicators() const { return indicators_; }

    bool operate(std::string_view control, int amount) override;

    static void set_up(Device& device, const tables::GaugeRow& row);

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override { tuner_.power_on(); }

  private:
    bool has_rotary() const;
    bool switched_on() const;
    std::string digits(int frequency) const;
    void turn_fine(int clicks);
    Answer choose_kind(int value);
    Answer set_steps(int value);
    Answer set_fast_rotate(int value);
    Answer set_clicks(int value);
    Answer take_command6(int value);

    Tuner tuner_;
    DisplayBrightness brightness_;
    platform::Milliseconds fast_rotate_{0};  // clicks of the fine knob that come closer count ten times
    platform::TimePoint last_fine_click_{};
    int rotary_ = 2;
    bool external_on_off_ = false;
    int indicators_ = 0;
};

}  // namespace bench
