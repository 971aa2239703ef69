#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "panel/control.h"
#include "panel/panel.h"
#include "panel/panel_host.h"
#include "platform/platform.h"
#include "tables/core_tables.h"
#include "yoke/force_profile.h"

namespace yoke {

// The editor of the two force curves, force over airspeed, that both yokes share. A work copy is drawn and dragged; it
// counts from the moment it is saved, and for a yoke from its next activation on.
class frmForceCurve : public panel::Panel {
  public:
    frmForceCurve(const platform::Platform& platform, tables::CoreTables& tables, panel::PanelHost& panels);

    // What a user does with the drawing, in the coordinates of the curve: X 800..10800, Y 500..5500; others are held to
    // that.
    void MouseDown(double X, double Y);
    void MouseMove(double X, double Y);
    void MouseUp();

    // The work copy.
    const tables::ForceCurve& work_copy() const { return work_copy_; }
    // The handle in hand, 1..10; none otherwise.
    std::optional<int> selected() const { return selected_; }

    panel::OptionButton OptionAilerons;
    panel::OptionButton OptionElevator;
    panel::Label LabelCaption;
    panel::Picture PictureCurve;
    std::array<panel::Label, kProfilePoints - 1> Labelspeed;
    panel::Slider SliderAirspeed;
    panel::TextBox boxAirspeed;
    panel::TextBox BoxForce;
    panel::Label LabelNote;
    panel::CommandButton CmdReload;
    panel::CommandButton CmdSaveCurve;
    panel::CommandButton cmdLinear;
    panel::CommandButton cmdRedraw;
    panel::CommandButton CmdClose;

  protected:
    void Form_Load() override;
    void Form_Activate() override;

  private:
    void load_curve();
    void take_input();
    void SliderAirspeed_Change();
    void CmdSaveCurve_Click();
    void cmdLinear_Click();
    void cmdRedraw_Click();
    void show_speeds();
    void show_selected();
    tables::ForceCurvePoint drawn_at(int point) const;
    void draw();
    void show_present_airspeed();
    tables::ForceCurve& table();

    tables::CoreTables& tables_;
    panel::PanelHost& panels_;
    tables::ForceCurve work_copy_{};
    std::optional<int> selected_;
    bool dragging_ = false;
    int shown_airspeed_ = -1;
    std::string data_;
    platform::Timer airspeed_timer_;
};

}  // namespace yoke
