#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "platform/event_loop.h"
#include "yoke/force_profile.h"
#include "yoke/yoke_telegram.h"

namespace yoke {

// YokeMode.
enum Mode : std::int16_t { kCenter = 0, kForceFeedback = 1, kFollowAp = 2, kServo = 3, kOff = 4 };
inline constexpr int kModes = 5;

// ServoFollow; other values follow nothing.
inline constexpr std::int16_t kFollowNothing = 0;
inline constexpr std::int16_t kFollowMaster = 2;
inline constexpr std::int16_t kFollowSimulator = 3;

// How many ticks the forces take to rise from nothing to full.
inline constexpr std::int16_t kRampTicks = 100;
inline constexpr std::chrono::milliseconds kTick{40};

// Positions are in units of 511 to either side of the centre, forces in units of 511 for 100 percent.
inline constexpr int kFullPosition = 511;

// What one axis of a yoke remembers from tick to tick, and what its panel shows of it.
struct AxisState {
    std::int16_t position = 0;  // BankPosition, PitchPosition: -511..511
    std::int32_t force = 0;     // BankForce, PitchForce: as measured
    std::int16_t RawCenterRun = kRawCentre;
    float CenterOffset = 0;           // percent of 512, -50..50
    std::int16_t Turbulence = 0;      // -50..50
    std::int16_t FollowPosition = 0;  // stepped target of Follow AP
    ForceProfile profile;
    float ProfileFactor = 0;

    // Motor standby.
    bool motor_on = false;
    std::int16_t StandbyCount = 0;  // seconds
    std::int16_t LastPercent = 0;
    bool PowerOff = false;  // asks for a change at the next tick
    bool PowerOn = false;

    double last_motion = 0;  // what the simulator gave at the last tick
    float curve_percent = 0;
    double servo_percent = 0;
};

// All that one yoke remembers while the program runs.
struct YokeState {
    AxisState ailerons;
    AxisState elevator;

    std::uint8_t YokeType = 0;
    std::array<std::uint8_t, kYokeSwitches> YokeSwitch{};
    std::int16_t FrameCount = 0;
    std::int16_t ProgressStep = 0;
    std::int16_t PortRestart = 0;
    std::int16_t StartupStep = 0;
    std::int16_t RampCount = 0;
    double ForceRamp = 0;  // 0..1

    std::int16_t YokeMode = kCenter;
    std::int16_t YokeIsSlave = 0;
    std::int16_t ServoFollow = kFollowNothing;
    std::int16_t OverruleTicks = 0;

    std::int16_t ShakerOn = 0;
    std::int16_t ShakerStep = 0;
    std::int16_t ShakeOffset = 0;
    std::int16_t ShakeCarry = 0;
    std::int16_t WasOnGround = 0;
    std::int16_t WheelShock = 0;
    std::int16_t WheelShockWait = 0;
    std::int16_t WheelShockPeriod = 0;
    std::int16_t TrimValue = 0;
    std::int16_t LastTrimValue = 0;
    bool ProfileCycle = false;
    bool CheckForceLimit = false;

    std::optional<platform::TimePoint> last_telegram;

    AxisState& axis(Axis which) { return which == Axis::ailerons ? ailerons : elevator; }
    const AxisState& axis(Axis which) const { return which == Axis::ailerons ? ailerons : elevator; }
    bool master() const { return YokeIsSlave == 0; }
};

}  // namespace yoke
