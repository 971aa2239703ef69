#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "bench/devices/force_column.h"
#include "bench/devices/line_instrument.h"
#include "yoke/yoke_telegram.h"

namespace bench {

// A force feedback yoke on a line of its own: two motorised axes with a hand on them, and switches. It answers every
// command with its status.
class Yoke : public LineInstrument {
  public:
    explicit Yoke(platform::EventLoop& loop, ReplyTiming timing = {});

    // --- What a hand does -----------------------------------------------------------------------------------------

    // With a force, -511..511.
    void push(yoke::Axis axis, double force) { moving(axis).push(force, now()); }
    // At a raw position, 0..1023.
    void hold(yoke::Axis axis, double raw) { moving(axis).hold(raw, now()); }
    // Towards a raw position, as an arm does.
    void draw(yoke::Axis axis, double raw) { moving(axis).draw(raw, now()); }
    void let_go();
    // Switch 0..15; a yoke that is not of type 3 has six.
    void set_switch(int number, bool closed);

    // 3 has 16 switches, all others six.
    void set_yoke_type(int type) { yoke_type_ = type; }

    // --- What is to be seen ---------------------------------------------------------------------------------------

    double position(yoke::Axis axis) const { return column(axis).position(now()); }
    const ForceColumn& column(yoke::Axis axis) const { return columns_[static_cast<std::size_t>(axis)]; }
    bool motor_on(yoke::Axis axis) const { return column(axis).motor_on(); }
    const yoke::YokeCommand& last_command() const { return last_command_; }
    int standby_s() const { return standby_s_; }
    int deadband(yoke::Axis axis) const { return deadbands_[static_cast<std::size_t>(axis)]; }
    int unknown_commands() const { return unknown_commands_; }

    void show(StateSink& sink) const override;
    bool operate(std::string_view control, int amount) override;

  protected:
    void hear(std::string_view bytes) override;
    void power_on() override;

  private:
    ForceColumn& moving(yoke::Axis axis) { return columns_[static_cast<std::size_t>(axis)]; }
    void take_byte(std::uint8_t byte);
    void take_command(const yoke::YokeCommand& command);
    std::string status() const;

    std::string frame_;  // as far as it has come
    std::array<ForceColumn, yoke::kAxes> columns_;
    std::array<int, yoke::kAxes> deadbands_{};
    std::array<bool, yoke::kYokeSwitches> switches_{};
    yoke::YokeCommand last_command_;
    int standby_s_ = 0;
    int yoke_type_ = yoke::kTypeWith16Switches;
    int unknown_commands_ = 0;
};

}  // namespace bench
