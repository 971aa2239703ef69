#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "support/bytes.h"

// The gauge bus on the wire: 6-byte frames out to the devices, 25-byte reports back. All facts come from the devices'
// telegrams; byte numbers in comments count from 1, as the devices' papers do, offsets in code from 0.
namespace bus {

// --- The frame, PC to device --------------------------------------------------------------------------------------
//
//   1 start 0 | 2 gauge id | 3 control | 4 low byte, bit 0 forced to 1 | 5 high byte, bit 1 forced to 1 | 6 end 255
//
// Control: bits 7..4 command, bit 3 always 1, bit 2 negative value, bit 1 the true bit 1 of the high byte, bit 0 the
// true bit 0 of the low byte. So bytes 4 and 5 are never 0, and only byte 1 is.
inline constexpr std::size_t kFrameLength = 6;
inline constexpr std::size_t kFrameGaugeId = 1;
inline constexpr std::size_t kFrameControl = 2;
inline constexpr std::size_t kFrameLow = 3;
inline constexpr std::size_t kFrameHigh = 4;
inline constexpr std::size_t kFrameLast = 5;

inline constexpr std::uint8_t kFrameStart = 0;
inline constexpr std::uint8_t kFrameEnd = 255;
inline constexpr std::uint8_t kFrameGap = 255;  // stands in front of each frame of a run, and twice behind a change id

inline constexpr std::uint8_t kControlAlwaysSet = 0x08;
inline constexpr std::uint8_t kControlNegative = 0x04;
inline constexpr std::uint8_t kControlHighBit1 = 0x02;
inline constexpr std::uint8_t kControlLowBit0 = 0x01;

// Change id: 0, old id, 44, new id, 170, 255. Identify: 0, gauge id, 124, 128, 170, 255. Sent raw.
inline constexpr std::uint8_t kChangeIdControl = 44;
inline constexpr std::uint8_t kIdentifyControl = 124;
inline constexpr std::uint8_t kIdentifyLow = 128;
inline constexpr std::uint8_t kRawFrameHigh = 170;

// --- Commands -----------------------------------------------------------------------------------------------------
// As the needle gauges take them; commands 7 and 8 mean the same on all devices, the others what the device makes of
// them. 0 and 2 do not occur in value frames.
inline constexpr int kCommandRecalibrate = 1;  // go to the zero mark and recalibrate, value 0
inline constexpr int kCommandSpeed = 3;        // needle speed, 4300 - 40 times the slider position
inline constexpr int kCommandDirection = 4;    // direction of rotation, 0 or 1
inline constexpr int kCommandNeedle1 = 5;      // position of needle 1
inline constexpr int kCommandNeedle2 = 6;      // position of needle 2
inline constexpr int kCommandDisplay = 6;      // display word of type 2
inline constexpr int kCommandStatus = 7;       // status request: the device answers with a report
inline constexpr int kCommandLights = 8;       // a bit set, below
inline constexpr int kCommandResolution = 9;   // 0 low (1080 positions a turn), 1 high (4320)
inline constexpr int kCommandMoveUp = 11;      // move the calibration point up, in quarter steps
inline constexpr int kCommandMoveDown = 12;    // the same, down
inline constexpr int kCommandSetPoint = 13;    // set the calibration point, 4 times the position; 0 clears it
inline constexpr int kCommandExtra = 14;       // extra commands, value 0..3

inline constexpr int kStatusInRun = 0;    // value of command 7 in a run and in polling panels
inline constexpr int kStatusInQuery = 2;  // value of command 7 in a query

// Bits of command 8.
inline constexpr int kLightLevelMask = 15;     // brightness level
inline constexpr int kLightApplyLevel = 16;    // apply the level
inline constexpr int kLightStoreLevel = 32;    // store the level as the device's default
inline constexpr int kLightOn = 64;            // lights on
inline constexpr int kLightPower = 128;        // displays on, or power on
inline constexpr int kLightAlwaysOn = 256;     // lights always on
inline constexpr int kLightOnAtStart = 512;    // lights on at power-on
inline constexpr int kLightOffAtStart = 1024;  // lights off at power-on

inline constexpr int kHighestGaugeId = 255;

// Appends one frame to `buffer` (no gap byte in front). `value` is rounded to the nearest whole number, ties to even;
// it travels as a sign and a 16-bit magnitude, magnitudes above 65535 lose their high bits. Gauge id and control byte
// are cut to 8 bits. Throws a Failure ("Overflow") for infinity and not-a-number, with `buffer` as it was.
void append_frame(std::string& buffer, int gauge_id, int command, double value);

// Appends the frame that gives the device `old_id` the new id.
void append_change_id_frame(std::string& buffer, int old_id, int new_id);

// Appends the frame that makes a device of that id answer with its report, used by the search.
void append_identify_frame(std::string& buffer, int gauge_id);

enum class FrameError {
    none,
    too_short,     // fewer than 6 bytes
    too_long,      // more than 6 bytes
    bad_start,     // byte 1 is not 0
    bad_end,       // byte 6 is not 255
    bad_mark,      // bit 3 of the control byte is clear
    bad_fill_bit,  // byte 4 lacks bit 0 or byte 5 lacks bit 1
};

enum class FrameKind { value, change_id, identify };

// What a frame says.
struct Frame {
    FrameKind kind = FrameKind::value;
    int gauge_id = 0;
    int command = 0;
    int value = 0;   // value frames: -65535..65535
    int new_id = 0;  // change id frames
};

struct DecodedFrame {
    FrameError error = FrameError::none;
    Frame frame;  // only when there is no error
};

// Takes the 6 bytes of one frame apart, as a device would. Any bytes may come; never fails otherwise.
DecodedFrame decode_frame(std::string_view bytes);

// --- The report, device to PC -------------------------------------------------------------------------------------
//
//   1 start 0 | 2 gauge id | 3 type code | 4 model | 5 firmware version | 6 and 9 tag letters | ... data | 25 end 255
//
// 16-bit values come high byte first.
inline constexpr std::size_t kReportLength = 25;
inline constexpr std::uint8_t kReportStart = 0;
inline constexpr std::uint8_t kReportEnd = 255;
inline constexpr int kReportGaugeIdByte = 2;
inline constexpr int kReportTypeByte = 3;
inline constexpr int kReportModelByte = 4;
inline constexpr int kReportVersionByte = 5;
inline constexpr int kReportFirstTagByte = 6;
inline constexpr int kReportSecondTagByte = 9;

enum class ReportError {
    none,
    bad_length,  // not 25 bytes
    bad_start,   // byte 1 is not 0
    bad_end,     // byte 25 is not 255
};

// Whether the bytes have the outer form of a report.
ReportError check_report(std::string_view bytes);

// A well-formed report (see check_report), read by the byte numbers of the device's papers. It refers to the bytes it
// was made from.
class GaugeReport {
  public:
    // `bytes` has passed check_report.
    explicit GaugeReport(std::string_view bytes) : bytes_(bytes) {}

