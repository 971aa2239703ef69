#include <gtest/gtest.h>

#include "tests/iomodule/iom_world.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/open_port.h"

namespace {

using iom_test::IomWorld;

TEST(IomSteadyCycle, allocates_nothing_while_leds_switches_and_inputs_move) {
    IomWorld world;
    for (int signal = 0; signal < 8; ++signal) {
        world.add_led(signal, 10 + signal, iomodule::kLedOnAtCrossover).IomValueA = 50;
        world.add_switch(signal, 20 + signal, 100, 0);
        world.add_input(signal, 30 + signal, 0, 0, 1023);
    }
    test_support::OpenPorts lines;
    const platform::Platform& machine = world.platform;
    const platform::Platform platform{machine.loop,  machine.boxes, machine.wall_clock,    machine.random,
                                      machine.files, lines,         machine.sim_transport, machine.key_delivery};
    iomodule::frmStatusIOM module{{platform, world.tables, world.sim_com, world.gauge_bus, world.ports, world.panels}};
    world.status.set_participant(run::ParticipantPlace::iom1, &module);
    world.status.cmdRun_Click();
    test_support::OpenPort& line = *lines.made.front();
    line.give(IomWorld::telegram({7}));

    for (int cycle = 0; cycle < 20; ++cycle) {
        const bool odd = cycle % 2 != 0;
        for (int signal = 0; signal < 8; ++signal) {
            world.set_value(10 + signal, odd ? 80 - cycle : cycle);
        }
        world.advance(40);
        const std::string telegram =
            IomWorld::telegram(odd ? std::vector<int>{1, 3, 5, 7} : std::vector<int>{0, 2, 4, 6},
                               {{0, 40 * cycle + 1}, {7, 50 * cycle + 1}});
        for (int signal = 0; signal < 8; ++signal) {
            world.tables.iom[static_cast<std::size_t>(1 + 3 * signal)].IomLastValue = -1;
        }
        const std::uint64_t before = allocations;
        module.ProcessTimer_Timer();
        line.give(telegram);
        EXPECT_EQ(allocations, before) << "cycle " << cycle;
        EXPECT_EQ(line.last_write_size, (8U + 1U) * 7U);
    }
    world.advance(60);
    EXPECT_EQ(world.value_of(27), 100);
    EXPECT_NEAR(world.value_of(37), 951 / 1023.0 * 100, 0.001);
    world.status.set_participant(run::ParticipantPlace::iom1, nullptr);
}

}  // namespace
