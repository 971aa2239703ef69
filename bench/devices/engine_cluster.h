#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "bench/devices/line_instrument.h"
#include "bench/devices/stepper.h"
#include "cluster/cluster_telegram.h"

namespace bench {

// The stand-alone engine cluster on a line of its own: sixteen needles, four displays, one telegram of 40 bytes for all
// of them. It answers every telegram with its version.
class EngineCluster : public LineInstrument {
  public:
    explicit EngineCluster(platform::EventLoop& loop, ReplyTiming timing = {});

    // Where needle 0..15 was sent, and where its pointer stands: steps of a plate, 0..1080.
    double target_steps(int needle) const;
    double pointer_steps(int needle) const;
    bool calibrating() const;
    // What display 1..4 shows, in the order in which the program gives them out: "12.3", "123."; blank without power.
    std::string display_text(int display) const;
    const Lights& lights() const { return lights_; }

    std::uint64_t recalibrations() const { return recalibrations_; }

    void show(StateSink& sink) const override;
    bool knock(int needle, int steps) override;

  protected:
    void hear(std::string_view bytes) override;
    void power_on() override;

  private:
    void take_byte(char byte);
    void take_telegram();
    int byte(int number) const;
    void take_lights();
    void find_zero();

    std::string telegram_;  // as far as it has come
    platform::TimePoint last_byte_{};
    std::array<Stepper, cluster::kNeedles> needles_;
    // The two bytes of each display, as they came last.
    std::array<std::uint16_t, cluster::kDisplays> displays_{};
    Lights lights_;
    std::uint64_t recalibrations_ = 0;
};

}  // namespace bench
