#pragma once

#include <array>
#include <cstdint>

#include "simhost/airframe.h"

namespace simhost {

// Bits of the lights word.
enum LightBit : std::uint16_t {
    kNavigationLights = 1,
    kBeacon = 2,
    kLandingLights = 4,
    kTaxiLights = 8,
    kStrobes = 16,
    kInstrumentLights = 32,
    kRecognitionLights = 64,
    kWingLights = 128,
    kLogoLights = 256,
    kCabinLights = 512,
};

// Positions of the magneto switch.
enum class Magnetos : std::uint8_t { off = 0, right = 1, left = 2, both = 3, start = 4 };

// What a client has in its hands. The scripted pilot keeps off a group for a while after a client has written to it.
enum class ClientGroup : std::uint8_t {
    stick,
    pedals,
    throttle,
    propeller,
    mixture,
    trims,
    flaps,
    gear,
    brakes,
    lights,
    switches,
    altimeter,
    gyro,
    radios,
    autopilot,
    heading_bug,
    courses,  // course selectors and the card of the ADF
};
inline constexpr int kClientGroups = 17;

class ClientHands {
  public:
    ClientHands() { age_s_.fill(kNever); }
    void touch(ClientGroup group) { age_s_[static_cast<std::size_t>(group)] = 0; }
    void step(double dt_s);
    double age_s(ClientGroup group) const { return age_s_[static_cast<std::size_t>(group)]; }
    bool holds(ClientGroup group) const { return age_s(group) < kHoldS; }
    // Whether a client has ever written to the group: a unit that tells only what changes keeps its knobs for good.
    bool owns(ClientGroup group) const { return age_s(group) < kNever; }

  private:
    static constexpr double kNever = 1e9;
    static constexpr double kHoldS = 45.0;
    std::array<double, kClientGroups> age_s_{};
};

// One axis of the stick or the pedals, -1..1. A client that deflects it has it; a yoke that rests near its centre and
// tells that over and over has nothing. Where a yoke stands when it begins to tell again, as one does that the
// autopilot has moved, is not its hands either, nor is its way back to the centre. When the client's hands are still
// for five seconds (it writes values near the centre), or it is silent for a second and a half, the pilot gets the axis
// back over two seconds.
class HandAxis {
  public:
    void client_writes(double position);
    void step(double dt_s);
    // The stick is being shaken. Unless a client has it, it is nobody's hands where that leaves it, nor between there
    // and the centre.
    void shaken() { shaken_s_ = kShakingEndsS; }
    // What arrives at the control when the pilot or the autopilot wants `wanted`.
    double blend(double wanted) const { return wanted + (client_position_ - wanted) * client_share_; }
    // Whether a client has the axis.
    bool held() const { return still_s_ < kStillHandsS && silent_s_ < kSilentS; }

  private:
    static constexpr double kStillHandsS = 5.0;
    static constexpr double kSilentS = 1.5;
    static constexpr double kNever = 1e9;
    static constexpr double kWayBackS = 2.5;
    static constexpr double kShakingEndsS = 1.0;
    double shaken_s_ = 0;
    double client_position_ = 0;
    double left_at_ = 0;        // where shaking has left it
    double way_back_from_ = 0;  // where it stood when it began to tell again,
    double way_back_s_ = 0;     // which counts for so long
    double still_s_ = kNever;   // since the client has deflected the axis
    double silent_s_ = kNever;  // since it has written at all
    double client_share_ = 0;
};

// Levers and switches as they are set, and the surfaces that follow them at their own speed.
struct Controls {
    // Where stick, pedals and levers stand: -1..1, levers 0..1.
    double elevator = 0;
    double aileron = 0;
    double rudder = 0;
    HandAxis elevator_hand;
    HandAxis aileron_hand;
    HandAxis rudder_hand;
    double elevator_trim = 0;
    double aileron_trim = 0;
    double rudder_trim = 0;
    double client_trim = 0;  // the elevator trim that keeps the aircraft in trim for the client's hands
    double throttle = 0;
    double propeller = 1;
    double mixture = 0;
    double flaps_lever = 0;
    double gear_lever = 1;
    double left_brake = 0;
    double right_brake = 0;
    bool parking_brake = true;

    std::uint16_t lights = 0;
    Magnetos magnetos = Magnetos::off;
    bool battery = false;
    bool alternator = false;
    bool avionics = false;
    bool fuel_pump = false;
    bool pitot_heat = false;
    bool carburettor_heat = false;
    double dimmer = 0;  // 0..1

    // Positions of the surfaces.
    double elevator_surface = 0;
    double aileron_surface = 0;
    double rudder_surface = 0;
    double flaps = 0;
    double gear = 1;

    // Whether a client has its hands on the stick.
    bool stick_held() const { return elevator_hand.held() || aileron_hand.held(); }
    // For the moment when a client takes the elevator: what the pilot held with it goes over into the trim, so that the
    // aircraft stays in trim with the client's stick in the middle.
    void trim_for_the_client();

    void step(double bus_volts, double dt_s);
    AirframeInputs airframe_inputs(double thrust_n) const;
    double brakes() const;
    bool flaps_moving() const { return flaps != flaps_lever; }
    bool gear_moving() const { return gear != (gear_lever > 0.5 ? 1.0 : 0.0); }
};

}  // namespace simhost
