// Time and date of the simulator.

#include <cstdlib>

#include "simlink/sim_com.h"
#include "simlink/sim_offsets.h"
#include "simlink/sim_time.h"

namespace simlink {

// NOTE: On a lost link the values stay as they are: this access waits for the simulator, and the wait would be in vain.
void SimCom::GetTimeAndDate() {
    if (link_watch_.lost()) {
        return;
    }
    append_read(kOffsetHour, sizeof SimHour, &SimHour);
    append_read(kOffsetMinute, sizeof SimMinute, &SimMinute);
    append_read(kOffsetSecond, sizeof SimSecond, &SimSecond);
    append_read(kOffsetZuluHour, sizeof SimZuluHour, &SimZuluHour);
    append_read(kOffsetDayOfYear, sizeof SimDayOfYear, &SimDayOfYear);
    append_read(kOffsetYear, sizeof SimYear, &SimYear);
    append_read(kOffsetOutsideTemperature, sizeof outside_temperature_raw_, &outside_temperature_raw_);
    if (link_watch_.process()) {
        SimOutsideTemp = outside_temperature_raw_;
    }
    SimDate = date_of_year(SimYear, SimDayOfYear - 1);
    SimMonth = static_cast<std::int16_t>(SimDate.month);
    SimDay = static_cast<std::int16_t>(SimDate.day);
    SimYear2 = static_cast<std::int16_t>(std::abs(SimYear - 2000) & 63);
    SimLocalSeconds = seconds_for_clock(SimHour, SimMinute, SimSecond);
    SimZuluSeconds = seconds_for_clock(SimZuluHour, SimMinute, SimSecond);
}

void SimCom::PutTimeAndDate() {
    append_write(kOffsetHour, sizeof SimHour, &SimHour);
    append_write(kOffsetMinute, sizeof SimMinute, &SimMinute);
    append_write(kOffsetSecond, sizeof SimSecond, &SimSecond);
}

}  // namespace simlink
