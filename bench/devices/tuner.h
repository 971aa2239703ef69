#pragma once

#include <string>

namespace bench {

// What a radio receives; the codes are those of the radios' own set-up command.
enum class Band { com, nav, adf_to_999, adf_to_1700 };

// The tuning of one radio: an active and a standby frequency, two knobs that move the standby one, and the limits and
// steps that are stored in the unit. Frequencies are numbers as the radio's telegrams bear them: of COM and NAV the kHz
// beyond 100 MHz (118.350 MHz is 18350), of an ADF tenths of a kHz (352.0 kHz is 3520).
class Tuner {
  public:
    explicit Tuner(Band band);

    Band band() const { return band_; }
    bool is_adf() const { return band_ == Band::adf_to_999 || band_ == Band::adf_to_1700; }
    int active() const { return active_; }
    int standby() const { return standby_; }
    // As a display shows it: "118.350", of an ADF "352.0".
    std::string text(int frequency) const;

    // The coarse knob keeps what stands behind its step, and at a limit goes on from the other one. The fine knob turns
    // what stands behind the coarse step and carries nothing into it.
    void turn_coarse(int clicks);
    void turn_fine(int clicks);
    void swap();

    // Another band comes with its own limits, steps and frequencies; the same one changes nothing.
    void choose_band(Band band);
    // Frequencies that lie outside move to the nearer limit; while the minimum is above the maximum there are no
    // limits. False, and nothing changes, for a number that is no frequency.
    bool set_minimum(int frequency);
    bool set_maximum(int frequency);
    // The active frequency after power-on.
    bool set_default(int frequency);
    // Both frequencies after power-on; the radio takes them at once.
    void set_start(int active, int standby);
    // Steps of the knobs in the radio's number; both above 0.
    void set_steps(int coarse, int fine);
    // How many clicks of a knob make a step, 1 or more.
    void set_clicks_per_step(int coarse, int fine);

    void power_on();

  private:
    struct Knob {
        int step = 1;
        int clicks_per_step = 1;
        int clicks = 0;  // of a step that is not complete

        // The whole steps that so many clicks make.
        int steps_of(int more_clicks);
    };

    bool within_limits(int frequency) const;
    int limited(int frequency) const;
    int step_and_wrap(int frequency, int step) const;
    int step_within_coarse(int frequency, int direction) const;
    void apply_limits();

    Band band_;
    int minimum_ = 0;
    int maximum_ = 0;
    int start_active_ = 0;
    int start_standby_ = 0;
    int active_ = 0;
    int standby_ = 0;
    Knob coarse_;
    Knob fine_;
};

// Frequencies that the owner of a cockpit keeps on radio `number` (1, 2) of a band.
void tune_as_delivered(Tuner& tuner, int number);

}  // namespace bench
