#include "panel/panel.h"

#include <utility>

namespace panel {

TextProperty& TextProperty::operator=(std::string_view text) {
    if (value_ != text) {
        value_.assign(text);
        owner_.mark();
    }
    return *this;
}

void Items::add(std::string line) {
    lines_.push_back(std::move(line));
    owner_.mark();
}

void Items::clear() {
    if (!lines_.empty()) {
        lines_.clear();
        owner_.mark();
    }
}

void Items::assign(std::vector<std::string> lines) {
    if (lines_ != lines) {
        lines_ = std::move(lines);
        owner_.mark();
    }
}

Control::Control(Panel& panel, ControlKind kind, std::string name, std::string_view caption_shown, int index)
    : caption(*this, caption_shown),
      text(*this, {}),
      tool_tip(*this, {}),
      value(*this, 0),
      visible(*this, true),
      enabled(*this, true),
      colour(*this, kDefaultColour),
      items(*this),
      panel_(panel),
      kind_(kind),
      name_(std::move(name)),
      index_(index) {
    panel.controls_.push_back(this);
    panel.marked_.reserve(panel.controls_.capacity());
}

void Control::mark() {
    if (!marked_) {
        marked_ = true;
        panel_.marked_.push_back(this);
    }
}

Panel::Panel(std::string name, std::string_view title, Modality modality)
    : name_(std::move(name)), title_(title), modality_(modality) {}

void Panel::set_title(std::string_view title) {
    if (title_ != title) {
        title_ = title;
        title_marked_ = true;
    }
}

Control* Panel::find(std::string_view name, int index) const {
    for (Control* control : controls_) {
        if (control->name_ == name && control->index_ == index) {
            return control;
        }
    }
    return nullptr;
}

void Panel::clear_marks() {
    for (Control* control : marked_) {
        control->marked_ = false;
    }
    marked_.clear();
    title_marked_ = false;
}

}  // namespace panel
