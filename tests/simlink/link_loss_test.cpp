// What the cycle does when the simulator goes away, hangs and comes back.

#include "tests/simlink/sim_com_fixture.h"

namespace {

using std::chrono::milliseconds;

class LinkLossTest : public SimComTest {
  protected:
    LinkLossTest() {
        function(1, tables::kInteger, 0x100);
        function(2, tables::kInteger, 0x102);
        port_ = reading_port(1);
        switch_port_ = reading_port(2);
        gauges_.start();
        sim_com_.RunSimcom();
        run_for(100);
    }
    bool healthy() {
        simulator_.write_u16(0x100, ++last_);
        run_for(40);
        return sim_com_.link_alive() && value_of(port_) == last_;
    }

    std::int16_t port_ = 0;
    std::int16_t switch_port_ = 0;
    std::uint16_t last_ = 0;
    int ticks_ = 0;
    platform::Timer gauges_{machine_.loop, "gauges", milliseconds(40), [this] { ++ticks_; }};
};

TEST_F(LinkLossTest, a_simulator_that_closes_costs_one_round_of_retries_and_is_found_within_a_second) {
    ASSERT_TRUE(healthy());
    machine_.sim_transport.windows.clear();
    run_for(1200);
    EXPECT_FALSE(sim_com_.link_alive());
    const platform::TimePoint last_answer = *sim_com_.last_answer();
    const int sends = machine_.sim_transport.sends;
    ticks_ = 0;
    run_for(60000);
    EXPECT_EQ(ticks_, 1500) << "the gauges are served all the time";
    EXPECT_EQ(machine_.sim_transport.sends, sends) << "nothing is sent where no window is";
    EXPECT_EQ(*sim_com_.last_answer(), last_answer);

    put(switch_port_, 321);
    sim_com_.SendKeystroke('G');
    machine_.sim_transport.windows = {"UIPCMAIN"};
    taken_writes();
    run_for(1040);
    EXPECT_TRUE(healthy());
    EXPECT_GT(*sim_com_.last_answer(), last_answer);
    EXPECT_EQ(taken_writes(), (Writes{{0x102, 2}})) << "a put value arrives, a keystroke of old does not";
    EXPECT_EQ(simulator_.read_u16(0x102), 321);
}

TEST_F(LinkLossTest, a_simulator_that_hangs_holds_the_cockpit_up_once_and_then_little) {
    machine_.sim_transport.faults.failing_sends = -1;
    run_for(23100);
    EXPECT_EQ(client_.IpcResult, simlink::kIpcTimedOut);
    ticks_ = 0;
    run_for(60000);
    EXPECT_GT(ticks_, 1500 * 7 / 10);
    const int sends = machine_.sim_transport.sends;
    run_for(10000);
    EXPECT_LE(machine_.sim_transport.sends - sends, 10);
    machine_.sim_transport.faults.failing_sends = 0;
    run_for(1300);
    EXPECT_TRUE(healthy());
}

TEST_F(LinkLossTest, a_server_that_comes_back_slow_is_found_all_the_same) {
    machine_.sim_transport.windows.clear();
    run_for(2000);
    machine_.sim_transport.windows = {"UIPCMAIN"};
    machine_.sim_transport.faults.answer_time = milliseconds(500);
    run_for(30000);
    EXPECT_TRUE(sim_com_.link_alive());
}

TEST_F(LinkLossTest, a_send_that_fails_now_and_then_changes_nothing) {
    machine_.sim_transport.faults.send_error = 5;
    for (int round = 0; round < 20; ++round) {
        machine_.sim_transport.faults.failing_sends = 9;
        run_for(1000);
        EXPECT_TRUE(healthy()) << round;
    }
    machine_.sim_transport.faults.failing_sends = 0;
    server_.set_fault(simhost::ServerFault::bad_reply, true);
    run_for(100);
    EXPECT_FALSE(sim_com_.link_alive());
    server_.clear_faults();
    EXPECT_TRUE(healthy()) << "bad data is no loss of the link";
}

TEST_F(LinkLossTest, time_and_date_do_not_wait_for_a_simulator_that_is_lost) {
    machine_.sim_transport.windows.clear();
    run_for(1200);
    sim_com_.SimHour = 9;
    const int sleeps = machine_.sim_transport.sleeps;
    sim_com_.GetTimeAndDate();
    EXPECT_EQ(machine_.sim_transport.sleeps, sleeps);
    EXPECT_EQ(sim_com_.SimHour, 9);
    sim_com_.CloseSimCom();
    machine_.sim_transport.windows = {"UIPCMAIN"};
    client_.IpcInit();
    ASSERT_TRUE(client_.IpcOpen(0, client_.IpcResult));
    simulator_.write_u8(0x238, 14);
    sim_com_.GetTimeAndDate();
    EXPECT_EQ(sim_com_.SimHour, 14) << "a link opened anew is not lost";
}

}  // namespace
