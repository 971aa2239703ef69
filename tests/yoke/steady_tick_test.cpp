#include <gtest/gtest.h>

#include "tests/support/allocation_counter.h"
#include "tests/support/open_port.h"
#include "tests/yoke/yoke_world.h"

namespace {

TEST(YokeSteadyTick, allocates_nothing_in_any_mode) {
    yoke_test::YokeWorld world;
    test_support::OpenPorts lines;
    const platform::Platform& machine = world.platform;
    const platform::Platform platform{machine.loop,  machine.boxes, machine.wall_clock,    machine.random,
                                      machine.files, lines,         machine.sim_transport, machine.key_delivery};
    const yoke::YokeParts parts{platform, world.tables, world.sim_com, world.ports, world.panels, world.status};
    yoke::frmConfigY1 yoke(parts, world.roles);
    yoke.set_partner(world.yoke2);
    test_support::OpenPort& line = *lines.made.front();
    world.status.cmdRun_Click();
    yoke.activate();
    yoke.cmdRun_Click();
    for (const int mode : {0, 1, 2, 3, 4}) {
        yoke.select_mode(mode);
        for (int tick = 0; tick < 40; ++tick) {
            world.set_value(2, 100 + 3.7 * tick);
            world.set_value(197, 1.5 * tick);
            world.advance(20);
            const std::string status = yoke_test::YokeWorld::bytes_of({.ailerons = 400 + 9 * tick,
                                                                       .elevator = 700 - 11 * tick,
                                                                       .ailerons_force = 5 * tick,
                                                                       .switches = tick});
            yoke.clear_marks();
            const std::uint64_t before = allocations;
            yoke.ProcessTimer_Timer();
            line.give(status);
            yoke.show_motors();
            const std::uint64_t allocated = allocations - before;
            if (tick > 15) {
                EXPECT_EQ(allocated, 0U) << "mode " << mode << ", tick " << tick;
                EXPECT_EQ(line.last_write_size, 13U);
            }
        }
        EXPECT_EQ(yoke.ReceivedMessage.text.get(), "Correct");
    }
    yoke.cmdStop_Click();
}

}  // namespace
