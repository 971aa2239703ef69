#pragma once

#include "simhost/airframe.h"

namespace simhost {

// Date and time of day at the place of flight.
class SimClock {
  public:
    SimClock() = default;
    SimClock(int year, int day_of_year, double seconds_of_day)
        : year_(year), day_of_year_(day_of_year), seconds_(seconds_of_day) {}

    void step(double dt_s);
    int hour() const;
    int minute() const;
    int second() const;
    int zulu_hour() const;
    int zulu_minute() const;
    int day_of_year() const { return day_of_year_; }
    int zulu_day_of_year() const;
    int year() const { return year_; }
    double seconds_of_day() const { return seconds_; }

    // Values outside of their range are brought into it.
    void set_hour(int hour);
    void set_minute(int minute);
    void set_second(int second);
    void set_day_of_year(int day);
    void set_year(int year);

  private:
    int year_ = 2024;
    int day_of_year_ = 173;
    double seconds_ = 9.0 * 3600.0 + 30.0 * 60.0;
};

// Instruments with a life of their own: they lag behind what they measure, swing, drift or are set by hand.
class Instruments {
  public:
    void step(const Airframe& airframe, double vacuum_in_hg, double bus_volts, double dt_s);

    double compass_deg() const { return compass_deg_; }            // magnetic, with lag and turning error
    double gyro_heading_deg() const { return gyro_heading_deg_; }  // magnetic, with drift
    double variometer_mps() const { return variometer_mps_; }
    double turn_rate_deg() const { return turn_rate_deg_; }
    double ball() const { return ball_; }  // -1 left .. 1 right

    double altimeter_setting_mb = 1013.25;
    double gyro_drift_deg = 0;

  private:
    double compass_deg_ = 0;
    double compass_rate_ = 0;
    double gyro_heading_deg_ = 0;
    double variometer_mps_ = 0;
    double turn_rate_deg_ = 0;
    double ball_ = 0;
    bool started_ = false;
};

}  // namespace simhost
