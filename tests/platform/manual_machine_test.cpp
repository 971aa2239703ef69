

#include "platform/manual/manual_platform.h"
#include "tests/platform/machines.h"

namespace platform_tests {
namespace {

class ManualDeviceEnd : public DeviceEnd {
  public:
    explicit ManualDeviceEnd(platform::manual::Wire& wire) : wire_(wire) {
        wire_.to_device = [this](std::string_view bytes) { received.append(bytes); };
    }
    void deliver(std::string_view bytes) override { wire_.deliver(bytes); }
    void unplug() override { wire_.unplug(); }
    void plug() override { wire_.plug(); }

  private:
    platform::manual::Wire& wire_;
};

class ManualMachine : public Machine {
  public:
    ManualMachine() { platform_.boxes.leave_open = true; }

    EventLoop& loop() override { return platform_.loop; }
    platform::StackedBoxes& boxes() override { return platform_.boxes; }
    platform::FileStore& files() override { return platform_.files; }
    void write_protect(const std::string& name) override { platform_.files.write_protected.insert(name); }
    platform::SerialPorts& serial_ports() override { return platform_.serial_ports; }
    DeviceEnd& line(int number) override {
        end_ = std::make_unique<ManualDeviceEnd>(platform_.serial_ports.wire(number));
        return *end_;
    }
    void block(Milliseconds duration) override { platform_.loop.pass_time(duration); }

  private:
    platform::manual::ManualPlatform platform_;
    std::unique_ptr<DeviceEnd> end_;
};

}  // namespace

std::unique_ptr<Machine> manual_machine() {
    return std::make_unique<ManualMachine>();
}

}  // namespace platform_tests
