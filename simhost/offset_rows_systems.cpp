#include <cmath>

#include "simhost/offset_map.h"
#include "simhost/units.h"

// Engine, fuel, electrics, controls, surfaces, switches and lights.
namespace simhost {

namespace {

using A = Aircraft;
using K = OffsetKind;
using G = ClientGroup;

constexpr double kFull14 = 16384.0;  // levers and engine figures
constexpr double kFull15 = 16383.0;  // controls and surfaces
constexpr double kParked = 32767.0;
constexpr double kTankUnits = 128.0 * 65536.0 / 100.0;  // of a percent of a tank

// Throws of the surfaces, radians, for the offsets that tell deflections.
constexpr double kElevatorThrowRad = 0.45;
constexpr double kElevatorTrimThrowRad = 0.22;
constexpr double kAileronThrowRad = 0.30;
constexpr double kAileronTrimThrowRad = 0.06;
constexpr double kRudderThrowRad = 0.28;
constexpr double kRudderTrimThrowRad = 0.10;

double flag(bool on) {
    return on ? 1.0 : 0.0;
}
double lever(double value) {
    return std::clamp(value, 0.0, 1.0);
}
double axis(double value) {
    return std::clamp(value, -1.0, 1.0);
}
double percent_of_tank(double gallons) {
    return 100.0 * gallons / FuelTanks::kCapacityGal;
}
double rpm_share(const A& a) {
    return a.engine.rpm() / Engine::kMaximumRpm;
}

void set_light(A& a, std::uint16_t bit, double value) {
    const unsigned lights = value != 0 ? a.controls.lights | bit : a.controls.lights & ~unsigned{bit};
    a.controls.lights = static_cast<std::uint16_t>(lights);
    a.hands.touch(G::lights);
}
template <std::uint16_t kBit>
double light(const A& a) {
    return flag((a.controls.lights & kBit) != 0);
}
template <std::uint16_t kBit>
void put_light(A& a, double value) {
    set_light(a, kBit, value);
}
template <bool Controls::*kSwitch>
double switch_position(const A& a) {
    return flag(a.controls.*kSwitch);
}
template <bool Controls::*kSwitch>
void put_switch(A& a, double value) {
    a.controls.*kSwitch = value != 0;
    a.hands.touch(G::switches);
}
template <double Controls::*kLever>
double lever_position(const A& a) {
    return a.controls.*kLever;
}
template <double Controls::*kLever, ClientGroup kGroup>
void put_lever(A& a, double value) {
    a.controls.*kLever = lever(value);
    a.hands.touch(kGroup);
}
template <double Controls::*kTrim>
void put_trim(A& a, double value) {
    a.controls.*kTrim = axis(value);
    a.controls.client_trim = a.controls.elevator_trim;  // what the client has trimmed stays
    a.hands.touch(G::trims);
}

void set_magnetos(A& a, double value) {
    a.controls.magnetos = static_cast<Magnetos>(static_cast<int>(std::clamp(std::round(value), 0.0, 4.0)));
    a.hands.touch(G::switches);
}
void set_lights(A& a, double value) {
    a.controls.lights = static_cast<std::uint16_t>(static_cast<int>(std::clamp(value, 0.0, 65535.0)));
    a.hands.touch(G::lights);
}
void set_parking_brake(A& a, double value) {
    a.controls.parking_brake = value > 0.5;
    a.hands.touch(G::brakes);
}

constexpr OffsetRow kRows[] = {
    {0x0280, K::u8, 1, "navigation_lights", "", light<kNavigationLights>, put_light<kNavigationLights>},
    {0x0281, K::u8, 1, "strobes", "", light<kStrobes>, put_light<kStrobes>},
    {0x028C, K::u8, 1, "landing_lights", "", light<kLandingLights>, put_light<kLandingLights>},
    {0x029C, K::u8, 1, "pitot_heat", "", switch_position<&Controls::pitot_heat>, put_switch<&Controls::pitot_heat>},

    {0x088C, K::i16, kFull14, "throttle", "", lever_position<&Controls::throttle>,
     put_lever<&Controls::throttle, G::throttle>},
    {0x088E, K::i16, kFull14, "propeller", "", lever_position<&Controls::propeller>,
     put_lever<&Controls::propeller, G::propeller>},
    {0x0890, K::i16, kFull14, "mixture", "", lever_position<&Controls::mixture>,
     put_lever<&Controls::mixture, G::mixture>},
    {0x0892, K::u16, 1, "magnetos", "",
     [](const A& a) { return static_cast<double>(static_cast<int>(a.controls.magnetos)); }, set_magnetos},
    {0x0894, K::u16, 1, "combustion", "", [](const A& a) { return flag(a.engine.running()); }, nullptr},
    {0x0896, K::i16, kFull14, "n2", "", rpm_share, nullptr},
    {0x0898, K::i16, kFull14, "rpm_share", "", rpm_share, nullptr},
    {0x08A0, K::u16, 128, "fuel_flow_sea_level", "lb/h", [](const A& a) { return a.engine.fuel_flow_pph(); }, nullptr},
    {0x08B2, K::u16, 1, "carburettor_heat", "", switch_position<&Controls::carburettor_heat>,
     put_switch<&Controls::carburettor_heat>},
    {0x08B8, K::i16, kFull14 / 140.0, "oil_temperature", "C", [](const A& a) { return a.engine.oil_temperature_c(); },
     nullptr},
    {0x08BA, K::u16, kFull14 / 55.0, "oil_pressure", "psi", [](const A& a) { return a.engine.oil_pressure_psi(); },
     nullptr},
    {0x08BE, K::i16, kFull14 / 860.0, "exhaust_temperature", "C", [](const A& a) { return a.engine.exhaust_c(); },
     nullptr},
    {0x08C0, K::u16, 1024, "manifold_pressure", "inHg", [](const A& a) { return a.engine.manifold_in_hg(); }, nullptr},
    {0x08C8, K::u16, 1, "rpm_scaler", "", [](const A&) { return Engine::kMaximumRpm * 65536.0 / kFull14; }, nullptr},
    {0x08D0, K::i32, kFull14 / 100.0, "oil_quantity", "%", [](const A&) { return 94.0; }, nullptr},
    {0x08D4, K::i32, kFull14 / 5.0, "vibration", "", [](const A& a) { return a.engine.vibration(); }, nullptr},
    {0x08E8, K::f64, 1, "cylinder_head_temperature", "F",
     [](const A& a) { return a.engine.cylinder_head_c() * 1.8 + 32.0; }, nullptr},
    {0x08F8, K::i32, 144, "fuel_pressure", "psi", [](const A& a) { return a.engine.fuel_pressure_psi(); }, nullptr},
    {0x0918, K::f64, 1, "fuel_flow", "lb/h", [](const A& a) { return a.engine.fuel_flow_pph(); }, nullptr},
    {0x0AEC, K::u16, 1, "engines", "", [](const A&) { return 1.0; }, nullptr},
    {0x0AF4, K::u16, 256, "fuel_weight", "lb/gal", [](const A&) { return FuelTanks::kPoundsPerGal; }, nullptr},
    {0x0B18, K::f64, 1, "suction", "inHg", [](const A& a) { return a.engine.vacuum_in_hg(); }, nullptr},
    {0x0B7C, K::i32, kTankUnits, "fuel_left", "%", [](const A& a) { return percent_of_tank(a.tanks.left_gal); },
     [](A& a, double v) { a.tanks.left_gal = lever(v / 100.0) * FuelTanks::kCapacityGal; }},
    {0x0B80, K::i32, 1, "fuel_left_capacity", "gal", [](const A&) { return FuelTanks::kCapacityGal; }, nullptr},
    {0x0B94, K::i32, kTankUnits, "fuel_right", "%", [](const A& a) { return percent_of_tank(a.tanks.right_gal); },
     [](A& a, double v) { a.tanks.right_gal = lever(v / 100.0) * FuelTanks::kCapacityGal; }},
    {0x0B98, K::i32, 1, "fuel_right_capacity", "gal", [](const A&) { return FuelTanks::kCapacityGal; }, nullptr},

    {0x0BB2, K::i16, kFull15, "elevator", "", lever_position<&Controls::elevator>,
     [](A& a, double v) { a.controls.elevator_hand.client_writes(axis(v)); }},
    {0x0BB4, K::i16, kFull15, "elevator_position", "", lever_position<&Controls::elevator_surface>, nullptr},
    {0x0BB6, K::i16, kFull15, "aileron", "", lever_position<&Controls::aileron>,
     [](A& a, double v) { a.controls.aileron_hand.client_writes(axis(v)); }},
    {0x0BB8, K::i16, kFull15, "aileron_position", "", lever_position<&Controls::aileron_surface>, nullptr},
    {0x0BBA, K::i16, kFull15, "rudder", "", lever_position<&Controls::rudder>,
     [](A& a, double v) { a.controls.rudder_hand.client_writes(axis(v)); }},
    {0x0BBC, K::i16, kFull15, "rudder_position", "", lever_position<&Controls::rudder_surface>, nullptr},
    {0x0BC0, K::i16, kFull15, "elevator_trim", "", lever_position<&Controls::elevator_trim>,
     put_trim<&Controls::elevator_trim>},
    {0x0BC2, K::i16, kFull15, "elevator_trim_indicator", "", lever_position<&Controls::elevator_trim>, nullptr},
    {0x0BC4, K::i16, kFull15, "left_brake", "", lever_position<&Controls::left_brake>,
     put_lever<&Controls::left_brake, G::brakes>},
    {0x0BC6, K::i16, kFull15, "right_brake", "", lever_position<&Controls::right_brake>,
     put_lever<&Controls::right_brake, G::brakes>},
    {0x0BC8, K::i16, kParked, "parking_brake", "", [](const A& a) { return flag(a.controls.parking_brake); },
     set_parking_brake},
    {0x0BDC, K::i32, kFull15, "flaps_lever", "", lever_position<&Controls::flaps_lever>,
     put_lever<&Controls::flaps_lever, G::flaps>},
    {0x0BE0, K::i32, kFull15, "flaps_left", "", lever_position<&Controls::flaps>, nullptr},
    {0x0BE4, K::i32, kFull15, "flaps_right", "", lever_position<&Controls::flaps>, nullptr},
    {0x0BE8, K::i32, kFull15, "gear_lever", "", lever_position<&Controls::gear_lever>,
     put_lever<&Controls::gear_lever, G::gear>},
    {0x0BEC, K::i32, kFull15, "gear_nose", "", lever_position<&Controls::gear>, nullptr},
    {0x0BF0, K::i32, kFull15, "gear_right", "", lever_position<&Controls::gear>, nullptr},
    {0x0BF4, K::i32, kFull15, "gear_left", "", lever_position<&Controls::gear>, nullptr},
    {0x0C02, K::i16, kFull15, "aileron_trim", "", lever_position<&Controls::aileron_trim>,
     put_trim<&Controls::aileron_trim>},
    {0x0C04, K::i16, kFull15, "rudder_trim", "", lever_position<&Controls::rudder_trim>,
     put_trim<&Controls::rudder_trim>},
    {0x0D0C, K::u16, 1, "lights", "bits", [](const A& a) { return static_cast<double>(a.controls.lights); },
     set_lights},

    {0x2400, K::f64, 1, "rpm", "1/min", [](const A& a) { return a.engine.rpm(); }, nullptr},
    {0x2410, K::f64, 1, "thrust", "lbf", [](const A& a) { return a.engine.thrust_n() / 4.448222; }, nullptr},
    {0x281C, K::i32, 1, "battery_switch", "", switch_position<&Controls::battery>, put_switch<&Controls::battery>},
    {0x2824, K::f64, 1, "total_load", "A", [](const A& a) { return a.electrical.total_load_amps(); }, nullptr},
    {0x282C, K::f64, 1, "battery_load", "A", [](const A& a) { return -a.electrical.battery_amps(); }, nullptr},
    {0x2834, K::f64, 1, "battery_volts", "V", [](const A& a) { return a.electrical.battery_volts(); }, nullptr},
    {0x2840, K::f64, 1, "main_bus_volts", "V", [](const A& a) { return a.electrical.main_bus_volts(); }, nullptr},
    {0x2848, K::f64, 1, "main_bus_amps", "A", [](const A& a) { return a.electrical.main_bus_amps(); }, nullptr},
    {0x2850, K::f64, 1, "avionics_bus_volts", "V", [](const A& a) { return a.electrical.avionics_bus_volts(); },
     nullptr},
    {0x2858, K::f64, 1, "avionics_bus_amps", "A", [](const A& a) { return a.electrical.avionics_bus_amps(); }, nullptr},
    {0x2860, K::f64, 1, "hot_bus_volts", "V", [](const A& a) { return a.electrical.battery_volts(); }, nullptr},
    {0x2880, K::f64, 1, "alternator_volts", "V", [](const A& a) { return a.electrical.alternator_volts(); }, nullptr},
    {0x2888, K::f64, 1, "alternator_amps", "A", [](const A& a) { return a.electrical.alternator_amps(); }, nullptr},
    {0x2E80, K::i32, 1, "avionics_switch", "", switch_position<&Controls::avionics>, put_switch<&Controls::avionics>},
    {0x2E98, K::f64, kElevatorThrowRad, "elevator_deflection", "", lever_position<&Controls::elevator_surface>,
     nullptr},
    {0x2EA0, K::f64, kElevatorTrimThrowRad, "elevator_trim_deflection", "", lever_position<&Controls::elevator_trim>,
     nullptr},
    {0x2EA8, K::f64, kAileronThrowRad, "aileron_deflection", "", lever_position<&Controls::aileron_surface>, nullptr},
    {0x2EB0, K::f64, kAileronTrimThrowRad, "aileron_trim_deflection", "", lever_position<&Controls::aileron_trim>,
     nullptr},
    {0x2EB8, K::f64, kRudderThrowRad, "rudder_deflection", "", lever_position<&Controls::rudder_surface>, nullptr},
    {0x2EC0, K::f64, kRudderTrimThrowRad, "rudder_trim_deflection", "", lever_position<&Controls::rudder_trim>,
     nullptr},
    {0x3101, K::u8, 1, "alternator_switch", "", switch_position<&Controls::alternator>,
     put_switch<&Controls::alternator>},
    {0x3102, K::u8, 1, "battery_switch_byte", "", switch_position<&Controls::battery>, put_switch<&Controls::battery>},
    {0x3103, K::u8, 1, "avionics_switch_byte", "", switch_position<&Controls::avionics>,
     put_switch<&Controls::avionics>},
    {0x3104, K::u8, 1, "fuel_pump", "", switch_position<&Controls::fuel_pump>, put_switch<&Controls::fuel_pump>},
    // The brightness of the instrument lights has no place of its own in the interface; it stands in the free area.
    {0x66E0, K::u16, 1023, "dimmer", "", lever_position<&Controls::dimmer>, put_lever<&Controls::dimmer, G::lights>},
};

}  // namespace

std::span<const OffsetRow> system_offset_rows() {
    return kRows;
}

}  // namespace simhost
