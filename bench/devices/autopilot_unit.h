#pragma once

#include <string>

#include "bench/devices/device.h"
#include "tables/core_tables.h"

namespace bench {

// The Bendix/King autopilot, type 124: mode buttons with lamps, one display for target altitude, vertical speed or air
// pressure, two knobs, an alert and arrows for the trim. It holds modes and values itself. After each turn or press it
// counts as being operated, and takes no other modes and values meanwhile.
class AutopilotUnit : public Device {
  public:
    enum Mode : int {
        ap = 1 << 0,
        hdg = 1 << 1,
        rol = 1 << 2,
        nav = 1 << 3,
        apr = 1 << 4,
        rev = 1 << 5,
        vertical_speed_hold = 1 << 6,
        alt = 1 << 7,
    };
    enum class Display { altitude, vertical_speed, pressure };
    enum class PressureUnit { hectopascal, inch_hg };

    using Device::Device;
    // The unit of the pressure, as the gauge's row tells.
    static void set_up(Device& device, const tables::GaugeRow& row);

    int modes() const { return modes_; }
    int altitude_feet() const { return altitude_feet_; }
    int vertical_speed() const { return vertical_speed_; }  // ft/min
    // 1013 or 29.92.
    double pressure() const;
    bool operated() const;
    bool alert() const { return now() < alert_until_; }
    Display display() const;
    std::string display_text() const;

    // Buttons `ap`, `hdg`, `nav`, `apr`, `rev`, `alt`, `up`, `down`, `baro`, `arm`; knobs `coarse` and `fine`.
    bool operate(std::string_view control, int amount) override;

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void reported() override { reports_due_ = reports_due_ > 0 ? reports_due_ - 1 : 0; }
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    Answer take_modes(int word);
    Answer take_altitude(int feet);
    Answer take_vertical_speed(int feet_per_minute);
    Answer take_lamps(int word);
    bool press(std::string_view button);
    void press_ap();
    void press_lateral(int mode, int others);
    void turn(int clicks, bool coarse);
    void change_vertical_speed(int feet_per_minute);
    void begin_operating();
    void show_for_a_while(Display display);
    bool lit(Mode mode) const { return (modes_ & mode) != 0; }

    int modes_ = 0;
    int altitude_feet_ = 0;
    int vertical_speed_ = 0;
    int pressure_hpa_ = 1013;
    int pressure_inhg_hundredths_ = 2992;
    PressureUnit pressure_unit_ = PressureUnit::inch_hg;
    int pressure_click_ = 1;
    int coarse_feet_ = 1000;
    int fine_feet_ = 100;
    int lamps_ = 0;
    int display_level_ = kHighestLightLevel;

    Display display_ = Display::altitude;
    platform::TimePoint display_until_{};
    platform::TimePoint alert_until_{};
    platform::TimePoint operated_until_{};
    int reports_due_ = 0;  // reports that still have to tell what was done
};

}  // namespace bench
