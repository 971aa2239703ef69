// The demo's whole cockpit in flight: every simulator value on its instrument, every knob in the simulator.
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <string>

#include "tests/app/cockpit_expectations.h"

namespace {

using namespace rig;
using simhost::Phase;

struct WholeCockpit : testing::Test {
    Rig rig{SimulatorAtStart::up, Instruments::all};

    Picture picture(int id) {
        Picture picture;
        rig.controller.device(id)->show(picture);
        return picture;
    }
    double plate_steps(int function, int sequence_number, int plate) {
        tables::CoreTables& tables = rig.cockpit.tables();
        return plate_position(
            tables.plates[static_cast<std::size_t>(plate)],
            simulator_value(tables.functions[static_cast<std::size_t>(function)], sequence_number, rig.sim()));
    }
    // The two clusters point where their plates put the simulator's values.
    void expect_clusters(const std::string& moment) {
        const Picture gauge = picture(37);
        for (const ClusterNeedle& needle : kClusterNeedles) {
            EXPECT_NEAR(gauge.value(needle.state), plate_steps(needle.function, needle.sequence_number, needle.plate),
                        1.0)
                << moment << ": " << needle.state;
        }
        for (int row = 0; row < 7; ++row) {
            const tables::ClusterRow& needle = rig.cockpit.tables().cluster[static_cast<std::size_t>(row)];
            EXPECT_NEAR(rig.cluster.pointer_steps(row), plate_steps(needle.ClusterSetting2, 1, needle.ClusterSetting3),
                        1.0)
                << moment << ": cluster needle " << row;
        }
    }
    void expect_the_simulator(const std::string& moment) {
        for (const Expectation& row : kExpectations) {
            const Picture shown = picture(row.id);
            EXPECT_LE(deviation(row, shown, rig.sim()), row.tolerance + 1e-6)
                << moment << ": instrument " << row.id << " shows " << row.state << " " << shown.value(row.state)
                << " for " << row.expected(rig.sim());
        }
        expect_clusters(moment);
        EXPECT_TRUE(rig.needles_are_right()) << moment;
    }
    void expect_healthy() {
        EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
        EXPECT_EQ(rig.controller.statistics().bad_frames, 0U);
        EXPECT_EQ(rig.controller.frames_for_nobody(), 0U);
    }
};

TEST_F(WholeCockpit, every_instrument_shows_the_simulator) {
    rig.start_run();
    rig.fly();
    for (const Phase phase : {Phase::run_up, Phase::take_off, Phase::climbing_turn, Phase::cruise, Phase::turbulence,
                              Phase::fast_descent, Phase::base_turn, Phase::final_approach, Phase::landing}) {
        rig.simulator.jump_to(phase);
        rig.advance(9s);
        rig.hold();
        rig.advance(6s);
        expect_the_simulator(std::string("in phase ").append(simhost::phase_name(phase)));
        rig.fly();
    }
    expect_healthy();
}

// The radios and knobs of the cockpit own what they set, so the pilot of the script flies round them.
TEST_F(WholeCockpit, a_whole_circuit_is_flown_with_the_settings_of_the_cockpit) {
    rig.start_run();
    rig.fly();
    std::map<std::string, int> seen;  // seconds
    int seconds = 0;
    const auto& script = rig.simulator.model().script();
    for (; script.finished_circuits() == 0 && seconds < 1200; ++seconds) {
        rig.advance(1s);
        for (const auto& [id, state] : {std::pair{35, "outer"},
                                        {35, "middle"},
                                        {35, "inner"},
                                        {34, "ap"},
                                        {34, "alt"},
                                        {34, "apr"},
                                        {34, "rol"},
                                        {5, "slopeValid"},
                                        {36, "lit"}}) {
            seen[state] += picture(id).value(state) != 0 ? 1 : 0;
        }
        seen["autopilot moves the wheel"] += picture(36).texts["motor"] == "autopilot" ? 1 : 0;
        seen["captured"] += rig.simulator.aircraft().autopilot.slope_captured() ? 1 : 0;
        seen["too slow"] += rig.text("frmStatus", "boxBusLoad").find("set") != std::string::npos ? 1 : 0;
    }
    EXPECT_EQ(script.finished_circuits(), 1) << rig.story();
    EXPECT_LT(seconds, 900);
    EXPECT_EQ(seen["too slow"], 0);
    for (const char* state :
         {"outer", "middle", "ap", "alt", "apr", "rol", "slopeValid", "captured", "autopilot moves the wheel"}) {
        EXPECT_GT(seen[state], 0) << state;
    }
    EXPECT_EQ(rig.text("frmStatus", "boxMissedTicks"), "0");
    expect_healthy();
}

enum class Width { u8, u16, i16, i32 };

// A control of an instrument of the demo, and where it ends in the simulator.
struct Turn {
    int id;
    const char* control;
    int amount;
    std::uint32_t offset;
    Width width;
    double unit;  // of one in the offset
    double expected;
    double tolerance;
};

double read(const OffsetSpace& sim, const Turn& turn) {
    switch (turn.width) {
        case Width::u8:
            return sim.read_u8(turn.offset) * turn.unit;
        case Width::u16:
            return sim.read_u16(turn.offset) * turn.unit;
        case Width::i16:
            return sim.read_i16(turn.offset) * turn.unit;
        default:
            return sim.read_i32(turn.offset) * turn.unit;
    }
}

// One after the other, on one and the same cockpit.
const Turn kTurns[] = {
    {1, "pressure", 7, 0x330, Width::u16, 1 / 541.76, 29.99, 0.003},
    {4, "bug", 30, 0x7CC, Width::u16, kTurn16, 30, 0.1},
    {4, "heading", -5, 0xC3E, Width::i16, kTurn16, -5, 0.1},
    {5, "obs", 10, 0xC4E, Width::u16, 1, 10, 0},
    {5, "obs", -11, 0xC4E, Width::u16, 1, 359, 0},
    {6, "obs", 90, 0xC5E, Width::u16, 1, 90, 0},
    {7, "card", 15, 0xC6C, Width::u16, 1, 15, 0},
    {12, "swap", 1, 0x34E, Width::u16, 1, 0x2150, 0},
    {13, "coarse", 1, 0x311E, Width::u16, 1, 0x1345, 0},
    {13, "swap", 1, 0x350, Width::u16, 1, 0x1345, 0},
    {14, "swap", 1, 0x34C, Width::u16, 1, 0x418, 0},
    {15, "comFine", 1, 0x311C, Width::u16, 1, 0x2292, 0},
    {15, "navSwap", 1, 0x352, Width::u16, 1, 0x1245, 0},
    {16, "swap", 1, 0x2D4, Width::u16, 1, 0x352, 0},
    {31, "digit4", 2, 0x354, Width::u16, 1, 0x7002, 0},
    {31, "ident", 1, 31635, Width::u8, 1, 1, 0},
    {31, "rotary", 2, 31633, Width::u8, 1, 1, 0},
    {33, "rotary", 2, 0x352, Width::u16, 1, 0x0800, 0},  // the unit has the radio now
    {33, "coarse", 2, 0x352, Width::u16, 1, 0x1000, 0},
    {34, "coarse", 3, 0x7D4, Width::i32, 3.28084 / 65536, 3000, 1},
    {34, "ap", 1, 0x7BC, Width::i32, 1, 1, 0},
    {34, "hdg", 1, 0x7C8, Width::i32, 1, 1, 0},
    {34, "alt", 1, 0x7D0, Width::i32, 1, 1, 0},
    {34, "ap", 1, 0x7BC, Width::i32, 1, 0, 0},
    {35, "adf", 1, 0x3122, Width::u8, 1, 0x81, 0},
    {36, "wheel", 10, 0xBC0, Width::i16, 512.0 / 16383, 80, 3},
};

TEST_F(WholeCockpit, every_knob_reaches_the_simulator) {
    rig.start_run();
    rig.simulator.jump_to(Phase::slow_flight);  // flown by hand
    rig.fly();
    rig.advance(5s);
    rig.hold();
    constexpr double kStandardInches = 29.92;
    rig.sim().write_u16(0x330, static_cast<std::uint16_t>(std::lround(kStandardInches * 541.76)));
    rig.advance(2s);
    for (const Turn& turn : kTurns) {
        ASSERT_TRUE(rig.controller.device(turn.id)->operate(turn.control, turn.amount)) << turn.id << turn.control;
        for (int wait = 0; wait < 60 && std::abs(read(rig.sim(), turn) - turn.expected) > turn.tolerance; ++wait) {
            rig.advance(50ms);
        }
        EXPECT_NEAR(read(rig.sim(), turn), turn.expected, turn.tolerance + 1e-6)
            << "instrument " << turn.id << ", " << turn.control << " by " << turn.amount << " at " << std::hex
            << turn.offset;
    }
    expect_healthy();
}

}  // namespace
