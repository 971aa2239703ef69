#include "bench/devices/io_module_switches.h"

#include <algorithm>
#include <cstdlib>

namespace bench {

using namespace iomodule;

void IoModuleSwitches::set_type(int number, int type) {
    Switch& input = at(number);
    input.type = type >= kSwitchOnOff && type <= kSwitchEncoderB ? type : kSwitchOnOff;
    input.toggled = false;
    input.clicks = 0;
    input.reported = false;
    if (input.type >= kSwitchEncoderA) {
        input.closed = input.stable = false;
    }
}

void IoModuleSwitches::set_debounce(int milliseconds, platform::TimePoint now) {
    for (Switch& input : switches_) {
        settle(input, now);
    }
    debounce_ms_ = milliseconds;
}

void IoModuleSwitches::settle(Switch& input, platform::TimePoint now) const {
    if (input.closed == input.stable || now - input.changed_at < platform::Milliseconds(debounce_ms_)) {
        return;
    }
    input.stable = input.closed;
    if (input.stable && input.type == kSwitchMomentary) {
        input.toggled = !input.toggled;
    }
}

bool IoModuleSwitches::set_contact(int number, bool closed, platform::TimePoint now) {
    Switch& input = at(number);
    if (input.type >= kSwitchEncoderA) {
        return false;
    }
    settle(input, now);
    if (input.closed != closed) {
        input.closed = closed;
        input.changed_at = now;
        settle(input, now);
    }
    return true;
}

bool IoModuleSwitches::settled(int number, platform::TimePoint now) const {
    Switch input = at(number);
    settle(input, now);
    return input.stable;
}

bool IoModuleSwitches::is_encoder(int number) const {
    return at(number).type == kSwitchEncoderA && number + 1 < kSwitches && at(number + 1).type == kSwitchEncoderB;
}

bool IoModuleSwitches::turn(int number, int clicks) {
    if (!is_encoder(number)) {
        return false;
    }
    at(number).clicks = std::clamp(at(number).clicks + clicks, -kMostWaitingClicks, kMostWaitingClicks);
    return true;
}

int IoModuleSwitches::waiting_clicks() const {
    int clicks = 0;
    for (const Switch& input : switches_) {
        clicks += std::abs(input.clicks);
    }
    return clicks;
}

void IoModuleSwitches::report_click(int number) {
    Switch& a = at(number);
    Switch& b = at(number + 1);
    const bool rest = a.reported || b.reported || a.clicks == 0;
    a.reported = !rest && a.clicks > 0;
    b.reported = !rest && a.clicks < 0;
    a.clicks -= a.reported ? 1 : b.reported ? -1 : 0;
}

void IoModuleSwitches::next_telegram(platform::TimePoint now) {
    for (int number = 0; number < kSwitches; ++number) {
        Switch& input = at(number);
        settle(input, now);
        if (is_encoder(number)) {
            report_click(number);
        } else if (input.type == kSwitchOnOff) {
            input.reported = input.stable;
        } else if (input.type == kSwitchMomentary) {
            input.reported = input.toggled;
        }
    }
}

void IoModuleSwitches::power_on(platform::TimePoint now) {
    for (Switch& input : switches_) {
        input.stable = input.closed;
        input.changed_at = now;
        input.toggled = input.reported = false;
        input.clicks = 0;
    }
}

}  // namespace bench
