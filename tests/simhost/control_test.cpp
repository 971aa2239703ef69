#include "simhost/control.h"

#include <gtest/gtest.h>

namespace {

using simhost::Control;
using simhost::ServerFault;
using simhost::Simulator;

struct ControlTest : testing::Test {
    Simulator simulator;
    Control control{simulator};
};

TEST_F(ControlTest, faults_go_on_and_off_by_command) {
    struct Case {
        const char* on;
        const char* off;
        ServerFault fault;
    };
    const Case cases[] = {
        {"silence on", "silence off", ServerFault::silence},
        {"slow 300", "slow 0", ServerFault::slow_answers},
        {"version wrong", "version right", ServerFault::wrong_server_version},
        {"version unmarked", "version right", ServerFault::wrong_sim_word},
        {"version zero", "version wrong", ServerFault::zero_versions},
        {"reply bad", "reply good", ServerFault::bad_reply},
        {"ids bad", "clear", ServerFault::wrong_record_ids},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(control.execute(c.on), "ok") << c.on;
        EXPECT_TRUE(simulator.server().fault(c.fault)) << c.on;
        EXPECT_EQ(control.execute(c.off), "ok") << c.off;
        EXPECT_FALSE(simulator.server().fault(c.fault)) << c.off;
    }
    control.execute("slow 250");
    EXPECT_EQ(simulator.server().answer_delay().count(), 250);
}

TEST_F(ControlTest, values_are_set_and_told_by_name) {
    EXPECT_EQ(control.execute("set heading_bug 90"), "ok");
    EXPECT_EQ(control.execute("get heading_bug"), "90 deg");
    EXPECT_EQ(control.execute("  set   com1 0x2345 \r\n"), "ok");
    EXPECT_EQ(simulator.aircraft().radios.com1_active, 0x2345);
    EXPECT_NE(control.execute("names").find("heading_bug (can be set)"), std::string::npos);
}

TEST_F(ControlTest, a_command_that_cannot_be_carried_out_says_why_and_changes_nothing) {
    for (const char* line :
         {"frob", "set", "set heading_bug", "set heading_bug east", "set heading_bug nan", "set no_such 1",
          "set rpm 2000", "get", "get no_such", "slow -1", "slow 1e9", "slow x", "silence", "silence maybe", "jump",
          "jump home", "version", "restart soon", "set com1 0x"}) {
        EXPECT_EQ(control.execute(line).rfind("error: ", 0), 0U) << line;
    }
    EXPECT_EQ(control.execute(""), "");
    EXPECT_EQ(control.execute(" \n"), "");
    EXPECT_FALSE(simulator.server().fault(ServerFault::silence));
}

TEST_F(ControlTest, a_jump_flies_on_to_a_phase_and_state_tells_it) {
    EXPECT_EQ(control.execute("jump cruise"), "ok");
    EXPECT_EQ(control.execute("state").rfind("phase cruise\n", 0), 0U);
    EXPECT_EQ(control.execute("pause on"), "ok");
    EXPECT_TRUE(simulator.aircraft().paused);
}

TEST_F(ControlTest, restart_begins_cold_and_dark_with_an_empty_space_and_tells_the_program_for_how_long) {
    std::chrono::milliseconds away{0};
    control.on_restart = [&](std::chrono::milliseconds time) { away = time; };
    control.execute("jump cruise");
    simulator.space().write_u8(0x66FF, 9);
    EXPECT_EQ(control.execute("restart"), "ok");
    EXPECT_EQ(away.count(), 2000);
    EXPECT_EQ(simulator.model().script().phase(), simhost::Phase::cold_and_dark);
    EXPECT_EQ(simulator.space().read_u8(0x66FF), 0);
    EXPECT_EQ(control.execute("restart 500"), "ok");
    EXPECT_EQ(away.count(), 500);
}

TEST_F(ControlTest, quit_asks_the_program_to_end_and_help_names_every_command) {
    bool asked = false;
    control.on_quit = [&] { asked = true; };
    EXPECT_EQ(control.execute("quit"), "ok");
    EXPECT_TRUE(asked);
    const std::string help = control.execute("help");
    for (const char* name : {"state", "set", "jump", "silence", "slow", "version", "reply", "restart", "quit"}) {
        EXPECT_NE(help.find(std::string(name)), std::string::npos) << name;
    }
}

}  // namespace
