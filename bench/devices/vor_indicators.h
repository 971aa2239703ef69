#pragma once

#include "bench/devices/device.h"
#include "bench/devices/motor.h"

namespace bench {

// The indicators of VOR1 (type 106, with a glide slope) and VOR2 (107): needles, flags, an OBS disk turned by hand.
class VorIndicator : public Device {
  public:
    VorIndicator(platform::EventLoop& loop, Identity identity);

    // -1..1; right of the centre is positive, and so is below it.
    double loc() const;
    double slope() const;
    // 0 = flag, 1 = TO, 2 = FROM.
    int to_from() const { return to_from_; }
    bool slope_valid() const { return slope_valid_; }
    int course_degrees() const { return course_degrees_; }

    bool operate(std::string_view control, int amount) override;

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    bool has_glide_slope() const { return identity().type == 106; }

    Motor loc_;
    Motor slope_;
    int to_from_ = 0;
    bool slope_valid_ = false;
    int course_degrees_ = 0;  // the disk stays where the hand has left it
};

// Position of a disk of 1084 steps that counts against the course, 1..1084.
int disk_position(int course_degrees);

// The course after so many clicks of a degree, 0..359.
int turned_course(int course_degrees, int clicks);

}  // namespace bench
