#include "simhost/instruments.h"

#include <cmath>

#include "simhost/units.h"

namespace simhost {

namespace {

constexpr double kDay = 86400.0;
constexpr double kHour = 3600.0;
constexpr double kTurnStopDegPerS = 6.0;  // where the turn needle meets its stop
constexpr double kGyroDriftDegPerS = 3.0 / kHour;

int days_in(int year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0) ? 366 : 365;
}

int whole(double value) {
    return static_cast<int>(std::floor(value));
}

}  // namespace

void SimClock::step(double dt_s) {
    seconds_ += dt_s;
    if (seconds_ >= kDay) {
        seconds_ -= kDay;
        ++day_of_year_;
        if (day_of_year_ > days_in(year_)) {
            day_of_year_ = 1;
            ++year_;
        }
    }
}

int SimClock::hour() const {
    return whole(seconds_ / kHour) % 24;
}
int SimClock::minute() const {
    return whole(seconds_ / 60.0) % 60;
}
int SimClock::second() const {
    return whole(seconds_) % 60;
}

int SimClock::zulu_hour() const {
    return whole(std::fmod(seconds_ + kLocalMinutesBehindZulu * 60.0 + kDay, kDay) / kHour) % 24;
}

int SimClock::zulu_minute() const {
    return whole(std::fmod(seconds_ + kLocalMinutesBehindZulu * 60.0 + kDay, kDay) / 60.0) % 60;
}

int SimClock::zulu_day_of_year() const {
    const double zulu = seconds_ + kLocalMinutesBehindZulu * 60.0;
    if (zulu >= 0) {
        return day_of_year_;
    }
    return day_of_year_ > 1 ? day_of_year_ - 1 : days_in(year_ - 1);
}

void SimClock::set_hour(int hour) {
    seconds_ += (std::clamp(hour, 0, 23) - this->hour()) * kHour;
}
void SimClock::set_minute(int minute) {
    seconds_ += (std::clamp(minute, 0, 59) - this->minute()) * 60.0;
}
void SimClock::set_second(int second) {
    seconds_ = std::floor(seconds_) + std::clamp(second, 0, 59) - this->second();
}
void SimClock::set_day_of_year(int day) {
    day_of_year_ = std::clamp(day, 1, days_in(year_));
}

void SimClock::set_year(int year) {
    year_ = std::clamp(year, 1900, 2999);
    day_of_year_ = std::min(day_of_year_, days_in(year_));
}

void Instruments::step(const Airframe& airframe, double vacuum_in_hg, double bus_volts, double dt_s) {
    const double magnetic_deg = wrap360(airframe.heading_deg() - kMagneticVariationDeg);
    if (!started_) {
        started_ = true;
        compass_deg_ = gyro_heading_deg_ = magnetic_deg;
    }
    // The compass card floats: it follows like a damped pendulum, and in a turn it runs ahead or stays behind by the
    // direction flown.
    const double northerly_error = -0.35 * airframe.bank_deg() * std::cos(radians(magnetic_deg));
    const double pull = 6.0 * wrap180(magnetic_deg + northerly_error - compass_deg_) - 2.4 * compass_rate_;
    compass_rate_ = std::clamp(compass_rate_ + pull * dt_s, -25.0, 25.0);
    compass_deg_ = wrap360(compass_deg_ + compass_rate_ * dt_s);

    const double spin = std::clamp((vacuum_in_hg - 1.5) / 2.0, 0.0, 1.0);
    gyro_drift_deg = wrap180(gyro_drift_deg + spin * kGyroDriftDegPerS * dt_s);
    gyro_heading_deg_ = lag_angle(gyro_heading_deg_, magnetic_deg + gyro_drift_deg, spin > 0 ? 0.10 / spin : 1e9, dt_s);

    variometer_mps_ = lag(variometer_mps_, airframe.climb_mps(), 0.9, dt_s);
    const bool turning_works = bus_volts > 10.0;
    turn_rate_deg_ =
        lag(turn_rate_deg_,
            turning_works ? std::clamp(airframe.turn_rate_deg(), -kTurnStopDegPerS, kTurnStopDegPerS) : 0.0, 0.3, dt_s);
    const double slip = -airframe.lateral_acceleration() / std::max(4.0, airframe.normal_acceleration());
    ball_ = lag(ball_, std::clamp(slip / 0.18, -1.0, 1.0), 0.4, dt_s);
}

}  // namespace simhost
