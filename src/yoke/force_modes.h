#pragma once

#include <cstdint>

#include "platform/random.h"
#include "simlink/sim_com.h"
#include "tables/yoke_settings.h"
#include "yoke/yoke_state.h"
#include "yoke/yoke_telegram.h"

// What each mode wants of the yoke at a tick. No field of a panel is touched here; what a panel shows stands in the
// state.
namespace yoke {

// What a tick works with.
struct TickContext {
    YokeState& yoke;
    const tables::YokeSettings& settings;
    simlink::SimCom& sim_com;
    const YokeState& partner;
    platform::Random& random;
    double airspeed = 0;  // knots
};

// Reads a yoke function; a value that does not fit leaves its variable at the last one.
void read_ffb(simlink::SimCom& sim_com, int FFBOffsetNr);

// The target of an axis in Center mode, also that of the first step of a start: the calibrated centre and its
// correction.
// NOTE: never below 0. A value below 0 would go out as the highest there is and drive the column to its other end.
int center_target(const tables::YokeSettings& settings, Axis axis);

// Cmd 10 of a start: the force limits of a mode and the thresholds.
YokeCommand force_limits(const tables::YokeSettings& settings, std::int16_t mode);

// One tick of each mode; the command for the yoke.
YokeCommand center_tick(const TickContext& tick);
YokeCommand off_tick(const TickContext& tick);
YokeCommand force_feedback_tick(const TickContext& tick);
YokeCommand follow_ap_tick(const TickContext& tick);
YokeCommand servo_tick(const TickContext& tick);

// The position as the simulator's control inputs; a master writes them.
void position_to_simulator(const TickContext& tick);

// One tick of the stick shaker: up, down, rest.
void shake(YokeState& yoke);

}  // namespace yoke
