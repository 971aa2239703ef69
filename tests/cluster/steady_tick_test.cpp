#include <gtest/gtest.h>

#include "cluster/frm_status_ec.h"
#include "tests/run/run_world.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/open_port.h"

namespace {

TEST(EngineClusterTick, allocates_nothing_while_all_needles_move) {
    run_test::RunWorld world;
    test_support::OpenPorts ports;
    const platform::Platform& machine = world.platform;
    const platform::Platform platform{machine.loop,  machine.boxes, machine.wall_clock,    machine.random,
                                      machine.files, ports,         machine.sim_transport, machine.key_delivery};
    cluster::frmStatusEC panel{
        {platform, world.tables, world.sim_com, world.ports, world.panels, world.status.context().cluster}};
    world.status.set_participant(run::ParticipantPlace::cluster, &panel);
    world.tables.ClusterPort = 5;
    world.tables.cluster[9].ClusterSetting1 = 2;
    for (std::size_t row = 0; row < 8; ++row) {
        world.tables.cluster[row] = {1, static_cast<std::int16_t>(40 + row), 0};
    }
    world.status.cmdRun_Click();
    world.tick(3);
    for (int tick = 0; tick < 20; ++tick) {
        for (int function = 40; function < 48; ++function) {
            world.set_value(function, 100.25 + 7.5 * tick, 1);
            world.set_value(function, 900.5 - 7.5 * tick, 2);
        }
        world.tick();
        const std::uint64_t before = allocations;
        panel.ProcessTimer_Timer();
        EXPECT_EQ(allocations, before) << "tick " << tick;
    }
    EXPECT_GE(ports.made.front()->writes, 40);
    EXPECT_EQ(panel.boxValue[15].text.get(), "758.00");
    world.status.set_participant(run::ParticipantPlace::cluster, nullptr);
}

}  // namespace
