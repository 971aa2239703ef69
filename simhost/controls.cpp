#include "simhost/controls.h"

#include <cmath>

#include "simhost/units.h"

namespace simhost {

namespace {

constexpr double kCentreBand = 0.04;
constexpr double kTakeOverS = 0.15;
constexpr double kGiveBackS = 2.0;
constexpr double kTrimPerElevator = 2.0;  // of the elevator's travel
constexpr double kMostHandedOver = 0.35;  // of the trim's travel

constexpr double kFlapsTravelS = 8.0;
constexpr double kGearTravelS = 6.0;
constexpr double kMotorVolts = 16.0;  // below, flaps and gear stand still

}  // namespace

void ClientHands::step(double dt_s) {
    for (double& age : age_s_) {
        age += dt_s;
    }
}

void HandAxis::client_writes(double position) {
    if (silent_s_ >= kSilentS && silent_s_ < kNever) {
        way_back_from_ = position;
        way_back_s_ = kWayBackS;
    }
    silent_s_ = 0;
    if (shaken_s_ > 0 && !held()) {
        left_at_ = position;
        return;
    }
    const double beginning = way_back_s_ > 0 ? way_back_from_ : 0;
    const double lowest = std::min({0.0, left_at_, beginning}) - kCentreBand;
    const double highest = std::max({0.0, left_at_, beginning}) + kCentreBand;
    if (position < lowest || position > highest) {
        still_s_ = 0;
    }
    if (held()) {
        client_position_ = position;
    }
}

void HandAxis::step(double dt_s) {
    shaken_s_ -= dt_s;
    way_back_s_ -= dt_s;
    still_s_ += dt_s;
    silent_s_ += dt_s;
    client_share_ = approach(client_share_, held() ? 1.0 : 0.0, dt_s / (held() ? kTakeOverS : kGiveBackS));
}

void Controls::trim_for_the_client() {
    const double handed_over = std::clamp(kTrimPerElevator * elevator, -kMostHandedOver, kMostHandedOver);
    client_trim = std::clamp(elevator_trim + handed_over, -0.9, 0.9);
}

double Controls::brakes() const {
    return std::clamp(std::max(parking_brake ? 1.0 : 0.0, 0.5 * (left_brake + right_brake)), 0.0, 1.0);
}

void Controls::step(double bus_volts, double dt_s) {
    elevator_hand.step(dt_s);
    aileron_hand.step(dt_s);
    rudder_hand.step(dt_s);
    elevator_surface = approach(elevator_surface, elevator, 6.0 * dt_s);
    aileron_surface = approach(aileron_surface, aileron, 6.0 * dt_s);
    rudder_surface = approach(rudder_surface, rudder, 6.0 * dt_s);
    if (bus_volts > kMotorVolts) {
        flaps = approach(flaps, flaps_lever, dt_s / kFlapsTravelS);
        gear = approach(gear, gear_lever > 0.5 ? 1.0 : 0.0, dt_s / kGearTravelS);
    }
}

AirframeInputs Controls::airframe_inputs(double thrust_n) const {
    AirframeInputs inputs;
    inputs.elevator = elevator_surface;
    inputs.aileron = aileron_surface;
    inputs.rudder = rudder_surface;
    inputs.elevator_trim = elevator_trim;
    inputs.aileron_trim = aileron_trim;
    inputs.rudder_trim = rudder_trim;
    inputs.flaps = flaps;
    inputs.gear = gear;
    inputs.brakes = brakes();
    inputs.thrust_n = thrust_n;
    return inputs;
}

}  // namespace simhost
