#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "bench/device_set.h"
#include "bench/devices/connect.h"
#include "bench/devices/io_module.h"
#include "tests/iomodule/iom_world.h"

namespace iom_test {

using std::chrono::milliseconds;

// The functions of a board, counted from its first.
inline constexpr int kFunctionsOfBoard = 80;
inline constexpr int kFirstFunction = 51;
inline constexpr int kEncoderFunction = 20;
inline constexpr int kBitFunction = 24;
inline constexpr int kInputFunction = 32;
inline constexpr int kLedFunction = 40;
inline constexpr int kFirstMaskedLed = 28;

inline constexpr int kFirstEncoder = 16;
inline constexpr int kFirstStepping = 24;
inline constexpr int kFirstUnused = 28;  // up to the bits
inline constexpr int kFirstBit = 32;
inline constexpr int kFirstKey = 40;
inline constexpr int kLastKey = 43;

inline constexpr int kDeadband = 6;
inline constexpr int kMostNoise = 3;         // never moves an input by more than the dead band
inline constexpr int kSurestMove = 20;       // always does
inline constexpr int kShortestHoldMs = 130;  // every state of a contact stands in some telegram
inline constexpr int kClickMs = 80;

// One module with its line, what hands have done to it and what the simulator must hold for that.
struct Board {
    Board(IomWorld& the_world, iomodule::frmStatusIOM& the_panel, platform::manual::Wire& the_line, int number)
        : world(the_world),
          panel(the_panel),
          line(the_line),
          first(kFirstFunction + number * kFunctionsOfBoard),
          byte_offset(0x7000U + static_cast<std::uint32_t>(number)) {
        for (int function = first; function < first + kFunctionsOfBoard; ++function) {
            world.define_function(function);
            world.set_range(function, 0, 200);
        }
        add_switches();
        for (int input = 0; input < iomodule::kAnalogueInputs; ++input) {
            world.add_input(input, first + kInputFunction + input, 0, input % 2 == 0 ? 0 : 500, 1023, kDeadband)
                .IomDeviceId = id();
            world.set_range(first + kInputFunction + input, -1000, 1000);
        }
        for (int led = 0; led < iomodule::kLeds; ++led) {
            add_led(led);
        }
        bench::set_up_io_module(model, world.tables, id());
        bench::connect(model, line);
        line.record = false;
        line.faults.random = &world.machine.random;
    }

    IomWorld& world;
    iomodule::frmStatusIOM& panel;
    platform::manual::Wire& line;
    int first;
    std::uint32_t byte_offset;
    bench::IoModule model{world.machine.loop};

    std::int16_t id() const { return static_cast<std::int16_t>(panel.device_id()); }
    std::uint32_t random(std::uint32_t below) { return world.machine.random.next() % below; }

    // --- Rows -------------------------------------------------------------------------------------------------------

