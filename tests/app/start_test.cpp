#include <gtest/gtest.h>

#include "tests/support/rig.h"

namespace {

using namespace std::chrono_literals;
using panel::WindowState;
using rig::Rig;
using rig::SimulatorAtStart;

void set_start_delay(Rig& rig, int seconds) {
    rig.machine.files.contents["DefaultStartFileMS.cfn"] =
        "\"General\"\r\n\"Default MS-FS.cfg\"\r\n\"Startdelay\"\r\n" + std::to_string(seconds) + "\r\n\"End\"\r\n";
}

TEST(Start, with_the_simulator_up_a_run_starts_thirteen_seconds_after_the_program_and_is_minimised) {
    Rig rig;
    set_start_delay(rig, 10);
    rig.sim().write_u16(0x262, 1);
    rig.start_program();
    EXPECT_EQ(rig.text("frmMain", "frmMainConnection"), "Connected to  Flight Simulator;   Okay");
    EXPECT_EQ(rig.text("frmMain", "lblSim"), "FSX");
    EXPECT_EQ(rig.text("frmMain", "LabelFSUIPC"), "5.000");
    EXPECT_EQ(rig.text("frmMain", "LabelProgramVersion"), "10.1.3");
    EXPECT_TRUE(rig.is_enabled("frmMain", "butOK"));
    EXPECT_FALSE(rig.is_visible("frmMain", "TextAutostart"));
    rig.advance(3500ms);
    EXPECT_TRUE(rig.is_visible("frmMain", "TextAutostart"));
    EXPECT_TRUE(rig.is_visible("frmMain", "BoxAutoStartTime"));
    EXPECT_EQ(rig.text("frmMain", "BoxAutoStartTime"), "10");
    rig.advance(9s);
    EXPECT_FALSE(rig.running());
    EXPECT_EQ(rig.text("frmMain", "BoxAutoStartTime"), "1");
    rig.advance(1s);
    EXPECT_TRUE(rig.running()) << rig.story();
    EXPECT_EQ(rig.window("frmStatus"), WindowState::minimised);
    EXPECT_EQ(rig.window("frmMain"), WindowState::hidden);
    EXPECT_EQ(rig.text("frmStatus", "Label37"), "Default MS-FS.cfg");
    EXPECT_EQ(rig.sim().read_u16(0x262), 0) << "a paused simulator is let go";
    EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
}

TEST(Start, without_a_delay_the_first_tick_of_the_countdown_starts_the_run) {
    Rig rig;
    set_start_delay(rig, 0);
    rig.start_program();
    rig.advance(3999ms);
    EXPECT_FALSE(rig.running());
    rig.advance(1ms);
    EXPECT_TRUE(rig.running()) << rig.story();
    EXPECT_EQ(rig.text("frmMain", "BoxAutoStartTime"), "-1");
}

TEST(Start, the_program_waits_for_a_simulator_that_is_not_there_and_counts_down_within_a_second_of_its_coming) {
    Rig rig(SimulatorAtStart::absent);
    rig.start_program();
    EXPECT_EQ(rig.text("frmMain", "frmMainConnection"), "Error: Cannot link to FSUIPC or WideClient");
    EXPECT_EQ(rig.text("frmMain", "lblSim"), "N/A");
    EXPECT_EQ(rig.cockpit.client().ConnectionStatus, "Cannot link to FSUIPC or WideClient");
    rig.advance(3s);
    EXPECT_EQ(rig.text("frmMain", "TextAutostart"), "Waiting for Simulator startup");
    EXPECT_TRUE(rig.is_visible("frmMain", "TextAutostart"));
    EXPECT_FALSE(rig.is_visible("frmMain", "BoxAutoStartTime"));
    rig.advance(10min);
    EXPECT_FALSE(rig.running());
    rig.start_simulator();
    rig.advance(1200ms);
    EXPECT_EQ(rig.text("frmMain", "TextAutostart"), "Program will autostart with Selected Config in: ");
    EXPECT_TRUE(rig.is_visible("frmMain", "BoxAutoStartTime"));
    EXPECT_TRUE(rig.is_visible("frmMain", "Textseconds"));
    EXPECT_EQ(rig.text("frmMain", "lblSim"), "FSX");
    rig.advance(6s);
    EXPECT_TRUE(rig.running()) << rig.story();
    EXPECT_EQ(rig.cockpit.client().ConnectionStatus, "Cannot link to FSUIPC or WideClient") << "only the first attempt";
    EXPECT_TRUE(rig.machine.boxes.shown().empty()) << rig.boxes_shown();
}

TEST(Start, a_simulator_of_a_wrong_version_is_told_and_tried_again_until_it_is_right) {
    Rig rig;
    rig.simulator.server().set_fault(simhost::ServerFault::zero_versions, true);
    rig.start_program();
    EXPECT_EQ(rig.text("frmMain", "frmMainConnection"), "Error: Incorrect version of FSUIPC, or not FSUIPC");
    rig.advance(20s);
    EXPECT_FALSE(rig.running());
    EXPECT_EQ(rig.machine.sim_transport.held_views, 0) << "a failed attempt releases what it took";
    rig.simulator.server().clear_faults();
    rig.advance(9s);
    EXPECT_TRUE(rig.running()) << rig.story();
}

TEST(Start, a_choice_in_the_file_list_ends_the_countdown_for_good) {
    Rig rig;
    rig.machine.files.contents["Another.cfg"] = rig.machine.files.contents["Default MS-FS.cfg"];
    rig.start_program();
    rig.advance(4s);
    ASSERT_EQ(rig.cockpit.start_panel().FileBox.items.lines(),
              (std::vector<std::string>{"Another.cfg", "Default MS-FS.cfg"}));
    EXPECT_EQ(rig.cockpit.start_panel().FileBox.value, 1);
    rig.click("frmMain", "FileBox", 0);
    EXPECT_FALSE(rig.is_visible("frmMain", "BoxAutoStartTime"));
    rig.advance(10min);
    EXPECT_FALSE(rig.running());
    rig.click("frmMain", "butOK");
    EXPECT_EQ(rig.window("frmMain"), WindowState::hidden);
    EXPECT_EQ(rig.window("frmStatus"), WindowState::shown);
    EXPECT_EQ(rig.text("frmStatus", "BoxCurrentConfig"), "Another.cfg");
    EXPECT_EQ(rig.text("frmStatus", "Label37"), "Another.cfg");
    EXPECT_TRUE(rig.cockpit.gauge_bus().serial_port().is_open());
    rig.advance(1min);
    EXPECT_FALSE(rig.running()) << "the user starts the run himself";
    EXPECT_EQ(rig.text("frmStatus", "BoxRun"), "Halted");
    rig.click("frmStatus", "cmdRun");
    EXPECT_TRUE(rig.running()) << rig.story();
}

TEST(Start, a_choice_in_the_file_list_leaves_the_wait_for_the_simulator_which_brings_the_countdown_back) {
    Rig rig(SimulatorAtStart::absent);
    rig.start_program();
    rig.advance(5s);
    rig.click("frmMain", "FileBox", 0);
    EXPECT_FALSE(rig.is_visible("frmMain", "TextAutostart"));
    rig.start_simulator();
    rig.advance(8s);
    EXPECT_TRUE(rig.running()) << rig.story();
}

TEST(Start, an_unreadable_start_file_gives_the_default_file_and_ten_seconds) {
    for (const char* const bytes :
         {"", "\"General\"\r\n\"x.cfg\"\r\n", "\"Genera\"\r\n\"x.cfg\"\r\n\"Startdelay\"\r\n2\r\n\"End\"",
          "\xFF\xFE\"\"\"\"\"", "\"General\"\r\n\"x.cfg\"\r\n\"Startdelay\"\r\nten\r\n\"End\""}) {
        Rig rig;
        rig.machine.files.contents["DefaultStartFileMS.cfn"] = bytes;
        rig.start_program();
        EXPECT_EQ(rig.text("frmMain", "FileName"), "Default MS-FS.cfg");
        rig.advance(12s);
        EXPECT_FALSE(rig.running());
        rig.advance(1s);
        EXPECT_TRUE(rig.running()) << bytes << rig.story();
    }
}

TEST(Start, a_configuration_that_does_not_load_leaves_the_panel_waiting_for_the_user) {
    Rig rig;
    std::string& file = rig.machine.files.contents["Default MS-FS.cfg"];
    file.resize(file.size() / 2);
    rig.start_program();
    EXPECT_TRUE(rig.machine.boxes.has_shown("Error Configuration file: ")) << rig.boxes_shown();
    EXPECT_FALSE(rig.is_enabled("frmMain", "butOK"));
    rig.advance(10min);
    EXPECT_FALSE(rig.running());
    EXPECT_FALSE(rig.is_visible("frmMain", "TextAutostart"));
}

TEST(Start, a_file_that_breaks_during_the_countdown_leaves_the_panel_without_timers) {
    Rig rig;
    rig.start_program();
    rig.advance(5s);
    rig.machine.files.contents["Default MS-FS.cfg"] = "nothing";
    rig.advance(10min);
    EXPECT_FALSE(rig.running());
    EXPECT_EQ(rig.window("frmMain"), WindowState::shown);
    EXPECT_EQ(rig.machine.boxes.shown().size(), 1U) << rig.boxes_shown();
}

TEST(Start, no_run_starts_under_a_question_about_the_file_that_is_still_open) {
    Rig rig;
    auto& file = rig.machine.files.contents["Default MS-FS.cfg"];
    file.replace(file.find("10.1.3"), 6, "10.1.2");
    rig.machine.boxes.answer_after = 30s;
    std::size_t most_open = 0;
    rig.machine.boxes.on_open = [&](const platform::OpenBox&) {
        most_open = std::max(most_open, rig.machine.boxes.open_boxes().size());
        EXPECT_FALSE(rig.running());
    };
    rig.start_program();  // the countdown ends while the second load waits for its answer
    rig.advance(40s);
    EXPECT_TRUE(rig.running()) << rig.story();
    EXPECT_EQ(rig.machine.boxes.shown().size(), 3U) << rig.boxes_shown();
    EXPECT_EQ(most_open, 1U);
}

TEST(Start, while_the_start_panel_is_hidden_the_countdown_goes_on_but_no_run_starts) {
    Rig rig;
    rig.start_program();
    rig.advance(4s);
    rig.cockpit.panels().hide(rig.cockpit.start_panel());
    rig.advance(1min);
    EXPECT_FALSE(rig.running());
    EXPECT_EQ(rig.text("frmMain", "BoxAutoStartTime"), "-56");
    rig.cockpit.panels().show(rig.cockpit.start_panel());
    rig.advance(1s);
    EXPECT_TRUE(rig.running()) << rig.story();
}

TEST(Start, a_user_who_continues_without_a_simulator_gets_it_when_it_comes) {
    Rig rig(SimulatorAtStart::absent);
    rig.start_program();
    rig.advance(5s);
    rig.click("frmMain", "butOK");
    rig.click("frmStatus", "cmdRun");
    rig.advance(1min);
    EXPECT_FALSE(rig.cockpit.sim_com().link_alive());
    rig.start_simulator();
    rig.advance(5s);
    EXPECT_TRUE(rig.cockpit.sim_com().link_alive()) << rig.story();
    EXPECT_TRUE(rig.needles_are_right());
}

TEST(Start, configure_ends_the_countdown_and_keeps_the_start_panel_behind) {
    Rig rig;
    rig.start_program();
    rig.advance(4s);
    rig.click("frmMain", "CmdConfigure");
    EXPECT_EQ(rig.window("FrmMainConfigure"), WindowState::shown);
    EXPECT_EQ(rig.window("frmMain"), WindowState::shown);
    EXPECT_EQ(rig.cockpit.tables().ConfigureFromRunPanel, 0);
    rig.advance(10min);
    EXPECT_FALSE(rig.running());
}

TEST(Start, the_way_from_a_run_to_the_configuration_and_back_ends_in_a_run) {
    Rig rig;
    rig.start_run();
    rig.cockpit.panels().show("frmStatus");
    rig.click("frmStatus", "cmdconfig");
    EXPECT_FALSE(rig.running());
    EXPECT_EQ(rig.window("frmStatus"), WindowState::hidden);
    EXPECT_EQ(rig.window("frmMain"), WindowState::shown);
    EXPECT_EQ(rig.window("FrmMainConfigure"), WindowState::shown);
    EXPECT_EQ(rig.cockpit.tables().ConfigureFromRunPanel, 1);
    rig.advance(10min);
    EXPECT_FALSE(rig.running());
    rig.click("frmMain", "butOK");
    rig.click("frmStatus", "cmdRun");
    rig.advance(3s);
    EXPECT_TRUE(rig.running());
    EXPECT_TRUE(rig.needles_are_right());
}

TEST(Start, exit_closes_all_that_is_open_and_ends_the_program) {
    for (const char* const from : {"frmMain", "frmStatus", "signal", "signal under a box"}) {
        Rig rig;
        rig.machine.boxes.leave_open = true;
        rig.start_run();
        rig.cockpit.panels().show("frmStatus");
        const std::string way = from;
        if (way == "frmMain") {
            rig.click("frmStatus", "cmdconfig");
            rig.click("frmMain", "Exit");
        } else if (way == "frmStatus") {
            rig.click("frmStatus", "CmdExit");
        } else {
            if (way == "signal under a box") {
                rig.machine.loop.post([&rig] { rig.machine.boxes.message("Wait"); });
            }
            rig.cockpit.exit();
            rig.advance(0ms);
        }
        EXPECT_TRUE(rig.machine.loop.stopped()) << from;
        EXPECT_FALSE(rig.running()) << from;
        EXPECT_EQ(rig.gauge_wire().port(), nullptr) << from;
        EXPECT_EQ(rig.machine.sim_transport.held_views, 0) << from;
        EXPECT_EQ(rig.machine.sim_transport.held_atoms, 0) << from;
        EXPECT_EQ(rig.window("frmStatus"), WindowState::hidden) << from;
        EXPECT_TRUE(rig.machine.boxes.open_boxes().empty()) << from;
    }
}

}  // namespace
