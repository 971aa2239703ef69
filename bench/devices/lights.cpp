#include "bench/devices/lights.h"

#include "bus/frames.h"

namespace bench {

void Lights::take(int bits) {
    const int level = bits & bus::kLightLevelMask;
    if ((bits & bus::kLightApplyLevel) != 0) {
        level_ = level;
    }
    if ((bits & bus::kLightStoreLevel) != 0) {
        stored_level_ = level;
    }
    on_ = (bits & bus::kLightOn) != 0;
    displays_on_ = (bits & bus::kLightPower) != 0;
    if ((bits & bus::kLightAlwaysOn) != 0) {
        behaviour_ = Behaviour::always_on;
    } else if ((bits & bus::kLightOnAtStart) != 0) {
        behaviour_ = Behaviour::on_at_power_on;
    } else if ((bits & bus::kLightOffAtStart) != 0) {
        behaviour_ = Behaviour::off_at_power_on;
    }
}

void Lights::power_on() {
    on_ = behaviour_ != Behaviour::off_at_power_on;
    displays_on_ = true;
    level_ = stored_level_;
}

}  // namespace bench