    tables::IomRow& add_switch(int number, int function, float on, float off, int type, int mode = 0) {
        tables::IomRow& row = world.add_switch(number, function, on, off, id());
        row.IomValueC = static_cast<std::int16_t>(type);
        row.IomMode = static_cast<std::int16_t>(mode);
        return row;
    }
    void add_switches() {
        for (int number = 0; number < kFirstEncoder; ++number) {
            add_switch(number, first + number, static_cast<float>(10 + 5 * number), number % 3 == 2 ? -1 : 2,
                       number / 8);
        }
        for (int encoder = 0; encoder < 4; ++encoder) {
            const int mode = encoder % 2 == 0 ? 1 : 5;  // held at the ends, or going on at the other
            const int function = first + kEncoderFunction + encoder;
            world.set_range(function, 0, 20);
            add_switch(kFirstEncoder + 2 * encoder, function, 1, 0, iomodule::kSwitchEncoderA, mode);
            add_switch(kFirstEncoder + 2 * encoder + 1, function, -1, 0, iomodule::kSwitchEncoderB, mode);
        }
        for (int number = kFirstStepping; number < kFirstUnused; ++number) {
            world.set_range(first + number - 8, 0, 50);
            add_switch(number, first + number - 8, 5, -3, number % 2, number % 4 < 2 ? 3 : 7);
        }
        for (int number = kFirstBit; number < kFirstKey; ++number) {
            tables::FunctionRow& function = world.function(first + kBitFunction + number - kFirstBit);
            function.FunctionDataType = tables::kByte;
            function.FunctionMask = static_cast<std::int16_t>(1 << (number - kFirstBit));
            function.FunctionMaximum = 1;
            function.FunctionOffset1 = static_cast<std::int32_t>(byte_offset);
            add_switch(number, first + kBitFunction + number - kFirstBit, 100, 0, number % 2);
        }
        for (int number = kFirstKey; number <= kLastKey; ++number) {
            tables::IomRow& row = add_switch(number, 0, 0, 0, 0);
            row.IomSeqNr = iomodule::kKeystrokeToSimulator;
            row.IomKeyOffOn = static_cast<std::int16_t>('A' + number);
            row.IomKeyOnOff = number % 2 == 0 ? row.IomKeyOffOn : std::int16_t{0};
        }
    }
    void add_led(int led) {
        const int function = first + kLedFunction + led;
        tables::IomRow& row =
            world.add_led(led, function, led < kFirstMaskedLed ? 1U + static_cast<unsigned>(led) % 15 : 2);
        row.IomDeviceId = id();
        row.IomMode = static_cast<std::int16_t>(led / 2 % 2);
        row.IomValueA = 50;
        row.IomValueC = 30;
        row.IomKeyOnOff = static_cast<std::int16_t>(led % 4);
        world.set_range(function, led % 3 == 0 ? -100 : 0, 100);
        if (led >= kFirstMaskedLed) {
            world.set_range(function, 0, 1);
            world.function(function).FunctionDataType = tables::kByte;
            world.function(function).FunctionMask = static_cast<std::int16_t>(1 << (led % 8));
        }
    }

    // --- What must come of it ---------------------------------------------------------------------------------------

    std::array<bool, iomodule::kSwitches> contact{};
    std::array<bool, iomodule::kSwitches> toggled{};
    std::array<platform::TimePoint, iomodule::kSwitches> free_at{};  // for the hand
    std::array<double, kFunctionsOfBoard> expected{};
    std::array<int, kFunctionsOfBoard> writes_expected{};
    std::array<int, iomodule::kAnalogueInputs> position{};
    std::array<int, iomodule::kAnalogueInputs> wavering{};  // when the slider was moved last
    std::array<bool, 2> masters_on = {true, true};
    int bits = 0;
    int keys_expected = 0;
    int noise = 0;

    static int function_of(int number) { return number < kFirstEncoder ? number : number - 8; }
    static bool is_momentary(int number) {
        return (number >= 8 && number < kFirstEncoder) ||
               (number >= kFirstStepping && number < kFirstKey && number % 2 != 0);
    }
    bool on(int number) const {
        const auto at = static_cast<std::size_t>(number);
        return is_momentary(number) ? toggled[at] : contact[at];
    }

    void step(int function, double by, double highest, bool rotates) {
        double& value = expected[static_cast<std::size_t>(function)];
        value += by;
        if (value < 0) {
            value = rotates ? highest : 0;
        } else if (value > highest) {
            value = rotates ? 0 : highest;
        }
        ++writes_expected[static_cast<std::size_t>(function)];
    }
    // A switch has come to another state.
    void act(int number) {
        const auto function = static_cast<std::size_t>(function_of(number));
        if (number < kFirstEncoder) {
            if (on(number) || number % 3 != 2) {
                expected[function] = on(number) ? 2 * (10 + 5 * number) : 4;
                ++writes_expected[function];
            }
        } else if (number < kFirstUnused) {
            step(function_of(number), on(number) ? 5 : -3, 50, number % 4 >= 2);
        } else if (number < kFirstKey) {
            const int bit = 1 << (number - kFirstBit);
            bits = on(number) ? bits | bit : bits & ~bit;
        } else if (on(number) || number % 2 == 0) {
            ++keys_expected;
        }
    }

