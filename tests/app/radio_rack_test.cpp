// Radios, transponders and the audio panel in the whole program: knob to simulator, simulator to display.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bench/devices/audio_panel.h"
#include "bench/devices/device_families.h"
#include "bench/devices/transponders.h"
#include "tests/support/rig.h"

namespace {

using namespace rig;

// Places of the simulator.
constexpr std::uint32_t kCom1 = 0x34E;
constexpr std::uint32_t kCom1Standby = 0x311A;
constexpr std::uint32_t kCom2 = 0x3118;
constexpr std::uint32_t kNav1 = 0x350;
constexpr std::uint32_t kNav1Standby = 0x311E;
constexpr std::uint32_t kNav2 = 0x352;
constexpr std::uint32_t kAdf1 = 0x34C;
constexpr std::uint32_t kAdf1Ends = 0x356;
constexpr std::uint32_t kAdf2 = 0x2D4;
constexpr std::uint32_t kAdf2Ends = 0x2D6;
constexpr std::uint32_t kCode = 0x354;
constexpr std::uint32_t kXpndrMode = 31633;
constexpr std::uint32_t kXpndrIdent = 31635;
constexpr std::uint32_t kSound = 0x3122;
constexpr std::uint32_t kOuterMarker = 2992;

struct Unit {
    int id;
    int type;
    int model;
    int function;
    int number;
    int plate1;
    int plate2;
};

// The program with some instruments more.
struct Rack {
    Rig rig;

