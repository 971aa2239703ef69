#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// Key codes: the low byte is the virtual key, bit 15 Control, bit 14 Shift.
namespace simlink {

inline constexpr unsigned kKeyMask = 0xFF;
inline constexpr unsigned kKeyControl = 0x8000;
inline constexpr unsigned kKeyShift = 0x4000;

// The parameter of the simulator's key-press control; 0x8045 (Control and "E") gives 0xA45.
std::uint32_t key_press_parameter(std::uint16_t KeyCode);

// The text for the send-keys call of the window system: "^" for Control, "+" for Shift, then the character, in braces
// where it means something to that call.
std::string send_keys_text(std::uint16_t KeyCode);

// The name of a virtual key without flags; empty for a code that has none.
std::string key_name(int KeyCode);

}  // namespace simlink
