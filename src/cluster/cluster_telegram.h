#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "run/cluster_state.h"
#include "tables/core_tables.h"

// The telegram of the stand-alone engine cluster, as the unit takes it: 40 bytes with all needles, displays and lights,
// sent whole every time, and the unit's reply. Byte numbers count from 1.
namespace cluster {

inline constexpr std::size_t kTelegramLength = 40;

// Byte 1.
inline constexpr char kTelegramNormal = 'F';
inline constexpr char kTelegramRecalibrate = 'A';

// What fills a telegram before anything is put into it.
inline constexpr char kFillBlank = 32;
inline constexpr char kFillZero = 0;
inline constexpr char kFillRecalibrate = 16;

// Needle 0..7 belong to engine 1, needle 8..15 to engine 2. The high byte of a needle's position stands at this byte,
// the low byte behind it. Needles 7 and 8 share their place; needle 15 shares its own with the third display.
inline constexpr int kNeedles = 16;
inline constexpr int kNeedlesPerEngine = 8;
inline constexpr std::array<int, kNeedles> kNeedleByte = {2, 4, 6, 22, 8, 12, 14, 16, 16, 18, 20, 10, 24, 26, 28, 30};

// The cluster counts four steps where a plate counts one; a full turn is the end.
inline constexpr int kClusterStepsPerPlateStep = 4;
inline constexpr int kHighestClusterPosition = 4320;

// First byte of each display's two, in the order in which displays are given out. A digit goes out as the digit and 1.
inline constexpr int kDisplays = 4;
inline constexpr std::array<int, kDisplays> kDisplayByte = {36, 34, 30, 32};
inline constexpr int kDisplayPointNibble = 11;

inline constexpr int kLightsByte = 38;  // bits 4 to 7: brightness level
inline constexpr unsigned kLightsOnBit = 1;
inline constexpr unsigned kNoPowerBit = 2;  // the displays have no power
inline constexpr int kBrightnessFlagByte = 39;
inline constexpr int kEndByte = 40;
inline constexpr unsigned kTelegramEnd = 170;

// The reply: its mark first, the version as text at the end.
inline constexpr std::uint8_t kReplyMark = 255;
inline constexpr std::size_t kShortestReply = 8;
inline constexpr std::size_t kReplyVersionByte = 15;

// Makes the text a telegram of that kind, all other bytes `filling`. Keeps the text's capacity.
void begin_telegram(std::string& telegram, char kind, char filling);

// Puts a needle (0..15) into a telegram; the position is limited to 0..4320.
void put_needle(std::string& telegram, int needle, int position);

// Puts a reading on a display slot (0..3). `text` is a number with two decimals and at least two whole digits
// ("05.30"); three digits of it show. Anything below 0 and anything that is no such text shows as 0, anything of 1000
// and above as 999.9.
void put_display(std::string& telegram, int slot, std::string_view text);

// Puts lights, brightness and the end mark.
void finish_telegram(std::string& telegram, const run::ClusterState& state);

// The needle position of a value on a plate, 0..4320. `value` is limited in place to the plate's range. Nothing when
// the value is not a number or the plate leads to none.
std::optional<int> cluster_position(const tables::Plate& plate, double& value);

// The version text of a reply; nothing for bytes that are no reply.
std::optional<std::string_view> reply_version(std::string_view reply);

}  // namespace cluster
