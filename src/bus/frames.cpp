#include "bus/frames.h"

#include <algorithm>
#include <cmath>

#include "support/failure.h"
#include "support/rounding.h"

namespace bus {

namespace {

constexpr std::uint8_t kLowFillBit = 0x01;
constexpr std::uint8_t kHighFillBit = 0x02;

void append_raw_frame(std::string& buffer, int gauge_id, unsigned control, unsigned low, unsigned high) {
    support::append_byte(buffer, kFrameStart);
    support::append_byte(buffer, static_cast<unsigned>(gauge_id));
    support::append_byte(buffer, control);
    support::append_byte(buffer, low);
    support::append_byte(buffer, high);
    support::append_byte(buffer, kFrameEnd);
}

FrameError check_frame(std::string_view bytes) {
    if (bytes.size() != kFrameLength) {
        return bytes.size() < kFrameLength ? FrameError::too_short : FrameError::too_long;
    }
    if (support::byte_at(bytes, 0) != kFrameStart) {
        return FrameError::bad_start;
    }
    if (support::byte_at(bytes, kFrameLast) != kFrameEnd) {
        return FrameError::bad_end;
    }
    if ((support::byte_at(bytes, kFrameControl) & kControlAlwaysSet) == 0) {
        return FrameError::bad_mark;
    }
    return FrameError::none;
}

}  // namespace

void append_frame(std::string& buffer, int gauge_id, int command, double value) {
    if (!std::isfinite(value)) {
        throw support::Failure("Overflow");
    }
    const double rounded = support::round_half_even(value);
    const auto magnitude = static_cast<unsigned>(std::fmod(std::fabs(rounded), 65536.0));
    const unsigned low = magnitude & 0xFFU;
    const unsigned high = magnitude >> 8;
    unsigned control = (static_cast<unsigned>(command) << 4) | kControlAlwaysSet;
    control |= rounded < 0 ? kControlNegative : 0U;
    control |= (high & kControlHighBit1) | (low & kControlLowBit0);
    append_raw_frame(buffer, gauge_id, control, low | kLowFillBit, high | kHighFillBit);
}

void append_change_id_frame(std::string& buffer, int old_id, int new_id) {
    append_raw_frame(buffer, old_id, kChangeIdControl, static_cast<unsigned>(new_id), kRawFrameHigh);
}

void append_identify_frame(std::string& buffer, int gauge_id) {
    append_raw_frame(buffer, gauge_id, kIdentifyControl, kIdentifyLow, kRawFrameHigh);
}

DecodedFrame decode_frame(std::string_view bytes) {
    DecodedFrame decoded;
    decoded.error = check_frame(bytes);
    if (decoded.error != FrameError::none) {
        return decoded;
    }
    const unsigned control = support::byte_at(bytes, kFrameControl);
    const unsigned low = support::byte_at(bytes, kFrameLow);
    const unsigned high = support::byte_at(bytes, kFrameHigh);
    Frame& frame = decoded.frame;
    frame.gauge_id = support::byte_at(bytes, kFrameGaugeId);
    frame.command = static_cast<int>(control >> 4);
    if (control == kChangeIdControl && high == kRawFrameHigh) {
        frame.kind = FrameKind::change_id;
        frame.new_id = static_cast<int>(low);
    } else if (control == kIdentifyControl && low == kIdentifyLow && high == kRawFrameHigh) {
        frame.kind = FrameKind::identify;
    } else if ((low & kLowFillBit) == 0 || (high & kHighFillBit) == 0) {
        decoded.error = FrameError::bad_fill_bit;
    } else {
        const unsigned true_low = (low & 0xFEU) | (control & kControlLowBit0);
        const unsigned true_high = (high & 0xFDU) | (control & kControlHighBit1);
        const auto magnitude = static_cast<int>((true_high << 8) | true_low);
        frame.value = (control & kControlNegative) != 0 ? -magnitude : magnitude;
    }
    return decoded;
}

ReportError check_report(std::string_view bytes) {
    if (bytes.size() != kReportLength) {
        return ReportError::bad_length;
    }
    if (support::byte_at(bytes, kReportLength - 1) != kReportEnd) {
        return ReportError::bad_end;
    }
    if (support::byte_at(bytes, 0) != kReportStart) {
        return ReportError::bad_start;
    }
    return ReportError::none;
}

std::uint16_t display_word(double reading_tenths) {
    const double limited = std::clamp(reading_tenths, 0.0, static_cast<double>(kHighestDisplayReading));
    const int reading = support::round_to_i32(limited);
    const int digit1 = reading / 1000;
    const int digit2 = reading / 100 % 10;
    const int digit3 = reading / 10 % 10;
    const int digit4 = reading % 10;
    const std::array<int, 4> nibbles = reading >= kDisplayWithoutPoint
                                           ? std::array<int, 4>{digit1, digit2, digit3, kDisplayBlank}
                                           : std::array<int, 4>{digit2, digit3, kDisplayPoint, digit4};
    int word = 0;
    for (const int nibble : nibbles) {
        word = word * 16 + nibble;
    }
    return static_cast<std::uint16_t>(word);
}

}  // namespace bus
