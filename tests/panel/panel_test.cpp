#include <gtest/gtest.h>

#include "panel/panel_host.h"
#include "panel/user_input.h"

namespace {

using panel::InputResult;
using panel::UserAction;
using panel::UserEvent;
using panel::UserInput;

struct SamplePanel : panel::Panel {
    SamplePanel() : Panel("frmSample", "Sample") { combo.items.assign({"one", "two"}); }

    panel::CommandButton cmdRun{*this, "cmdRun", "Run"};
    panel::TextBox shown{*this, "boxShown", "Shown"};
    panel::TextBox typed{*this, "boxTyped", "Typed", panel::Access::editable};
    panel::Slider slider{*this, "SliderSpeed", "Speed", 10, 200};
    panel::ComboBox combo{*this, "ComboPlate", "Plate"};
    panel::CheckBox checks[2] = {{*this, "Chk", "First", 0}, {*this, "Chk", "Second", 1}};
    panel::OptionButton options[2] = {{*this, "Option1", "A", "g"}, {*this, "Option2", "B", "g"}};

    int loads = 0;
    int activations = 0;
    void Form_Load() override { ++loads; }
    void Form_Activate() override { ++activations; }
};

TEST(Panel, a_change_marks_a_control_once_and_an_equal_value_never) {
    SamplePanel sample;
    sample.clear_marks();
    sample.shown.text = "";
    sample.slider.value = 0;
    EXPECT_TRUE(sample.marked().empty());
    sample.shown.text = "1";
    sample.shown.text = "2";
    sample.shown.colour = panel::kRed;
    ASSERT_EQ(sample.marked().size(), 1U);
    EXPECT_EQ(sample.marked()[0], &sample.shown);
    sample.clear_marks();
    sample.shown.text = "3";
    EXPECT_EQ(sample.marked().size(), 1U);
}

TEST(Panel, array_members_are_found_by_their_index) {
    SamplePanel sample;
    EXPECT_EQ(sample.find("Chk", 1), &sample.checks[1]);
    EXPECT_EQ(sample.find("Chk"), nullptr);
    EXPECT_EQ(sample.find("cmdRun"), &sample.cmdRun);
}

TEST(PanelHost, loads_once_and_activates_every_time_and_keeps_the_front_panel_last) {
    SamplePanel first;
    SamplePanel second;
    panel::PanelHost host;
    host.add(first);
    host.add(second);
    host.show(first);
    host.show(second);
    host.minimise(first);
    host.activate(first);
    EXPECT_EQ(first.loads, 1);
    EXPECT_EQ(first.activations, 2);
    EXPECT_EQ(host.open_panels().back(), &first);
    host.hide(first);
    host.activate(first);
    EXPECT_FALSE(first.visible());
    EXPECT_EQ(first.activations, 2);
    EXPECT_FALSE(host.show("frmNobody"));
}

TEST(UserInput, reaches_only_what_the_user_can_see_and_use) {
    SamplePanel sample;
    panel::PanelHost host;
    host.add(sample);
    int clicks = 0;
    sample.cmdRun.on_click = [&] { ++clicks; };
    const UserAction click;
    EXPECT_EQ(UserInput::apply(sample.cmdRun, click), InputResult::not_available);  // the panel is hidden
    host.show(sample);
    EXPECT_EQ(UserInput::apply(sample.cmdRun, click), InputResult::done);
    sample.cmdRun.enabled = false;
    EXPECT_EQ(UserInput::apply(sample.cmdRun, click), InputResult::not_available);
    sample.cmdRun.enabled = true;
    sample.cmdRun.visible = false;
    EXPECT_EQ(UserInput::apply(sample.cmdRun, click), InputResult::not_available);
    EXPECT_EQ(clicks, 1);
}

TEST(UserInput, a_handler_that_waits_is_not_entered_again) {
    SamplePanel sample;
    panel::PanelHost host;
    host.add(sample);
    host.show(sample);
    InputResult inner = InputResult::done;
    sample.cmdRun.on_click = [&] { inner = UserInput::apply(sample.cmdRun, {}); };
    EXPECT_EQ(UserInput::apply(sample.cmdRun, {}), InputResult::done);
    EXPECT_EQ(inner, InputResult::not_available);
    EXPECT_EQ(UserInput::apply(sample.cmdRun, {}), InputResult::done);
}

TEST(UserInput, refuses_values_that_do_not_fit_and_leaves_the_control_alone) {
    SamplePanel sample;
    panel::PanelHost host;
    host.add(sample);
    host.show(sample);
    const struct {
        panel::Control& control;
        UserAction action;
        InputResult expected;
    } cases[] = {
        {sample.slider, {UserEvent::change, 9, ""}, InputResult::bad_value},
        {sample.slider, {UserEvent::change, 201, ""}, InputResult::bad_value},
        {sample.slider, {UserEvent::click, 50, ""}, InputResult::bad_value},
        {sample.slider, {UserEvent::change, 200, ""}, InputResult::done},
        {sample.combo, {UserEvent::change, -1, ""}, InputResult::bad_value},
        {sample.combo, {UserEvent::change, 2, ""}, InputResult::bad_value},
        {sample.combo, {UserEvent::change, 1, ""}, InputResult::done},
        {sample.checks[0], {UserEvent::click, 2, ""}, InputResult::bad_value},
        {sample.checks[0], {UserEvent::click, 1, ""}, InputResult::done},
        {sample.shown, {UserEvent::change, 0, "x"}, InputResult::bad_value},
        {sample.typed, {UserEvent::change, 0, std::string(5000, 'x')}, InputResult::bad_value},
        {sample.typed, {UserEvent::change, 0, "ok"}, InputResult::done},
        {sample.cmdRun, {UserEvent::change, 0, ""}, InputResult::bad_value},
    };
    for (const auto& item : cases) {
        EXPECT_EQ(UserInput::apply(item.control, item.action), item.expected) << item.control.name();
    }
    EXPECT_EQ(sample.slider.value, 200);
    EXPECT_EQ(sample.combo.value, 1);
    EXPECT_EQ(sample.typed.text.get(), "ok");
    EXPECT_EQ(sample.shown.text.get(), "");
}

TEST(UserInput, options_of_a_group_exclude_each_other) {
    SamplePanel sample;
    panel::PanelHost host;
    host.add(sample);
    host.show(sample);
    sample.options[0].value = 1;
    EXPECT_EQ(UserInput::apply(sample.options[1], {}), InputResult::done);
    EXPECT_EQ(sample.options[0].value, 0);
    EXPECT_EQ(sample.options[1].value, 1);
}

}  // namespace
