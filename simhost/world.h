#pragma once

#include <array>
#include <cstdint>

namespace simhost {

// The one airfield of the stand-in simulator and the radio stations around it. Places are metres north and east of the
// threshold of the landing runway; the ground is flat.
struct Place {
    double north_m = 0;
    double east_m = 0;
};

// The same place as the runway sees it: along the landing direction from the threshold, and to the right of it.
struct RunwayPlace {
    double along_m = 0;
    double across_m = 0;
};

inline constexpr double kRunwayHeadingDeg = 252.0;  // true
inline constexpr double kRunwayLengthM = 1500.0;
inline constexpr double kFieldElevationM = 372.0;
inline constexpr double kMagneticVariationDeg = 3.0;  // true = magnetic + variation
inline constexpr double kThresholdLatitudeDeg = 48.1534;
inline constexpr double kThresholdLongitudeDeg = 10.2871;
inline constexpr int kLocalMinutesBehindZulu = -60;

inline constexpr double kGlidePathDeg = 3.0;
inline constexpr double kGlidePathOriginM = 250.0;  // along the runway

Place place_of(RunwayPlace place);
RunwayPlace runway_place_of(Place place);
double latitude_deg(Place place);
double longitude_deg(Place place);

// True bearing from one place to another, 0..360.
double bearing_deg(Place from, Place to);
double distance_m(Place from, Place to);

enum class StationKind : std::uint8_t { vor, localizer, ndb };
enum class StationDme : std::uint8_t { no, yes };

// VOR and localizer frequencies are in units of 10 kHz less 100 MHz (1170 is 111.70 MHz), NDB frequencies in kHz.
struct Station {
    StationKind kind;
    StationDme dme;
    int frequency;
    RunwayPlace place;
    double elevation_m;
    double range_m;
    const char* identity;
    const char* name;
};

inline constexpr int kIlsFrequency = 1110;
inline constexpr int kVorFrequency = 1245;
inline constexpr int kSecondVorFrequency = 1580;
inline constexpr int kNdbFrequency = 352;
inline constexpr int kSecondNdbFrequency = 418;

const std::array<Station, 5>& stations();
// The station of that frequency that a receiver at the place would hear; nullptr when there is none.
const Station* find_station(StationKind kind, int frequency, Place place);

// Marker beacons below the approach: how far from the threshold, and which lamp.
enum class Marker : std::uint8_t { none, outer, middle, inner };
// The marker that is heard at that place and height above the field.
Marker marker_at(RunwayPlace place, double height_m);

}  // namespace simhost
