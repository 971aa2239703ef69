#include "simlink/sim_com.h"

#include <cmath>
#include <limits>

#include "tests/simlink/sim_com_fixture.h"

namespace {

TEST_F(SimComTest, opening_a_port_lists_its_owner_function_and_offset) {
    function(7, tables::kInteger, 0x100).FunctionShortName = "Heading";
    function(123, tables::kInteger, 0x102);
    const std::pair<int, const char*> owners[] = {{5, "ID:005"},   {255, "ID:255"}, {1000, "IOM#1"}, {2000, "IOM#2"},
                                                  {3000, "INTRN"}, {4000, "ENGCL"}, {5000, "YOKES"}, {256, ""}};
    std::int16_t number = 0;
    for (const auto& [owner, label] : owners) {
        sim_com_.PortOwnerId = static_cast<std::int16_t>(owner);
        std::uint8_t seqnr = 0;
        EXPECT_EQ(sim_com_.OpenSimPort(7, seqnr), number);
        EXPECT_EQ(seqnr, 1) << "0 becomes 1 in the caller's variable";
        EXPECT_EQ(sim_com_.OffsetsList.items[static_cast<std::size_t>(number)],
                  "00" + std::to_string(number) + "         " + label + "           007  - 1         Heading");
        ++number;
    }
    std::uint8_t seqnr = 3;
    sim_com_.PortOwnerId = 12;
    sim_com_.OpenSimPort(123, seqnr);
    EXPECT_EQ(sim_com_.OffsetsList.items[8], "008         ID:012           123  - 3         Function 123");
    EXPECT_EQ(sim_com_.OpenPortCount, 9);
    EXPECT_TRUE(machine_.boxes.shown().empty());

    sim_com_.PortsOpen = 1;
    sim_com_.CommandStopAll();
    EXPECT_EQ(sim_com_.OffsetsList.items.size(), 0U);
    EXPECT_EQ(sim_com_.PortCount(), 0);
    EXPECT_EQ(sim_com_.OpenPortCount, 0);
    EXPECT_EQ(sim_com_.PortsOpen, 0);
}

TEST_F(SimComTest, empty_functions_and_zero_factors_are_told_at_opening) {
    tables::FunctionRow& row = function(20, tables::kInteger, 0x100);
    row.FunctionMultiplier = 0;
    row.FunctionDivider = 0;
    std::uint8_t seqnr = 1;
    EXPECT_EQ(sim_com_.OpenSimPort(0, seqnr), simlink::kNoPort);
    EXPECT_EQ(sim_com_.OpenSimPort(-3, seqnr), simlink::kNoPort);
    EXPECT_TRUE(machine_.boxes.shown().empty());
    EXPECT_EQ(sim_com_.OpenSimPort(21, seqnr), simlink::kNoPort);
    EXPECT_EQ(sim_com_.OpenSimPort(999, seqnr), simlink::kNoPort) << "a number beyond the table";
    EXPECT_EQ(sim_com_.OpenSimPort(20, seqnr), 0);
    EXPECT_EQ(machine_.boxes.shown(),
              (std::vector<std::string>{
                  "Program calls an empty function, Function #:  21\nCheck for correct/actual configuration file.",
                  "Program calls an empty function, Function #:  999\nCheck for correct/actual configuration file.",
                  "Warning: Opening Function number : 20\nFunction contains division by zero.",
                  "Warning: Opening Function number : 20\nFunction contains multiply by zero."}));
    machine_.boxes.forget_shown();
    sim_com_.EnableReadSimPort(0);
    EXPECT_TRUE(std::isnan(value_of(0)));
    EXPECT_TRUE(machine_.boxes.shown().empty()) << "infinity and not-a-number are no failure";
}

TEST_F(SimComTest, the_cycle_reads_every_enabled_port_into_its_slot) {
    struct Case {
        std::uint8_t type;
        std::uint64_t raw;
        float value;
    };
    const Case cases[] = {{tables::kByte, 0x1FF, 0},
                          {tables::kInteger, 0xF0000 | 0xFFFE, -2},
                          {tables::kUnsignedInteger, 0xFFFF, 65534},
                          {tables::kLong, 0xFFFFFFFE, -2},
                          {tables::kDouble, 0x4004000000000000, 2.5F},
                          {tables::kBcd, 0x1835, 1835}};
    std::int16_t number = 1;
    for (const Case& c : cases) {
        const std::uint32_t offset = 0x1000U + 16U * static_cast<std::uint32_t>(number);
        simulator_.write_u64(offset, c.raw);
        function(number, c.type, static_cast<std::int32_t>(offset));
        reading_port(number++);
    }
    function(number, tables::kNotUsed, 0x2000);
    const std::int16_t unused = reading_port(number);
    EXPECT_EQ(value_of(0), 0) << "slots hold 0 until the first answer";
    const std::uint64_t read_before = server_.read_records();
    sim_com_.RunSimcom();
    run_for(19);
    EXPECT_EQ(value_of(1), 0);
    run_for(1);
    for (std::size_t index = 0; index < std::size(cases); ++index) {
        EXPECT_EQ(value_of(static_cast<int>(index)), cases[index].value) << "type " << int{cases[index].type};
    }
    EXPECT_EQ(value_of(unused), -99);
    EXPECT_EQ(server_.read_records() - read_before, 6U) << "the type that is not used is not transferred";
    sim_com_.StopSimcom();
    simulator_.write_u64(0x1010, 5);
    run_for(100);
    EXPECT_EQ(value_of(0), 0) << "stopped: the slots keep their values";
    EXPECT_EQ(sim_com_.PortCount(), 7);
}

TEST_F(SimComTest, the_sequence_number_chooses_the_offset) {
    tables::FunctionRow& row = function(1, tables::kInteger, 0x100);
    row.FunctionOffset2 = 0x200;
    row.FunctionOffset3 = 0x300;
    row.FunctionOffset4 = 0x400;
    for (int place = 1; place <= 4; ++place) {
        simulator_.write_u16(static_cast<std::uint32_t>(place) << 8, static_cast<std::uint16_t>(place * 10));
    }
    const std::int16_t port = reading_port(1);
    const std::pair<std::uint8_t, float> expected[] = {{0, 10}, {1, 10}, {2, 20}, {3, 30}, {4, 40}, {5, 40}, {255, 40}};
    for (const auto& [seqnr, value] : expected) {
        sim_com_.NewSeqNr(port, seqnr);
        cycle();
        EXPECT_EQ(value_of(port), value) << int{seqnr};
    }
}

TEST_F(SimComTest, a_write_leaves_with_the_next_cycle_and_holds_off_reading) {
    function(1, tables::kInteger, 0x100);
    simulator_.write_u16(0x100, 11);
    const std::int16_t port = reading_port(1);
    cycle();
    put(port, 55);
    put(port, 66);
    EXPECT_EQ(value_of(port, 3), 3) << "no value until the write has gone";
    cycle();
    EXPECT_EQ(taken_writes(), (Writes{{0x100, 2}})) << "only the last value";
    EXPECT_EQ(simulator_.read_u16(0x100), 66);
    EXPECT_EQ(value_of(port), 66);
    simulator_.write_u16(0x100, 77);
    cycle();
    EXPECT_EQ(value_of(port), 77);

    sim_com_.DisableReadSimPort(port);
    EXPECT_EQ(value_of(port), 77) << "port 0 can't be switched off";
    const std::int16_t second = reading_port(1);
    sim_com_.DisableReadSimPort(second);
    EXPECT_EQ(value_of(second), -99);
}

TEST_F(SimComTest, port_numbers_that_are_not_open_do_nothing) {
    function(1, tables::kInteger, 0x100);
    reading_port(1);
    for (const int number : {-1, -32768, 1, 65535, 2000000000}) {
        EXPECT_EQ(value_of(number, 5), 5);
        float value = 7;
        EXPECT_FALSE(sim_com_.GetPortRaw(number, value));
        sim_com_.PutPort(number, value);
        EXPECT_EQ(value, 7);
        sim_com_.EnableReadSimPort(number);
        sim_com_.DisableReadSimPort(number);
        sim_com_.NewSeqNr(number, 4);
    }
    cycle();
    EXPECT_TRUE(taken_writes().empty());
    EXPECT_EQ(sim_com_.ports()[0].FxSeqnr, 1);
}

TEST_F(SimComTest, putting_scales_back_in_the_callers_variable) {
    tables::FunctionRow& row = function(1, tables::kInteger, 0x100);
    row.FunctionAdd = 10;
    row.FunctionMultiplier = 2;
    row.FunctionDivider = 5;
    const std::int16_t port = reading_port(1);
    float value = 8;
    sim_com_.PutPort(port, value);
    EXPECT_EQ(value, 10);
    cycle();
    EXPECT_EQ(simulator_.read_u16(0x100), 10);
    EXPECT_EQ(value_of(port), 8);
    float raw = 0;
    EXPECT_TRUE(sim_com_.GetPortRaw(port, raw));
    EXPECT_EQ(raw, 10);
}

TEST_F(SimComTest, a_masked_byte_keeps_the_other_bits_of_the_last_value_read) {
    function(1, tables::kByte, 0x100, 0x10);
    simulator_.write_u8(0x100, 0xFF);
    const std::int16_t port = reading_port(1);
    cycle();
    put(port, 0);
    cycle();
    EXPECT_EQ(simulator_.read_u8(0x100), 0xEF);
}

TEST_F(SimComTest, a_value_that_does_not_fit_asks_and_yes_goes_on_with_the_next_step) {
    function(1, tables::kUnsignedInteger, 0x100);
    simulator_.write_u16(0x100, 123);
    const std::int16_t port = reading_port(1);
    cycle();
    put(port, 40000);
    EXPECT_EQ(machine_.boxes.shown(),
              std::vector<std::string>{"Error at putting function:1, Value:40000 to Simulator.\nPort Number: 0\nError "
                                       "description: Overflow\nCheck function definition for limits and calculation "
                                       "(pre-add/multiply/divide).\nContinue?"});
    cycle();
    EXPECT_EQ(taken_writes(), (Writes{{0x100, 2}}));
    EXPECT_EQ(simulator_.read_u16(0x100), 123) << "the old value goes out";

    function(2, tables::kDouble, 0x200);
    simulator_.write_f64(0x200, 1e300);
    const std::int16_t big = reading_port(2);
    cycle();
    machine_.boxes.forget_shown();
    EXPECT_EQ(value_of(big, 4), 4);
    float raw = 5;
    EXPECT_FALSE(sim_com_.GetPortRaw(big, raw));
    EXPECT_EQ(raw, 5);
    EXPECT_EQ(machine_.boxes.shown(),
              (std::vector<std::string>{
                  "Error at getting function nr.:2from Simulator.\nPort Number: 1\nError description: Overflow\nCheck "
                  "function definition for limits and calculation (pre-add/multiply/divide).\nContinue?",
                  "Error at getting function: 2 from simulator\nPort Number: 1\nContinue?"}));
}

TEST_F(SimComTest, no_runs_the_exit_command_and_unwinds) {
    function(1, tables::kLong, 0x100);
    const std::int16_t port = reading_port(1);
    machine_.boxes.default_answer.answer = platform::Answer::no;
    int exits = 0;
    sim_com_.exit_program = [&] { ++exits; };
    EXPECT_THROW(put(port, std::numeric_limits<float>::infinity()), platform::LoopStopped);
    EXPECT_EQ(exits, 1);
}

TEST_F(SimComTest, a_question_about_a_value_goes_away_when_the_simulator_sends_a_sound_one) {
    function(1, tables::kDouble, 0x100);
    simulator_.write_f64(0x100, 1e300);
    const std::int16_t port = reading_port(1);
    sim_com_.RunSimcom();
    run_for(20);
    machine_.boxes.leave_open = true;
    machine_.loop.post_after(platform::Milliseconds(500), [&] { simulator_.write_f64(0x100, 2); });
    EXPECT_EQ(value_of(port, 4), 4);
    EXPECT_TRUE(machine_.boxes.open_boxes().empty());
    EXPECT_EQ(value_of(port), 2);
}

TEST_F(SimComTest, ports_closed_while_a_question_stands_are_not_touched_any_more) {
    function(1, tables::kLong, 0x100).FunctionDivider = 1e30F;
    const std::int16_t port = reading_port(1);
    machine_.boxes.on_open = [&](const platform::OpenBox&) { sim_com_.CloseAllPorts(); };
    float value = 1e30F;
    sim_com_.PutPort(port, value);
    EXPECT_EQ(value, 1e30F);
    EXPECT_EQ(machine_.boxes.shown().size(), 1U);
}

TEST_F(SimComTest, macro_1_answers_from_the_reads_of_the_call_before) {
    function(1, tables::kInteger, 0x100, 1).FunctionType = tables::kFunctionTypeMacro;
    const std::int16_t port = reading_port(1);
    simulator_.write_i16(0xBBC, 16383);
    simulator_.write_u32(0x7BC, 1);
    EXPECT_EQ(value_of(port), 472);
    cycle();
    EXPECT_EQ(value_of(port), 472) << "one of the two conditions is missing";
    simulator_.write_u32(0x808, 1);
    cycle();
    EXPECT_EQ(value_of(port), 944);
    EXPECT_EQ(sim_com_.ApMaster, 1);
    float raw = 0;
    simulator_.write_u16(0x100, 9);
    cycle();
    EXPECT_TRUE(sim_com_.GetPortRaw(port, raw));
    EXPECT_EQ(raw, 9) << "raw values know no macros";
}

TEST_F(SimComTest, macro_2_writes_a_byte_and_sends_a_keystroke_a_second_later) {
    function(1, tables::kInteger, 0x100, 2).FunctionType = tables::kFunctionTypeMacro;
    std::uint8_t seqnr = 1;
    const std::int16_t port = sim_com_.OpenSimPort(1, seqnr);
    sim_com_.RunSimcom();
    put(port, 1);
    run_for(20);
    EXPECT_EQ(taken_writes(), (Writes{{0x889, 1}, {0x100, 2}}));
    EXPECT_EQ(simulator_.read_u8(0x889), 1);
    run_for(960);
    EXPECT_TRUE(taken_writes().empty());
    run_for(2100);
    EXPECT_EQ(taken_writes(), (Writes{{0x3114, 4}, {0x3110, 4}})) << "once";
    EXPECT_EQ(simulator_.read_u32(0x3114), 0xA45U);
    EXPECT_EQ(simulator_.read_u32(0x3110), 1070U);

    put(port, 1);
    put(port, 0);
    run_for(3000);
    EXPECT_EQ(taken_writes(), (Writes{{0x889, 1}, {0x889, 1}, {0x100, 2}})) << "another value stops the timer";
    put(port, 300);
    EXPECT_EQ(machine_.boxes.shown().size(), 1U);
}

TEST_F(SimComTest, macro_3_is_the_dimmer_value) {
    function(1, tables::kInteger, 0x100, 3).FunctionType = tables::kFunctionTypeMacro;
    function(2, tables::kInteger, 0x102, 9).FunctionType = tables::kFunctionTypeMacro;
    const std::int16_t port = reading_port(1);
    const std::int16_t other = reading_port(2);
    put(port, 800.5F);
    put(other, 5);
    EXPECT_EQ(tables_->MacroValue, 800);
    cycle();
    EXPECT_EQ(value_of(port), 800);
    EXPECT_EQ(value_of(other), -99) << "a number that is no macro";
}

TEST_F(SimComTest, without_a_link_values_stay_and_nothing_fails) {
    function(1, tables::kInteger, 0x100);
    const std::int16_t port = reading_port(1);
    simulator_.write_u16(0x100, 42);
    cycle();
    EXPECT_TRUE(sim_com_.link_alive());
    client_.IpcClose();
    EXPECT_FALSE(sim_com_.link_alive());
    put(port, 7);
    sim_com_.RunSimcom();
    run_for(1000);
    EXPECT_EQ(value_of(port), 7);
    sim_com_.GetTimeAndDate();
    sim_com_.CloseSimCom();
    EXPECT_EQ(machine_.sim_transport.held_views, 0);
}

TEST_F(SimComTest, bits_of_one_byte_that_are_put_in_two_cycles_do_not_undo_each_other) {
    constexpr std::int32_t kOffset = 0xD0C;
    for (const int number : {1, 2, 3}) {
        function(number, tables::kByte, kOffset, static_cast<std::int16_t>(1 << number));
    }
    const std::int16_t first = reading_port(1);
    const std::int16_t second = reading_port(2);
    const std::int16_t third = reading_port(3);
    cycle();
    cycle();
    // The first port's record stands in front of the second one's write, so it would be given the byte of before.
    put(second, 1);
    cycle();
    put(first, 1);
    put(third, 1);
    cycle();
    EXPECT_EQ(simulator_.read_u8(kOffset), 2 + 4 + 8);
    put(third, 0);
    cycle();
    EXPECT_EQ(value_of(first), 2 + 4);
    simulator_.write_u8(kOffset, 1);  // the simulator's own bit is seen again
    cycle();
    put(first, 1);
    cycle();
    EXPECT_EQ(simulator_.read_u8(kOffset), 1 + 2);
}

}  // namespace
