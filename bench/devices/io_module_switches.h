#pragma once

#include <array>
#include <cstdint>

#include "iomodule/io_module_telegram.h"
#include "platform/event_loop.h"

namespace bench {

// The switch inputs of an IO module: contacts that a hand closes and opens, and what the module makes of them by the
// type of each. It debounces, toggles and decodes encoders by itself.
class IoModuleSwitches {
  public:
    static constexpr int kMostWaitingClicks = 32;

    // Type 0..3 of switch 0..47; others count as 0.
    void set_type(int number, int type);
    int type(int number) const { return at(number).type; }
    // How long a contact must stand still before it counts, 0..20 ms.
    void set_debounce(int milliseconds, platform::TimePoint now);
    int debounce_ms() const { return debounce_ms_; }

    // Closes or opens the contact of a switch by hand. False for the contacts of an encoder.
    bool set_contact(int number, bool closed, platform::TimePoint now);
    bool contact(int number) const { return at(number).closed; }
    // The contact after debouncing, as it stands now.
    bool settled(int number, platform::TimePoint now) const;

    // Turns the encoder whose A switch has this number by so many clicks, 0 and above as A, below 0 as B. False where
    // there is none. Clicks wait until they have been reported, no more than kMostWaitingClicks.
    bool turn(int number, int clicks);
    int waiting_clicks() const;

    // What stands in the next telegram for each switch; an encoder's click is on in one telegram and off in the next.
    void next_telegram(platform::TimePoint now);
    bool reported(int number) const { return at(number).reported; }

    // What is not stored is as new: toggles, clicks.
    void power_on(platform::TimePoint now);

  private:
    struct Switch {
        int type = iomodule::kSwitchOnOff;
        bool closed = false;
        bool stable = false;
        bool toggled = false;
        bool reported = false;
        int clicks = 0;  // of an A switch
        platform::TimePoint changed_at{};
    };

    Switch& at(int number) { return switches_[static_cast<std::size_t>(number)]; }
    const Switch& at(int number) const { return switches_[static_cast<std::size_t>(number)]; }
    void settle(Switch& input, platform::TimePoint now) const;
    bool is_encoder(int number) const;
    void report_click(int number);

    std::array<Switch, iomodule::kSwitches> switches_;
    int debounce_ms_ = 3;
};

}  // namespace bench