    // --- Hands ------------------------------------------------------------------------------------------------------

    platform::TimePoint now() const { return world.machine.loop.now(); }

    void flip(int number) {
        const auto at = static_cast<std::size_t>(number);
        contact[at] = !contact[at];
        free_at[at] = now() + milliseconds(kShortestHoldMs);
        model.set_contact(number, contact[at]);
        if (!is_momentary(number)) {
            act(number);
        } else if (contact[at]) {
            toggled[at] = !toggled[at];
            act(number);
        }
    }
    void turn(int encoder, int clicks) {
        const int number = kFirstEncoder + 2 * encoder;
        free_at[static_cast<std::size_t>(number)] = now() + milliseconds(kClickMs * (std::abs(clicks) + 2));
        model.turn_encoder(number, clicks);
        for (int click = 0; click < std::abs(clicks); ++click) {
            step(kEncoderFunction + encoder, clicks > 0 ? 1 : -1, 20, encoder % 2 != 0);
        }
    }
    void slide(int input, int to) {
        const auto at = static_cast<std::size_t>(input);
        if (std::abs(to - position[at]) >= kSurestMove) {
            position[at] = to;
            wavering[at] = noise;
            model.set_pot(input, to);
            ++writes_expected[static_cast<std::size_t>(kInputFunction + input)];
        }
    }
    // A hand does something somewhere, on what has been left alone for long enough.
    void do_something() {
        const int number = static_cast<int>(random(kLastKey + 1));
        const bool encoder = number >= kFirstEncoder && number < kFirstStepping;
        const bool unused = number >= kFirstUnused && number < kFirstBit;
        const auto at = static_cast<std::size_t>(encoder ? number & ~1 : number);
        if (!unused && now() >= free_at[at]) {
            encoder ? turn((number - kFirstEncoder) / 2, static_cast<int>(random(13)) - 6) : flip(number);
        }
    }
    void move_sliders() {
        for (int input = 0; input < iomodule::kAnalogueInputs; ++input) {
            if (random(8) == 0) {
                slide(input, static_cast<int>(random(1024)));
            }
        }
    }
    // Not so many that the answer to the request behind them comes after the next cycle has begun: that would be lost,
    // and a click of an encoder with it.
    void change_some_leds() { change_leds(static_cast<int>(random(4)) * 8, 8); }
    void change_leds(int from = 0, int count = iomodule::kLeds) {
        constexpr std::array<double, 8> kValues = {0, -100, 100, 30, 50, 50.5, 100.5, 29.75};
        for (int led = from; led < from + count; ++led) {
            const tables::FunctionRow& function = world.function(first + kLedFunction + led);
            if (led >= kFirstMaskedLed) {
                world.space->write_u8(IomWorld::offset(function, 1), static_cast<std::uint8_t>(random(256)));
            } else {
                world.set_value(first + kLedFunction + led, kValues[random(kValues.size())]);
            }
        }
        for (const std::size_t master : {0U, 1U}) {
            masters_on[master] = random(2) == 0;
            model.set_master(static_cast<int>(master) + 1, masters_on[master]);
        }
    }

    // --- Looking ----------------------------------------------------------------------------------------------------

