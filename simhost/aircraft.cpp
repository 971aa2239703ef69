#include "simhost/aircraft.h"

#include <cmath>

#include "simhost/units.h"

namespace simhost {

namespace {

constexpr std::size_t kRememberedControls = 64;
constexpr double kStickSpeed = 2.5;  // full deflections a second
constexpr double kTrimSpeed = 0.06;  // of the elevator's position, a second
constexpr double kAutopilotTrimSpeed = 0.2;
constexpr double kHandOverTrimSpeed = 0.4;
constexpr double kTrimHeightM = 15.0;
constexpr double kOverspeedReset = 137.0;

}  // namespace

void Aircraft::move_stick(double dt_s) {
    StickWish wish = autopilot.wish();
    if (!autopilot.flying()) {
        wish.elevator = controls.elevator_hand.blend(pilot_stick.elevator);
        wish.aileron = controls.aileron_hand.blend(pilot_stick.aileron);
        wish.rudder = controls.rudder_hand.blend(pilot_stick.rudder);
    }
    if (airframe.stall_warning() || overspeed) {
        controls.elevator_hand.shaken();
    }
    const bool elevator_in_hands = controls.elevator_hand.held() && !autopilot.flying();
    if (elevator_in_hands && !elevator_was_in_hands_) {
        controls.trim_for_the_client();
    }
    elevator_was_in_hands_ = elevator_in_hands;
    controls.elevator = approach(controls.elevator, wish.elevator, kStickSpeed * dt_s);
    controls.aileron = approach(controls.aileron, wish.aileron, kStickSpeed * dt_s);
    controls.rudder = approach(controls.rudder, wish.rudder, kStickSpeed * dt_s);
    if (airframe.height_m() > kTrimHeightM && !hands.holds(ClientGroup::trims)) {
        move_trim(dt_s);
    }
}

// The pilot and the autopilot trim away what they hold; a client's hands get an aircraft in trim and trim it
// themselves.
void Aircraft::move_trim(double dt_s) {
    if (elevator_was_in_hands_) {
        controls.elevator_trim = approach(controls.elevator_trim, controls.client_trim, kHandOverTrimSpeed * dt_s);
    } else {
        const double speed = autopilot.flying() ? kAutopilotTrimSpeed : kTrimSpeed;
        controls.elevator_trim += speed * controls.elevator * dt_s;
    }
    controls.rudder_trim += 0.5 * kTrimSpeed * controls.rudder * dt_s;
    controls.elevator_trim = std::clamp(controls.elevator_trim, -0.9, 0.9);
    controls.rudder_trim = std::clamp(controls.rudder_trim, -0.9, 0.9);
}

void Aircraft::step(double dt_s) {
    hands.step(dt_s);
    weather.step(turbulence, dt_s);
    clock.step(dt_s);
    move_stick(dt_s);
    controls.step(electrical.main_bus_volts(), dt_s);

    const double altitude_m = airframe.altitude_m();
    const EngineAir air{weather.pressure_mb(altitude_m) / kMillibarPerInHg, weather.temperature_c(altitude_m),
                        airframe.true_airspeed_mps()};
    engine.step(controls, air, electrical.main_bus_volts(), tanks, dt_s);
    electrical.step(controls, engine, dt_s);
    airframe.step(controls.airframe_inputs(engine.thrust_n()), weather, dt_s);

    AntennaState antenna;
    antenna.place = airframe.place();
    antenna.height_m = airframe.height_m();
    antenna.true_heading_deg = airframe.heading_deg();
    antenna.track_deg = airframe.track_deg();
    antenna.ground_speed_mps = airframe.ground_speed_mps();
    antenna.powered = electrical.avionics_work();
    radios.step(dt_s);
    navigation.step(radios, antenna, dt_s);
    if (!autopilot.flying()) {
        autopilot.watch_stick({controls.elevator, controls.aileron, controls.rudder});
    }
    autopilot.step(airframe, navigation.nav1, electrical.avionics_work(), radios.obs1_deg, dt_s);
    instruments.step(airframe, engine.vacuum_in_hg(), electrical.main_bus_volts(), dt_s);
    overspeed = indicated_airspeed_knots() > (overspeed ? kOverspeedReset : kNeverExceedKnots);
}

void Aircraft::take_control_event(std::int32_t number) {
    if (sent_controls.size() == kRememberedControls) {
        sent_controls.erase(sent_controls.begin());
    }
    sent_controls.push_back({number, control_parameter});
}

}  // namespace simhost
