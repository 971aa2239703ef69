#pragma once

#include "simhost/flight_script.h"
#include "simhost/units.h"

// What the phases in the air have in common. Whatever a client has in its hands stays as it is.
namespace simhost::air_phases {

inline constexpr double kCircuitHeightM = 390.0;
inline constexpr double kInterceptHeightM = 240.0;
inline constexpr double kBugRateDeg = 3.1;
inline constexpr double kRunwayMagneticDeg = kRunwayHeadingDeg - kMagneticVariationDeg;
inline constexpr double kDownwindMagneticDeg = kRunwayMagneticDeg - 180.0;
inline constexpr std::uint16_t kFlightLights = kNavigationLights | kBeacon | kInstrumentLights | kStrobes;

// Whether a client has the autopilot's or the radios' knobs.
bool client_flies(const Aircraft& aircraft);
bool client_tunes(const Aircraft& aircraft);

// Switches the autopilot on to hold heading and a height above the field, or off with all that belongs to it.
void engage(Aircraft& aircraft, double height_m, double climb_fpm);
void disengage(Aircraft& aircraft);

void move_propeller(Aircraft& aircraft, double wanted, double dt_s);
void move_mixture(Aircraft& aircraft, double wanted, double dt_s);
void move_switch(Aircraft& aircraft, bool& position, bool wanted);

// A true track that leads onto the runway's centre line, turning in by `gain` degrees a metre, at most `limit_deg`.
double track_to_centre_line(const Aircraft& aircraft, double gain, double limit_deg);

}  // namespace simhost::air_phases