    // Byte `number`, counted from 1, 1..25.
    std::uint8_t byte(int number) const { return support::byte_at(bytes_, static_cast<std::size_t>(number - 1)); }
    // The 16-bit value whose high byte is byte `number`, 1..24.
    std::uint16_t word(int number) const { return support::read_u16be(bytes_, static_cast<std::size_t>(number - 1)); }

    int gauge_id() const { return byte(kReportGaugeIdByte); }
    int GaugeType() const { return byte(kReportTypeByte); }
    int GaugeModel() const { return byte(kReportModelByte); }
    int GaugeVersion() const { return byte(kReportVersionByte); }
    std::string_view bytes() const { return bytes_; }

  private:
    std::string_view bytes_;
};

// --- The display of gauge type 2 ----------------------------------------------------------------------------------

inline constexpr int kDisplayPoint = 10;             // nibble of the decimal point
inline constexpr int kDisplayBlank = 11;             // nibble of a blank
inline constexpr int kHighestDisplayReading = 9999;  // tenths
inline constexpr int kDisplayWithoutPoint = 1000;    // from this reading on the tenths are dropped

// The display word of a reading in tenths: 45.6 (456) is the nibbles 4, 5, point, 6; 123.4 (1234) is 1, 2, 3, blank.
// NOTE: the display has no digits for readings below 0 or above 9999; they show as 0 and 9999.
std::uint16_t display_word(double reading_tenths);

}  // namespace bus