    bool led_wanted(int led) const {
        const std::uint32_t at = IomWorld::offset(world.function(first + kLedFunction + led), 1);
        const bool inverted = led / 2 % 2 != 0;
        if (led >= kFirstMaskedLed) {
            return ((world.space->read_u8(at) >> (led % 8) & 1) != 0) != inverted;
        }
        const double value = world.space->read_f64(at);
        const double lowest = led % 3 == 0 ? -100 : 0;
        const int conditions = 1 + led % 15;
        const bool met = ((conditions & 1) != 0 && value == lowest) || ((conditions & 2) != 0 && value == 100) ||
                         ((conditions & 4) != 0 && value > (100 - lowest) / 2) ||
                         ((conditions & 8) != 0 && value == 30);
        return met != inverted;
    }
    bool led_expected(int led) const {
        const bool allowed = led % 4 == 0 || (led % 4 != 2 && masters_on[0]) || (led % 4 != 1 && masters_on[1]);
        return world.value_of(9) > 8 && led_wanted(led) && allowed;
    }
    static double output(int input, int raw) {
        if (input % 2 == 0) {
            return raw / 1023.0 * 1000;
        }
        return raw >= 500 ? (raw - 500) / 523.0 * 1000 : (500 - raw) / 500.0 * -1000;
    }
    void expect_right(const std::string& moment) {
        const std::string who = moment + ", module " + std::to_string(id()) + ", ";
        for (int function = 0; function < kBitFunction; ++function) {
            EXPECT_EQ(world.value_of(first + function), expected[static_cast<std::size_t>(function)])
                << who << "function " << function;
        }
        EXPECT_EQ(world.space->read_u8(byte_offset), bits) << who << "bits";
        for (int input = 0; input < iomodule::kAnalogueInputs; ++input) {
            const int stands = position[static_cast<std::size_t>(input)];
            const int off = wavering[static_cast<std::size_t>(input)];
            const double value = world.value_of(first + kInputFunction + input);
            EXPECT_GE(value, output(input, std::max(stands - off, 0)) - 0.001) << who << "input " << input;
            EXPECT_LE(value, output(input, std::min(stands + off, 1023)) + 0.001) << who << "input " << input;
        }
        for (int led = 0; led < iomodule::kLeds; ++led) {
            EXPECT_EQ(model.led_lights(led), led_expected(led)) << who << "LED " << led;
        }
        EXPECT_EQ(model.switches().waiting_clicks(), 0) << who;
        EXPECT_TRUE(panel.running()) << who;
    }

    // --- What happens to lines --------------------------------------------------------------------------------------

    // Noise can look like a command that sets a module up. After a fault it has its settings again, all else is as new,
    // its sliders have been at both ends, and what nobody can
    // know of the time before is taken from the simulator.
    void heal() {
        line.faults = {.random = &world.machine.random};
        model.set_fault(bench::Fault::none);
        line.unplug();
        world.advance(100);
        std::string frames;
        bus::append_frame(frames, iomodule::kCommandDevice, iomodule::kCommandDebounce, 3 * 257);
        bus::append_frame(frames, iomodule::kCommandDevice, iomodule::kCommandTestSwitch, 0);
        model.receive(frames);
        bench::set_up_io_module(model, world.tables, id());
        for (int number = 0; number <= kLastKey; ++number) {
            model.set_contact(number, contact[static_cast<std::size_t>(number)]);
        }
        model.power_cycle();
        toggled.fill(false);
        line.plug();
        panel.cmdRun_Click();  // nothing while running
        for (const int end : {0, 1023, 500}) {
            world.advance(1200);
            for (int input = 0; input < iomodule::kAnalogueInputs; ++input) {
                slide(input, end);
            }
        }
        world.advance(200);
        begin_anew();
    }
    void begin_anew() {
        for (int number = 0; number < kFirstUnused; ++number) {
            const bool silent = number < kFirstEncoder && number % 3 == 2 && !on(number);
            const bool absolute = number < kFirstEncoder && !silent;
            const int function = number < kFirstEncoder || number >= kFirstStepping
                                     ? function_of(number)
                                     : kEncoderFunction + (number - kFirstEncoder) / 2;
            expected[static_cast<std::size_t>(function)] =
                absolute ? (on(number) ? 2 * (10 + 5 * number) : 4) : world.value_of(first + function);
        }
        for (int number = kFirstBit; number < kFirstKey; ++number) {
            const int bit = 1 << (number - kFirstBit);
            bits = on(number) ? bits | bit : bits & ~bit;
        }
    }
};

}  // namespace iom_test
