// NAV and ADF frequencies, the validity of the stations, the sound selector and the radio-magnetic indicators.

#include "simlink/port_conversion.h"
#include "simlink/sim_com.h"
#include "simlink/sim_offsets.h"
#include "support/bytes.h"
#include "support/rounding.h"

namespace simlink {

namespace {

// Bits of RadioFlags.
constexpr unsigned kNav1Good = 1U << 1;
constexpr unsigned kNav2Good = 1U << 2;
constexpr unsigned kAdf1Good = 1U << 3;
constexpr unsigned kAdf2Good = 1U << 11;
// Flags of an indicator's GaugePlate1.
constexpr int kFlagSecondVor = 8;
constexpr int kFlagSecondAdf = 16;

constexpr double kNeedleUnits = 4320;  // of a turn
constexpr double kDegrees = 360;
constexpr double kBearingUnits = 65536;  // of a turn, ADF

constexpr std::size_t kAdfDigits = 5;
constexpr std::uint8_t kAdfInTwoPorts = 2;     // GaugeModel: whole part and last digit apart
constexpr std::uint8_t kAdfWithThousands = 3;  // GaugeModel: the first digit goes with the second port

std::int16_t needle_of_degrees(double degrees) {
    return support::round_to_i16(degrees / kDegrees * kNeedleUnits);
}

std::int16_t vor_needle(bool good, std::int16_t degrees) {
    return good ? needle_of_degrees(degrees) : kRmiParked;
}

std::int16_t adf_needle(bool good, std::int16_t bearing) {
    if (!good) {
        return kRmiParked;
    }
    const double degrees = bearing * kDegrees / kBearingUnits;
    return needle_of_degrees(degrees < 0 ? degrees + kDegrees : degrees);
}

}  // namespace

void SimCom::PutNAV1Frequency(std::string_view NavFrequency) {
    const std::uint16_t word = bcd_of_text(NavFrequency);
    append_write(kOffsetNav1Frequency, sizeof word, &word);
}

void SimCom::PutNAV2Frequency(std::string_view NavFrequency) {
    const std::uint16_t word = bcd_of_text(NavFrequency);
    append_write(kOffsetNav2Frequency, sizeof word, &word);
}

void SimCom::PutADF(std::string_view Convertstring, int ReceivedID) {
    if (Convertstring.size() < kAdfDigits || ReceivedID < 0 || ReceivedID >= tables::kGaugeRows) {
        return;
    }
    const tables::GaugeRow& gauge = tables_.gauges[static_cast<std::size_t>(ReceivedID)];
    if (gauge.GaugeModel != kAdfInTwoPorts && gauge.GaugeModel != kAdfWithThousands) {
        return;
    }
    const auto digit = [Convertstring](std::size_t place) {
        return static_cast<int>(support::byte_at(Convertstring, place - 1) & 15U);
    };
    auto middle = static_cast<float>(digit(2) * 100 + digit(3) * 10 + digit(4));
    PutPort(gauge.GaugeWritePort1, middle);
    int second = digit(5);
    if (gauge.GaugeModel == kAdfWithThousands) {
        if (gauge.GaugePlate1 != 0) {
            float last = 0;
            GetPort(gauge.GaugeWritePort3, last);
            second = support::round_to_i16(last);
            if (second > 9) {
                second -= 100;
            }
        }
        second += digit(1) * 100;
    }
    auto outer = static_cast<float>(second);
    PutPort(gauge.GaugeWritePort3, outer);
}

void SimCom::SetSoundSelector() {
    append_write(kOffsetSoundSelector, sizeof SoundSelector, &SoundSelector);
}

void SimCom::take_rmi_flags(std::int16_t first_plate_flags, std::int16_t second_plate_flags) {
    rmi_second_vor_ = (first_plate_flags & kFlagSecondVor) != 0;
    rmi_second_adf_ = (second_plate_flags & kFlagSecondAdf) != 0;
}

void SimCom::GetRMIdata() {
    append_read(kOffsetRadioFlags, sizeof RadioFlags, &RadioFlags);
    append_read(kOffsetVor1Bearing, sizeof vor1_bearing_, &vor1_bearing_);
    RmiNeedle1 = vor_needle((RadioFlags & kNav1Good) != 0, vor1_bearing_);
    RmiNeedle2 = RmiNeedle1;
    if (rmi_second_vor_) {
        append_read(kOffsetVor2Bearing, sizeof vor2_bearing_, &vor2_bearing_);
        RmiNeedle2 = vor_needle((RadioFlags & kNav2Good) != 0, vor2_bearing_);
    }
    append_read(kOffsetAdf1Bearing, sizeof adf1_bearing_, &adf1_bearing_);
    RmiNeedle3 = adf_needle((RadioFlags & kAdf1Good) != 0, adf1_bearing_);
    RmiNeedle4 = RmiNeedle3;
    if (rmi_second_adf_) {
        append_read(kOffsetAdf2Bearing, sizeof adf2_bearing_, &adf2_bearing_);
        RmiNeedle4 = adf_needle((RadioFlags & kAdf2Good) != 0, adf2_bearing_);
    }
}

void SimCom::GetNAVRadiosStatus() {
    NavGoodFlags = static_cast<std::uint8_t>((RadioFlags & (kNav1Good | kNav2Good)) / 2);
    append_read(kOffsetRadioFlags, sizeof RadioFlags, &RadioFlags);
}

}  // namespace simlink
