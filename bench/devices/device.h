#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "bench/devices/lights.h"
#include "bus/frames.h"
#include "platform/event_loop.h"
#include "tables/core_tables.h"

namespace bench {

// A command to one device, as it stood in a frame.
struct Command {
    int number = 0;  // 0..15
    int value = 0;   // -65535..65535
};

// The 25 bytes of a report while a device fills them in, by the byte numbers of the device's papers (from 1).
class ReportBytes {
  public:
    // Byte `number`, 1..25; the value is cut to 8 bits.
    void set_byte(int number, int value) { bytes_[static_cast<std::size_t>(number - 1)] = static_cast<char>(value); }
    // A 16-bit value, high byte first; `number` is that of the high byte, 1..24.
    void set_word(int number, int value) {
        set_byte(number, value >> 8);
        set_byte(number + 1, value);
    }
    std::string_view view() const { return {bytes_.data(), bytes_.size()}; }

  private:
    std::array<char, bus::kReportLength> bytes_{};
};

// Takes the state of a device, value by value, for whoever shows it. A device gives the same names in the same order
// every time; names are literals.
class StateSink {
  public:
    virtual ~StateSink() = default;
    virtual void number(std::string_view name, double value) = 0;
    virtual void text(std::string_view name, std::string_view value) = 0;
    virtual void flag(std::string_view name, bool value) = 0;
};

// Who a device says it is.
struct Identity {
    int type = 0;
    int model = 1;
    int version = 1;
};

// A gauge or an instrument on the bus. A family of devices derives from it, keeps a plain state that tests read, and
// stands in one file and one row of the families' table.
class Device {
  public:
    enum class Answer {
        done,
        unknown_command,  // the family knows no such command
        bad_value,        // the command is known, its value makes no sense
    };

    Device(platform::EventLoop& loop, Identity identity) : loop_(loop), identity_(identity) {}
    virtual ~Device() = default;
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    const Identity& identity() const { return identity_; }
    const Lights& lights() const { return lights_; }
    int unknown_commands() const { return unknown_commands_; }
    int bad_values() const { return bad_values_; }

    // Whether the device answers this command with its report; all answer a status request while they are switched on.
    virtual bool answers(const Command& command) const { return command.number == bus::kCommandStatus; }
    // Carries out a command. Status requests are the controller's matter and do not come here; lights are the same on
    // all devices.
    void take(const Command& command);
    // The whole report of this device under the bus id that it answers to. What a device counts from report to report
    // starts anew.
    ReportBytes report(int id);
    // Gives the state; the family's own values stand behind the lights.
    void show(StateSink& sink) const;
    // The supply has come back: everything that is not stored in the device is as new.
    void power_on();
    // A knob is turned by so many clicks, or a switch set to a position, by hand. False when there is no such control.
    virtual bool operate(std::string_view /*control*/, int /*amount*/) { return false; }
    // Pushes needle 1.. out of its place by so many steps, until it is recalibrated. False when there is no such
    // needle.
    virtual bool knock(int /*needle*/, int /*steps*/) { return false; }

  protected:
    virtual Answer take_command(const Command& command) = 0;
    // The bytes behind the common ones.
    virtual void fill_report(ReportBytes& report) const = 0;
    virtual void reported() {}
    virtual void show_state(StateSink& sink) const = 0;
    virtual void reset() = 0;

    platform::TimePoint now() const { return loop_.now(); }
    // A set-up command gives the device another model number.
    void set_model(int model) { identity_.model = model; }
    // A text of digits as a display shows it: blank without power.
    std::string shown(std::string_view digits) const {
        return lights_.displays_on() ? std::string(digits) : std::string(digits.size(), ' ');
    }

  private:
    platform::EventLoop& loop_;
    Identity identity_;
    Lights lights_;
    int unknown_commands_ = 0;
    int bad_values_ = 0;
};

}  // namespace bench
