#include "bench/bench_program.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "bench/devices/needle_gauges.h"
#include "platform/posix/posix_serial.h"
#include "support/failure.h"

namespace bench {
namespace {

namespace fs = std::filesystem;

// A folder of its own, away at the end.
class Folder {
  public:
    Folder() {
        std::string name = (fs::temp_directory_path() / "bench-XXXXXX").string();
        path_ = ::mkdtemp(name.data());
    }
    ~Folder() { fs::remove_all(path_); }
    std::string path() const { return path_.string(); }
    fs::path link(int port) const { return path_ / "ports" / ("COM" + std::to_string(port)); }

  private:
    fs::path path_;
};

class Program : public testing::Test {
  protected:
    std::unique_ptr<BenchProgram> start() {
        fill_standard_tables(tables);
        return std::make_unique<BenchProgram>(loop, folder.path(), tables, std::span<const web::Asset>{},
                                              web::ServerPorts{18780, 18789},
                                              [this](const std::string& text) { said += text + "\n"; });
    }

    // Waits for a state that comes within a moment of real time, or fails.
    void wait_for(const std::function<bool()>& reached) {
        const auto deadline = loop.now() + std::chrono::seconds(5);
        platform::Timer look(loop, "look", platform::Milliseconds(1), [] {});
        look.start();
        loop.yield_until([&] { return reached() || loop.now() > deadline; });
        ASSERT_TRUE(reached());
    }

    platform::posix::PosixLoop loop;
    Folder folder;
    tables::CoreTables tables;
    std::string said;
};

TEST_F(Program, its_devices_answer_on_the_linked_ports) {
    const auto program = start();
    EXPECT_EQ(program->address().rfind("http://127.0.0.1:187", 0), 0U);
    platform::posix::PosixSerialPorts ports(loop, folder.path());
    const auto port = ports.create();
    std::string received;
    port->set_number(1);
    port->set_settings("38400,N,8,1");
    port->set_receive_threshold(25);
    port->set_event_handler([&](platform::SerialEvent event) {
        if (event == platform::SerialEvent::receive) {
            received += port->read();
        }
    });
    port->open();
    std::string frames = "\xFF";
    bus::append_frame(frames, 3, 5, 200);
    bus::append_frame(frames, 3, 7, 0);
    port->write(frames);
    wait_for([&] { return received.size() == 25; });
    EXPECT_EQ(bus::check_report(received), bus::ReportError::none);
    const auto& gauge = dynamic_cast<const NeedleGauge&>(*program->devices().line(1)->bus->device(3));
    EXPECT_EQ(gauge.target_steps(1), 200);
}

TEST_F(Program, a_pulled_plug_takes_the_port_away_and_a_plug_brings_it_back) {
    auto program = start();
    ASSERT_TRUE(fs::is_symlink(folder.link(1)));
    EXPECT_EQ(program->command("unplug 1"), "ok");
    EXPECT_FALSE(fs::is_symlink(folder.link(1)));
    EXPECT_EQ(program->command("noise 1"), "ok");
    EXPECT_EQ(program->command("plug 1"), "ok");
    EXPECT_TRUE(fs::is_symlink(folder.link(1)));
    EXPECT_EQ(program->command("plug 1"), "ok");
    program.reset();
    EXPECT_FALSE(fs::is_symlink(folder.link(1)));
}

TEST_F(Program, replaces_its_own_stale_links_and_leaves_real_hardware_alone) {
    fs::create_directory(fs::path(folder.path()) / "ports");
    fs::create_symlink("/dev/pts/99999", folder.link(1));
    {
        const auto program = start();
        EXPECT_TRUE(fs::exists(folder.link(1)));  // leads to a terminal that is there
    }
    fs::create_symlink("/dev/serial/by-id/usb-controller", folder.link(1));
    said.clear();
    const auto program = start();
    EXPECT_EQ(fs::read_symlink(folder.link(1)), "/dev/serial/by-id/usb-controller");
    EXPECT_NE(said.find("is not a link of the bench"), std::string::npos);
    EXPECT_NE(program->command("plug 1").find("is not a link of the bench"), std::string::npos);
}

TEST_F(Program, simulates_the_configuration_of_the_folder_or_a_standard_set) {
    load_tables(folder.path(), tables, [this](const std::string& text) { said += text; });
    EXPECT_NE(said.find("the standard set of gauges is used"), std::string::npos);
    EXPECT_EQ(tables.gauges[6].GaugeType, 6);

    load_tables(PROJECT_ROOT "/demo", tables, [](const std::string&) {});
    EXPECT_NE(tables.GaugeBusPort1, 0);
    const DeviceSet devices(loop, tables);
    int gauges = 0;
    for (int id = 1; id <= 255; ++id) {
        const Device* const device = devices.lines().front().bus->device(id);
        if (device != nullptr && std::string(devices.print_of(*device).face) == "needle_gauge") {
            ++gauges;
            if (device->identity().type > 6) {
                continue;  // an instrument with a face of its own
            }
            EXPECT_NE(devices.print_of(*device).needles[0].title, "") << "gauge " << id;
            EXPECT_GE(devices.print_of(*device).needles[0].points.size(), 2U) << "gauge " << id;
        }
    }
    EXPECT_GE(gauges, 6);

    std::ofstream(fs::path(folder.path()) / "Default MS-FS.cfg") << "nonsense";
    said.clear();
    load_tables(folder.path(), tables, [this](const std::string& text) { said += text; });
    EXPECT_NE(said.find("the standard set of gauges is used"), std::string::npos);
}

}  // namespace
}  // namespace bench
