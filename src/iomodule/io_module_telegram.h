#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "support/bytes.h"

// The link of an IO module on the wire: 6-byte commands out, 25-byte status telegrams back. All facts come from the
// module's telegrams. Commands have the frame layout of the gauge bus (bus/frames.h); byte numbers count from 1.
namespace iomodule {

inline constexpr int kSwitches = 48;
inline constexpr int kLeds = 32;
inline constexpr int kAnalogueInputs = 8;
inline constexpr int kGroupSize = 8;  // switches A1 to F8, LEDs A1 to D8
inline constexpr int kHighestPotentiometer = 1023;

// --- Commands, PC to module ---------------------------------------------------------------------------------------

// A module takes only commands to this device; it does not know under which id the program holds it.
inline constexpr int kCommandDevice = 10;

inline constexpr int kCommandStatus = 6;      // request the status telegram: 0 in a run, 1 in a test of the inputs
inline constexpr int kCommandPower = 8;       // power state, below
inline constexpr int kCommandTestSwitch = 9;  // switch number + 1 lights all LEDs; 0 = none does
inline constexpr int kCommandLed = 10;        // LED number * 256 + state, 1 = on
inline constexpr int kCommandMasters = 11;    // LED number + 256 * master bits
inline constexpr int kCommandType = 13;       // switch number + 1 + 256 * switch type
inline constexpr int kCommandDebounce = 14;   // t + 256 * t, t = 0 to 20 ms

inline constexpr int kPowerOff = 0;
inline constexpr int kPowerOn = 128;
inline constexpr int kPowerLedTest = 192;

inline constexpr int kStatusInRun = 0;
inline constexpr int kStatusInTest = 1;

// How a module reports a switch.
inline constexpr int kSwitchOnOff = 0;      // the contact as it stands
inline constexpr int kSwitchMomentary = 1;  // on and off in turn, each time the contact closes
inline constexpr int kSwitchEncoderA = 2;   // a click in one direction: on and off again; B has the next number
inline constexpr int kSwitchEncoderB = 3;   // the same for the other direction

// --- The status telegram, module to PC ----------------------------------------------------------------------------
//
//   1 start 0 | 4 model | 6-11 switches, groups A to F | 13-16 high nibbles of the analogue inputs | 17-24 their low
//   bytes | 25 end 255
//
// Bit 7 of a group's byte is its first switch; set = on. The high nibble of byte 13 belongs to input 0, the low one to
// input 1, and so on. The other bytes are not read.
inline constexpr std::size_t kTelegramLength = 25;
inline constexpr std::size_t kShortestTelegram = 20;  // shorter ones are not looked at
inline constexpr std::uint8_t kTelegramStart = 0;
inline constexpr std::uint8_t kTelegramEnd = 255;
inline constexpr int kModelByte = 4;
inline constexpr int kFirstSwitchByte = 6;
inline constexpr int kSwitchBytes = 6;
inline constexpr int kFirstAnalogueByte = 13;  // the high nibbles
inline constexpr int kFirstAnalogueLowByte = 17;
inline constexpr int kAnalogueBytes = 12;

using SwitchBytes = std::array<char, kSwitchBytes>;
using AnalogueBytes = std::array<char, kAnalogueBytes>;

// What the switch bytes of a telegram say of switch 0..47.
constexpr bool switch_on(std::string_view switch_bytes, int number) {
    const auto byte = static_cast<unsigned char>(switch_bytes[static_cast<std::size_t>(number / kGroupSize)]);
    return (byte >> (kGroupSize - 1 - number % kGroupSize) & 1) != 0;
}

// What the analogue bytes of a telegram say of input 0..7: 12 bits, of which potentiometers use 0 to 1023.
constexpr std::int16_t analogue_value(std::string_view analogue_bytes, int number) {
    const auto nibbles = static_cast<unsigned char>(analogue_bytes[static_cast<std::size_t>(number / 2)]);
    constexpr std::size_t kFirstLow = kFirstAnalogueLowByte - kFirstAnalogueByte;
    const auto low = static_cast<unsigned char>(analogue_bytes[kFirstLow + static_cast<std::size_t>(number)]);
    const int high = number % 2 == 0 ? nibbles >> 4 : nibbles & 15;
    return static_cast<std::int16_t>(high * 256 + low);
}

// The byte of a telegram by its number, from 1. Throws std::out_of_range for one that the telegram does not have.
inline std::uint8_t telegram_byte(std::string_view telegram, int number) {
    return static_cast<std::uint8_t>(telegram.at(static_cast<std::size_t>(number - 1)));
}

inline std::string_view switch_bytes_of(std::string_view telegram) {
    return telegram.substr(kFirstSwitchByte - 1, kSwitchBytes);
}
inline std::string_view analogue_bytes_of(std::string_view telegram) {
    return telegram.substr(kFirstAnalogueByte - 1, kAnalogueBytes);
}

}  // namespace iomodule
