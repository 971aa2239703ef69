// The demo's whole cockpit in flight: every simulator value on its instrument, every knob in the simulator.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>
#include <string>

#include "tests/support/rig.h"

namespace {

using namespace rig;
using simhost::OffsetSpace;
using simhost::Phase;

constexpr double kTurn16 = 360.0 / 65536;
constexpr double kTurn32 = 360.0 / 4294967296.0;

// What a device shows, by name; flags are numbers 0 and 1.
struct Picture : bench::StateSink {
    std::map<std::string, double> numbers;
    std::map<std::string, std::string> texts;
    void number(std::string_view name, double value) override { numbers[std::string(name)] = value; }
    void text(std::string_view name, std::string_view value) override { texts[std::string(name)] = value; }
    void flag(std::string_view name, bool value) override { numbers[std::string(name)] = value ? 1 : 0; }

    // A text reads as its number, blanks and dashes as -1.
    double value(const std::string& name) const {
        if (const auto found = numbers.find(name); found != numbers.end()) {
            return found->second;
        }
        const std::string& text = texts.at(name);
        return text.find_first_of("0123456789") == std::string::npos ? -1.0 : std::atof(text.c_str());
    }
};

enum class Scale { straight, round };  // round: 0 follows 360

// One value of an instrument of the demo, and what the simulator's offsets say about it.
struct Expectation {
    int id;
    const char* state;
    double tolerance;
    Scale scale;
    double (*expected)(const OffsetSpace& sim);
};

double bcd(std::uint16_t word) {
    return simhost::bcd_number(word);
}
double megahertz(std::uint16_t word) {
    return 100 + bcd(word) / 100;
}
double byte_value(std::uint8_t byte) {
    return byte > 127 ? byte - 255.0 : byte;
}
double heading(const OffsetSpace& sim) {
    return sim.read_i32(0x580) * kTurn32;
}
double inches(const OffsetSpace& sim) {
    return sim.read_u16(0x330) / 541.76;
}
// A bearing counts while its bit of the radio flags is set, else the needle is parked.
bool good(const OffsetSpace& sim, int bit) {
    return (sim.read_u16(0x3300) & (1 << bit)) != 0;
}
template <std::uint32_t kOffset>
double flag_at(const OffsetSpace& sim) {
    return sim.read_u32(kOffset) != 0 ? 1 : 0;
}
template <std::uint32_t kOffset>
double marker_at(const OffsetSpace& sim) {
    return sim.read_u16(kOffset) != 0 ? 1 : 0;
}
template <std::uint32_t kOffset>
double tuned_at(const OffsetSpace& sim) {
    return megahertz(sim.read_u16(kOffset));
}
template <std::uint32_t kOffset>
double kilohertz_at(const OffsetSpace& sim) {
    return bcd(sim.read_u16(kOffset));
}
template <std::uint32_t kOffset>
double word_at(const OffsetSpace& sim) {
    return sim.read_u16(kOffset);
}
template <std::uint32_t kOffset>
double needle_at(const OffsetSpace& sim) {
    return byte_value(sim.read_u8(kOffset)) / 127;
}
// Displays give one decimal below 100 and none above.
template <std::uint32_t kOffset>
double tenths_at(const OffsetSpace& sim) {
    const double value = sim.read_i16(kOffset) / 10.0;
    return value < 0 ? -1 : value > 99.9 ? std::nearbyint(value) : value;
}

const Expectation kExpectations[] = {
    {1, "altitude", 1, Scale::straight, [](const OffsetSpace& sim) { return sim.read_i32(0x3324) * 1.0; }},
    {1, "pressure", 0.011, Scale::straight, inches},
    {2, "altitude", 1, Scale::straight, [](const OffsetSpace& sim) { return sim.read_i32(0x3324) * 1.0; }},
    {2, "pressure", 1, Scale::straight, [](const OffsetSpace& sim) { return inches(sim) * 33.86; }},
    {3, "bank", 0.09, Scale::straight, [](const OffsetSpace& sim) { return -sim.read_i32(0x57C) * kTurn32; }},
    {3, "pitch", 0.04, Scale::straight, [](const OffsetSpace& sim) { return -sim.read_i32(0x578) * kTurn32; }},
    {4, "card", 0.09, Scale::round, heading},
    {4, "bug", 0.09, Scale::round, [](const OffsetSpace& sim) { return sim.read_u16(0x7CC) * kTurn16; }},
    {5, "loc", 0.005, Scale::straight, needle_at<0xC48>},
    {5, "slope", 0.005, Scale::straight, needle_at<0xC49>},
    {5, "toFrom", 0, Scale::straight, [](const OffsetSpace& sim) { return sim.read_u8(0xC4B) * 1.0; }},
    {5, "slopeValid", 0, Scale::straight, [](const OffsetSpace& sim) { return sim.read_u8(0xC4C) != 0 ? 1.0 : 0.0; }},
    {5, "course", 0.5, Scale::round, word_at<0xC4E>},
    {6, "loc", 0.005, Scale::straight, needle_at<0xC59>},
    {6, "toFrom", 0, Scale::straight, [](const OffsetSpace& sim) { return sim.read_u8(0xC5B) * 1.0; }},
    {6, "course", 0.5, Scale::round, word_at<0xC5E>},
    {7, "needle", 0.09, Scale::round, [](const OffsetSpace& sim) { return sim.read_i16(0xC6A) * kTurn16; }},
    {7, "card", 0.5, Scale::round, word_at<0xC6C>},
    {8, "card", 0.09, Scale::round, heading},
    {8, "needle1", 0.09, Scale::round, word_at<0xC56>},
    {8, "needle2", 0.09, Scale::round, word_at<0xC5C>},
    {8, "dme1", 0.06, Scale::straight, tenths_at<0x300>},
    {8, "dme2", 0.06, Scale::straight, tenths_at<0x306>},
    {9, "card", 0.09, Scale::round, [](const OffsetSpace& sim) { return sim.read_f64(0x2CC); }},
    {9, "parked1", 0, Scale::straight, [](const OffsetSpace& sim) { return good(sim, 1) ? 0.0 : 1.0; }},
    {9, "parked2", 0, Scale::straight, [](const OffsetSpace& sim) { return good(sim, 2) ? 0.0 : 1.0; }},
    {10, "hour", 0, Scale::straight, [](const OffsetSpace& sim) { return sim.read_u8(0x238) * 1.0; }},
    {11, "upper", 0.11, Scale::straight, [](const OffsetSpace& sim) { return sim.read_f64(0x2840); }},
    {12, "active", 0.02, Scale::straight, tuned_at<0x34E>},
    {12, "standby", 0.02, Scale::straight, tuned_at<0x311A>},
    {13, "active", 0.02, Scale::straight, tuned_at<0x350>},
    {13, "standby", 0.02, Scale::straight, tuned_at<0x311E>},
    {14, "active", 0.02, Scale::straight, kilohertz_at<0x34C>},
    {15, "comActive", 0.02, Scale::straight, tuned_at<0x3118>},
    {15, "comStandby", 0.02, Scale::straight, tuned_at<0x311C>},
    {15, "navActive", 0.02, Scale::straight, tuned_at<0x352>},
    {15, "navStandby", 0.02, Scale::straight, tuned_at<0x3120>},
    {16, "active", 0.02, Scale::straight, kilohertz_at<0x2D4>},
    {31, "code", 0, Scale::straight, kilohertz_at<0x354>},
    {31, "flightLevel", 0, Scale::straight,
     [](const OffsetSpace& sim) { return std::floor(sim.read_i32(0x3324) / 100.0); }},
    {32, "distance", 0.06, Scale::straight, tenths_at<0x300>},
    {32, "speed", 0.06, Scale::straight, tenths_at<0x302>},
    {33, "distance", 0.06, Scale::straight, tenths_at<0x300>},
    {33, "speed", 0.6, Scale::straight, tenths_at<0x302>},
    {34, "ap", 0, Scale::straight, flag_at<0x7BC>},
    {34, "hdg", 0, Scale::straight, flag_at<0x7C8>},
    {34, "rol", 0, Scale::straight, flag_at<0x7C0>},
    {34, "nav", 0, Scale::straight, flag_at<0x7C4>},
    {34, "apr", 0, Scale::straight, flag_at<0x800>},
    {34, "alt", 0, Scale::straight, flag_at<0x7D0>},
    {34, "verticalSpeed", 50, Scale::straight, [](const OffsetSpace& sim) { return sim.read_i16(0x7F2) * 1.0; }},
    {35, "outer", 0, Scale::straight, marker_at<0xBB0>},
    {35, "middle", 0, Scale::straight, marker_at<0xBAE>},
    {35, "inner", 0, Scale::straight, marker_at<0xBAC>},
    {36, "wheel", 3, Scale::straight, [](const OffsetSpace& sim) { return 512 + sim.read_i16(0xBC0) * 512.0 / 16383; }},
};

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
        struct Needle {
            const char* state;
            int function;
            int sequence_number;
            int plate;
        };
        const Picture gauge = picture(37);
        for (const Needle& needle : {Needle{"fuelLeft", 46, 1, 5},
                                     {"fuelRight", 46, 2, 6},
                                     {"egt", 40, 1, 9},
                                     {"fuelFlow", 41, 1, 4},
                                     {"oilTemperature", 42, 1, 17},
                                     {"oilPressure", 43, 1, 8},
                                     {"vacuum", 44, 1, 10},
                                     {"ampere", 45, 1, 11}}) {
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
            const double shown = picture(row.id).value(row.state);
            const double expected = row.expected(rig.sim());
            const double off = row.scale == Scale::round ? std::remainder(shown - expected, 360.0) : shown - expected;
            EXPECT_LE(std::abs(off), row.tolerance + 1e-6)
                << moment << ": instrument " << row.id << " shows " << row.state << " " << shown << " for " << expected;
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
