#include <gtest/gtest.h>

#include "run_world.h"

namespace {

using run_test::RunWorld;
using Sent = RunWorld::Sent;
using std::chrono::milliseconds;

// A unit with a port of its own that writes down what is asked of it.
struct Unit : run::RunParticipant {
    std::vector<std::string>& log;
    std::string name;
    bool has_port = true;
    std::function<void()> on_run;

    Unit(std::vector<std::string>& shared_log, std::string unit_name) : log(shared_log), name(std::move(unit_name)) {}
    bool hasPort() const override { return has_port; }
    void OpenCommPort() override { log.push_back(name + " port"); }
    void OpenPorts() override { log.push_back(name + " open"); }
    void cmdRun_Click() override {
        log.push_back(name + " run");
        if (on_run) {
            on_run();
        }
    }
    void cmdStop_Click() override { log.push_back(name + " stop"); }
};

struct Units {
    std::vector<std::string> log;
    Unit cluster{log, "cluster"};
    Unit iom1{log, "iom1"};
    Unit iom2{log, "iom2"};
    Unit yokes{log, "yokes"};

    explicit Units(run::frmStatus& status) {
        status.set_participant(run::ParticipantPlace::cluster, &cluster);
        status.set_participant(run::ParticipantPlace::iom1, &iom1);
        status.set_participant(run::ParticipantPlace::iom2, &iom2);
        status.set_participant(run::ParticipantPlace::yokes, &yokes);
    }
};

TEST(RunControl, a_run_starts_and_stops_with_its_timers_and_shows_it) {
    RunWorld world;
    world.add_gauge(1, 1, 40);
    EXPECT_EQ(world.status.BoxRun.text, "Halted");
    EXPECT_TRUE(world.gauge_bus.WriteDuringConfig.enabled());
    world.status.cmdRun_Click();
    EXPECT_EQ(world.status.BoxRun.text, "Running");
    EXPECT_EQ(world.status.BoxRun.colour, 255);
    EXPECT_TRUE(world.status.ProcessTimer.enabled());
    EXPECT_TRUE(world.sim_com.ProcessTimer.enabled());
    EXPECT_FALSE(world.gauge_bus.WriteDuringConfig.enabled());
    EXPECT_EQ(world.wire.opens, 2) << "opened, closed and opened again";
    world.status.cmdRun_Click();
    EXPECT_EQ(world.wire.opens, 2) << "a second run command does nothing";
    world.status.cmdStop_Click();
    EXPECT_EQ(world.status.BoxRun.text, "Halted");
    EXPECT_EQ(world.status.BoxRun.colour, 49152);
    EXPECT_FALSE(world.status.ProcessTimer.enabled());
    EXPECT_FALSE(world.sim_com.ProcessTimer.enabled());
    EXPECT_TRUE(world.gauge_bus.WriteDuringConfig.enabled());
    EXPECT_TRUE(world.gauge_bus.serial_port().is_open()) << "ports stay open across runs";
    world.status.cmdRun_Click();
    EXPECT_EQ(world.wire.opens, 2);
}

TEST(RunControl, units_with_a_port_are_called_in_their_order) {
    RunWorld world;
    Units units(world.status);
    units.iom2.has_port = false;
    world.status.cmdRun_Click();
    const std::vector<std::string> started = {"iom1 port",   "cluster open", "iom1 open", "yokes open",
                                              "cluster run", "iom1 run",     "yokes run"};
    EXPECT_EQ(units.log, started);
    units.log.clear();
    world.status.cmdStop_Click();
    const std::vector<std::string> stopped = {"cluster stop", "iom1 stop", "yokes stop"};
    EXPECT_EQ(units.log, stopped);
    units.log.clear();
    world.status.cmdRun_Click();
    EXPECT_EQ(units.log.front(), "cluster run") << "the lists of the first run still stand";
}

TEST(RunControl, a_stop_during_a_start_that_waits_leaves_the_cockpit_halted) {
    RunWorld world;
    Units units(world.status);
    units.iom1.on_run = [&world] {
        world.machine.loop.post_user_command([&world] { world.status.cmdStop_Click(); });
        const auto end = world.machine.loop.now() + milliseconds(100);
        world.machine.loop.yield_until([&] { return world.machine.loop.now() >= end; });
    };
    world.status.cmdRun_Click();
    EXPECT_FALSE(world.status.running());
    EXPECT_FALSE(world.sim_com.ProcessTimer.enabled());
    EXPECT_FALSE(world.status.ProcessTimer.enabled());
    EXPECT_TRUE(world.gauge_bus.WriteDuringConfig.enabled());
    EXPECT_EQ(std::count(units.log.begin(), units.log.end(), "yokes run"), 0);
}

TEST(RunControl, a_unit_that_fails_to_start_is_told_and_the_rest_runs) {
    RunWorld world;
    Units units(world.status);
    units.cluster.on_run = [] { throw support::Failure("broken"); };
    world.add_gauge(1, 1, 40);
    world.status.cmdRun_Click();
    EXPECT_EQ(world.last_shown(), "Error 9: An error occured trying to open Comm Port(s)");
    EXPECT_EQ(units.log.back(), "yokes run");
    world.tick(2);
    EXPECT_EQ(world.take_frames().size(), 1U);
}

TEST(RunControl, a_run_starts_without_its_port) {
    RunWorld world;
    world.add_gauge(1, 1, 40);
    world.wire.faults.missing = true;
    world.status.cmdRun_Click();
    EXPECT_EQ(world.machine.boxes.shown().size(), 1U);
    EXPECT_NE(world.last_shown().find("  - Port nr:3, Port COM3 does not exist"), std::string::npos);
    world.advance(2500);
    EXPECT_TRUE(world.status.running());
    EXPECT_EQ(world.machine.boxes.shown().size(), 1U);
    EXPECT_EQ(world.status.frmXferCount.text.get(), "25");
    // The controller is plugged in later: the run finds it by itself and shows the whole picture.
    world.wire.faults.missing = false;
    world.advance(1100);
    EXPECT_EQ(world.take_frames(), (std::vector<Sent>{{1, 5, 0}}));
    EXPECT_EQ(world.machine.boxes.shown().size(), 1U);
}

TEST(RunControl, the_lists_hold_the_gauges_in_order_and_the_ports_are_opened_once) {
    RunWorld world;
    world.add_gauge(200, 1, 40);
    world.add_gauge(3, 3, 41, 42);
    world.add_gauge(77, 10, 40);
    world.add_gauge(78, 99, 40);
    world.status.RefreshConfig();
    run::RunContext& context = world.status.context();
    EXPECT_EQ(context.ActiveCount, 3);
    std::vector<int> ids;
    for (const run::ActiveGauge& gauge : context.active) {
        ids.push_back(gauge.ActiveGaugeId);
    }
    EXPECT_EQ(ids, (std::vector<int>{3, 77, 78, 200}));
    EXPECT_EQ(world.times_shown("The Bus type IO Module is not supported in this program; Use USB type"), 1);
    EXPECT_EQ(world.sim_com.PortCount(), 3 + 14);
    EXPECT_EQ(world.status.boxNrofOffsets.text, "17");
    EXPECT_EQ(world.sim_com.PortsOpen, 1);
    EXPECT_EQ(world.sim_com.OffsetsList.items[0].substr(12, 6), "ID:003");
    EXPECT_EQ(world.sim_com.OffsetsList.items[3].substr(12, 5), "INTRN");
    world.status.RefreshConfig();
    EXPECT_EQ(world.sim_com.PortCount(), 17);
    // System ports: which function and offset each stands on, and which read.
    struct Expected {
        int function;
        int sequence_number;
        bool reads;
    };
    const Expected expected[] = {{1, 1, true},   {2, 1, true},  {3, 1, true},  {4, 1, true}, {5, 1, true},
                                 {6, 1, true},   {7, 1, true},  {8, 1, true},  {9, 1, true}, {10, 1, false},
                                 {13, 1, false}, {14, 1, true}, {16, 1, true}, {9, 2, true}};
    for (std::size_t number = 1; number <= 14; ++number) {
        const auto& port = world.sim_com.ports()[static_cast<std::size_t>(context.SystemPort[number])];
        EXPECT_EQ(port.FxNumber, expected[number - 1].function) << number;
        EXPECT_EQ(port.FxSeqnr, expected[number - 1].sequence_number) << number;
        EXPECT_EQ(port.ReadEnabled == 1, expected[number - 1].reads) << number;
    }
}

TEST(RunControl, a_configuration_without_gauges_ticks_and_sends_nothing) {
    RunWorld world;
    world.status.cmdRun_Click();
    EXPECT_EQ(world.status.context().ActiveCount, 1);
    world.tick(10);
    EXPECT_EQ(world.wire.writes, 0);
    EXPECT_EQ(world.status.TickCount(), 10);
    EXPECT_TRUE(world.machine.boxes.shown().empty());
}

TEST(RunControl, the_interval_comes_from_the_file_and_follows_the_slider_during_a_run) {
    for (const auto& [stored, expected] :
         {std::pair{0, 40}, std::pair{-5, 40}, std::pair{25, 25}, std::pair{500, 500}}) {
        RunWorld world;
        world.tables.ProcessInterval = static_cast<std::int16_t>(stored);
        world.status.RefreshConfig();
        EXPECT_EQ(world.status.ProcessTimer.interval(), milliseconds(expected));
        EXPECT_EQ(world.status.BoxXferProcessTimer.text, std::to_string(expected));
        EXPECT_EQ(world.status.SliderXferTimer.value, std::min(expected, 200));
    }
    RunWorld world;
    world.status.cmdRun_Click();
    world.status.SliderXferTimer.value = 10;
    world.status.SliderXferTimer.on_change();
    EXPECT_EQ(world.tables.ProcessInterval, 10);
    EXPECT_EQ(world.status.BoxXferProcessTimer.text, "10");
    world.advance(100);
    EXPECT_EQ(world.status.TickCount(), 10);
}

TEST(RunControl, unit_commands_show_only_with_a_port) {
    RunWorld world;
    world.tables.IomPort2 = 7;
    world.tables.YokePort2 = 8;
    world.status.RefreshConfig();
    EXPECT_FALSE(world.status.cmdShowECStatus.visible);
    EXPECT_FALSE(world.status.cmdShowIOM.visible);
    EXPECT_TRUE(world.status.cmdShowIOM2.visible);
    EXPECT_TRUE(world.status.CmdShowYokes.visible);
}

TEST(RunControl, configure_stops_the_run_and_makes_the_next_run_build_its_lists_anew) {
    RunWorld world;
    panel::PlaceholderPanel start(world.panels, "frmMain", "");
    panel::PlaceholderPanel configure(world.panels, "FrmMainConfigure", "");
    world.panels.add(start);
    world.panels.add(configure);
    world.add_gauge(1, 1, 40);
    world.status.cmdRun_Click();
    world.status.cmdconfig_Click();
    EXPECT_FALSE(world.status.running());
    EXPECT_TRUE(start.visible());
    EXPECT_TRUE(configure.visible());
    EXPECT_FALSE(world.status.visible());
    EXPECT_EQ(world.tables.ConfigureFromRunPanel, 1);
    EXPECT_EQ(world.sim_com.PortsOpen, 0);
    world.add_gauge(2, 1, 40);
    world.panels.show(world.status);
    world.status.cmdRun_Click();
    EXPECT_FALSE(configure.visible());
    world.tick(2);
    EXPECT_EQ(world.take_frames().size(), 2U);
}

TEST(RunControl, exit_closes_ports_and_panels_and_ends_the_program) {
    RunWorld world;
    world.status.cmdRun_Click();
    world.sim_com.exit_program();
    EXPECT_FALSE(world.status.running());
    EXPECT_FALSE(world.gauge_bus.serial_port().is_open());
    EXPECT_FALSE(world.status.visible());
    EXPECT_EQ(world.sim_com.PortCount(), 0);
    EXPECT_FALSE(world.client.is_open());
    EXPECT_TRUE(world.machine.loop.stopped());
}

TEST(RunControl, creation_shows_program_version_and_configuration) {
    RunWorld world;
    EXPECT_EQ(world.status.LabelVersion.text, "Version: 10.1.3");
    EXPECT_EQ(world.status.title(), "Control Program for FSUIPC based Simulators");
    EXPECT_EQ(world.tables.gauge_types[30].GaugeTypeCode, 7);
    world.tables.ConfigFileName = "c172.cfg";
    world.status.RefreshConfig();
    EXPECT_EQ(world.status.BoxCurrentConfig.text, "c172.cfg");
}

TEST(RunControl, the_second_counts_the_cluster_and_the_query_down) {
    RunWorld world;
    run::ClusterState& cluster = world.status.context().cluster;
    cluster.ClusterRecalibrate = 2;
    cluster.ClusterRecalibrateWait = 2;
    world.tables.ReplyWait = 2;
    world.advance(1000);
    EXPECT_EQ(cluster.ClusterRecalibrateWait, 1);
    EXPECT_EQ(cluster.ClusterRecalibrate, 2);
    EXPECT_EQ(world.tables.ReplyWait, 1);
    world.advance(2000);
    EXPECT_EQ(cluster.ClusterRecalibrate, 0);
    EXPECT_EQ(world.tables.ReplyWait, 0);
}

TEST(RunControl, a_query_without_an_answer_takes_one_to_two_seconds) {
    for (const int wait_before : {0, 500, 999}) {
        RunWorld world;
        world.ports.OpenAllPorts();
        world.advance(wait_before);
        const auto asked = world.machine.loop.now();
        world.gauge_bus.QueryGauge(9);
        const auto waited = world.machine.loop.now() - asked;
        EXPECT_GE(waited, milliseconds(1000)) << wait_before;
        EXPECT_LE(waited, milliseconds(2000)) << wait_before;
        EXPECT_EQ(world.tables.ReplyReceived, 0);
        EXPECT_EQ(world.take_values(9, 7), std::vector<int>{2});
    }
}

TEST(RunControl, a_query_ends_with_its_answer) {
    RunWorld world;
    world.ports.OpenAllPorts();
    std::string report(bus::kReportLength, 'x');
    report.front() = 0;
    report.back() = static_cast<char>(255);
    world.wire.to_device = [&](std::string_view) { world.wire.deliver(report); };
    const auto asked = world.machine.loop.now();
    world.gauge_bus.QueryGauge(9);
    EXPECT_LT(world.machine.loop.now() - asked, milliseconds(50));
    EXPECT_EQ(world.tables.ReplyReceived, 1);
    EXPECT_EQ(world.tables.LastReply, report);
}

}  // namespace
