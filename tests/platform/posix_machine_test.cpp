#include <sys/stat.h>

#include <thread>

#include "platform/posix/posix_platform.h"
#include "platform/posix/pseudo_terminal.h"
#include "tests/platform/machines.h"
#include "tests/platform/scratch_folder.h"

namespace platform_tests {
namespace {

class PosixDeviceEnd : public DeviceEnd {
  public:
    PosixDeviceEnd(platform::posix::PosixLoop& loop, const std::string& folder, int number)
        : loop_(loop), folder_(folder), number_(number) {
        plug();
    }
    void deliver(std::string_view bytes) override { terminal_->write(bytes); }
    void unplug() override { terminal_.reset(); }
    void plug() override {
        terminal_ = std::make_unique<platform::posix::PseudoTerminal>(loop_, folder_, number_);
        terminal_->on_bytes = [this](std::string_view bytes) { received.append(bytes); };
    }

  private:
    platform::posix::PosixLoop& loop_;
    std::string folder_;
    int number_;
    std::unique_ptr<platform::posix::PseudoTerminal> terminal_;
};

class PosixMachine : public Machine {
  public:
    EventLoop& loop() override { return platform_.loop; }
    platform::StackedBoxes& boxes() override { return boxes_; }
    platform::FileStore& files() override { return platform_.files; }
    void write_protect(const std::string& name) override { ::chmod(folder_.file(name).c_str(), 0444); }
    platform::SerialPorts& serial_ports() override { return platform_.serial_ports; }
    DeviceEnd& line(int number) override {
        end_ = std::make_unique<PosixDeviceEnd>(platform_.loop, folder_.path(), number);
        return *end_;
    }
    void block(Milliseconds duration) override { std::this_thread::sleep_for(duration); }

  private:
    ScratchFolder folder_;
    platform::posix::PosixPlatform platform_{folder_.path()};
    platform::StackedBoxes boxes_{platform_.loop, {}};
    std::unique_ptr<DeviceEnd> end_;
};

}  // namespace

std::unique_ptr<Machine> native_machine() {
    return std::make_unique<PosixMachine>();
}

}  // namespace platform_tests
