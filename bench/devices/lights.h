#pragma once

namespace bench {

inline constexpr int kHighestLightLevel = 15;

// The backlight and the displays' supply of a device, as command 8 sets them. Level and behaviour at power-on can be
// stored in the device and outlive a loss of power.
class Lights {
  public:
    // How the backlight stands after power-on, and whether it can be switched off at all.
    enum class Behaviour { on_at_power_on, off_at_power_on, always_on };

    // Takes the bits of a light command. A behaviour is stored when its bit is set; of several, "always on" goes
    // before "on at power-on", that before "off at power-on".
    void take(int bits);
    // What a device does when its supply comes back.
    void power_on();

    bool lit() const { return on_ || behaviour_ == Behaviour::always_on; }
    // Brightness of the backlight, 0..15, whether lit or not.
    int level() const { return level_; }
    bool displays_on() const { return displays_on_; }
    Behaviour behaviour() const { return behaviour_; }
    int stored_level() const { return stored_level_; }

  private:
    bool on_ = true;
    bool displays_on_ = true;
    int level_ = kHighestLightLevel;
    int stored_level_ = kHighestLightLevel;
    Behaviour behaviour_ = Behaviour::on_at_power_on;
};

}  // namespace bench
