#pragma once

#include <cstdint>
#include <vector>

#include "simhost/airframe.h"
#include "simhost/autopilot.h"
#include "simhost/controls.h"
#include "simhost/electrical.h"
#include "simhost/engine.h"
#include "simhost/instruments.h"
#include "simhost/radios.h"
#include "simhost/units.h"
#include "simhost/weather.h"

namespace simhost {

// A control event that a client has sent to the simulator.
struct SentControl {
    std::int32_t number = 0;
    std::int32_t parameter = 0;
};

// Where the aircraft stands when the simulator starts: on the apron beside the runway.
inline constexpr RunwayPlace kParkingPlace{170.0, 112.0};
inline constexpr double kParkingHeadingDeg = 42.0;  // true

// Here the barber pole stands.
inline constexpr double kNeverExceedKnots = 140.0;

// All that is known of the simulated aircraft and its surroundings. A plain record: the flight model moves it on, the
// scripted pilot and the clients act on it, the offset map shows it.
struct Aircraft {
    explicit Aircraft(std::uint64_t seed) : weather(seed) {
        airframe.place_on_ground(kParkingPlace, kParkingHeadingDeg);
        tick_outputs();
    }

    Weather weather;
    Airframe airframe;
    Controls controls;
    ClientHands hands;
    Engine engine;
    FuelTanks tanks;
    Electrical electrical;
    Radios radios;
    Navigation navigation;
    Autopilot autopilot;
    Instruments instruments;
    SimClock clock;

    // What the pilot would like to do with the stick, and how bumpy the air is to be.
    StickWish pilot_stick;
    double turbulence = 0;
    bool paused = false;
    bool overspeed = false;

    std::int32_t control_parameter = 0;
    std::vector<SentControl> sent_controls;  // the latest ones, oldest first

    // Whether a client flies with its hands on the stick; the autopilot, while it flies, doesn't let it.
    bool hands_fly() const { return controls.stick_held() && !autopilot.flying(); }
    double indicated_airspeed_knots() const { return airframe.indicated_airspeed_mps() / kMpsPerKnot; }

    // Moves everything but the pilot on by one step.
    void step(double dt_s);
    // A client has sent a control event with the parameter it set before.
    void take_control_event(std::int32_t number);

  private:
    void tick_outputs() { instruments.step(airframe, 0, 0, 0); }
    void move_stick(double dt_s);
    void move_trim(double dt_s);
    bool elevator_was_in_hands_ = false;
};

}  // namespace simhost
