#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/boxes.h"
#include "platform/file_store.h"
#include "platform/serial_port.h"

namespace platform_tests {

using platform::EventLoop;
using platform::Milliseconds;

// The device's end of a serial line.
class DeviceEnd {
  public:
    virtual ~DeviceEnd() = default;
    virtual void deliver(std::string_view bytes) = 0;
    virtual void unplug() = 0;
    virtual void plug() = 0;
    // All that the program has sent.
    std::string received;
};

// The machine as one back end gives it, with what a test needs around it. The contract of an interface is tested on
// every back end through this.
class Machine {
  public:
    virtual ~Machine() = default;
    virtual EventLoop& loop() = 0;
    // Boxes that stay open until the test answers them.
    virtual platform::StackedBoxes& boxes() = 0;
    virtual platform::FileStore& files() = 0;
    virtual void write_protect(const std::string& name) = 0;
    virtual platform::SerialPorts& serial_ports() = 0;
    // The line of a number comes up with a device on it.
    virtual DeviceEnd& line(int number) = 0;
    // Keeps the thread busy: time passes and nothing runs.
    virtual void block(Milliseconds duration) = 0;

    // Lets the machine run until `done()`. False when that has not come within ten seconds.
    bool run_until(const std::function<bool()>& done, Milliseconds limit = std::chrono::seconds(10)) {
        const platform::TimePoint end = loop().now() + limit;
        platform::Timer heartbeat(loop(), "heartbeat", Milliseconds(5), [] {});
        heartbeat.start();
        loop().yield_until([&] { return done() || loop().now() >= end; });
        return done();
    }
    void run_for(Milliseconds duration) {
        run_until([] { return false; }, duration);
    }
};

std::unique_ptr<Machine> manual_machine();
// The back end of the system that the tests are built for.
std::unique_ptr<Machine> native_machine();

struct BackEnd {
    const char* name;
    std::unique_ptr<Machine> (*make)();
};
inline constexpr BackEnd kBackEnds[] = {{"manual", manual_machine}, {"native", native_machine}};

// The base of a contract suite.
class ContractTest : public testing::TestWithParam<BackEnd> {
  protected:
    std::unique_ptr<Machine> machine_ = GetParam().make();
    EventLoop& loop_ = machine_->loop();
};

inline std::string back_end_name(const testing::TestParamInfo<BackEnd>& info) {
    return info.param.name;
}

}  // namespace platform_tests
