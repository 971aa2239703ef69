#pragma once

#include <array>
#include <cstdint>

namespace tables {

// One point of a force profile in the coordinates of its editor: X 800..10800 (airspeed), Y 500 (100 %) to 5500 (0 %).
// Rows 0..10 are the points; X of row 12 is the maximum airspeed in hundreds of knots.
struct ForceCurvePoint {
    float airspeed = 0;
    float force = 0;
};
using ForceCurve = std::array<ForceCurvePoint, 13>;

// Settings that both yokes share (section "GeneralFFB").
struct YokeCommonSettings {
    std::int16_t AutoSwitchForce = 0;
    std::int16_t AutoSwitchTime = 0;
    std::uint8_t AutoSwitchEnabled = 0;
    std::uint8_t Yoke2MasterAtStartup = 0;
    std::uint8_t ModeMasterToSlaveY1 = 0;
    std::uint8_t ModeSlaveToMasterY1 = 0;
    std::uint8_t ModeMasterToSlaveY2 = 0;
    std::uint8_t ModeSlaveToMasterY2 = 0;
    ForceCurve AileronForceCurve{};
    ForceCurve ElevatorForceCurve{};
};

// Version mark and functions of the switches: byte 0 is 255 in the present layout, byte k + 1 the function of switch k.
inline constexpr int kYokeSwitchBytes = 19;
inline constexpr int kOldYokeSwitchBytes = 10;
inline constexpr std::uint8_t kYokeSwitchMark = 255;

enum YokeCalibrationItem {
    kFirstAxisMinimum = 0,
    kFirstAxisMaximum = 1,
    kSecondAxisMinimum = 2,
    kSecondAxisMaximum = 3
};

// Travel of one axis, derived from the stored calibration: a position is (raw - centre) * scale.
struct YokeAxis {
    std::int16_t minimum = 0;
    std::int16_t maximum = 1023;
    std::int16_t range = 1023;
    double scale = 1024.0 / 1023.0;
    std::int16_t centre = 512;
};

// Settings of one yoke (sections "Yoke1" and "Yoke2"; the port number stands in the core tables).
struct YokeSettings {
    std::int16_t StandbyTime = 0;       // seconds, 0..999
    std::uint8_t StandbyThreshold = 0;  // percent
    std::int16_t ForceThresholdAilerons = 0;
    std::int16_t ForceThresholdElevator = 0;
    std::int16_t DeadbandAilerons = 0;
    std::int16_t DeadbandElevator = 0;
    std::int16_t SensitivityCenterAilerons = 0;
    std::int16_t SensitivityCenterElevator = 0;
    std::int16_t CenterCorrectionAilerons = 0;
    std::int16_t CenterCorrectionElevator = 0;
    std::int16_t MaxForceCenterAilerons = 0;
    std::int16_t MaxForceCenterElevator = 0;
    std::int16_t WheelsShockFrequency = 0;
    std::int16_t WheelsShockForce = 0;
    std::int16_t TurbulenceAilerons = 0;
    std::int16_t TurbulenceElevator = 0;
    std::int16_t FFBEffectAilerons = 0;
    std::int16_t FFBEffectElevator = 0;
    std::int16_t MaxForceFFBAilerons = 0;
    std::int16_t MaxForceFFBElevator = 0;
    std::int16_t ElevatorCorrection = 0;
    std::uint8_t ShakerAtOverspeed = 0;
    std::uint8_t ShakerAtStall = 0;
    std::uint8_t AutoSwitchFFBAP = 0;
    std::int16_t SensitivityFollowAPAilerons = 0;
    std::int16_t SensitivityFollowAPElevator = 0;
    std::int16_t MaxForceFollowAPAilerons = 0;
    std::int16_t MaxForceFollowAPElevator = 0;
    std::int16_t SwingAPAilerons = 0;
    std::int16_t SwingAPElevator = 0;
    std::int16_t APOverruleForce = 0;
    std::int16_t APOverruleTime = 0;
    std::int16_t EnableAPOverrule = 0;
    std::int16_t SensitivityServoAilerons = 0;
    std::int16_t SensitivityServoElevator = 0;
    std::int16_t MaxForceServoAilerons = 0;
    std::int16_t MaxForceServoElevator = 0;
    std::uint8_t SlaveFollowsMaster = 0;
    std::array<std::uint8_t, kYokeSwitchBytes> YokeSwitchFunctions{};
    std::uint8_t EnableSwitchesAsSlave = 0;
    std::uint8_t carried_byte = 0;  // stored behind EnableSwitchesAsSlave, without other use
    std::int16_t TrimSwitchSpeed = 0;
    std::array<std::int16_t, 4> YokeCalibration{};

    // Derived from YokeCalibration, not stored: the first axis is the elevator, the second the ailerons.
    YokeAxis elevator_axis;
    YokeAxis aileron_axis;
};

// Works out the travel of both axes from YokeCalibration, as at the end of a calibration. A maximum below 500 counts as
// 1023 here; the stored item stays as it is. A range of 0 gives an infinite scale. Never fails.
void derive_yoke_axes(YokeSettings& settings);

}  // namespace tables
