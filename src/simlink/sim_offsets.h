#pragma once

#include <cstdint>

// Simulator offsets that the port layer uses without a function, with the width of what stands there. Their numbers,
// widths and order of use are the simulator interface's; offsets whose meaning the program does not rely on are named
// by what it does with them.
namespace simlink {

// Time and date: one byte each, the last three two bytes.
inline constexpr std::uint32_t kOffsetHour = 0x238;
inline constexpr std::uint32_t kOffsetMinute = 0x239;
inline constexpr std::uint32_t kOffsetSecond = 0x23A;
inline constexpr std::uint32_t kOffsetZuluHour = 0x23B;
inline constexpr std::uint32_t kOffsetDayOfYear = 0x23E;
inline constexpr std::uint32_t kOffsetYear = 0x240;
inline constexpr std::uint32_t kOffsetOutsideTemperature = 0xE8C;

// Two bytes: 1 pauses the simulation, 0 lets it go on.
inline constexpr std::uint32_t kOffsetPauseControl = 0x262;

// NAV frequencies: two bytes, BCD.
inline constexpr std::uint32_t kOffsetNav1Frequency = 0x350;
inline constexpr std::uint32_t kOffsetNav2Frequency = 0x352;

// Autopilot modes: four bytes each, 0 or 1. The table of the command bits stands in sim_com_autopilot.cpp.
inline constexpr std::uint32_t kOffsetApMaster = 0x7BC;
inline constexpr std::uint32_t kOffsetApWingLeveler = 0x7C0;
inline constexpr std::uint32_t kOffsetApNav = 0x7C4;
inline constexpr std::uint32_t kOffsetApHeading = 0x7C8;
inline constexpr std::uint32_t kOffsetApAltitudeHold = 0x7D0;
inline constexpr std::uint32_t kOffsetApBit6 = 0x7EC;
inline constexpr std::uint32_t kOffsetApApproachPair = 0x7FC;
inline constexpr std::uint32_t kOffsetApApproach = 0x800;
inline constexpr std::uint32_t kOffsetApBackCourse = 0x804;
// Four bytes: target altitude, metres times 65536. Two bytes: vertical speed in ft/min.
inline constexpr std::uint32_t kOffsetApAltitude = 0x7D4;
inline constexpr std::uint32_t kOffsetApVerticalSpeed = 0x7F2;
// Two bytes: trim, for the trim arrows of the autopilot unit.
inline constexpr std::uint32_t kOffsetApTrim = 0xBC2;

// Macro 1: two and four bytes.
inline constexpr std::uint32_t kOffsetMacro1Position = 0xBBC;
inline constexpr std::uint32_t kOffsetMacro1Gate = 0x808;
// Macro 2: one byte.
inline constexpr std::uint32_t kOffsetMacro2 = 0x889;

// Key-press control: four bytes of parameter, then four bytes of control number, on whose write the simulator acts.
inline constexpr std::uint32_t kOffsetControlParameter = 0x3114;
inline constexpr std::uint32_t kOffsetControlNumber = 0x3110;
inline constexpr std::uint32_t kControlKeyPress = 1070;

// Sound selector: one byte.
inline constexpr std::uint32_t kOffsetSoundSelector = 0x3122;

// Radio validity flags and the bearings of the radio-magnetic indicators: two bytes each. The VOR ones are degrees, the
// ADF ones 65536 a turn.
inline constexpr std::uint32_t kOffsetRadioFlags = 0x3300;
inline constexpr std::uint32_t kOffsetVor1Bearing = 0xC56;
inline constexpr std::uint32_t kOffsetVor2Bearing = 0xC5C;
inline constexpr std::uint32_t kOffsetAdf1Bearing = 0xC6A;
inline constexpr std::uint32_t kOffsetAdf2Bearing = 0x2D8;

}  // namespace simlink
