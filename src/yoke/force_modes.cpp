#include "yoke/force_modes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "support/failure.h"
#include "support/rounding.h"

namespace yoke {

namespace {

constexpr double kHalfRange = 512;
constexpr double kControlRange = 16383;
constexpr double kForcePerSensitivity = 20;
constexpr int kShake = 100;  // of the stick shaker, raw units

const tables::YokeAxis& travel(const tables::YokeSettings& settings, Axis axis) {
    return axis == Axis::ailerons ? settings.aileron_axis : settings.elevator_axis;
}

int rounded(double value) {
    return support::round_to_i32(value);
}

double held(double value, double limit) {
    return std::clamp(value, -limit, limit);
}

// The share of the calibrated travel around its centre, -100..100 percent.
double travel_target(const tables::YokeAxis& axis, double percent) {
    return (axis.maximum - axis.minimum) * percent / 100 / 2 + axis.centre;
}

int held_to_travel(const tables::YokeAxis& axis, int target) {
    const int lowest = std::min(axis.minimum, axis.maximum);
    return std::clamp<int>(target, lowest, std::max(axis.minimum, axis.maximum));
}

YokeCommand run_command(int ailerons_target, int ailerons_force, int elevator_target, int elevator_force) {
    return {kYokeDevice, kCommandRun, {ailerons_target, ailerons_force, elevator_target, elevator_force}};
}

}  // namespace

void read_ffb(simlink::SimCom& sim_com, int FFBOffsetNr) {
    try {
        sim_com.GetPortFFB(FFBOffsetNr);
    } catch (const support::Failure&) {
        // The yoke goes on with the last value.
    }
}

int center_target(const tables::YokeSettings& settings, Axis axis) {
    const tables::YokeAxis& range = travel(settings, axis);
    const int correction =
        axis == Axis::ailerons ? settings.CenterCorrectionAilerons : settings.CenterCorrectionElevator;
    return std::max(0, rounded((range.maximum - range.minimum) * correction / 100.0 + range.centre));
}

YokeCommand force_limits(const tables::YokeSettings& settings, std::int16_t mode) {
    int ailerons = 0;
    int elevator = 0;
    switch (mode) {
        case kCenter:
            ailerons = settings.MaxForceCenterAilerons;
            elevator = settings.MaxForceCenterElevator;
            break;
        case kForceFeedback:
            ailerons = settings.MaxForceFFBAilerons;
            elevator = settings.MaxForceFFBElevator;
            break;
        case kFollowAp:
            ailerons = settings.MaxForceFollowAPAilerons;
            elevator = settings.MaxForceFollowAPElevator;
            break;
        case kServo:
            ailerons = settings.MaxForceServoAilerons;
            elevator = settings.MaxForceServoElevator;
            break;
        default:
            break;
    }
    const auto limit = [](int percent) { return rounded(percent / 100.0 * kFullForce); };
    const auto threshold = [](int percent) { return rounded(percent / 100.0 * kHalfRange); };
    return {kYokeDevice,
            kCommandForceLimits,
            {limit(ailerons), threshold(settings.ForceThresholdAilerons), limit(elevator),
             threshold(settings.ForceThresholdElevator)}};
}

// --- Position

// The elevator is negated, the aileron is not.
void position_to_simulator(const TickContext& tick) {
    const auto control = [](int position) {
        return static_cast<std::int16_t>(std::floor(position / kHalfRange * kControlRange));
    };
    tick.sim_com.FfbAileron = control(tick.yoke.ailerons.position);
    if (tick.yoke.master()) {
        tick.sim_com.PutPortFFB(5);
    }
    tick.sim_com.FfbElevator = static_cast<std::int16_t>(-control(tick.yoke.elevator.position));
    if (tick.yoke.master()) {
        tick.sim_com.PutPortFFB(4);
    }
}

// --- Center and Off

YokeCommand center_tick(const TickContext& tick) {
    YokeCommand command{kYokeDevice, kCommandIdle, {}};
    if (tick.yoke.RampCount >= 1) {
        const auto force = [&tick](int sensitivity) {
            return rounded(sensitivity / 100.0 * kHalfRange * tick.yoke.ForceRamp);
        };
        command =
            run_command(center_target(tick.settings, Axis::ailerons), force(tick.settings.SensitivityCenterAilerons),
                        center_target(tick.settings, Axis::elevator), force(tick.settings.SensitivityCenterElevator));
    }
    position_to_simulator(tick);
    return command;
}

YokeCommand off_tick(const TickContext& tick) {
    YokeCommand command{kYokeDevice, kCommandIdle, {}};
    if (tick.yoke.RampCount >= 1) {
        command = run_command(tick.settings.aileron_axis.centre, 0, tick.settings.elevator_axis.centre, 0);
    }
    position_to_simulator(tick);
    return command;
}

// --- Follow AP

namespace {

// One step towards what is wanted.
int glide(AxisState& axis, int wanted) {
    if (axis.FollowPosition < wanted) {
        ++axis.FollowPosition;
    } else if (axis.FollowPosition > wanted) {
        --axis.FollowPosition;
    }
    return axis.FollowPosition;
}

int whole(double value) {
    return std::isfinite(value) ? static_cast<int>(std::floor(std::clamp(value, -1e6, 1e6))) : 0;
}

int ramped(int sensitivity, double ramp) {
    return rounded(sensitivity * kForcePerSensitivity * ramp);
}

}  // namespace

YokeCommand follow_ap_tick(const TickContext& tick) {
    const tables::YokeSettings& settings = tick.settings;
    simlink::SimCom& sim_com = tick.sim_com;
    read_ffb(sim_com, 10);
    read_ffb(sim_com, 11);
    int ailerons = settings.aileron_axis.centre;
    if (sim_com.FfbApRoll == 1) {
        const double swing = held(settings.SwingAPAilerons * static_cast<double>(sim_com.FfbApAileron) * 10, 100);
        tick.yoke.ailerons.servo_percent = swing;
        ailerons = glide(tick.yoke.ailerons,
                         held_to_travel(settings.aileron_axis, whole(travel_target(settings.aileron_axis, swing))));
    }
    int elevator = settings.elevator_axis.centre;
    if (sim_com.FfbApPitch == 1) {
        const double swing = held(-(settings.SwingAPElevator * static_cast<double>(sim_com.FfbApElevator) * 10), 100);
        tick.yoke.elevator.servo_percent = -swing;
        elevator = glide(tick.yoke.elevator, whole(travel_target(settings.elevator_axis, swing)));
    }
    return run_command(ailerons, ramped(settings.SensitivityFollowAPAilerons, tick.yoke.ForceRamp), elevator,
                       ramped(settings.SensitivityFollowAPElevator, tick.yoke.ForceRamp));
}

// --- Servo

namespace {

int follow_master(AxisState& axis, const AxisState& master, const tables::YokeAxis& range) {
    const double percent = held(master.position / kHalfRange * 100, 100);
    axis.servo_percent = percent;
    return held_to_travel(range, whole(travel_target(range, percent)));
}

}  // namespace

YokeCommand servo_tick(const TickContext& tick) {
    const tables::YokeSettings& settings = tick.settings;
    simlink::SimCom& sim_com = tick.sim_com;
    int ailerons = settings.aileron_axis.centre;
    int elevator = settings.elevator_axis.centre;
    if (tick.yoke.ServoFollow == kFollowMaster) {
        ailerons = follow_master(tick.yoke.ailerons, tick.partner.ailerons, settings.aileron_axis);
        elevator = follow_master(tick.yoke.elevator, tick.partner.elevator, settings.elevator_axis);
    } else if (tick.yoke.ServoFollow == kFollowSimulator) {
        read_ffb(sim_com, 4);
        read_ffb(sim_com, 5);
        const double roll = held(sim_com.FfbAileron / kControlRange * 100, 100);
        ailerons = held_to_travel(settings.aileron_axis, rounded(travel_target(settings.aileron_axis, roll)));
        const double pitch = held(-(sim_com.FfbElevator / kControlRange * 100), 100);
        elevator = whole(travel_target(settings.elevator_axis, pitch));
    }
    return run_command(ailerons, ramped(settings.SensitivityServoAilerons, tick.yoke.ForceRamp), elevator,
                       ramped(settings.SensitivityServoElevator, tick.yoke.ForceRamp));
}

// --- Stick shaker

void shake(YokeState& yoke) {
    if (yoke.ShakerOn != 1) {
        return;
    }
    const int position = yoke.elevator.position;
    switch (yoke.ShakerStep) {
        case 0: {
            const int beyond = position + kShake - static_cast<int>(kHalfRange);
            yoke.ShakeOffset = static_cast<std::int16_t>(yoke.ShakeCarry + kShake - std::max(beyond, 0));
            yoke.ShakeCarry = static_cast<std::int16_t>(std::max(beyond, 0));
            yoke.ShakerStep = 1;
            break;
        }
        case 1: {
            const int beyond = std::abs(std::min(position - kShake + static_cast<int>(kHalfRange), 0));
            yoke.ShakeOffset = static_cast<std::int16_t>(-kShake - yoke.ShakeCarry + beyond);
            yoke.ShakeCarry = static_cast<std::int16_t>(beyond);
            yoke.ShakerStep = 2;
            break;
        }
        default:
            yoke.ShakerStep = 0;
            break;
    }
}

}  // namespace yoke
