#include "yoke/yoke_switches.h"

#include <algorithm>

namespace yoke {

namespace {

constexpr std::array<const char*, kSwitchFunctions> kTexts = {
    "-- Don't use --",
    "Trim Switch Up",
    "Trim Switch Down",
    "Yoke Master<->Slave",
    "Push to Talk COM1",
    "Push to Talk COM2",
    "Toggle AP Master",
    "Enable AP Master",
    "Disable AP Master",
    "(Parking) brakes On",
    "Yoke Center Pitch Up",
    "Yoke Center Pitch Dwn",
    "Yoke Center Roll Left",
    "Yoke Center Roll Rght",
    "Motorized Trim Wheel Up",
    "Motorized Trim Wheel Down",
    "Motorized Trim Wheel Left",
    "Motorized Trim Wheel Right",
    "--> Virtual JStck button #",
};

// FFBOffsetNr of what the functions write.
constexpr int kApMaster = 1;
constexpr int kParkingBrakes = 13;
constexpr int kButtons = 14;
constexpr int kTalk1 = 15;
constexpr int kTalk2 = 16;

constexpr std::int16_t kBrakesSet = 32767;
constexpr int kTalkBits = 64;

// Bits of the trim motors.
constexpr std::uint8_t kFirstWay = 1;
constexpr std::uint8_t kSecondWay = 2;

constexpr bool acts_by_edge(int function) {
    return function >= kSwapMaster && function <= kBrakes;
}

void follow(std::uint8_t& bits, std::uint8_t bit, std::uint8_t closed) {
    bits = static_cast<std::uint8_t>(closed != 0 ? bits | bit : bits & ~bit);
}

void follow_button(simlink::SimCom& sim_com, int switch_number, std::uint8_t closed) {
    const auto bit = std::int32_t{1} << switch_number;
    const std::int32_t buttons = closed != 0 ? sim_com.FfbJoystickButtons | bit : sim_com.FfbJoystickButtons & ~bit;
    if (buttons != sim_com.FfbJoystickButtons) {
        sim_com.FfbJoystickButtons = buttons;
        sim_com.PutPortFFB(kButtons);
    }
}

}  // namespace

std::string switch_function_text(int function, int switch_number) {
    std::string text = kTexts[static_cast<std::size_t>(function)];
    if (function == kJoystickButton) {
        text += static_cast<char>('0' + switch_number / 10);
        text += static_cast<char>('0' + switch_number % 10);
    }
    return text;
}

// NOTE: the list is read in its present form whatever its mark says; one of the older form acts one switch late until
// it is stored anew.
void YokeSwitches::tick(YokeState& yoke, const tables::YokeSettings& settings, SwitchSurroundings& around) {
    const int switches = switch_count(yoke.YokeType);
    for (int number = 0; number < switches; ++number) {
        const auto at = static_cast<std::size_t>(number);
        carry_out(settings.YokeSwitchFunctions[at + 1], number, yoke.YokeSwitch[at], yoke, settings, around);
    }
}

void YokeSwitches::carry_out(int function, int switch_number, std::uint8_t closed, YokeState& yoke,
                             const tables::YokeSettings& settings, SwitchSurroundings& around) {
    simlink::SimCom& sim_com = around.sim_com();
    if (acts_by_edge(function)) {
        std::uint8_t& seen = seen_[static_cast<std::size_t>(function)];
        if (closed == seen) {
            return;
        }
        seen = closed;
    }
    const int step = settings.TrimSwitchSpeed;
    const float center_step = static_cast<float>(settings.TrimSwitchSpeed) / 100;
    const auto put_ap_master = [&sim_com](std::uint8_t on) {
        sim_com.FfbApMaster = on;
        sim_com.PutPortFFB(kApMaster);
    };
    run::TrimSwitches& trim = around.trim_switches();
    switch (function) {
        case kTrimUp:
            return move_trim(yoke, closed != 0 ? step : 0);
        case kTrimDown:
            return move_trim(yoke, closed != 0 ? -step : 0);
        case kSwapMaster:
            return closed != 0 ? around.swap_master() : void();
        case kPushToTalk1:
        case kPushToTalk2:
            return push_to_talk(sim_com, function);
        case kToggleAp:
            return closed != 0 ? put_ap_master(sim_com.FfbApMaster == 0 ? 1 : 0) : void();
        case kEnableAp:
            return closed != 0 ? put_ap_master(1) : void();
        case kDisableAp:
            return closed != 0 ? put_ap_master(0) : void();
        case kBrakes:
            sim_com.FfbBrakes = closed != 0 ? kBrakesSet : std::int16_t{0};
            return sim_com.PutPortFFB(kParkingBrakes);
        case kCenterPitchUp:
            return move_center(yoke.elevator, closed != 0 ? -center_step : 0);
        case kCenterPitchDown:
            return move_center(yoke.elevator, closed != 0 ? center_step : 0);
        case kCenterRollLeft:
            return move_center(yoke.ailerons, closed != 0 ? -center_step : 0);
        case kCenterRollRight:
            return move_center(yoke.ailerons, closed != 0 ? center_step : 0);
        case kTrimMotorUp:
            return follow(trim.TrimMotorElevator, kSecondWay, closed);
        case kTrimMotorDown:
            return follow(trim.TrimMotorElevator, kFirstWay, closed);
        case kTrimMotorLeft:
            return follow(trim.TrimMotorAilerons, kFirstWay, closed);
        case kTrimMotorRight:
            return follow(trim.TrimMotorAilerons, kSecondWay, closed);
        case kJoystickButton:
            return follow_button(sim_com, switch_number, closed);
        default:
            return;
    }
}

// Each of the two offsets gets the state of both transmitters, as the simulator's radios take it.
void YokeSwitches::push_to_talk(simlink::SimCom& sim_com, int function) {
    const int both = seen_[kPushToTalk1] * 2 + seen_[kPushToTalk2];
    const auto value = static_cast<std::uint8_t>(both * kTalkBits);
    if (function == kPushToTalk1) {
        sim_com.FfbPtt1 = value;
        sim_com.PutPortFFB(kTalk1);
    } else {
        sim_com.FfbPtt2 = value;
        sim_com.PutPortFFB(kTalk2);
    }
}

void YokeSwitches::move_trim(YokeState& yoke, int step) {
    yoke.TrimValue = static_cast<std::int16_t>(std::clamp<int>(yoke.TrimValue + step, -kHighestTrim, kHighestTrim));
}

void YokeSwitches::move_center(AxisState& axis, float step) {
    axis.CenterOffset = std::clamp(axis.CenterOffset + step, -kMostCenterOffset, kMostCenterOffset);
}

}  // namespace yoke
