// The autopilot's modes, altitude and vertical speed.

#include <array>

#include "simlink/sim_com.h"
#include "simlink/sim_offsets.h"

namespace simlink {

namespace {

constexpr unsigned kApproachBit = 4;
constexpr int kFlagApproachPair = 8;  // of the autopilot gauge's GaugePlate1

// The bits of ApCommandBits, in the order in which they are written.
struct CommandBit {
    unsigned bit;
    std::uint32_t offset;
};
constexpr std::array<CommandBit, 8> kCommandBits = {{
    {.bit = 0, .offset = kOffsetApMaster},
    {.bit = 1, .offset = kOffsetApHeading},
    {.bit = 2, .offset = kOffsetApWingLeveler},
    {.bit = 3, .offset = kOffsetApNav},
    {.bit = kApproachBit, .offset = kOffsetApApproach},
    {.bit = 5, .offset = kOffsetApBackCourse},
    {.bit = 6, .offset = kOffsetApBit6},
    {.bit = 7, .offset = kOffsetApAltitudeHold},
}};
// Never read back.
constexpr std::uint32_t kWriteOnlyOffset = kOffsetApBit6;

}  // namespace

void SimCom::take_autopilot_flags(std::int16_t GaugePlate1) {
    approach_to_second_offset_ = (GaugePlate1 & kFlagApproachPair) != 0;
}

void SimCom::WriteAutopilot() {
    for (const CommandBit& row : kCommandBits) {
        const std::int32_t state = (static_cast<std::int32_t>(ApCommandBits) >> row.bit) & 1;
        append_write(row.offset, sizeof state, &state);
        if (row.bit == kApproachBit && approach_to_second_offset_) {
            append_write(kOffsetApApproachPair, sizeof state, &state);
        }
    }
    append_write(kOffsetApAltitude, sizeof ApAltitudeValue, &ApAltitudeValue);
    const auto target = static_cast<float>(ApTargetAltitude);
    if ((target > tables_.CurrentAltitude && ApVerticalSpeed < 0) ||
        (target < tables_.CurrentAltitude && ApVerticalSpeed > 0)) {
        ApVerticalSpeed = 0;
    }
    append_write(kOffsetApVerticalSpeed, sizeof ApVerticalSpeed, &ApVerticalSpeed);
}

void SimCom::GetAPVSvalue() {
    ApStatusBits = 0;
    for (const CommandBit& row : kCommandBits) {
        if (row.offset == kWriteOnlyOffset) {
            continue;
        }
        std::int32_t& state = row.offset == kOffsetApMaster ? ApMaster : ap_mode_read_[row.bit];
        append_read(row.offset, sizeof state, &state);
        if (state != 0) {
            ApStatusBits = static_cast<std::uint8_t>(ApStatusBits | 1U << row.bit);
        }
    }
    append_read(kOffsetApVerticalSpeed, sizeof ApVerticalSpeed, &ApVerticalSpeed);
    append_read(kOffsetApTrim, sizeof ApTrimValue, &ApTrimValue);
}

void SimCom::PutAPVSvalue() {
    append_write(kOffsetApVerticalSpeed, sizeof ApVerticalSpeed, &ApVerticalSpeed);
}

}  // namespace simlink
