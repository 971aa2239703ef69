#include "panel/user_input.h"

#include <functional>

namespace panel {

namespace {

bool select_line(Control& control, const UserAction& action) {
    if (action.value < 0 || action.value >= static_cast<int>(control.items.size())) {
        return false;
    }
    control.value = action.value;
    return true;
}

bool choose_option(OptionButton& chosen) {
    for (Control* other : chosen.panel().controls()) {
        auto* option = dynamic_cast<OptionButton*>(other);
        if (option != nullptr && option->group() == chosen.group()) {
            option->value = option == &chosen ? 1 : 0;
        }
    }
    return true;
}

bool move_slider(Slider& slider, const UserAction& action) {
    if (action.value < slider.minimum || action.value > slider.maximum) {
        return false;
    }
    slider.value = action.value;
    return true;
}

bool type_text(TextBox& box, const UserAction& action) {
    if (box.access() != Access::editable || action.text.size() > kLongestUserText) {
        return false;
    }
    box.text = action.text;
    return true;
}

bool draw_on(Picture& picture, const UserAction& action) {
    if (!picture.on_change || action.text.size() > kLongestPictureInput) {
        return false;
    }
    picture.input = action.text;
    return true;
}

// Writes the control's new state. False when the action does not fit the control.
bool write_state(Control& control, const UserAction& action) {
    const bool clicked = action.event == UserEvent::click;
    const bool changed = action.event == UserEvent::change;
    switch (control.kind()) {
        case ControlKind::command_button:
            return clicked;
        case ControlKind::picture:
            return clicked || (changed && draw_on(static_cast<Picture&>(control), action));
        case ControlKind::check_box:
            if (clicked && (action.value == 0 || action.value == 1)) {
                control.value = action.value;
                return true;
            }
            return false;
        case ControlKind::option_button:
            return clicked && choose_option(static_cast<OptionButton&>(control));
        case ControlKind::list_box:
            return !changed && select_line(control, action);
        case ControlKind::combo_box:
            return changed && select_line(control, action);
        case ControlKind::slider:
            return changed && move_slider(static_cast<Slider&>(control), action);
        case ControlKind::text_box:
            return changed && type_text(static_cast<TextBox&>(control), action);
        case ControlKind::label:
        case ControlKind::progress_bar:
        case ControlKind::indicator:
            return false;
    }
    return false;
}

const std::function<void()>& handler_of(const Control& control, UserEvent event) {
    switch (event) {
        case UserEvent::double_click:
            return control.on_double_click;
        case UserEvent::change:
            return control.on_change;
        case UserEvent::click:
            break;
    }
    return control.on_click;
}

}  // namespace

InputResult UserInput::apply(Control& control, const UserAction& action) {
    if (!control.panel().visible() || !control.visible || !control.enabled || control.in_handler_) {
        return InputResult::not_available;
    }
    if (!write_state(control, action)) {
        return InputResult::bad_value;
    }
    struct Guard {
        bool& flag;
        ~Guard() { flag = false; }
    };
    const auto& handler = handler_of(control, action.event);
    if (handler) {
        control.in_handler_ = true;
        const Guard guard{control.in_handler_};
        handler();
    }
    return InputResult::done;
}

}  // namespace panel
