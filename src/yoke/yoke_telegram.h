#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The link of a force feedback yoke on the wire: 12-byte commands out, 25-byte status telegrams back. All facts come
// from the yoke's telegrams; byte numbers count from 1.
namespace yoke {

enum class Axis { ailerons, elevator };
inline constexpr std::size_t kAxes = 2;

// --- Commands, PC to yoke -----------------------------------------------------------------------------------------
//
//   1 start 0 | 2 device | 3 command, bit 7 set | 4-11 four values of 14 bits, low seven bits first, bit 7 set | 12 end
//   255
inline constexpr std::size_t kCommandLength = 12;
inline constexpr std::size_t kCommandValues = 4;
inline constexpr std::uint8_t kCommandStart = 0;
inline constexpr std::uint8_t kCommandEnd = 255;
inline constexpr unsigned kDataBit = 128;  // set in every byte between the first two and the last
inline constexpr int kYokeDevice = 15;
inline constexpr int kHighestValue = 16383;

inline constexpr int kCommandStandby = 2;         // standby time in tens of seconds
inline constexpr int kCommandIdle = 7;            // keeps the telegrams coming, no new target
inline constexpr int kCommandDeadbands = 9;       // ailerons, 0, elevator, 0
inline constexpr int kCommandForceLimits = 10;    // ailerons maximum and threshold, elevator maximum and threshold
inline constexpr int kCommandRun = 11;            // ailerons target and force, elevator target and force
inline constexpr int kCommandAileronsPower = 13;  // motor on 1, off 0
inline constexpr int kCommandElevatorPower = 14;

// Target positions are in the raw units of the position sensors.
inline constexpr int kHighestRaw = 1023;
inline constexpr int kRawCentre = 512;
inline constexpr int kFullForce = 511;  // of a measured force, and of the limits

struct YokeCommand {
    int device = 0;
    int command = 0;
    std::array<int, kCommandValues> values{};

    bool operator==(const YokeCommand&) const = default;
};

// Appends a command and one byte 255. A value outside 0..16383 goes out as 16383; device and command are cut to 8 and
// 7 bits.
void append_yoke_command(std::string& buffer, const YokeCommand& command);

// What 12 bytes say; nothing when they are no command. Any bytes may come.
std::optional<YokeCommand> decode_yoke_command(std::string_view bytes);

// --- The status telegram, yoke to PC ------------------------------------------------------------------------------
//
//   3 = 200 in the answer to a trial | 4 type | 7, 8 ailerons raw | 9 "P" | 10, 11 elevator raw | 12 "S" | 13, 14
//   switches | 16, 17 ailerons force | 18, 19 elevator force
//
// Words come high byte first.
inline constexpr std::size_t kStatusLength = 25;
inline constexpr int kIdentityByte = 3;
inline constexpr std::uint8_t kYokeIdentity = 200;
inline constexpr int kTypeByte = 4;
inline constexpr int kAileronsRawByte = 7;
inline constexpr int kFirstMarkByte = 9;
inline constexpr char kFirstMark = 'P';
inline constexpr int kElevatorRawByte = 10;
inline constexpr int kSecondMarkByte = 12;
inline constexpr char kSecondMark = 'S';
inline constexpr int kSwitchesByte = 13;
inline constexpr int kAileronsForceByte = 16;
inline constexpr int kElevatorForceByte = 18;

inline constexpr int kTypeWith16Switches = 3;
inline constexpr int kYokeSwitches = 16;
inline constexpr int kOldYokeSwitches = 6;
// Byte and bit of each switch on the other types; clear = closed.
struct OldSwitch {
    int byte;
    unsigned mask;
};
inline constexpr std::array<OldSwitch, kOldYokeSwitches> kOldSwitches = {
    {{13, 32}, {13, 16}, {13, 8}, {13, 4}, {14, 1}, {14, 16}}};

// Whether 25 bytes bear the marks of a status telegram; false for another length.
bool is_yoke_status(std::string_view bytes);

// Of a telegram that bears the marks.
int yoke_type(std::string_view status);
int raw_position(std::string_view status, Axis axis);
int measured_force(std::string_view status, Axis axis);
// Bit k = switch k is closed; the types other than 3 have six.
std::uint16_t closed_switches(std::string_view status);

// How many switches a yoke of that type has.
constexpr int switch_count(int type) {
    return type == kTypeWith16Switches ? kYokeSwitches : kOldYokeSwitches;
}

// A force word, 0..65535: above 32767 it stands for (word AND 32767) - 32767.
constexpr int force_of_word(int word) {
    return word > 32767 ? (word & 32767) - 32767 : word;
}

}  // namespace yoke
