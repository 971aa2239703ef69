#pragma once

#include <array>
#include <optional>

#include "bench/devices/device.h"
#include "bench/devices/display_brightness.h"
#include "bench/devices/transponder_code.h"
#include "tables/core_tables.h"

namespace bench {

inline constexpr int kTransponderPositions = 5;  // of every transponder's rotary switch

// The control unit of two transponders: CTL30, type 112, and 737, type 114, which has a lamp for the ATC and a switch
// for the source of the altitude.
class Transponder : public Device {
  public:
    Transponder(platform::EventLoop& loop, Identity identity) : Device(loop, identity) {}

    const TransponderCode& code(int number) const { return codes_[number == 2 ? 1 : 0]; }
    int active() const { return active_; }  // 1 or 2
    int rotary() const { return rotary_; }  // 1 = off, 3 = on, 2, 4, 5 = standby and what else there is
    // It is dark and says nothing, so that another transponder of the cockpit can have the code.
    bool is_off() const { return rotary_ == kOff; }
    bool ident() const { return ident_.pressed(now()); }
    bool atc() const { return atc_; }

    // The ATC frame is answered like a status request.
    bool answers(const Command& command) const override;
    bool operate(std::string_view control, int amount) override;

    static void set_up(Device& device, const tables::GaugeRow& row);

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void reported() override { ident_.told(); }
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    static constexpr int kOff = 1;

    bool is_737() const;
    std::string code_text(int number) const;
    Answer show_atc(int value);

    std::array<TransponderCode, 2> default_codes_{TransponderCode(01200), TransponderCode(01200)};
    std::array<TransponderCode, 2> codes_ = default_codes_;
    DisplayBrightness brightness_;
    MomentButton ident_;
    int active_ = 1;
    int rotary_ = 3;
    int altitude_source_ = 1;
    bool atc_ = false;
    bool external_on_off_ = false;
};

// The Bendix/King transponder, type 122, which also shows the flight level.
class BkTransponder : public Device {
  public:
    enum Position { off = 1, standby, test, on, altitude };

    BkTransponder(platform::EventLoop& loop, Identity identity) : Device(loop, identity) {}

    const TransponderCode& code() const { return code_; }
    int rotary() const { return rotary_; }
    bool ident() const { return ident_.pressed(now()); }
    bool vfr() const { return vfr_.pressed(now()); }
    // As the displays look.
    std::string code_text() const;
    std::string flight_level_text() const;

    // The flight level is answered like a status request.
    bool answers(const Command& command) const override;
    bool operate(std::string_view control, int amount) override;

    static void set_up(Device& device, const tables::GaugeRow& row);

  protected:
    Answer take_command(const Command& command) override;
    void fill_report(ReportBytes& report) const override;
    void reported() override;
    void show_state(StateSink& sink) const override;
    void reset() override;

  private:
    // What the switch means for the displays: switched from outside, the unit takes "off" for standby.
    int position() const { return external_on_off_ && rotary_ == off ? standby : rotary_; }

    TransponderCode vfr_code_{01200};
    TransponderCode code_ = vfr_code_;
    DisplayBrightness brightness_;
    MomentButton ident_;
    MomentButton vfr_;
    std::optional<int> flight_level_;  // told since power-on
    bool dashes_ = false;              // without a flight level; else zeros
    int rotary_ = on;
    bool external_on_off_ = false;
};

}  // namespace bench
