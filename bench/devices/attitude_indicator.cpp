#include "bench/devices/attitude_indicator.h"

#include <algorithm>
#include <cmath>

namespace bench {

namespace {

// Zero positions by model.
struct ZeroPositions {
    int model;
    double bank;
    double pitch;
};
constexpr ZeroPositions kBigDrum = {1, 2160, 600};
constexpr ZeroPositions kSmallDrum = {2, 480, 80};
constexpr ZeroPositions kOtherDrum = {0, 1920, 320};

ZeroPositions zero_positions(int model) {
    return model == kBigDrum.model ? kBigDrum : model == kSmallDrum.model ? kSmallDrum : kOtherDrum;
}

constexpr int kModelWithBall = 5;
constexpr int kModelWithCage = 6;

constexpr int kCommandBank = 4;
constexpr int kCommandPitch = 5;
constexpr int kCommandBallOrFlag = 6;  // model 5 the ball, model 6 the flag
constexpr int kCommandFlagOrCage = 9;  // model 5 the flag, model 6 caging

constexpr double kHalfTurn = 180;
constexpr double kEndOfPitch = 22.5;     // degrees
constexpr double kTurnsPerSecond = 0.5;  // from end to end
constexpr double kBallRange = 100;

}  // namespace

AttitudeIndicator::AttitudeIndicator(platform::EventLoop& loop, Identity identity)
    : Device(loop, identity),
      bank_zero_(zero_positions(identity.model).bank),
      pitch_zero_(zero_positions(identity.model).pitch),
      bank_(Motor::Travel::round, 0, 2 * bank_zero_, 2 * bank_zero_ * kTurnsPerSecond),
      pitch_(Motor::Travel::between_ends, 0, 2 * pitch_zero_, 2 * pitch_zero_ * kTurnsPerSecond) {
    AttitudeIndicator::reset();
}

double AttitudeIndicator::bank_degrees() const {
    const double to_the_left = (bank_.position(now()) - bank_zero_) / bank_zero_ * kHalfTurn;
    return to_the_left == 0 ? 0 : -to_the_left;
}

double AttitudeIndicator::pitch_degrees() const {
    const double down = (pitch_.position(now()) - pitch_zero_) / pitch_zero_ * kEndOfPitch;
    return down == 0 ? 0 : -down;
}

Device::Answer AttitudeIndicator::take_command(const Command& command) {
    const int model = identity().model;
    switch (command.number) {
        case kCommandBank:
            bank_.move_to(command.value, now());
            return command.value >= 0 && command.value <= 2 * bank_zero_ ? Answer::done : Answer::bad_value;
        case kCommandPitch:
            pitch_.move_to(command.value, now());
            return pitch_.target() == command.value ? Answer::done : Answer::bad_value;
        case kCommandBallOrFlag:
            if (model == kModelWithBall) {
                slip_ = std::clamp(command.value / kBallRange, -1.0, 1.0);
            } else if (model == kModelWithCage) {
                flag_shows_ = command.value != 0;
            } else {
                return Answer::unknown_command;
            }
            return Answer::done;
        case kCommandFlagOrCage:
            flag_shows_ = model == kModelWithBall ? command.value != 0 : flag_shows_;
            return model == kModelWithBall || model == kModelWithCage ? Answer::done : Answer::unknown_command;
        case bus::kCommandRecalibrate:
            AttitudeIndicator::reset();
            return Answer::done;
        case bus::kCommandSpeed:
        case 10:  // trim of bank and pitch, storing and clearing it, the rotation test, the flag's travel
        case 11:
        case 12:
        case 13:
        case 14:
        case 15:
            return Answer::done;
        default:
            return Answer::unknown_command;
    }
}

void AttitudeIndicator::show_state(StateSink& sink) const {
    sink.number("bank", bank_degrees());
    sink.number("pitch", pitch_degrees());
    sink.number("slip", slip_);
    sink.flag("inop", flag_shows_);
}

void AttitudeIndicator::reset() {
    bank_.place(bank_zero_);
    pitch_.place(pitch_zero_);
    slip_ = 0;
}

}  // namespace bench
