#include "bench/devices/yoke.h"

#include <charconv>
#include <cmath>

#include "support/bytes.h"

namespace bench {

using namespace yoke;

namespace {

constexpr Axis kBothAxes[] = {Axis::ailerons, Axis::elevator};
constexpr int kStandbyUnit = 10;  // seconds
constexpr int kPermille = 1000;

// A force as a word of the status: 0 and above as it is, below 0 with the high bit.
int word_of_force(int force) {
    return force >= 0 ? force : 0x8000 | (force + 32767);
}

}  // namespace

Yoke::Yoke(platform::EventLoop& loop, ReplyTiming timing) : LineInstrument(loop, {kTypeWith16Switches, 1, 1}, timing) {
    frame_.reserve(kCommandLength);
}

void Yoke::let_go() {
    for (const Axis axis : kBothAxes) {
        moving(axis).let_go(now());
    }
}

void Yoke::set_switch(int number, bool closed) {
    switches_[static_cast<std::size_t>(number)] = closed;
}

void Yoke::hear(std::string_view bytes) {
    for (const char byte : bytes) {
        take_byte(static_cast<std::uint8_t>(byte));
    }
}

// Only a frame's first byte is 0, so a 0 always begins one.
void Yoke::take_byte(std::uint8_t byte) {
    if (byte == kCommandStart) {
        if (!frame_.empty()) {
            count_bad_frame();
        }
        frame_.assign(1, static_cast<char>(byte));
        return;
    }
    if (frame_.empty()) {
        if (byte != kCommandEnd) {
            count_stray_byte();
        }
        return;
    }
    frame_.push_back(static_cast<char>(byte));
    if (frame_.size() < kCommandLength) {
        return;
    }
    if (const std::optional<YokeCommand> command = decode_yoke_command(frame_)) {
        count_frame();
        if (command->device == kYokeDevice) {
            take_command(*command);
        }
    } else {
        count_bad_frame();
    }
    frame_.clear();
}

void Yoke::take_command(const YokeCommand& command) {
    const auto& value = command.values;
    ForceColumn& ailerons = moving(Axis::ailerons);
    ForceColumn& elevator = moving(Axis::elevator);
    switch (command.command) {
        case kCommandStandby:
            standby_s_ = value[0] * kStandbyUnit;
            break;
        case kCommandIdle:
            break;
        case kCommandDeadbands:
            deadbands_ = {value[0], value[2]};
            ailerons.set_deadband(value[0], now());
            elevator.set_deadband(value[2], now());
            break;
        case kCommandForceLimits:
            ailerons.set_limits(value[0], value[1], now());
            elevator.set_limits(value[2], value[3], now());
            break;
        case kCommandRun:
            ailerons.drive(value[0], value[1], now());
            elevator.drive(value[2], value[3], now());
            break;
        case kCommandAileronsPower:
            ailerons.switch_motor(value[0] != 0, now());
            break;
        case kCommandElevatorPower:
            elevator.switch_motor(value[0] != 0, now());
            break;
        default:
            ++unknown_commands_;
            break;
    }
    last_command_ = command;
    reply(status());
}

std::string Yoke::status() const {
    std::string bytes(kStatusLength, '\0');
    const auto put = [&bytes](int number, int value) {
        bytes[static_cast<std::size_t>(number - 1)] = static_cast<char>(value);
    };
    const auto put_word = [&put](int number, int value) {
        put(number, value >> 8);
        put(number + 1, value);
    };
    put(kIdentityByte, kYokeIdentity);
    put(kTypeByte, yoke_type_);
    put_word(kAileronsRawByte, static_cast<int>(std::lround(position(Axis::ailerons))));
    put_word(kElevatorRawByte, static_cast<int>(std::lround(position(Axis::elevator))));
    put(kFirstMarkByte, kFirstMark);
    put(kSecondMarkByte, kSecondMark);
    put_word(kAileronsForceByte, word_of_force(column(Axis::ailerons).measured_force(now())));
    put_word(kElevatorForceByte, word_of_force(column(Axis::elevator).measured_force(now())));
    if (yoke_type_ == kTypeWith16Switches) {
        int word = 0;
        for (std::size_t number = 0; number < switches_.size(); ++number) {
            word |= switches_[number] ? 1 << number : 0;
        }
        put_word(kSwitchesByte, word);
    } else {
        for (std::size_t number = 0; number < kOldSwitches.size(); ++number) {
            char& byte = bytes[static_cast<std::size_t>(kOldSwitches[number].byte - 1)];
            const unsigned open = switches_[number] ? 0U : kOldSwitches[number].mask;
            byte = static_cast<char>(static_cast<unsigned char>(byte) | open);
        }
    }
    return bytes;
}

// Standby time, deadbands and the type are stored.
void Yoke::power_on() {
    frame_.clear();
    for (const Axis axis : kBothAxes) {
        moving(axis).power_on(now());
    }
}

void Yoke::show(StateSink& sink) const {
    const ForceColumn& bank = column(Axis::ailerons);
    const ForceColumn& pitch = column(Axis::elevator);
    std::array<char, kYokeSwitches> switches{};
    for (std::size_t number = 0; number < switches.size(); ++number) {
        switches[number] = switches_[number] ? '1' : '0';
    }
    sink.flag("lit", bank.motor_on() || pitch.motor_on());
    sink.number("level", 15);
    sink.flag("power", bank.motor_on() && pitch.motor_on());
    sink.number("bank", bank.position(now()));
    sink.number("pitch", pitch.position(now()));
    sink.number("pushRoll", bank.pushed_with());
    sink.number("pushPitch", pitch.pushed_with());
    sink.number("targetBank", bank.target());
    sink.number("targetPitch", pitch.target());
    sink.number("forceBank", bank.force());
    sink.number("forcePitch", pitch.force());
    sink.number("maxBank", bank.maximum());
    sink.number("maxPitch", pitch.maximum());
    sink.number("measuredBank", bank.measured_force(now()));
    sink.number("measuredPitch", pitch.measured_force(now()));
    sink.flag("motorBank", bank.motor_on());
    sink.flag("motorPitch", pitch.motor_on());
    sink.flag("held", bank.held() || pitch.held());
    sink.text("switches", {switches.data(), switches.size()});
    sink.number("standby", standby_s_);
    sink.number("yokeType", yoke_type_);
}

bool Yoke::operate(std::string_view control, int amount) {
    const double force = amount * ForceColumn::kFullForce / kPermille;
    if (control == "pushRoll") {
        push(Axis::ailerons, force);
    } else if (control == "pushPitch") {
        push(Axis::elevator, force);
    } else if (control == "letGo") {
        let_go();
    } else if (control == "holdRoll" || control == "holdPitch") {
        ForceColumn& held = moving(control == "holdRoll" ? Axis::ailerons : Axis::elevator);
        amount < 0 ? held.let_go(now()) : held.hold(amount, now());
    } else if (control == "drawRoll" || control == "drawPitch") {
        ForceColumn& drawn = moving(control == "drawRoll" ? Axis::ailerons : Axis::elevator);
        amount < 0 ? drawn.let_go(now()) : drawn.draw(amount, now());
    } else if (control.substr(0, 6) == "switch") {
        int number = -1;
        const char* const end = control.data() + control.size();
        const auto result = std::from_chars(control.data() + 6, end, number);
        if (result.ec != std::errc() || result.ptr != end || number < 0 || number >= switch_count(yoke_type_)) {
            return false;
        }
        set_switch(number, amount != 0);
    } else {
        return false;
    }
    return true;
}

}  // namespace bench
