#pragma once

#include "bench/devices/device.h"

namespace bench {

// Stands in for a device whose family is not simulated: it answers who it is, obeys the lights and takes every other
// command without doing anything.
class GenericDevice : public Device {
  public:
    using Device::Device;

    int commands_taken() const { return commands_taken_; }

  protected:
    Answer take_command(const Command&) override {
        ++commands_taken_;
        return Answer::done;
    }
    void fill_report(ReportBytes&) const override {}
    void show_state(StateSink& sink) const override { sink.number("commands", commands_taken_); }
    void reset() override { commands_taken_ = 0; }

  private:
    int commands_taken_ = 0;
};

}  // namespace bench
