#include "yoke/yoke_telegram.h"

#include "support/bytes.h"

namespace yoke {

namespace {

constexpr unsigned kLowBits = 127;
constexpr int kDataBits = 7;

unsigned limited(int value) {
    return static_cast<unsigned>(value < 0 || value > kHighestValue ? kHighestValue : value);
}

int byte_of(std::string_view bytes, int number) {
    return support::byte_at(bytes, static_cast<std::size_t>(number - 1));
}

int word_of(std::string_view bytes, int number) {
    return support::read_u16be(bytes, static_cast<std::size_t>(number - 1));
}

}  // namespace

void append_yoke_command(std::string& buffer, const YokeCommand& command) {
    support::append_byte(buffer, kCommandStart);
    support::append_byte(buffer, static_cast<unsigned>(command.device));
    support::append_byte(buffer, static_cast<unsigned>(command.command) | kDataBit);
    for (const int value : command.values) {
        support::append_byte(buffer, (limited(value) & kLowBits) | kDataBit);
        support::append_byte(buffer, (limited(value) >> kDataBits) | kDataBit);
    }
    support::append_byte(buffer, kCommandEnd);
    support::append_byte(buffer, kCommandEnd);
}

std::optional<YokeCommand> decode_yoke_command(std::string_view bytes) {
    if (bytes.size() != kCommandLength || byte_of(bytes, 1) != kCommandStart ||
        byte_of(bytes, kCommandLength) != kCommandEnd) {
        return std::nullopt;
    }
    for (int number = 3; number < static_cast<int>(kCommandLength); ++number) {
        if ((static_cast<unsigned>(byte_of(bytes, number)) & kDataBit) == 0) {
            return std::nullopt;
        }
    }
    YokeCommand command;
    command.device = byte_of(bytes, 2);
    command.command = byte_of(bytes, 3) & static_cast<int>(kLowBits);
    for (std::size_t value = 0; value < kCommandValues; ++value) {
        const int at = 4 + 2 * static_cast<int>(value);
        command.values[value] = (byte_of(bytes, at) & static_cast<int>(kLowBits)) |
                                (byte_of(bytes, at + 1) & static_cast<int>(kLowBits)) << kDataBits;
    }
    return command;
}

bool is_yoke_status(std::string_view bytes) {
    return bytes.size() == kStatusLength && bytes[kFirstMarkByte - 1] == kFirstMark &&
           bytes[kSecondMarkByte - 1] == kSecondMark;
}

int yoke_type(std::string_view status) {
    return byte_of(status, kTypeByte);
}

int raw_position(std::string_view status, Axis axis) {
    return word_of(status, axis == Axis::ailerons ? kAileronsRawByte : kElevatorRawByte);
}

int measured_force(std::string_view status, Axis axis) {
    return force_of_word(word_of(status, axis == Axis::ailerons ? kAileronsForceByte : kElevatorForceByte));
}

std::uint16_t closed_switches(std::string_view status) {
    if (yoke_type(status) == kTypeWith16Switches) {
        return static_cast<std::uint16_t>(word_of(status, kSwitchesByte));
    }
    unsigned closed = 0;
    for (std::size_t number = 0; number < kOldSwitches.size(); ++number) {
        const bool open =
            (static_cast<unsigned>(byte_of(status, kOldSwitches[number].byte)) & kOldSwitches[number].mask) != 0;
        closed |= open ? 0U : 1U << number;
    }
    return static_cast<std::uint16_t>(closed);
}

}  // namespace yoke
