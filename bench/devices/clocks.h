#pragma once

#include <cstdint>
#include <string>

#include "bench/devices/device.h"
#include "tables/core_tables.h"

namespace bench {

// Seconds that run by themselves from the time they were last set.
class RunningSeconds {
  public:
    void set(std::int64_t seconds, platform::TimePoint now) {
        base_ = seconds;
        since_ = now;
    }
    std::int64_t at(platform::TimePoint now) const;

  private:
    std::int64_t base_ = 0;
    platform::TimePoint since_{};
};

// The Boeing clock, type 104: hands for the time of day, a date window and a stop watch. A battery keeps time and date
// while the supply is away.
class BoeingClock : public Device {
  public:
    enum class ElapsedState { reset, running, stopped };

    BoeingClock(platform::EventLoop& loop, Identity identity);
    // What the second hand shows, as the gauge's row tells.
    static void set_up(Device& device, const tables::GaugeRow& row);

    // Of the clock's own calendar.
    int year() const { return today().year; }
    int month() const { return today().month; }
    int day() const { return today().day; }
    int second_of_day() const;

    ElapsedState elapsed_state() const { return elapsed_state_; }
    int elapsed_seconds() const;
    // What the second hand shows: the stop watch's seconds or those of the time of day.
    bool second_hand_shows_real_time() const { return real_seconds_; }
    int calibration() const { return calibration_; }

    // Controls: button `elapsed` (start, stop, reset), knobs `setHour`, `setMinute`.
    bool operate(std::string_view control, int amount) override;

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    struct Date {
        int year;
        int month;
        int day;
    };
    Date today() const;
    std::int64_t seconds_now() const { return clock_.at(now()); }
    Answer set_time(int value);
    Answer set_date(int word);
    void turn_hands(int seconds);
    void press_elapsed();

    RunningSeconds clock_;  // since the first second of 2000
    RunningSeconds stop_watch_;
    ElapsedState elapsed_state_ = ElapsedState::reset;
    int stopped_at_ = 0;
    bool real_seconds_ = false;
    int calibration_ = 0;
    int step_time_us_;
    int display_level_ = kHighestLightLevel;
};

// The Cessna clock, type 109: an upper display for volts and temperature, a lower one for local, universal and flight
// time. A battery keeps the times while the supply is away.
class CessnaClock : public Device {
  public:
    enum class Upper { volts, celsius, fahrenheit };
    enum class Lower { local, universal, flight };

    CessnaClock(platform::EventLoop& loop, Identity identity);

    int universal_second_of_day() const;
    int local_hour() const;
    int flight_seconds() const;
    bool sounder_enabled() const { return sounder_; }

    // Buttons `upper` and `lower`: the next value on that display.
    bool operate(std::string_view control, int amount) override;

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    std::string upper_text() const;
    std::string lower_text() const;
    Answer set_local_hour(int hour);

    RunningSeconds universal_;
    RunningSeconds flight_;
    int local_offset_hours_ = 0;  // 0..23, ahead of universal time
    int volts_tenths_ = 0;
    int celsius_ = 0;
    int fahrenheit_ = 32;
    bool sounder_ = true;
    char blinker_ = ':';
    Upper upper_ = Upper::volts;
    Lower lower_ = Lower::local;
};

}  // namespace bench
