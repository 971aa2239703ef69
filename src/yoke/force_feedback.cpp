// Force Feedback mode: a spring whose strength follows the airspeed, with turbulence, wheel shocks and a shaken stick.

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "support/rounding.h"
#include "yoke/force_modes.h"

namespace yoke {

namespace {

constexpr double kHalfRange = 512;
constexpr double kFullSpringForce = 1150;
constexpr int kShockForce = 200;
constexpr int kWeightForce = 120;
constexpr int kMostTurbulence = 50;
constexpr int kLowestShockSpeed = 3;  // ground speed

// The change of what the simulator moves by, held to its limits. What is no number moves nothing.
std::int16_t turbulence(AxisState& axis, int strength, float motion) {
    const double now = static_cast<double>(motion);
    const double change = std::floor(strength * (now - axis.last_motion));
    axis.last_motion = now;
    return std::isnan(change)
               ? std::int16_t{0}
               : static_cast<std::int16_t>(std::clamp<double>(change, -kMostTurbulence, kMostTurbulence));
}

void feel_the_air(const TickContext& tick) {
    YokeState& yoke = tick.yoke;
    const tables::YokeSettings& settings = tick.settings;
    simlink::SimCom& sim_com = tick.sim_com;
    yoke.ailerons.Turbulence = turbulence(yoke.ailerons, settings.TurbulenceAilerons, sim_com.FfbBankMotion);
    yoke.elevator.Turbulence = turbulence(yoke.elevator, settings.TurbulenceElevator, sim_com.FfbPitchMotion);
    const bool stall = settings.ShakerAtStall == 1 && sim_com.FfbStall == 1;
    const bool overspeed = settings.ShakerAtOverspeed == 1 && sim_com.FfbOverspeed == 1;
    yoke.ShakerOn = stall || overspeed ? 1 : 0;
    if (yoke.ShakerOn == 0) {
        yoke.ShakerStep = 0;
    }
}

// A shock every now and then; the faster the aircraft rolls the more often.
void roll(const TickContext& tick) {
    YokeState& yoke = tick.yoke;
    if (yoke.WheelShockWait < 1 && tick.sim_com.FfbGroundSpeed >= kLowestShockSpeed) {
        const double wait = std::clamp((yoke.WheelShockPeriod - tick.airspeed) / 16, -1000.0, 1000.0);
        yoke.WheelShockWait = support::round_to_i16(wait);
        const int way = static_cast<int>(tick.random.next() / 4294967296.0 * 3) + 1;
        const int shock = tick.settings.WheelsShockForce;
        yoke.WheelShock = static_cast<std::int16_t>(way == 1 ? shock : way == 3 ? -shock : 0);
    } else if (yoke.WheelShockWait > 0) {
        --yoke.WheelShockWait;
    }
}

// NOTE: never below 0, where a curve that falls beyond its last point would lead: a force below 0 would go out as the
// highest there is.
int spring_force(const TickContext& tick, AxisState& axis, int effect) {
    axis.curve_percent = profile_force(axis.profile, tick.airspeed);
    axis.ProfileFactor = axis.curve_percent / 100;
    const double share = std::min(static_cast<double>(axis.ProfileFactor) * effect / 100, 1.0);
    const double force = std::floor(share * tick.yoke.ForceRamp * kFullSpringForce);
    return force > 0 ? static_cast<int>(force) : 0;
}

int spring_target(const AxisState& axis, int shaken) {
    return support::round_to_i32(shaken + axis.Turbulence + axis.RawCenterRun +
                                 static_cast<double>(axis.CenterOffset) / 100 * kHalfRange);
}

int limit_of(const AxisState& axis) {
    return std::clamp(support::round_to_i32(static_cast<double>(axis.ProfileFactor) * kFullForce), 0, kFullForce);
}

}  // namespace

YokeCommand force_feedback_tick(const TickContext& tick) {
    YokeState& yoke = tick.yoke;
    const tables::YokeSettings& settings = tick.settings;
    simlink::SimCom& sim_com = tick.sim_com;
    // 1.
    for (const int number : {6, 7, 8, 9, 17}) {
        read_ffb(sim_com, number);
    }
    // 2.
    position_to_simulator(tick);
    // 3.
    yoke.WheelShock = 0;
    yoke.WheelShockPeriod = static_cast<std::int16_t>((100 - settings.WheelsShockFrequency) * 2);
    // 4. to 7.
    const bool on_ground = sim_com.FfbOnGround == 1;
    if (!on_ground) {
        feel_the_air(tick);
    } else if (yoke.WasOnGround != 0) {
        roll(tick);
    } else {
        yoke.WheelShock = static_cast<std::int16_t>(settings.WheelsShockForce * 2);
    }
    yoke.WasOnGround = sim_com.FfbOnGround;
    // 8.
    int ailerons_target = yoke.ailerons.RawCenterRun + yoke.WheelShock;
    int ailerons_force = kShockForce;
    if (yoke.WheelShock == 0) {
        ailerons_target = spring_target(yoke.ailerons, 0);
        ailerons_force = spring_force(tick, yoke.ailerons, settings.FFBEffectAilerons);
    }
    // 9.
    int elevator_target = spring_target(yoke.elevator, yoke.ShakeOffset);
    int elevator_force = spring_force(tick, yoke.elevator, settings.FFBEffectElevator);
    // 10.
    const int weight = std::abs(settings.ElevatorCorrection);
    if (on_ground && elevator_force < weight) {
        elevator_target =
            static_cast<int>(std::floor((weight - elevator_force) / 100.0 * kHalfRange)) + static_cast<int>(kHalfRange);
        elevator_force = kWeightForce;
    }
    // 11., 12.
    if (yoke.CheckForceLimit && yoke.ProfileCycle) {
        yoke.ProfileCycle = false;
        return {kYokeDevice, kCommandForceLimits, {limit_of(yoke.ailerons), 1, limit_of(yoke.elevator), 1}};
    }
    yoke.ProfileCycle = yoke.CheckForceLimit;
    return {kYokeDevice, kCommandRun, {ailerons_target, ailerons_force, elevator_target, elevator_force}};
}

}  // namespace yoke
