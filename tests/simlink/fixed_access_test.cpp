// The accesses of the port layer that need no function.

#include "support/bytes.h"
#include "support/failure.h"
#include "tests/simlink/sim_com_fixture.h"

namespace {

class FixedAccessTest : public SimComTest {
  protected:
    // A port keeps the cycle going.
    FixedAccessTest() {
        function(1, tables::kInteger, 0x100);
        std::uint8_t seqnr = 1;
        sim_com_.OpenSimPort(1, seqnr);
    }
    // A write port of a gauge, on an offset of its own.
    std::uint16_t write_port(std::int16_t number, std::int32_t offset) {
        function(number, tables::kInteger, offset);
        return static_cast<std::uint16_t>(reading_port(number));
    }
};

TEST_F(FixedAccessTest, time_and_date_are_fresh_when_the_call_returns) {
    simulator_.write_u8(0x238, 18);
    simulator_.write_u8(0x239, 12);
    simulator_.write_u8(0x23A, 16);
    simulator_.write_u8(0x23B, 17);
    simulator_.write_u16(0x23E, 61);
    simulator_.write_u16(0x240, 2024);
    simulator_.write_i16(0xE8C, -5);
    sim_com_.GetTimeAndDate();
    EXPECT_EQ(sim_com_.SimLocalSeconds, -1);
    EXPECT_EQ(sim_com_.SimZuluSeconds, 17 * 3600 + 12 * 60 + 16);
    EXPECT_EQ(sim_com_.SimMonth, 2);
    EXPECT_EQ(sim_com_.SimDay, 29);
    EXPECT_EQ(sim_com_.SimDate.year, 2024);
    EXPECT_EQ(sim_com_.SimYear2, 24);
    EXPECT_EQ(sim_com_.SimOutsideTemp, -5);
    simulator_.write_u16(0x240, 1990);
    sim_com_.GetTimeAndDate();
    EXPECT_EQ(sim_com_.SimYear2, 10);
    simulator_.write_u16(0x240, 2100);
    sim_com_.GetTimeAndDate();
    EXPECT_EQ(sim_com_.SimYear2, 100 & 63);
    for (const int garbage : {0, 0x7FFF, 0x8000, 0xFFFF}) {
        simulator_.write_u16(0x23E, static_cast<std::uint16_t>(garbage));
        simulator_.write_u16(0x240, static_cast<std::uint16_t>(garbage));
        sim_com_.GetTimeAndDate();
    }

    sim_com_.SimHour = 5;
    sim_com_.PutTimeAndDate();
    cycle();
    EXPECT_EQ(taken_writes(), (Writes{{0x238, 1}, {0x239, 1}, {0x23A, 1}}));
    EXPECT_EQ(simulator_.read_u8(0x238), 5);
}

TEST_F(FixedAccessTest, autopilot_bits_go_to_their_offsets_in_order) {
    sim_com_.ApCommandBits = 0x55;
    sim_com_.ApAltitudeValue = 12345678;
    sim_com_.ApTargetAltitude = 5000;
    sim_com_.ApVerticalSpeed = -500;
    tables_->CurrentAltitude = 4000;
    sim_com_.WriteAutopilot();
    cycle();
    EXPECT_EQ(taken_writes(), (Writes{{0x7BC, 4},
                                      {0x7C8, 4},
                                      {0x7C0, 4},
                                      {0x7C4, 4},
                                      {0x800, 4},
                                      {0x804, 4},
                                      {0x7EC, 4},
                                      {0x7D0, 4},
                                      {0x7D4, 4},
                                      {0x7F2, 2}}));
    const std::pair<std::uint32_t, std::uint32_t> held[] = {{0x7BC, 1}, {0x7C8, 0}, {0x7C0, 1},
                                                            {0x7C4, 0}, {0x800, 1}, {0x804, 0},
                                                            {0x7EC, 1}, {0x7D0, 0}, {0x7D4, 12345678}};
    for (const auto& [offset, value] : held) {
        EXPECT_EQ(simulator_.read_u32(offset), value) << std::hex << offset;
    }

    sim_com_.take_autopilot_flags(8);
    sim_com_.WriteAutopilot();
    cycle();
    const Writes writes = taken_writes();
    ASSERT_EQ(writes.size(), 11U);
    EXPECT_EQ(writes[5], (std::pair<std::uint32_t, std::uint32_t>{0x7FC, 4}));
    EXPECT_EQ(simulator_.read_u32(0x7FC), 1U);
}

TEST_F(FixedAccessTest, a_vertical_speed_away_from_the_target_becomes_zero) {
    struct Case {
        int target;
        float current;
        int speed;
        int sent;
    };
    const Case cases[] = {{5000, 4000, -500, 0},    {5000, 4000, 500, 500},   {3000, 4000, 500, 0},
                          {3000, 4000, -500, -500}, {4000, 4000, -500, -500}, {4000, 4000, 500, 500}};
    for (const Case& c : cases) {
        sim_com_.ApTargetAltitude = c.target;
        tables_->CurrentAltitude = c.current;
        sim_com_.ApVerticalSpeed = static_cast<std::int16_t>(c.speed);
        sim_com_.WriteAutopilot();
        cycle();
        EXPECT_EQ(simulator_.read_i16(0x7F2), c.sent) << c.target << " from " << c.current << " at " << c.speed;
    }
    sim_com_.ApVerticalSpeed = -700;
    sim_com_.PutAPVSvalue();
    cycle();
    EXPECT_EQ(simulator_.read_i16(0x7F2), -700);
}

TEST_F(FixedAccessTest, the_autopilots_state_lags_by_one_cycle) {
    for (const std::uint32_t offset : {0x7BCU, 0x7C0U, 0x800U, 0x7D0U, 0x7ECU, 0x7FCU}) {
        simulator_.write_u32(offset, 1);
    }
    simulator_.write_i16(0x7F2, -900);
    simulator_.write_i16(0xBC2, 77);
    sim_com_.GetAPVSvalue();
    EXPECT_EQ(sim_com_.ApStatusBits, 0);
    cycle();
    EXPECT_EQ(sim_com_.ApVerticalSpeed, -900);
    EXPECT_EQ(sim_com_.ApTrimValue, 77);
    sim_com_.GetAPVSvalue();
    EXPECT_EQ(sim_com_.ApStatusBits, 0x95) << "bit 6 is never read";
}

TEST_F(FixedAccessTest, frequencies_and_the_selector_are_written) {
    sim_com_.PutNAV1Frequency("11835");
    sim_com_.PutNAV2Frequency("109805");
    sim_com_.SoundSelector = 0xA5;
    sim_com_.SetSoundSelector();
    cycle();
    EXPECT_EQ(taken_writes(), (Writes{{0x350, 2}, {0x352, 2}, {0x3122, 1}}));
    EXPECT_EQ(simulator_.read_u16(0x350), 0x1835);
    EXPECT_EQ(simulator_.read_u16(0x352), 0x0980);
    EXPECT_EQ(simulator_.read_u8(0x3122), 0xA5);
}

TEST_F(FixedAccessTest, an_adf_frequency_is_shared_out_by_the_model_of_the_gauge) {
    tables::GaugeRow& gauge = tables_->gauges[40];
    gauge.GaugeWritePort1 = write_port(2, 0x200);
    gauge.GaugeWritePort3 = write_port(3, 0x202);
    struct Case {
        std::uint8_t model;
        std::int16_t plate;
        std::int16_t read_back;
        int first, third;
    };
    const Case cases[] = {
        {2, 0, 0, 234, 5},     {3, 0, 0, 234, 105}, {3, 1, 7, 234, 107},
        {3, 1, 109, 234, 109}, {1, 0, 0, -1, -1},   {4, 0, 0, -1, -1},
    };
    for (const Case& c : cases) {
        simulator_.write_i16(0x200, -1);
        simulator_.write_i16(0x202, c.read_back == 0 ? std::int16_t{-1} : c.read_back);
        cycle();
        gauge.GaugeModel = c.model;
        gauge.GaugePlate1 = c.plate;
        sim_com_.PutADF("12345", 40);
        cycle();
        EXPECT_EQ(simulator_.read_i16(0x200), c.first) << "model " << int{c.model};
        EXPECT_EQ(simulator_.read_i16(0x202), c.third) << "model " << int{c.model};
    }
    taken_writes();
    gauge.GaugeModel = 2;
    sim_com_.PutADF("1234", 40);
    sim_com_.PutADF("12345", 256);
    sim_com_.PutADF("12345", -1);
    gauge.GaugeWritePort1 = 65535;
    gauge.GaugeWritePort3 = 65535;
    sim_com_.PutADF("12345", 40);
    cycle();
    EXPECT_TRUE(taken_writes().empty());
}

TEST_F(FixedAccessTest, rmi_needles_follow_the_answers_of_the_call_before) {
    struct Case {
        int first_plate, second_plate;
        std::uint16_t flags;
        int n1, n2, n3, n4;
    };
    simulator_.write_u16(0xC56, 90);
    simulator_.write_u16(0xC5C, 180);
    simulator_.write_i16(0xC6A, -16384);
    simulator_.write_i16(0x2D8, 16384);
    const Case cases[] = {
        {0, 0, 0, 5000, 5000, 5000, 5000},      {0, 0, 0x80E, 1080, 1080, 3240, 3240},
        {8, 0, 0x80E, 1080, 2160, 3240, 3240},  {8, 16, 0x80E, 1080, 2160, 3240, 1080},
        {16, 8, 0x80E, 1080, 1080, 3240, 3240}, {8, 16, 0x00A, 1080, 5000, 3240, 5000},
        {8, 16, 0x804, 5000, 2160, 5000, 1080},
    };
    for (const Case& c : cases) {
        sim_com_.take_rmi_flags(static_cast<std::int16_t>(c.first_plate), static_cast<std::int16_t>(c.second_plate));
        simulator_.write_u16(0x3300, c.flags);
        for (int round = 0; round < 3; ++round) {
            sim_com_.GetRMIdata();
            cycle();
        }
        EXPECT_EQ(sim_com_.RmiNeedle1, c.n1) << std::hex << c.flags;
        EXPECT_EQ(sim_com_.RmiNeedle2, c.n2) << std::hex << c.flags;
        EXPECT_EQ(sim_com_.RmiNeedle3, c.n3) << std::hex << c.flags;
        EXPECT_EQ(sim_com_.RmiNeedle4, c.n4) << std::hex << c.flags;
    }
}

TEST_F(FixedAccessTest, the_state_of_the_nav_radios_lags_too) {
    simulator_.write_u16(0x3300, 0xFFFD);
    sim_com_.GetNAVRadiosStatus();
    EXPECT_EQ(sim_com_.NavGoodFlags, 0);
    cycle();
    sim_com_.GetNAVRadiosStatus();
    EXPECT_EQ(sim_com_.NavGoodFlags, 2);
}

TEST_F(FixedAccessTest, keystrokes_go_to_the_simulator_or_to_the_desktop) {
    sim_com_.SendKeystroke(support::as_i16(0xC000));
    cycle();
    EXPECT_TRUE(taken_writes().empty()) << "no key";
    sim_com_.SendKeystroke(support::as_i16(0x4041));
    cycle();
    EXPECT_EQ(taken_writes(), (Writes{{0x3114, 4}, {0x3110, 4}}));
    EXPECT_EQ(simulator_.read_u32(0x3114), 0x941U);

    sim_com_.SendKeystrokeLocal(support::as_i16(0xC000 | '~'));
    EXPECT_EQ(machine_.boxes.shown(),
              std::vector<std::string>{"Keystroke received from IO module: ^+{~}\nTo send to Active Window the Control "
                                       "Progam be minimized"});
    bool minimised = true;
    sim_com_.run_panel_minimised = [&] { return minimised; };
    sim_com_.SendKeystrokeLocal(support::as_i16(0x8000 | 'G'));
    sim_com_.SendKeystrokeLocal(support::as_i16(0x8000));
    EXPECT_EQ(machine_.key_delivery.sent, std::vector<std::string>{"^G"});
    minimised = false;
    sim_com_.SendKeystrokeLocal('G');
    EXPECT_EQ(machine_.key_delivery.sent.size(), 1U);

    sim_com_.ConvertKeytoName(112);
    EXPECT_EQ(sim_com_.KeyName, "F1");
    sim_com_.ConvertKeytoName(16);
    EXPECT_EQ(sim_com_.KeyName, "");
}

TEST_F(FixedAccessTest, keystrokes_that_fail_are_told_once_until_one_gets_through) {
    sim_com_.run_panel_minimised = [] { return true; };
    auto& keys = machine_.key_delivery;
    keys.failure = "There is no desktop that the key could go to";
    sim_com_.SendKeystrokeLocal(support::as_i16(0x8000 | 'G'));
    sim_com_.SendKeystrokeLocal('H');
    const std::vector<std::string> first{
        "Keystroke received from IO module: ^G\nIt could not be sent to Active Window: There is no desktop that the "
        "key "
        "could go to\nThis message does not come again until a keystroke has been sent."};
    EXPECT_EQ(machine_.boxes.shown(), first);

    keys.failure.clear();
    sim_com_.SendKeystrokeLocal('I');
    EXPECT_EQ(keys.sent, std::vector<std::string>{"I"}) << "a failed key is not sent later";
    EXPECT_EQ(machine_.boxes.shown(), first);
    keys.failure = "The desktop does not answer";
    sim_com_.SendKeystrokeLocal('J');
    sim_com_.SendKeystrokeLocal('K');
    ASSERT_EQ(machine_.boxes.shown().size(), 2U);
    EXPECT_NE(machine_.boxes.shown()[1].find("The desktop does not answer"), std::string::npos);
}

TEST_F(FixedAccessTest, yoke_functions_are_kept_in_their_variables) {
    for (std::int16_t number = 0; number < simlink::kFfbFunctions; ++number) {
        const auto function_number = static_cast<std::int16_t>(190 + number);
        const bool is_float = number == 6 || number == 7 || number == 10 || number == 11;
        const std::uint8_t type = is_float ? tables::kDouble : tables::kLong;
        function(function_number, type, 0x1000 + 8 * number);
        const auto offset = static_cast<std::uint32_t>(0x1000 + 8 * number);
        if (is_float) {
            simulator_.write_f64(offset, 0.25 * number);
        } else {
            simulator_.write_i32(offset, number - 4);
        }
        sim_com_.FfbPort[static_cast<std::size_t>(number)] = reading_port(function_number);
    }
    cycle();
    for (int number = -1; number <= simlink::kFfbFunctions; ++number) {
        sim_com_.GetPortFFB(number);
    }
    EXPECT_EQ(sim_com_.FfbOnGround, 0) << "-4 is not above 0";
    EXPECT_EQ(sim_com_.FfbStall, 1);
    EXPECT_EQ(sim_com_.FfbElevator, 0);
    EXPECT_EQ(sim_com_.FfbAileron, 1);
    EXPECT_EQ(sim_com_.FfbPitchMotion, 1.5F);
    EXPECT_EQ(sim_com_.FfbApElevator, 2.75F);
    EXPECT_EQ(sim_com_.FfbJoystickButtons, 10);
    EXPECT_EQ(sim_com_.FfbGroundSpeed, 13);

    sim_com_.FfbTrim = -123;
    sim_com_.PutPortFFB(12, 999);
    sim_com_.FfbTrim = -456;
    sim_com_.GetPortFFB(12);
    EXPECT_EQ(sim_com_.FfbTrim, -456) << "what was just put is not lost while it is on its way";
    sim_com_.PutPortFFB(0, 5);
    sim_com_.PutPortFFB(-1, 5);
    sim_com_.PutPortFFB(simlink::kFfbFunctions, 5);
    cycle();
    EXPECT_EQ(simulator_.read_i32(0x1000 + 8 * 12), -123);
    EXPECT_EQ(simulator_.read_i32(0x1000), -123) << "a number without a send passes on the value before";
    simulator_.write_i32(0x1000 + 8 * 4, 40000);
    cycle();
    EXPECT_THROW(sim_com_.GetPortFFB(4), support::Failure);
    sim_com_.CloseAllPorts();
    EXPECT_EQ(sim_com_.FfbPort[17], simlink::kNoPort);
}

}  // namespace
