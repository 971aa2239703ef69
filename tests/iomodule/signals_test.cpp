#include <gtest/gtest.h>

#include <limits>

#include "iomodule/analogue_input.h"
#include "iomodule/io_module_telegram.h"
#include "support/failure.h"
#include "tests/iomodule/iom_world.h"

namespace {

using iom_test::IomWorld;
using iomodule::Edge;

TEST(IomTelegram, every_switch_and_every_input_has_its_own_bits) {
    for (int number = 0; number < iomodule::kSwitches; ++number) {
        const std::string telegram = IomWorld::telegram({number});
        EXPECT_EQ(static_cast<unsigned char>(telegram[static_cast<std::size_t>(5 + number / 8)]), 128 >> number % 8);
        for (int other = 0; other < iomodule::kSwitches; ++other) {
            EXPECT_EQ(iomodule::switch_on(iomodule::switch_bytes_of(telegram), other), other == number);
        }
    }
    const std::string inputs(
        "\x00....."
        "......."
        "\x12\x34\x56\x78"
        "\xAB\xCD\xEF\x01\x23\x45\x67\x89",
        25);
    const std::vector<int> values = {0x1AB, 0x2CD, 0x3EF, 0x401, 0x523, 0x645, 0x767, 0x889};
    for (int number = 0; number < iomodule::kAnalogueInputs; ++number) {
        EXPECT_EQ(iomodule::analogue_value(std::string_view(inputs).substr(13), number),
                  values[static_cast<std::size_t>(number)]);
    }
}

// --- Switches
// ---------------------------------------------------------------------------------------------------------

struct SwitchCase {
    const char* what;
    float lowest, highest;
    int mode;
    float value_a, value_b;
    double before;
    double after_on, after_off;  // of one edge each, from `before`
};

TEST(SwitchAction, function_rows_write_and_step_as_their_mode_says) {
    const std::vector<SwitchCase> cases = {
        {"absolute percentages", 0, 200, 0, 100, 25, 7, 200, 50},
        {"the minimum is not added", -100, 100, 0, 100, 50, 7, 200, 100},
        {"0 percent writes 0, not the minimum", 20, 120, 0, 0, -1, 7, 0, 7},
        {"-1 does nothing at either edge", 0, 100, 0, -1, -1, 7, 7, 7},
        {"an increment with neither edge chosen is absolute", 0, 100, 0, 0, 0, 7, 0, 0},
        {"increment at on alone", 0, 10, 1, 2, 3, 5, 7, 5},
        {"increment at off alone", 0, 10, 2, 2, -3, 5, 5, 2},
        {"both edges", 0, 10, 3, 1, -1, 5, 6, 4},
        {"held at the ends", 0, 10, 3, 1, -1, 10, 10, 9},
        {"held at the other end", 0, 10, 3, 1, -1, 0, 1, 0},
        {"rotate beyond the maximum", 0, 359, 7, 10, -10, 355, 0, 345},
        {"rotate below the minimum", 0, 359, 7, 10, -10, 4, 14, 359},
        {"rotate that ends on the maximum stays there", 0, 10, 5, 1, 0, 9, 10, 9},
        {"rotate alone does nothing", 0, 10, 4, 1, 1, 5, 5, 5},
        {"a value outside the range is brought in", 0, 10, 3, 1, -1, 50, 10, 10},
        {"halves step too", 0, 1, 3, 0.25F, -0.25F, 0.5, 0.75, 0.25},
    };
    IomWorld world;
    for (std::size_t at = 0; at < cases.size(); ++at) {
        const int number = static_cast<int>(at) + 1;
        world.set_range(number, cases[at].lowest, cases[at].highest);
        tables::IomRow& row = world.add_switch(0, number, cases[at].value_a, cases[at].value_b);
        row.IomMode = static_cast<std::int16_t>(cases[at].mode);
    }
    world.start();
    for (std::size_t at = 0; at < cases.size(); ++at) {
        const SwitchCase& one = cases[at];
        const int number = static_cast<int>(at) + 1;
        const tables::IomRow& row = world.tables.iom[at + 1];
        for (const Edge edge : {Edge::off_on, Edge::on_off}) {
            world.set_value(number, one.before);
            world.advance(60);
            iomodule::act_on_switch(world.sim_com, world.tables, row, edge);
            world.advance(60);
            EXPECT_FLOAT_EQ(static_cast<float>(world.value_of(number)),
                            static_cast<float>(edge == Edge::off_on ? one.after_on : one.after_off))
                << one.what << (edge == Edge::off_on ? ", on" : ", off");
        }
    }
}

TEST(SwitchAction, keystrokes_go_where_their_row_says_and_an_empty_key_goes_nowhere) {
    IomWorld world;
    const auto add_keys = [&world](int sequence_number, unsigned on, unsigned off) {
        tables::IomRow& row = world.add_switch(0, 0);
        row.IomSeqNr = static_cast<std::uint8_t>(sequence_number);
        row.IomKeyOffOn = static_cast<std::int16_t>(on);
        row.IomKeyOnOff = static_cast<std::int16_t>(off);
    };
    add_keys(100, 0x8000 | 'G', 0);
    add_keys(200, 0x4000 | 'H', 'J');
    add_keys(101, 'K', 0);  // whatever is no keystroke to the simulator goes to the desktop
    world.start();
    const std::size_t control = simlink::kOffsetControlNumber;
    const auto act = [&](std::size_t row, Edge edge) {
        iomodule::act_on_switch(world.sim_com, world.tables, world.tables.iom[row], edge);
        world.advance(40);
    };
    act(1, Edge::on_off);
    EXPECT_EQ(world.space->read_u32(control), 0U);
    act(1, Edge::off_on);
    EXPECT_EQ(world.space->read_u32(control), simlink::kControlKeyPress);
    EXPECT_EQ(world.space->read_u32(simlink::kOffsetControlParameter), 0x800U + 0x200U + 'G');
    EXPECT_TRUE(world.machine.key_delivery.sent.empty());

    act(2, Edge::off_on);
    EXPECT_TRUE(world.machine.key_delivery.sent.empty()) << "the main panel is in sight";
    EXPECT_EQ(world.last_shown(),
              "Keystroke received from IO module: +H\nTo send to Active Window the Control Progam be "
              "minimized");
    world.panels.minimise(world.status);
    act(2, Edge::off_on);
    act(2, Edge::on_off);
    act(3, Edge::off_on);
    act(3, Edge::on_off);
    EXPECT_EQ(world.machine.key_delivery.sent, (std::vector<std::string>{"+H", "J", "K"}));
}

// --- Analogue inputs
// --------------------------------------------------------------------------------------------------

struct InputCase {
    const char* what;
    float lowest, highest;
    int low, centre, high;
    int raw;
    float output;
};

TEST(AnalogueInput, raw_values_become_values_of_the_function) {
    const std::vector<InputCase> cases = {
        {"half way without a centre", 0, 100, 0, 0, 1000, 500, 50},
        {"limited to the raw maximum", 0, 100, 0, 0, 1000, 1023, 100},
        {"limited to the raw minimum", 0, 100, 200, 0, 1000, 10, 20},
        {"a centre below 0 is none", -50, 100, 0, -5, 1000, 250, 25},
        {"the centre itself is 0", -100, 100, 0, 512, 1023, 512, 0},
        {"above the centre", -100, 100, 0, 512, 1024, 768, 50},
        {"at the top", -100, 100, 0, 512, 1023, 1023, 100},
        {"half way below the centre", -100, 100, 0, 512, 1023, 256, -50},
        {"at the bottom", -100, 80, 12, 512, 1023, 0, -100},
        {"a function from 0 gives 0 below the centre", 0, 100, 0, 512, 1023, 100, 0},
        {"minimum above maximum: the minimum holds", 0, 100, 600, 0, 500, 550, 120},
    };
    for (const InputCase& one : cases) {
        tables::IomRow row;
        row.IomValueA = static_cast<float>(one.low);
        row.IomValueB = static_cast<float>(one.centre);
        row.IomValueC = static_cast<std::int16_t>(one.high);
        tables::FunctionRow function;
        function.FunctionMinimum = one.lowest;
        function.FunctionMaximum = one.highest;
        EXPECT_FLOAT_EQ(iomodule::analogue_output(row, function, one.raw), one.output) << one.what;
    }
}

TEST(AnalogueInput, limits_without_a_range_are_a_failure_only_where_they_are_reached) {
    tables::FunctionRow function;
    function.FunctionMinimum = -10;
    function.FunctionMaximum = 10;
    tables::IomRow row;
    row.IomValueA = 100;
    row.IomValueB = 500;
    row.IomValueC = 500;
    EXPECT_FLOAT_EQ(iomodule::analogue_output(row, function, 300), -5);
    EXPECT_THROW(iomodule::analogue_output(row, function, 700), support::Failure);
    row.IomValueA = 500;
    row.IomValueC = 1000;
    EXPECT_FLOAT_EQ(iomodule::analogue_output(row, function, 700), 4);
    row = {};
    EXPECT_THROW(iomodule::analogue_output(row, function, 0), support::Failure);
}

TEST(AnalogueInput, a_movement_counts_when_it_is_larger_than_the_deadband) {
    tables::IomRow row;
    for (const auto& [deadband, old_value, new_value, counts] : std::vector<std::tuple<int, int, int, bool>>{
             {0, 5, 6, true}, {0, 5, 5, false}, {3, 5, 8, false}, {3, 5, 9, true}, {3, 9, 5, true}, {3, 8, 5, false}}) {
        row.IomKeyOnOff = static_cast<std::int16_t>(deadband);
        EXPECT_EQ(iomodule::beyond_deadband(row, old_value, new_value), counts) << deadband << " " << new_value;
    }
}

// --- LEDs
// -------------------------------------------------------------------------------------------------------------

TEST(LedOutput, conditions_are_exact_and_one_is_enough) {
    tables::FunctionRow function;
    function.FunctionMinimum = -20;
    function.FunctionMaximum = 80;
    tables::IomRow row;
    row.IomValueA = 50;  // 50, measured from 0
    row.IomValueC = 7;
    const std::vector<std::tuple<unsigned, float, int>> cases = {
        {1, -20, 1}, {1, -19.99F, 0}, {2, 80, 1},    {2, 79.99F, 0}, {4, 50, 0},   {4, 50.01F, 1}, {4, 80, 1},
        {4, 30, 0},  {8, 7, 1},       {8, 7.25F, 0}, {3, -20, 1},    {3, 80, 1},   {3, 0, 0},      {12, 7, 1},
        {12, 60, 1}, {12, 8, 0},      {0, -20, 0},   {0, 80, 0},     {15, -20, 1}, {15, 30, 0},
    };
    for (const auto& [conditions, value, state] : cases) {
        row.IomKeyOffOn = static_cast<std::int16_t>(conditions);
        row.IomMode = 0;
        EXPECT_EQ(iomodule::led_state(row, function, value), state) << conditions << " at " << value;
        row.IomMode = iomodule::kOutInvert;
        EXPECT_EQ(iomodule::led_state(row, function, value), 1 - state) << conditions << " inverted at " << value;
    }
}

TEST(LedOutput, a_mask_leaves_only_0_and_1) {
    tables::FunctionRow function;
    function.FunctionMask = 12;
    for (const auto& [value, masked] : std::vector<std::pair<float, float>>{
             {0, 0}, {3, 0}, {4, 1}, {8, 1}, {19, 0}, {20, 1}, {3.6F, 1}, {-1, 1}, {3.5F, 1}, {4.4e9F, -1}}) {
        if (masked < 0) {
            EXPECT_THROW(iomodule::led_value(function, value), support::Failure);
        } else {
            EXPECT_EQ(iomodule::led_value(function, value), masked) << value;
        }
    }
    EXPECT_THROW(iomodule::led_value(function, std::numeric_limits<float>::quiet_NaN()), support::Failure);
    function.FunctionMask = 0;
    EXPECT_EQ(iomodule::led_value(function, 3.6F), 3.6F);
}

}  // namespace
