#include "yoke/frm_force_curve.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "panel/layout.h"
#include "support/number_format.h"

namespace yoke {

namespace {

constexpr platform::Milliseconds kAirspeedInterval{200};
constexpr int kLastPoint = kProfilePoints - 1;
constexpr double kReach = 100;  // of a handle, to either side
constexpr int kDefaultMaximum = 4;

template <std::size_t... Index>
std::array<panel::Label, sizeof...(Index)> make_labels(panel::Panel& owner, std::index_sequence<Index...>) {
    return {{panel::Label(owner, "Labelspeed", {}, static_cast<int>(Index) + 1)...}};
}

// The numbers of a text, at most two; nothing when there is anything else in it.
std::optional<std::array<double, 2>> two_numbers(std::string_view text) {
    std::array<double, 2> numbers{};
    const char* at = text.data();
    const char* const end = at + text.size();
    for (double& number : numbers) {
        while (at != end && *at == ' ') {
            ++at;
        }
        const auto result = std::from_chars(at, end, number);
        if (result.ec != std::errc() || !std::isfinite(number)) {
            return std::nullopt;
        }
        at = result.ptr;
    }
    return at == end ? std::optional(numbers) : std::nullopt;
}

}  // namespace

frmForceCurve::frmForceCurve(const platform::Platform& platform, tables::CoreTables& tables, panel::PanelHost& panels)
    : Panel("frmForceCurve", "Force curves"),
      OptionAilerons(*this, "OptionAilerons", "Ailerons", "curve"),
      OptionElevator(*this, "OptionElevator", "Elevator", "curve"),
      LabelCaption(*this, "LabelCaption"),
      PictureCurve(*this, "PictureCurve", "force_curve"),
      Labelspeed(make_labels(*this, std::make_index_sequence<kProfilePoints - 1>{})),
      SliderAirspeed(*this, "SliderAirspeed", "Maximum airspeed (100 kt)", 1, kHighestMaximumAirspeed),
      boxAirspeed(*this, "boxAirspeed", "Airspeed (kt)"),
      BoxForce(*this, "BoxForce", "Force (%)"),
      LabelNote(*this, "LabelNote", "Note: Force Curve is valid for both Yoke 1 and Yoke 2."),
      CmdReload(*this, "CmdReload", "Reload"),
      CmdSaveCurve(*this, "CmdSaveCurve", "Save curve"),
      cmdLinear(*this, "cmdLinear", "Linear"),
      cmdRedraw(*this, "cmdRedraw", "Redraw"),
      CmdClose(*this, "CmdClose", "Close"),
      tables_(tables),
      panels_(panels),
      airspeed_timer_(platform.loop, "frmForceCurve.airspeed", kAirspeedInterval, [this] { show_present_airspeed(); }) {
    OptionAilerons.value = 1;
    SliderAirspeed.value = kDefaultMaximum;
    OptionAilerons.on_click = [this] { load_curve(); };
    OptionElevator.on_click = [this] { load_curve(); };
    CmdReload.on_click = [this] { load_curve(); };
    CmdSaveCurve.on_click = [this] { CmdSaveCurve_Click(); };
    cmdLinear.on_click = [this] { cmdLinear_Click(); };
    cmdRedraw.on_click = [this] { cmdRedraw_Click(); };
    CmdClose.on_click = [this] { panels_.hide(*this); };
    SliderAirspeed.on_change = [this] { SliderAirspeed_Change(); };
    PictureCurve.on_change = [this] { take_input(); };
    PictureCurve.tool_tip = "Drag a point, or choose one and move it with the arrow keys";
    SliderAirspeed.tool_tip = "The airspeed at the right end of the curve, in hundreds of knots";
    CmdSaveCurve.tool_tip = "Take the drawn curve over; a yoke uses it from its next start on";
    CmdReload.tool_tip = "Draw the curve as it was saved last";
    // The drawing has the speeds of Labelspeed on its axis.
    set_layout(panel::column({
        panel::row({OptionAilerons, OptionElevator, LabelCaption}),
        PictureCurve,
        SliderAirspeed,
        panel::row({boxAirspeed, BoxForce}),
        panel::row({CmdReload, CmdSaveCurve, cmdLinear, cmdRedraw, CmdClose}),
        LabelNote,
    }));
    airspeed_timer_.start();
}

tables::ForceCurve& frmForceCurve::table() {
    return OptionElevator.value == 1 ? tables_.yoke_common.ElevatorForceCurve : tables_.yoke_common.AileronForceCurve;
}

void frmForceCurve::Form_Load() {
    load_curve();
}

void frmForceCurve::Form_Activate() {
    draw();
}

void frmForceCurve::load_curve() {
    work_copy_ = table();
    LabelCaption.text = OptionElevator.value == 1 ? "Force Profile Elevator" : "Force Profile Ailerons";
    selected_.reset();
    dragging_ = false;
    cmdRedraw_Click();
}

void frmForceCurve::CmdSaveCurve_Click() {
    work_copy_[kMaximumAirspeedRow].airspeed = static_cast<float>(SliderAirspeed.value);
    table() = work_copy_;
}

void frmForceCurve::cmdLinear_Click() {
    for (int point = 0; point <= kLastPoint; ++point) {
        work_copy_[static_cast<std::size_t>(point)] = {static_cast<float>(kCurveLeft + 1000 * point),
                                                       static_cast<float>(kCurveBottom - 500 * point)};
    }
    cmdRedraw_Click();
}

// NOTE: a stored maximum beyond the slider shows at its end.
void frmForceCurve::cmdRedraw_Click() {
    const float maximum = work_copy_[kMaximumAirspeedRow].airspeed;
    SliderAirspeed.value =
        maximum >= 1 && maximum <= kHighestMaximumAirspeed ? static_cast<int>(maximum) : kDefaultMaximum;
    show_speeds();
    draw();
}

void frmForceCurve::SliderAirspeed_Change() {
    boxAirspeed.text = "";
    BoxForce.text = "";
    show_speeds();
    work_copy_[kMaximumAirspeedRow].airspeed = static_cast<float>(SliderAirspeed.value);
    draw();
}

void frmForceCurve::show_speeds() {
    for (int number = 1; number <= kLastPoint; ++number) {
        Labelspeed[static_cast<std::size_t>(number - 1)].text = std::to_string(number * SliderAirspeed.value * 10);
    }
}

// --- Dragging

void frmForceCurve::take_input() {
    const std::string_view input = PictureCurve.input;
    const std::size_t space = input.find(' ');
    const std::string_view what = input.substr(0, space);
    if (what == "up") {
        MouseUp();
        return;
    }
    const auto place = two_numbers(space == std::string_view::npos ? "" : input.substr(space));
    if (!place) {
        return;
    }
    if (what == "down") {
        MouseDown((*place)[0], (*place)[1]);
    } else if (what == "move") {
        MouseMove((*place)[0], (*place)[1]);
    }
}

// The highest of the handles within reach is taken.
void frmForceCurve::MouseDown(double X, double Y) {
    selected_.reset();
    for (int point = 1; point <= kLastPoint; ++point) {
        const tables::ForceCurvePoint place = drawn_at(point);
        if (std::fabs(static_cast<double>(place.airspeed) - X) < kReach &&
            std::fabs(static_cast<double>(place.force) - Y) < kReach) {
            selected_ = point;
        }
    }
    dragging_ = true;
    draw();
}

void frmForceCurve::MouseMove(double X, double Y) {
    if (!dragging_ || !selected_) {
        return;
    }
    tables::ForceCurvePoint& handle = work_copy_[static_cast<std::size_t>(*selected_)];
    handle.airspeed = static_cast<float>(std::trunc(std::clamp<double>(X, kCurveLeft, kCurveRight)));
    handle.force = static_cast<float>(std::trunc(std::clamp<double>(Y, kCurveTop, kCurveBottom)));
    draw();
}

void frmForceCurve::MouseUp() {
    dragging_ = false;
    show_selected();
}

void frmForceCurve::show_selected() {
    if (!selected_) {
        return;
    }
    const tables::ForceCurvePoint& handle = work_copy_[static_cast<std::size_t>(*selected_)];
    const double knots =
        SliderAirspeed.value * 100.0 * (static_cast<double>(handle.airspeed) - kCurveLeft) / (kCurveRight - kCurveLeft);
    const double percent = (kCurveBottom - static_cast<double>(handle.force)) / (kCurveBottom - kCurveTop) * 100;
    boxAirspeed.text = support::shortest(knots);
    BoxForce.text = support::shortest(percent);
}

// --- Drawing

// The last handle does not move sideways on the drawing, though its airspeed changes.
tables::ForceCurvePoint frmForceCurve::drawn_at(int point) const {
    tables::ForceCurvePoint place = work_copy_[static_cast<std::size_t>(point)];
    if (point == kLastPoint) {
        place.airspeed = kCurveRight;
    }
    return place;
}

// For the widget: the maximum airspeed and the present one in knots, the selected handle (0 = none), then the places of
// the points; those of handles 1 to 10 are where their handles are drawn from.
void frmForceCurve::draw() {
    const int airspeed = static_cast<int>(std::clamp(static_cast<double>(tables_.AircraftIAS), 0.0, 9999.0));
    shown_airspeed_ = airspeed;
    data_ = std::to_string(SliderAirspeed.value * 100) + " " + std::to_string(airspeed) + " " +
            std::to_string(selected_.value_or(0));
    for (int point = 0; point <= kLastPoint; ++point) {
        const tables::ForceCurvePoint place = drawn_at(point);
        data_ += " " + support::shortest(place.airspeed) + "," + support::shortest(place.force);
    }
    PictureCurve.text = data_;
}

void frmForceCurve::show_present_airspeed() {
    if (visible() && static_cast<int>(tables_.AircraftIAS) != shown_airspeed_) {
        draw();
    }
}

}  // namespace yoke
