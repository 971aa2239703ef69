#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "bench/devices/bus_frame_reader.h"
#include "bench/devices/io_module_switches.h"
#include "bench/devices/line_instrument.h"

namespace bench {

// An IO module on a line of its own: 48 switches, 8 potentiometers, 32 LEDs. It says nothing by itself and answers
// every status request with one telegram. Types of switches, debounce time, test switch and master bits are stored in
// it; the rest is gone without power.
class IoModule : public LineInstrument {
  public:
    static constexpr int kModel = 3;  // a module above 2 knows the test switch
    static constexpr int kHighestNoise = 100;
    static constexpr int kLongestDebounceMs = 20;

    explicit IoModule(platform::EventLoop& loop, ReplyTiming timing = {});

    // --- What a hand does. Numbers count from 0. ------------------------------------------------------------------

    bool set_contact(int number, bool closed) { return switches_.set_contact(number, closed, now()); }
    bool turn_encoder(int number, int clicks) { return switches_.turn(number, clicks); }
    // 0..1023; others are limited.
    void set_pot(int number, int position);
    // The inputs waver by so much either way, 0..100.
    void set_noise(int counts);
    void set_master(int master, bool on) { masters_on_[static_cast<std::size_t>(master - 1)] = on; }

    // --- What is stored -------------------------------------------------------------------------------------------

    void set_type(int number, int type) { switches_.set_type(number, type); }
    void set_masters(int led, int master_bits) { masters_[static_cast<std::size_t>(led)] = master_bits & 3; }

    // --- What is to be seen ---------------------------------------------------------------------------------------

    bool led_lights(int number) const;
    const IoModuleSwitches& switches() const { return switches_; }
    int pot(int number) const { return pots_[static_cast<std::size_t>(number)]; }
    int power() const { return power_; }
    int masters(int led) const { return masters_[static_cast<std::size_t>(led)]; }
    int test_switch() const { return test_switch_; }
    int unknown_commands() const { return unknown_commands_; }
    std::uint64_t led_commands() const { return led_commands_; }

    void show(StateSink& sink) const override;
    bool operate(std::string_view control, int amount) override;

  protected:
    void hear(std::string_view bytes) override;
    void power_on() override;

  private:
    void take_command(const Command& command);
    void take_led(int value);
    std::string telegram();
    int input_value(std::size_t number);
    bool test_switch_closed() const;
    bool operate_numbered(std::string_view control, int number, int amount);

    BusFrameReader reader_;
    IoModuleSwitches switches_;
    std::array<int, iomodule::kAnalogueInputs> pots_{};
    int noise_ = 0;
    std::uint32_t noise_state_ = 2463534242U;
    std::array<bool, iomodule::kLeds> wishes_{};
    std::array<int, iomodule::kLeds> masters_{};
    std::array<bool, 2> masters_on_ = {true, true};
    int power_ = iomodule::kPowerOff;
    int test_switch_ = 0;  // switch number + 1
    int unknown_commands_ = 0;
    std::uint64_t led_commands_ = 0;
};

}  // namespace bench
