// The panel of an IO module under anything that its line and the simulator can bring: garbage, pieces of telegrams,
// breaks, a pulled plug, values that are no numbers; halted and running, with rows of every kind. Afterwards good
// telegrams must act.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tests/iomodule/iom_world.h"

namespace {

using iom_test::IomWorld;

constexpr std::size_t kLongestInput = 256;
constexpr int kLedFunctions = 6;
constexpr int kSimulatorMs = 100;  // a cycle now and then will do
constexpr int kSecondMs = 100;     // and a second is long
constexpr int kOtherSwitches[] = {2, 5, 7, 8, 14, 15, 35, 47};
constexpr int kLeds[] = {0, 1, 7, 13, 20, 31};
constexpr int kInputs[] = {0, 3, 7};

void check(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// Switches 0 and 1 and input 0 are what is looked at in the end; the other rows are of every kind.
void assign_rows(IomWorld& world) {
    world.add_switch(0, 1);
    world.add_switch(1, 2);
    world.set_range(4, -100, 100);
    world.function(5).FunctionDataType = tables::kByte;
    world.function(5).FunctionMask = 4;
    world.function(6).FunctionDataType = tables::kInteger;
    for (const int signal : kOtherSwitches) {
        tables::IomRow& row = world.add_switch(signal, 4 + signal % 3, 1, -1);
        row.IomMode = static_cast<std::int16_t>(signal % 8);
        row.IomKeyOffOn = static_cast<std::int16_t>(0x4041 + signal);
        row.IomSeqNr = static_cast<std::uint8_t>(signal % 5 == 0 ? 100 : signal % 7 == 0 ? 200 : 1);
    }
    for (const int signal : kLeds) {
        world.add_led(signal, 10 + signal % kLedFunctions, static_cast<unsigned>(1 + signal % 15)).IomMode =
            static_cast<std::int16_t>(signal % 2);
    }
    world.function(11).FunctionDataType = tables::kUnsignedInteger;
    world.function(12).FunctionMask = 2;
    // The centre of the last one is its highest value: it divides by 0.
    for (const int signal : kInputs) {
        world.add_input(signal, 20 + signal, 0, signal == 7 ? 1023 : 100 * signal, 1023, signal);
    }
}

void take_value(IomWorld& world, std::size_t function, std::string_view bytes) {
    std::uint64_t bits = 0;
    for (const char byte : bytes.substr(0, sizeof bits)) {
        bits = bits << 8U | static_cast<std::uint8_t>(byte);
    }
    world.set_value(10 + static_cast<int>(function % kLedFunctions), std::bit_cast<double>(bits));
}

void start_or_stop(IomWorld& world, std::size_t amount) {
    if ((amount & 1U) != 0 && world.status.running()) {
        world.module1.cmdRun_Click();
    } else if ((amount & 1U) != 0) {
        world.status.cmdRun_Click();
    } else {
        world.module1.cmdStop_Click();
        world.module1.ComposeCmd(world.module1.device_id(), iomodule::kCommandStatus, iomodule::kStatusInTest);
    }
}

// The input is a series of steps: a byte of what happens, in its low three bits, and how much of it, in the others;
// what arrives stands behind it.
void play(IomWorld& world, std::string_view input) {
    while (!input.empty()) {
        const auto step = static_cast<std::uint8_t>(input.front());
        input.remove_prefix(1);
        const std::size_t amount = step >> 3U;
        switch (step & 7U) {
            case 0:
                world.advance(static_cast<int>(amount) * 5);
                break;
            case 1:
                (amount & 1U) != 0 ? world.line1.send_break() : world.line1.send_framing_error();
                break;
            case 2:
                world.line1.unplug();
                break;
            case 3:
                world.line1.plug();
                break;
            case 4:
                start_or_stop(world, amount);
                break;
            case 5:
                take_value(world, amount, input);
                input.remove_prefix(std::min(sizeof(double), input.size()));
                break;
            default:
                world.line1.deliver(input.substr(0, amount));
                input.remove_prefix(std::min(amount, input.size()));
                break;
        }
        check(world.module1.LastInput.size() <= iomodule::kTelegramLength);
    }
}

// A halted panel keeps the telegram that it has asked for.
void expect_a_telegram_halted(IomWorld& world) {
    world.module1.ComposeCmd(world.module1.device_id(), iomodule::kCommandStatus, iomodule::kStatusInTest);
    world.advance(30);
    world.module1.InputSeen = 0;
    const std::string good = IomWorld::telegram({3}, {{2, 700}});
    world.line1.deliver(good);
    world.advance(30);
    check(world.module1.InputSeen == 1);
    check(world.module1.LastInput == good);
}

// Both switches act, whatever was on before.
void expect_telegrams_to_act(IomWorld& world) {
    world.show({0});
    world.show({1}, {{0, 1023}});
    world.advance(kSimulatorMs);
    check(world.value_of(1) == 0 && world.value_of(2) == 100 && world.value_of(20) == 100);
    world.show({0});
    world.advance(kSimulatorMs);
    check(world.value_of(1) == 100 && world.value_of(2) == 0 && world.value_of(20) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > kLongestInput) {
        return 0;
    }
    IomWorld world;
    world.line1.record = false;
    world.tables.GaugeBusPort1 = 0;
    world.tables.ProcessInterval = 200;
    world.sim_com.ProcessTimer.set_interval(platform::Milliseconds(kSimulatorMs));
    world.module1.TimerSeconds.set_interval(platform::Milliseconds(kSecondMs));
    assign_rows(world);
    world.ports.OpenAllPorts();
    if (size > 0 && (data[0] & 1U) != 0) {
        world.status.cmdRun_Click();
    }
    play(world, {reinterpret_cast<const char*>(data), size});

    world.line1.plug();
    // Longer than the longest input takes on the line; a port that was not there at the start is tried every second.
    world.advance(100 + kSecondMs);
    if (world.module1.running()) {
        expect_telegrams_to_act(world);
    } else {
        expect_a_telegram_halted(world);
    }
    return 0;
}
