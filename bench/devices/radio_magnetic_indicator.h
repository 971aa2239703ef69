#pragma once

#include <array>
#include <string>

#include "bench/devices/device.h"
#include "bench/devices/motor.h"

namespace bench {

// The radio-magnetic indicator, type 130: a heading card and two needles, each on a VOR or an ADF station by a switch
// of its own. Model 3 is told a bearing for every place of the switches; the standard unit has one ADF for both
// needles.
class RadioMagneticIndicator : public Device {
  public:
    enum class Source { vor, adf };
    static constexpr int kNeedles = 2;

    RadioMagneticIndicator(platform::EventLoop& loop, Identity identity);

    double card_degrees() const;
    // Needle 1 or 2, clockwise from the top of the case.
    double needle_degrees(int needle) const;
    // It has no station and stands aside.
    bool parked(int needle) const { return bearing(needle) == kParkedBearing; }
    Source source(int needle) const { return needles_[index(needle)].source; }
    bool flag_shows() const { return flag_shows_; }
    // Three digits of a distance, "12.3", "123" or "---"; empty without DME.
    std::string dme_text(int display) const;

    bool operate(std::string_view control, int amount) override;

    static void set_up(Device& device, const tables::GaugeRow& row);

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    static constexpr int kParkedBearing = 5000;

    struct Needle {
        Motor motor;
        Source source = Source::vor;
        int vor_bearing = kParkedBearing;
        int adf_bearing = kParkedBearing;
    };

    static std::size_t index(int needle) { return needle == 2 ? 1 : 0; }
    int bearing(int needle) const;
    void point(int needle);
    Answer take_bearing(int value);
    Answer take_distance(int value);

    Motor card_;
    std::array<Needle, kNeedles> needles_;
    std::array<int, kNeedles> dme_words_{};
    bool has_dme_ = false;
    bool shows_dme_in_adf_mode_ = false;
    bool flag_shows_ = true;
};

}  // namespace bench
