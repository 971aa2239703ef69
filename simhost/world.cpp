#include "simhost/world.h"

#include <cmath>

#include "simhost/units.h"

namespace simhost {

namespace {

constexpr double kMetresPerDegreeOfLatitude = 10001750.0 / 90.0;

// Where each beacon stands before the threshold; its beam widens with height.
struct MarkerBeacon {
    Marker marker;
    double along_m;
};
constexpr std::array<MarkerBeacon, 3> kMarkerBeacons{{
    {Marker::outer, -5200.0},
    {Marker::middle, -1050.0},
    {Marker::inner, -180.0},
}};

}  // namespace

const std::array<Station, 5>& stations() {
    static constexpr std::array<Station, 5> kStations{{
        {StationKind::localizer, StationDme::yes, kIlsFrequency, {1800.0, 0.0}, 374.0, 40000.0, "IWSF", "ILS 25"},
        {StationKind::vor, StationDme::yes, kVorFrequency, {-9500.0, 6200.0}, 520.0, 90000.0, "LKS", "LAKESIDE"},
        {StationKind::vor, StationDme::yes, kSecondVorFrequency, {14000.0, -9000.0}, 610.0, 90000.0, "HGT", "HIGHGATE"},
        {StationKind::ndb, StationDme::no, kNdbFrequency, {-5200.0, 0.0}, 365.0, 60000.0, "WSF", "WESTFIELD"},
        {StationKind::ndb, StationDme::no, kSecondNdbFrequency, {3200.0, -8200.0}, 640.0, 60000.0, "FRW", "FARWOOD"},
    }};
    return kStations;
}

Place place_of(RunwayPlace place) {
    const double heading = radians(kRunwayHeadingDeg);
    return {place.along_m * std::cos(heading) - place.across_m * std::sin(heading),
            place.along_m * std::sin(heading) + place.across_m * std::cos(heading)};
}

RunwayPlace runway_place_of(Place place) {
    const double heading = radians(kRunwayHeadingDeg);
    return {place.north_m * std::cos(heading) + place.east_m * std::sin(heading),
            -place.north_m * std::sin(heading) + place.east_m * std::cos(heading)};
}

double latitude_deg(Place place) {
    return kThresholdLatitudeDeg + place.north_m / kMetresPerDegreeOfLatitude;
}

double longitude_deg(Place place) {
    const double metres_per_degree = kMetresPerDegreeOfLatitude * std::cos(radians(kThresholdLatitudeDeg));
    return kThresholdLongitudeDeg + place.east_m / metres_per_degree;
}

double bearing_deg(Place from, Place to) {
    return wrap360(degrees(std::atan2(to.east_m - from.east_m, to.north_m - from.north_m)));
}

double distance_m(Place from, Place to) {
    return std::hypot(to.north_m - from.north_m, to.east_m - from.east_m);
}

const Station* find_station(StationKind kind, int frequency, Place place) {
    for (const Station& station : stations()) {
        if (station.kind == kind && station.frequency == frequency &&
            distance_m(place, place_of(station.place)) < station.range_m) {
            return &station;
        }
    }
    return nullptr;
}

Marker marker_at(RunwayPlace place, double height_m) {
    for (const MarkerBeacon& beacon : kMarkerBeacons) {
        const double reach_m = 60.0 + 0.45 * height_m;
        if (height_m > 3.0 && std::abs(place.along_m - beacon.along_m) < reach_m &&
            std::abs(place.across_m) < 2.0 * reach_m) {
            return beacon.marker;
        }
    }
    return Marker::none;
}

}  // namespace simhost
