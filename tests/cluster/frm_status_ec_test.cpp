#include "cluster/frm_status_ec.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/run/run_world.h"

namespace {

using run_test::RunWorld;

constexpr int kClusterWire = 5;
constexpr const char* kQuestion =
    "Engine Cluster incorrect data or data out of range\r\n"
    "Check boxes for incorrect values and adapt configuration file to correct\r\nContinue?";

// A run panel with the cluster beside it. Plate 0 gives a value 0..1000 as the position of the same number; function f
// shows with sequence number 1 for engine 1 and 2 for engine 2.
struct ClusterWorld : RunWorld {
    platform::manual::Wire& line = machine.serial_ports.wire(kClusterWire);
    cluster::frmStatusEC panel{{platform, tables, sim_com, ports, panels, status.context().cluster}};

    ClusterWorld() {
        panels.add(panel);
        status.set_participant(run::ParticipantPlace::cluster, &panel);
        tables.ClusterPort = kClusterWire;
        set_engines(1);
    }
    ~ClusterWorld() { status.set_participant(run::ParticipantPlace::cluster, nullptr); }

    enum class Display { no, yes };
    void set_row(std::size_t row, int function, Display display = Display::no, int plate = 0) {
        tables.cluster[row] = {display == Display::yes ? std::int16_t{1} : std::int16_t{0},
                               static_cast<std::int16_t>(function), static_cast<std::int16_t>(plate)};
    }
    void set_engines(std::int16_t engines) { tables.cluster[9].ClusterSetting1 = engines; }

