#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "app/cockpit.h"
#include "bench/devices/bus_controller.h"
#include "bench/devices/engine_cluster.h"
#include "bench/devices/io_module.h"
#include "bench/devices/needle_gauges.h"
#include "bench/devices/yoke.h"
#include "platform/manual/manual_platform.h"
#include "simhost/simulator.h"

namespace rig {

using namespace std::chrono_literals;

enum class SimulatorAtStart { up, absent };

// How much of the demo's cockpit stands on the lines. Its needle gauges alone are enough for most tests, and hours of
// them cost seconds.
enum class Instruments { needle_gauges, needles_and_io_modules, needles_and_yokes, all };

// The real program on virtual time, with simulated devices on its serial lines and a simulator that answers its
// request blocks, all in one process. It starts with the files of the demo folder; a test changes `machine` (files,
// boxes, wires) before it calls start_program().
class Rig {
  public:
    explicit Rig(SimulatorAtStart simulator = SimulatorAtStart::up,
                 Instruments instruments = Instruments::needle_gauges);
    ~Rig();
    Rig(const Rig&) = delete;
    Rig& operator=(const Rig&) = delete;

    platform::manual::ManualPlatform machine;
    simhost::Simulator simulator;
    // The gauge bus of the configuration: its devices hang on the wire of GaugeBusPort1.
    bench::BusController controller{machine.loop};
    // The stand-alone engine cluster, on the wire of the configuration's ClusterPort where it has one.
    bench::EngineCluster cluster{machine.loop};
    // The IO modules, on the wires of the configuration's ports where it has them.
    bench::IoModule module1{machine.loop};
    bench::IoModule module2{machine.loop};
    // And so the yokes.
    bench::Yoke yoke1{machine.loop};
    bench::Yoke yoke2{machine.loop};
    app::Cockpit cockpit{machine.platform()};

    // --- Going on ---------------------------------------------------------------------------------------------------

    void advance(platform::Duration duration) { machine.loop.advance(duration); }
    // Starts the program and lets it show its start panel.
    void start_program();
    // Starts the program and waits until a run is on, a minute at most. Fails the test when none starts.
    void start_run();
    bool running() { return cockpit.run_panel().running(); }

    // --- The simulator ----------------------------------------------------------------------------------------------

    simhost::OffsetSpace& sim() { return simulator.space(); }
    // The aircraft flies its circuits, or stands still in the air with all its values.
    void fly() { flight_.start(); }
    void hold() { flight_.stop(); }
    // The simulator's window goes, and with it every value that it knew.
    void stop_simulator();
    // It starts from its beginning, cold and dark.
    void start_simulator();
    // It is there and takes no message; each send runs into its time-out.
    void hang_simulator() { machine.sim_transport.faults.failing_sends = -1; }
    void wake_simulator() { machine.sim_transport.faults.failing_sends = 0; }
    // How long a good answer takes.
    void slow_simulator(platform::Duration answer_time) { machine.sim_transport.faults.answer_time = answer_time; }

    // Sends every value of the simulator up and down and back, so that no needle still stands where it stood.
    void move_every_needle();

    // --- The cockpit's devices --------------------------------------------------------------------------------------

    platform::manual::Wire& gauge_wire();
    // Hangs the engine cluster on the wire of another port.
    void connect_cluster(int port);
    bench::NeedleGauge& gauge(int id);
    // Sets speed and resolution of all gauges, as their dialogs do. Noise on the line can look like such a command.
    void set_gauges_up();

    // Whether every needle of the cockpit stands within `tolerance_steps` of where its plate puts the simulator's value
    // of now, worked out here from the file and the offsets alone. The message tells what each wrong device has seen.
    testing::AssertionResult needles_are_right(double tolerance_steps = 1.0);
    // Lets the simulator stand still until the needles have come to rest, looks, and lets it go on.
    testing::AssertionResult needles_settle_right();

    // --- The panels -------------------------------------------------------------------------------------------------

    // Does what a user does on the page, as a user command. Fails the test when there is no such control. The command
    // is carried out within advance().
    void click(const std::string& panel, const std::string& control, int value = 0);
    std::string text(const std::string& panel, const std::string& control);
    bool is_visible(const std::string& panel, const std::string& control);
    bool is_enabled(const std::string& panel, const std::string& control);
    panel::WindowState window(const std::string& panel);
    // All boxes that have come up, one a line.
    std::string boxes_shown() const;
    // What a test that fails shows: panels, boxes, link, line, devices.
    std::string story();

  private:
    panel::Control& control(const std::string& panel, const std::string& name);
    void keep_needle_gauges(Instruments kept);
    void build_bench();
    void hang(bench::LineDevice& device, int port);
    std::string device_story(int id);

    tables::CoreTables file_tables_;  // what the file says, read apart from the program
    platform::Timer flight_;
};

// The engineering value of a function's offset as the simulator has it, by the tables alone.
double simulator_value(const tables::FunctionRow& function, int sequence_number, const simhost::OffsetSpace& space);
// Where a plate puts a value, 0..1079, not rounded.
double plate_position(const tables::Plate& plate, double value);

}  // namespace rig