    void build(const std::vector<Unit>& units) {
        rig.start_run();
        rig.cockpit.panels().show("frmStatus");
        rig.click("frmStatus", "cmdStop");
        for (const Unit& unit : units) {
            tables::GaugeRow& row = rig.cockpit.tables().gauges[static_cast<std::size_t>(unit.id)];
            row = {};
            row.GaugeType = static_cast<std::uint8_t>(unit.type);
            row.GaugeModel = static_cast<std::uint8_t>(unit.model);
            row.GaugeFunction1 = static_cast<std::int16_t>(unit.function);
            row.GaugeFunction2 = static_cast<std::int16_t>(unit.function + 1);
            row.GaugeSeqNr1 = row.GaugeSeqNr2 = static_cast<std::uint8_t>(unit.number);
            row.GaugePlate1 = static_cast<std::int16_t>(unit.plate1);
            row.GaugePlate2 = static_cast<std::int16_t>(unit.plate2);
            bench::set_up_device(rig.controller.add(unit.id, {.type = unit.type, .model = unit.model}), row);
        }
        rig.cockpit.sim_com().CloseAllPorts();  // as the configuration panels do
        rig.cockpit.ports().OpenAllPorts();
        rig.click("frmStatus", "cmdRun");
        rig.advance(2s);
    }
    // Turns a control and gives the report its time.
    void turn(int id, const char* name, int amount) {
        EXPECT_TRUE(rig.controller.device(id)->operate(name, amount)) << name;
        rig.advance(800ms);
    }
    void expect_healthy() {
        EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
        EXPECT_EQ(rig.controller.statistics().bad_frames, 0U);
        EXPECT_EQ(rig.controller.frames_for_nobody(), 0U);
    }
};

TEST(RadioRack, every_knob_of_the_radios_reaches_the_simulator) {
    Rack rack;
    Rig& rig = rack.rig;
    rack.build({{70, 110, 0, 20, 1, 0, 1},
                {71, 111, 1, 22, 1, 0, 1},
                {72, 110, 2, 24, 1, 0, 0},
                {73, 121, 3, 24, 2, 0, 0},
                {74, 120, 1, 20, 2, 0, 1},
                {75, 125, 1, 38, 1, 0, 0}});
    struct Case {
        int id;
        const char* control;  // empty: only looks
        int amount;
        std::uint32_t offset;
        int expected;
    };
    for (const auto& [offset, expected] : {std::pair{kCom1, 0x1835},
                                           {kNav1, 0x1110},
                                           {kAdf1, 0x352},
                                           {kAdf2, 0x418},
                                           {kCom2, 0x2480},
                                           {kNav2, 0x1580}}) {
        EXPECT_EQ(rig.sim().read_u16(offset), expected) << "at " << std::hex << offset << ", before any knob is turned";
    }
    for (const Case& one : std::vector<Case>{{70, "swap", 1, kCom1, 0x2150},
                                             {70, "coarse", 1, kCom1Standby, 0x1935},
                                             {70, "fine", 1, kCom1Standby, 0x1937},
                                             {71, "fine", 1, kNav1Standby, 0x1250},
                                             {71, "swap", 1, kNav1, 0x1250},
                                             {72, "fine", -1, kAdf1, 0x352},
                                             {72, "swap", 1, kAdf1, 0x417},
                                             {72, "", 0, kAdf1Ends, 0x5},
                                             {73, "coarse", 10, kAdf2, 0x418},
                                             {73, "fine", 1, kAdf2Ends, 0},
                                             {73, "swap", 1, kAdf2, 0x353},
                                             {73, "bfo", 1, kAdf2Ends, 0x100},
                                             {74, "comSwap", 1, kCom2, 0x2290},
                                             {74, "navSwap", 1, kNav2, 0x1245},
                                             {74, "on", 0, kNav2, 0},
                                             {74, "on", 1, kNav2, 0x1245},
                                             {75, "adf", 1, kSound, 0x81},
                                             {75, "com2", 1, kSound, 0xE1}}) {
        if (*one.control != '\0') {
            rack.turn(one.id, one.control, one.amount);
        }
        const int found = one.offset == kSound ? rig.sim().read_u8(one.offset) : rig.sim().read_u16(one.offset);
        EXPECT_EQ(found, one.expected) << one.id << ' ' << one.control << "\n" << rig.story();
    }
    rack.expect_healthy();
}

TEST(RadioRack, marker_lamps_follow_the_simulator) {
    Rack rack;
    Rig& rig = rack.rig;
    rack.build({{75, 125, 1, 38, 1, 0, 0}});
    const auto& panel = dynamic_cast<const bench::AudioPanel&>(*rig.controller.device(75));
    rig.hold();
    rig.sim().write_u16(kOuterMarker, 1);
    rig.advance(500ms);
    EXPECT_TRUE(panel.marker_lamp(bench::AudioPanel::outer));
    rig.sim().write_u16(kOuterMarker, 0);
    rig.advance(500ms);
    EXPECT_FALSE(panel.marker_lamp(bench::AudioPanel::outer));
    rack.expect_healthy();
}

TEST(RadioRack, a_transponder_sets_code_mode_and_ident_and_shows_the_flight_level) {
    struct Case {
        int type;
        int standby_position;
        int standby_mode;
    };
    for (const Case& one : {Case{112, 2, 1}, Case{114, 2, 3}, Case{122, 2, 1}}) {
        Rack rack;
        Rig& rig = rack.rig;
        rack.build({{76, one.type, 1, 26, 1, 3, 0}});
        EXPECT_EQ(rig.sim().read_u16(kCode), 0x7000) << one.type;
        EXPECT_EQ(rig.sim().read_u8(kXpndrMode), 0) << one.type;
        rack.turn(76, "digit1", 1);
        rack.turn(76, "digit4", 3);
        EXPECT_EQ(rig.sim().read_u16(kCode), 0x0003) << one.type;
        rack.turn(76, "rotary", one.standby_position);
        EXPECT_EQ(rig.sim().read_u8(kXpndrMode), one.standby_mode) << one.type;
        rack.turn(76, "ident", 1);
        EXPECT_EQ(rig.sim().read_u8(kXpndrIdent), 1) << one.type;
        rig.advance(1s);
        EXPECT_EQ(rig.sim().read_u8(kXpndrIdent), 0) << one.type;
        if (const auto* king = dynamic_cast<const bench::BkTransponder*>(rig.controller.device(76))) {
            rack.turn(76, "rotary", bench::BkTransponder::altitude);
            const int level = static_cast<int>(rig.cockpit.tables().CurrentAltitude) / 100;
            EXPECT_EQ(std::stoi(king->flight_level_text()), level);
        }
        rack.expect_healthy();
    }
}

}  // namespace
