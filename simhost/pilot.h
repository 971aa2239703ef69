#pragma once

#include <cstddef>
#include <span>

#include "simhost/aircraft.h"

namespace simhost {

// The scripted pilot's hands and feet. Each call works for one step. What a client holds, the pilot leaves alone.
class Pilot {
  public:
    // Hand flying: attitude, or a climb at the pilot's own pitch.
    void fly_attitude(Aircraft& aircraft, double pitch_deg, double bank_deg, double dt_s);
    void fly_climb(Aircraft& aircraft, double climb_mps, double bank_deg, double dt_s);
    // Forgets what the hands had learned, before another way of flying begins.
    void take_stick(const Aircraft& aircraft);
    // Where the autopilot is meant to fly: watches it, and flies height and magnetic heading by hand while it does not.
    void mind_autopilot(Aircraft& aircraft, double height_m, double heading_deg, double dt_s);
    // The stick at rest in the middle.
    void release_stick(Aircraft& aircraft);

    void set_throttle(Aircraft& aircraft, double wanted, double dt_s) const;
    void hold_speed(Aircraft& aircraft, double indicated_mps, double dt_s);
    void set_flaps(Aircraft& aircraft, double flaps) const;
    void set_gear(Aircraft& aircraft, double gear) const;
    void set_brakes(Aircraft& aircraft, double brakes) const;
    void set_lights(Aircraft& aircraft, std::uint16_t lights) const;
    // Turns a trim wheel towards a position.
    void set_trim(Aircraft& aircraft, double elevator_trim, double dt_s) const;
    void set_parking_brake(Aircraft& aircraft, bool on) const;
    // Turns the heading that is flown, and with it the autopilot's bug, to a magnetic heading: at once, or bit by bit
    // by way of a turn to the left.
    void set_heading(Aircraft& aircraft, double heading_deg);
    void turn_left_to(Aircraft& aircraft, double heading_deg, double rate_deg, double dt_s);
    double heading_deg() const { return heading_deg_; }
    // Keeps the autopilot's turn knob on the bank that leads to that heading, for as long as nobody else has the
    // autopilot in hand; it acts in the wing leveler's mode.
    void turn_with_knob(Aircraft& aircraft) const;

    // Keeps the nose on the runway's centre line while rolling, with the wheels' steering.
    void steer_on_runway(Aircraft& aircraft) const;
    // Rolls along a path of places; true at its end. `start_path` begins it.
    void start_path(std::span<const RunwayPlace> path);
    bool taxi(Aircraft& aircraft, double speed_mps, double dt_s);

  private:
    static constexpr std::size_t kPathPlaces = 12;
    AttitudeLoops loops_;
    double throttle_held_ = 0.3;
    double heading_deg_ = kRunwayHeadingDeg - kMagneticVariationDeg;
    std::array<RunwayPlace, kPathPlaces> path_{};
    std::size_t path_length_ = 0;
    std::size_t next_ = 0;
};

}  // namespace simhost
