#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "run/audio_and_trim_state.h"
#include "simlink/sim_com.h"
#include "tables/yoke_settings.h"
#include "yoke/yoke_state.h"

namespace yoke {

// Functions of a yoke's switches, by their index in the list of each switch.
enum SwitchFunction : std::uint8_t {
    kNoFunction = 0,
    kTrimUp = 1,
    kTrimDown = 2,
    kSwapMaster = 3,
    kPushToTalk1 = 4,
    kPushToTalk2 = 5,
    kToggleAp = 6,
    kEnableAp = 7,
    kDisableAp = 8,
    kBrakes = 9,
    kCenterPitchUp = 10,
    kCenterPitchDown = 11,
    kCenterRollLeft = 12,
    kCenterRollRight = 13,
    kTrimMotorUp = 14,
    kTrimMotorDown = 15,
    kTrimMotorLeft = 16,
    kTrimMotorRight = 17,
    kJoystickButton = 18,
};
inline constexpr int kSwitchFunctions = 19;

// The text of a function in the list of switch 0..15.
std::string switch_function_text(int function, int switch_number);

inline constexpr std::int16_t kHighestTrim = 16383;
inline constexpr float kMostCenterOffset = 50;

// What the functions work on beside the yoke itself.
class SwitchSurroundings {
  public:
    virtual ~SwitchSurroundings() = default;
    virtual simlink::SimCom& sim_com() = 0;
    virtual run::TrimSwitches& trim_switches() = 0;
    // A slave becomes master, a master slave, the other yoke the opposite.
    virtual void swap_master() = 0;
};

// Carries out the functions of one yoke's switches and remembers which state each function that acts by edge has seen
// last. Two switches on one such function share it.
class YokeSwitches {
  public:
    // One tick of all switches that the yoke has.
    void tick(YokeState& yoke, const tables::YokeSettings& settings, SwitchSurroundings& around);
    // One switch's function with that state, 1 = closed.
    void carry_out(int function, int switch_number, std::uint8_t closed, YokeState& yoke,
                   const tables::YokeSettings& settings, SwitchSurroundings& around);

  private:
    void push_to_talk(simlink::SimCom& sim_com, int function);
    static void move_trim(YokeState& yoke, int step);
    static void move_center(AxisState& axis, float step);

    std::array<std::uint8_t, kSwitchFunctions> seen_{};
};

}  // namespace yoke