    // The telegrams since the last call. Bytes that make no whole telegram are a failure.
    std::vector<std::string> take_telegrams() {
        const std::string bytes = std::exchange(line.written, {});
        EXPECT_EQ(bytes.size() % cluster::kTelegramLength, 0U);
        std::vector<std::string> telegrams;
        for (std::size_t at = 0; at + cluster::kTelegramLength <= bytes.size(); at += cluster::kTelegramLength) {
            telegrams.push_back(bytes.substr(at, cluster::kTelegramLength));
        }
        return telegrams;
    }
    // The latest of them.
    std::string last_telegram() {
        tick(2);
        const std::vector<std::string> telegrams = take_telegrams();
        return telegrams.empty() ? "" : telegrams.back();
    }
    std::string box(std::size_t number) const { return panel.boxValue[number].text; }
};

// A telegram by its bytes that are not filling.
std::string telegram(char kind, char filling, const std::vector<std::pair<int, int>>& bytes) {
    std::string text(40, filling);
    text[0] = kind;
    for (const auto& [number, value] : bytes) {
        text[static_cast<std::size_t>(number - 1)] = static_cast<char>(value);
    }
    return text;
}

int position_in(const std::string& sent, int byte_number) {
    const auto at = static_cast<std::size_t>(byte_number - 1);
    return static_cast<unsigned char>(sent[at]) * 256 + static_cast<unsigned char>(sent[at + 1]);
}

TEST(EngineCluster, one_engine_leaves_the_second_column_at_zero) {
    ClusterWorld world;
    world.set_row(0, 40, ClusterWorld::Display::yes);
    world.set_row(3, 41);
    world.set_row(7, 42);
    world.set_value(40, 12.34);
    world.set_value(40, 500, 2);
    world.set_value(41, 300.9);
    world.set_value(42, 1000);
    world.status.cmdRun_Click();
    EXPECT_EQ(world.last_telegram(), telegram('F', ' ',
                                              {{2, 0},
                                               {3, 48},
                                               {16, 0x0F},
                                               {17, 0xA0},
                                               {22, 4},
                                               {23, 0xB0},
                                               {10, 0},
                                               {11, 0},
                                               {30, 0},
                                               {31, 0},
                                               {36, 75},
                                               {37, 50},
                                               {38, 2},
                                               {39, 0},
                                               {40, 170}}));
    EXPECT_EQ(world.box(0), "12.34");
    EXPECT_EQ(world.box(3), "300.90");
    EXPECT_EQ(world.box(7), "1000.00");
    EXPECT_EQ(world.box(8), "0");
    EXPECT_EQ(world.box(1), "") << "a row without a function shows nothing";
    EXPECT_EQ(world.sim_com.PortCount(), 14 + 3);
}

TEST(EngineCluster, two_engines_show_side_by_side_with_their_lights) {
    ClusterWorld world;
    world.set_engines(2);
    world.set_row(0, 40, ClusterWorld::Display::yes);
    world.set_row(1, 41, ClusterWorld::Display::yes);
    world.set_row(4, 42);
    world.set_value(40, 123.45, 1);
    world.set_value(40, 7.5, 2);
    world.set_value(41, -3, 1);
    world.set_value(41, 99.99, 2);
    world.set_value(42, 256, 1);
    world.set_value(42, 1000, 2);
    world.set_value(9, 28);  // the bus has power
    world.set_value(14, 1);  // and the lights are on
    world.tables.MacroValue = 9 * 64;
    world.status.cmdRun_Click();
    EXPECT_EQ(world.last_telegram().size(), 40U);
    world.tick(3);  // the lights are told by a tick of the run panel
    EXPECT_EQ(
        world.last_telegram(),
        telegram('F', ' ', {{2, 0x01}, {3, 0xEC}, {16, 0},    {17, 28},   {4, 0},     {5, 0},   {18, 0x01}, {19, 0x8C},
                            {8, 4},    {9, 0},    {24, 0x0F}, {25, 0xA0}, {36, 180},  {37, 50}, {34, 107},  {35, 129},
                            {30, 27},  {31, 17},  {32, 171},  {33, 170},  {38, 0x91}, {39, 1},  {40, 170}}));
    EXPECT_EQ(world.box(0), "123.45");
    EXPECT_EQ(world.box(8), "07.50");
    EXPECT_EQ(world.box(1), "00.00") << "limited to the plate before it shows";
    std::vector<int> sequence_numbers;
    for (const simlink::SimPort& port : world.sim_com.ports()) {
        if (port.FxNumber == 40) {
            sequence_numbers.push_back(port.FxSeqnr);
        }
    }
    EXPECT_EQ(sequence_numbers, (std::vector<int>{1, 2}));
    EXPECT_EQ(world.panel.ClusterPortNr(15), world.panel.ClusterPortNr(4) + 1);
    EXPECT_EQ(world.panel.ClusterPortNr(2), -1);
    EXPECT_EQ(world.sim_com.PortOwnerId, 4000);
}

TEST(EngineCluster, displays_are_given_out_in_order_and_a_fifth_takes_the_first_again) {
    ClusterWorld world;
    for (int row = 0; row < 5; ++row) {
        world.set_row(static_cast<std::size_t>(row), 40 + row, ClusterWorld::Display::yes);
        world.set_value(40 + row, 11 * (row + 1));
    }
    world.status.cmdRun_Click();
    const std::string sent = world.last_telegram();
    struct Slot {
        int first_byte;
        int second_digits;
    };
    for (const Slot& slot : {Slot{36, 55}, Slot{34, 22}, Slot{30, 33}, Slot{32, 44}}) {
        const int digit = slot.second_digits % 10 + 1;
        EXPECT_EQ(position_in(sent, slot.first_byte), (16 + 11) * 256 + digit * 17) << slot.first_byte;
    }
}

TEST(EngineCluster, a_display_knows_nothing_below_zero_and_a_box_without_one_does) {
    ClusterWorld world;
    const std::int16_t below = world.add_plate(-100, 100);
    world.set_row(0, 40, ClusterWorld::Display::yes, below);
    world.set_row(1, 41, ClusterWorld::Display::no, below);
    world.set_value(40, -50);
    world.set_value(41, -50);
    world.status.cmdRun_Click();
    const std::string sent = world.last_telegram();
    EXPECT_EQ(world.box(0), "0");
    EXPECT_EQ(world.box(1), "-50.00");
    EXPECT_EQ(position_in(sent, 36), 27 * 256 + 17);
    EXPECT_EQ(position_in(sent, 2), 0) << "a plate position below 0";
}

TEST(EngineCluster, values_that_are_no_number_leave_needle_and_box_and_raise_no_question) {
    ClusterWorld world;
    world.set_row(0, 40, ClusterWorld::Display::yes);
    world.set_row(1, 41);
    world.set_row(2, 60);  // an empty function
    world.set_value(40, 45.6);
    world.set_value(41, 200);
    world.status.cmdRun_Click();
    world.machine.boxes.forget_shown();  // the message about the empty function
    const std::string before = world.last_telegram();
    world.set_value(40, std::nan(""));
    world.set_value(41, std::nan(""));
    EXPECT_EQ(world.last_telegram(), before);
    EXPECT_EQ(world.box(0), "45.60");
    EXPECT_EQ(position_in(before, 6), 0) << "no value yet";
    EXPECT_EQ(world.box(2), "");
    world.set_value(40, std::numeric_limits<double>::infinity());
    world.set_value(41, -std::numeric_limits<double>::infinity());
    const std::string ends = world.last_telegram();
    EXPECT_EQ(position_in(ends, 2), 4000);
    EXPECT_EQ(position_in(ends, 36), 186 * 256 + 170) << "999.9 is the most that a display shows";
    EXPECT_EQ(position_in(ends, 4), 0);
    EXPECT_TRUE(world.machine.boxes.shown().empty()) << world.last_shown();
}

TEST(EngineCluster, it_runs_and_halts_with_the_run_panel) {
    ClusterWorld world;
    world.set_row(0, 40);
    world.panels.show(world.panel);
    EXPECT_EQ(world.panel.LabelFunction[0].text.get(), "f40");
    EXPECT_FALSE(world.panel.LabelFunction[1].visible.get());
    EXPECT_EQ(world.panel.BoxRun.text.get(), "Halted");
    EXPECT_EQ(world.panel.BoxRun.colour.get(), panel::kGreen);
    world.tick(5);
    EXPECT_TRUE(world.take_telegrams().empty());
    world.status.cmdRun_Click();
    EXPECT_EQ(world.panel.BoxRun.text.get(), "Running");
    EXPECT_EQ(world.panel.BoxRun.colour.get(), panel::kRed);
    world.advance(3000);
    EXPECT_EQ(world.panel.boxNrOfUpdates.text.get(), "25");
    EXPECT_EQ(world.take_telegrams().size(), 75U);
    world.status.cmdStop_Click();
    EXPECT_EQ(world.panel.BoxRun.text.get(), "Halted");
    world.tick(5);
    EXPECT_TRUE(world.take_telegrams().empty());
    world.tables.ClusterPort = 0;
    world.ports.OpenAllPorts();
    world.status.cmdRun_Click();
    EXPECT_FALSE(world.panel.running()) << "a configuration without a cluster";
}

TEST(EngineCluster, a_recalibration_is_one_telegram_a_zero_one_and_then_the_values_again) {
    ClusterWorld world;
    world.set_row(0, 40);
    world.set_value(40, 100);
    const std::string start = telegram('A', 16, {{38, 2}, {39, 0}, {40, 170}});
    const std::string end = telegram('F', 0, {{38, 2}, {40, 170}});
    world.status.cmdRun_Click();
    const std::string values = world.last_telegram();
    world.panel.Recalibrate();
    world.tick(3);
    EXPECT_EQ(world.take_telegrams(), (std::vector<std::string>{start, end, values}));

    // Outside a run it starts the telegrams. Each time falls 140 ms later in the run panel's second, so that its
    // countdown comes at every moment of the request, also between it and the first telegram.
    world.status.cmdStop_Click();
    for (int time = 0; time < 50; ++time) {
        world.panel.cmdStop_Click();
        world.advance(5020);
        world.take_telegrams();
        world.panel.Recalibrate();
        EXPECT_TRUE(world.panel.running());
        world.tick(3);
        ASSERT_EQ(world.take_telegrams(), (std::vector<std::string>{start, end, values})) << "time " << time;
    }
    EXPECT_TRUE(world.machine.boxes.shown().empty());
}

TEST(EngineCluster, a_single_needle_is_moved_with_all_others_at_zero) {
    ClusterWorld world;
    world.ports.OpenAllPorts();
    world.status.context().cluster = {.ClusterLights = 1, .ClusterPower = 1};
    world.panel.MoveSingleNeedle(11, 0x0123);
    EXPECT_EQ(world.take_telegrams(),
              std::vector<std::string>{telegram('F', 0, {{10, 1}, {11, 0x23}, {38, 1}, {40, 170}})});
    world.panel.MoveSingleNeedle(0, 9999);
    EXPECT_EQ(position_in(world.take_telegrams().back(), 2), 4320);
    world.panel.MoveSingleNeedle(16, 5);
    world.panel.MoveSingleNeedle(-1, 5);
    EXPECT_TRUE(world.take_telegrams().empty());
    EXPECT_TRUE(world.machine.boxes.shown().empty());
    world.ports.CloseAllComPorts();
    world.panel.MoveSingleNeedle(1, 5);
    EXPECT_EQ(world.machine.boxes.shown(), std::vector<std::string>{"Comm Port for Engine Cluster not found"});
    world.ports.OpenAllPorts();
    world.line.unplug();
    world.panel.MoveSingleNeedle(1, 5);
    EXPECT_EQ(world.times_shown("Comm Port for Engine Cluster not found"), 2);
}

TEST(EngineCluster, an_unplugged_cluster_is_asked_about_once_and_resumes_when_it_comes_back) {
    ClusterWorld world;
    world.set_row(0, 40);
    world.set_value(40, 100);
    world.add_gauge(1, 1, 40);
    world.status.cmdRun_Click();
    world.tick(3);
    world.take_telegrams();
    world.take_frames();
    world.machine.boxes.leave_open = true;  // an unattended cockpit
    world.line.unplug();
    world.machine.loop.post_after(std::chrono::seconds(5), [&world] {
        EXPECT_EQ(world.machine.boxes.open_boxes().size(), 1U);
        EXPECT_EQ(world.panel.boxPort.text.get(), "COM5 unplugged");
        EXPECT_EQ(world.take_values(1, 5), std::vector<int>{200}) << "the gauges go on meanwhile";
        world.line.plug();
    });
    world.set_value(40, 200);
    world.tick(5);
    EXPECT_EQ(world.machine.boxes.shown(), std::vector<std::string>{kQuestion});
    EXPECT_TRUE(world.machine.boxes.open_boxes().empty()) << "the question goes with its cause";
    EXPECT_EQ(position_in(world.last_telegram(), 2), 800);
    EXPECT_TRUE(world.status.running());
}

TEST(EngineCluster, after_a_yes_an_outage_is_silent_and_a_no_halts_the_cluster_alone) {
    ClusterWorld world;
    world.set_row(0, 40);
    world.status.cmdRun_Click();
    for (int outage = 1; outage <= 2; ++outage) {
        world.tick(2);
        world.line.unplug();
        world.tick(60);
        EXPECT_EQ(world.times_shown(kQuestion), outage);
        world.line.plug();
        world.take_telegrams();
        EXPECT_NE(world.last_telegram(), "");
    }
    world.machine.boxes.default_answer = {platform::Answer::no, "", false};
    world.line.unplug();
    world.tick(3);
    EXPECT_FALSE(world.panel.running());
    EXPECT_EQ(world.panel.BoxRun.text.get(), "Halted");
    EXPECT_TRUE(world.status.running());
}

TEST(EngineCluster, a_row_with_a_missing_plate_is_asked_about_once_in_a_run_and_the_others_go_on) {
    ClusterWorld world;
    world.set_row(0, 40, ClusterWorld::Display::no, 99);
    world.set_row(1, 41, ClusterWorld::Display::no, -1);
    world.set_row(2, 42);
    world.set_value(42, 500);
    world.status.cmdRun_Click();
    world.tick(50);
    EXPECT_EQ(world.machine.boxes.shown(), std::vector<std::string>{kQuestion});
    EXPECT_EQ(position_in(world.last_telegram(), 6), 2000);
    world.status.cmdStop_Click();
    world.machine.boxes.default_answer = {platform::Answer::no, "", false};
    world.status.cmdRun_Click();
    world.tick(10);
    EXPECT_EQ(world.times_shown(kQuestion), 2);
    EXPECT_FALSE(world.panel.running());
    EXPECT_TRUE(world.status.running());
}

TEST(EngineCluster, needles_stay_while_the_lists_of_the_run_are_built_anew) {
    ClusterWorld world;
    world.set_row(0, 40);
    world.set_value(40, 100);
    world.status.cmdRun_Click();
    const std::string before = world.last_telegram();
    world.status.cmdStop_Click();
    world.panel.Recalibrate();  // the telegrams go on by themselves
    world.tick(5);
    world.take_telegrams();
    // New gauges take the port numbers that the cluster had; a message holds the building up half-way.
    world.sim_com.CloseAllPorts();
    for (int id = 1; id <= 30; ++id) {
        world.add_gauge(id, 1, 41);
    }
    world.add_gauge(31, 1, 60);  // an empty function
    world.machine.boxes.answer_after = std::chrono::seconds(1);
    std::vector<std::string> sent;
    world.machine.loop.post_after(std::chrono::milliseconds(990), [&] { sent = world.take_telegrams(); });
    world.status.cmdRun_Click();
    EXPECT_EQ(sent, std::vector<std::string>(24, before));
}

TEST(EngineCluster, a_port_that_is_missing_at_the_start_is_told_once_and_used_when_it_comes) {
    ClusterWorld world;
    world.set_row(0, 40);
    world.line.faults.missing = true;
    world.status.cmdRun_Click();
    world.tick(100);
    EXPECT_EQ(world.machine.boxes.shown().size(), 1U);
    EXPECT_EQ(world.times_shown("  - Port nr:5, Port COM5 does not exist"), 1);
    EXPECT_EQ(world.panel.boxPort.text.get(), "COM5 closed");
    EXPECT_EQ(world.panel.boxNrOfUpdates.text.get(), "0");
    world.line.faults.missing = false;
    world.advance(1100);
    EXPECT_NE(world.last_telegram(), "");
    ASSERT_NE(world.line.port(), nullptr);
    EXPECT_EQ(world.line.port()->settings(), "38400,N,8,2");
    EXPECT_EQ(world.line.port()->receive_threshold(), 16U);
    EXPECT_EQ(world.machine.boxes.shown().size(), 1U);
    EXPECT_EQ(world.wire.opens, 2) << "the gauge bus is left alone";
}

TEST(EngineCluster, a_reply_tells_the_version_and_other_bytes_nothing) {
    ClusterWorld world;
    world.set_row(0, 40);
    world.status.cmdRun_Click();
    const auto deliver = [&world](const std::string& bytes) {
        world.tick();
        world.line.deliver(bytes);
        world.tick();
        return world.panel.boxUnitReply.text.get();
    };
    EXPECT_EQ(deliver(std::string(16, 'x')), "No Reply");
    EXPECT_EQ(deliver("\xFF-------------3"), "No Reply") << "15 bytes raise no event";
    EXPECT_EQ(deliver("\xFF-------------34"), "Version: 3.4");
    EXPECT_EQ(deliver("\xFE-------------56"), "Version: 3.4");
    EXPECT_EQ(deliver("noise\xFF-------------78"), "Version: 3.4");
    EXPECT_EQ(deliver("\xFF-------------78"), "Version: 7.8") << "each telegram clears what was left";
    EXPECT_EQ(world.panel.ClusterReply(), "78");
    world.tick();
    world.line.deliver("\xFF-------");
    world.advance(5);
    world.line.send_framing_error();
    world.line.deliver("\xFF-------------90");
    world.tick();
    EXPECT_EQ(world.panel.ClusterReply(), "90") << "a framing error drops the half reply before it";
    world.ports.OpenAllPorts();
    EXPECT_EQ(world.panel.ClusterReply(), "");
}

}  // namespace
