#include "simhost/flight_model.h"

#include <cmath>

namespace simhost {

namespace {

constexpr double kStepS = std::chrono::duration<double>(FlightModel::kStep).count();
constexpr double kGiveUpS = 4.0;
constexpr double kFieldReachM = 400.0;
constexpr double kCeilingM = 6000.0;
constexpr double kLongestJumpS = 1200.0;

}  // namespace

bool FlightModel::lost() const {
    const Phase phase = script_.phase();
    const bool should_fly = phase > Phase::take_off && phase < Phase::landing;
    const RunwayPlace here = aircraft_.airframe.runway_place();
    const bool off_the_field = here.along_m < -kFieldReachM || here.along_m > kRunwayLengthM + kFieldReachM ||
                               std::abs(here.across_m) > kFieldReachM;
    const bool upside_down = std::abs(aircraft_.airframe.bank_deg()) > 120.0 && !aircraft_.hands_fly();
    return (aircraft_.airframe.on_ground() && (should_fly || off_the_field)) || upside_down ||
           aircraft_.airframe.height_m() < -1.0 || aircraft_.airframe.height_m() > kCeilingM;
}

void FlightModel::one_step() {
    script_.step(aircraft_, kStepS);
    aircraft_.step(kStepS);
    time_s_ += kStepS;
    // A client may fly the aircraft into the ground or out of the world; then it stands ready on the runway again.
    stranded_s_ = lost() ? stranded_s_ + kStepS : 0.0;
    if (stranded_s_ > kGiveUpS) {
        restart();
        jump_to(Phase::take_off);
    }
}

void FlightModel::step(Duration elapsed) {
    if (aircraft_.paused) {
        left_over_ = Duration::zero();
        return;
    }
    left_over_ += elapsed;
    while (left_over_ >= kStep) {
        left_over_ -= kStep;
        one_step();
    }
}

void FlightModel::restart() {
    const SimClock clock = aircraft_.clock;
    aircraft_ = Aircraft(seed_);
    aircraft_.clock = clock;
    script_ = FlightScript();
    left_over_ = Duration::zero();
    stranded_s_ = 0;
}

void FlightModel::jump_to(Phase phase) {
    const SimClock clock = aircraft_.clock;
    const double end_s = time_s_ + kLongestJumpS;
    do {
        one_step();
    } while (time_s_ < end_s && !(script_.phase() == phase && script_.phase_s() <= 0));
    aircraft_.clock = clock;
}

}  // namespace simhost
