#include "simhost/radios.h"

#include <cmath>
#include <utility>

#include "simhost/units.h"

namespace simhost {

namespace {

constexpr double kVorFullScaleDeg = 10.0;
constexpr double kLocalizerFullScaleDeg = 2.5;
constexpr double kSlopeFullScaleDeg = 0.7;
constexpr double kNeedleFullScale = 127.0;
constexpr double kNeedleLagS = 0.4;
constexpr double kIdentS = 18.0;

double needle_of(double deviation_deg, double full_scale_deg) {
    return std::clamp(deviation_deg / full_scale_deg, -1.0, 1.0) * kNeedleFullScale;
}

void receive_dme(NavReceiver& receiver, const AntennaState& antenna) {
    receiver.has_dme = receiver.good() && receiver.station->dme == StationDme::yes;
    if (!receiver.has_dme) {
        receiver.dme_nm = NavReceiver::kNoDme;
        receiver.dme_knots = 0;
        receiver.dme_seconds = 0;
        return;
    }
    const Place there = place_of(receiver.station->place);
    const double rise_m = kFieldElevationM + antenna.height_m - receiver.station->elevation_m;
    const double slant_m = std::max(1.0, std::hypot(distance_m(antenna.place, there), rise_m));
    const double closing_mps =
        antenna.ground_speed_mps * std::cos(radians(bearing_deg(antenna.place, there) - antenna.track_deg));
    receiver.dme_nm = slant_m / kMetresPerNm;
    receiver.dme_knots = std::abs(closing_mps) / kMpsPerKnot;
    receiver.dme_seconds = std::min(3276.0, slant_m / std::max(1.0, std::abs(closing_mps)));
}

void receive_localizer(NavReceiver& receiver, const AntennaState& antenna) {
    const RunwayPlace here = runway_place_of(antenna.place);
    const double before_m = receiver.station->place.along_m - here.along_m;
    const double off_centre_deg = degrees(std::atan2(here.across_m, std::max(1.0, std::abs(before_m))));
    receiver.deviation_deg = -off_centre_deg;
    receiver.to_from = before_m > 0 ? 1 : 2;
    const double to_slope_m = kGlidePathOriginM - here.along_m;
    receiver.glide_slope = to_slope_m > 50.0 && std::abs(off_centre_deg) < 30.0;
    receiver.slope_deviation_deg =
        receiver.glide_slope ? kGlidePathDeg - degrees(std::atan2(antenna.height_m, to_slope_m)) : 0.0;
    receiver.radial_deg = wrap360(kRunwayHeadingDeg + 180.0 - off_centre_deg);
}

void receive_vor(NavReceiver& receiver, double obs_deg, const AntennaState& antenna) {
    receiver.radial_deg =
        wrap360(bearing_deg(place_of(receiver.station->place), antenna.place) - kMagneticVariationDeg);
    const double off_radial = wrap180(receiver.radial_deg - obs_deg);
    receiver.to_from = std::abs(off_radial) > 90.0 ? 1 : 2;
    receiver.deviation_deg = receiver.to_from == 1 ? wrap180(receiver.radial_deg - 180.0 - obs_deg) : -off_radial;
    receiver.glide_slope = false;
    receiver.slope_deviation_deg = 0;
}

void receive_nav(NavReceiver& receiver, std::uint16_t word, double obs_deg, const AntennaState& antenna, double dt_s) {
    receiver.station = nullptr;
    if (antenna.powered) {
        const int frequency = bcd_number(word);
        const Station* const localizer = find_station(StationKind::localizer, frequency, antenna.place);
        receiver.station = localizer != nullptr ? localizer : find_station(StationKind::vor, frequency, antenna.place);
    }
    receiver.localizer = receiver.good() && receiver.station->kind == StationKind::localizer;
    receive_dme(receiver, antenna);
    double full_scale = kVorFullScaleDeg;
    if (!receiver.good()) {
        receiver.to_from = 0;
        receiver.glide_slope = false;
        receiver.deviation_deg = 0;
        receiver.slope_deviation_deg = 0;
        receiver.signal = 0;
    } else {
        receiver.signal =
            256.0 * (1.0 - distance_m(antenna.place, place_of(receiver.station->place)) / receiver.station->range_m);
        receiver.relative_bearing_deg =
            wrap360(bearing_deg(antenna.place, place_of(receiver.station->place)) - antenna.true_heading_deg);
        if (receiver.localizer) {
            full_scale = kLocalizerFullScaleDeg;
            receive_localizer(receiver, antenna);
        } else {
            receive_vor(receiver, obs_deg, antenna);
        }
    }
    receiver.needle = lag(receiver.needle, needle_of(receiver.deviation_deg, full_scale), kNeedleLagS, dt_s);
    receiver.slope_needle =
        lag(receiver.slope_needle, -needle_of(receiver.slope_deviation_deg, kSlopeFullScaleDeg), kNeedleLagS, dt_s);
}

void receive_adf(AdfReceiver& receiver, std::uint16_t main, std::uint16_t extended, const AntennaState& antenna,
                 double dt_s) {
    const int kilohertz = bcd_number(main) + 1000 * ((extended >> 8) & 0x0F);
    receiver.station = antenna.powered ? find_station(StationKind::ndb, kilohertz, antenna.place) : nullptr;
    if (!receiver.good()) {
        receiver.signal = 0;
        return;
    }
    const Place there = place_of(receiver.station->place);
    receiver.signal = 256.0 * (1.0 - distance_m(antenna.place, there) / receiver.station->range_m);
    const double relative = bearing_deg(antenna.place, there) - antenna.true_heading_deg;
    receiver.relative_bearing_deg = wrap180(lag_angle(receiver.relative_bearing_deg, relative, 0.8, dt_s));
}

}  // namespace

int bcd_number(std::uint16_t word) {
    return (word >> 12) * 1000 + ((word >> 8) & 15) * 100 + ((word >> 4) & 15) * 10 + (word & 15);
}

std::uint16_t bcd_word(int number) {
    const unsigned digits = static_cast<unsigned>(std::abs(number));
    return static_cast<std::uint16_t>((digits / 1000 % 10 << 12) | (digits / 100 % 10 << 8) | (digits / 10 % 10 << 4) |
                                      digits % 10);
}

void Radios::swap(std::uint8_t request) {
    if ((request & 8U) != 0) {
        std::swap(com1_active, com1_standby);
    }
    if ((request & 4U) != 0) {
        std::swap(com2_active, com2_standby);
    }
    if ((request & 2U) != 0) {
        std::swap(nav1_active, nav1_standby);
    }
    if ((request & 1U) != 0) {
        std::swap(nav2_active, nav2_standby);
    }
}

void Radios::step(double dt_s) {
    // An ident goes out for a while and then ends by itself.
    if (transponder_ident == 0) {
        ident_left_s = kIdentS;
    } else {
        ident_left_s -= dt_s;
        if (ident_left_s <= 0) {
            transponder_ident = 0;
        }
    }
}

void Navigation::step(const Radios& radios, const AntennaState& antenna, double dt_s) {
    receive_nav(nav1, radios.nav1_active, radios.obs1_deg, antenna, dt_s);
    receive_nav(nav2, radios.nav2_active, radios.obs2_deg, antenna, dt_s);
    receive_adf(adf1, radios.adf1_main, radios.adf1_extended, antenna, dt_s);
    receive_adf(adf2, radios.adf2_main, radios.adf2_extended, antenna, dt_s);
    marker = antenna.powered ? marker_at(runway_place_of(antenna.place), antenna.height_m) : Marker::none;
}

std::uint16_t Navigation::radio_flags() const {
    unsigned flags = 0;
    flags |= nav1.good() ? 1U << 1 : 0U;
    flags |= nav2.good() ? 1U << 2 : 0U;
    flags |= adf1.good() ? 1U << 3 : 0U;
    flags |= nav1.has_dme ? 1U << 4 : 0U;
    flags |= nav2.has_dme ? 1U << 5 : 0U;
    flags |= nav1.localizer ? 1U << 6 : 0U;
    flags |= adf2.good() ? 1U << 11 : 0U;
    flags |= nav2.localizer ? 1U << 12 : 0U;
    return static_cast<std::uint16_t>(flags);
}

}  // namespace simhost
