#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace panel {

class Panel;
class Control;

enum class ControlKind {
    label,
    text_box,
    check_box,
    option_button,
    combo_box,
    list_box,
    slider,
    progress_bar,
    command_button,
    indicator,
    picture,
};

// Colours of fields as the tables and panels name them; kDefaultColour leaves the colour to the presentation.
inline constexpr std::int32_t kDefaultColour = -1;
inline constexpr std::int32_t kRed = 255;
inline constexpr std::int32_t kGreen = 49152;
inline constexpr std::int32_t kBrightGreen = 65280;

// A value of a control. Setting an equal value does nothing; a change marks the control for the presentation.
template <typename T>
class Property {
  public:
    explicit Property(Control& owner, T initial) : owner_(owner), value_(initial) {}
    Property(const Property&) = delete;
    Property& operator=(const Property&) = delete;

    Property& operator=(const T& value);
    operator const T&() const { return value_; }
    const T& get() const { return value_; }

  private:
    Control& owner_;
    T value_;
};

// A text of a control. Keeps its capacity, so that a tick that writes texts of like length allocates nothing.
class TextProperty {
  public:
    explicit TextProperty(Control& owner, std::string_view initial) : owner_(owner), value_(initial) {}
    TextProperty(const TextProperty&) = delete;
    TextProperty& operator=(const TextProperty&) = delete;

    TextProperty& operator=(std::string_view text);
    operator const std::string&() const { return value_; }
    const std::string& get() const { return value_; }
    bool operator==(std::string_view text) const { return value_ == text; }

  private:
    Control& owner_;
    std::string value_;
};

// The lines of a list.
class Items {
  public:
    explicit Items(Control& owner) : owner_(owner) {}
    Items(const Items&) = delete;
    Items& operator=(const Items&) = delete;

    void add(std::string line);
    void clear();
    // Replaces all lines; marks only when they differ.
    void assign(std::vector<std::string> lines);
    std::size_t size() const { return lines_.size(); }
    const std::string& operator[](std::size_t index) const { return lines_[index]; }
    const std::vector<std::string>& lines() const { return lines_; }

  private:
    Control& owner_;
    std::vector<std::string> lines_;
};

// One field or command of a panel. The kinds below say which members carry meaning. Texts hold bytes of the
// Windows-1252 character set, as in the configuration file.
class Control {
  public:
    // `index` is the place in a control array, -1 for a single control.
    Control(Panel& panel, ControlKind kind, std::string name, std::string_view caption = {}, int index = -1);
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    Panel& panel() const { return panel_; }
    ControlKind kind() const { return kind_; }
    const std::string& name() const { return name_; }
    int index() const { return index_; }

    // The label that is tied to a field, or the writing on a button.
    TextProperty caption;
    // What a text box, label or indicator shows.
    TextProperty text;
    TextProperty tool_tip;
    // Check box and option button: 0 or 1. Slider and progress bar: position. Lists: selected line, -1 = none.
    Property<int> value;
    Property<bool> visible;
    Property<bool> enabled;
    Property<std::int32_t> colour;
    Items items;

    // Marks the control for the presentation, once until the mark is taken.
    void mark();

    // Handlers of the panel, called after a user's input (never by the logic's own writes).
    std::function<void()> on_click;         // buttons, check boxes, options, lists (after the selection has changed)
    std::function<void()> on_double_click;  // lists
    std::function<void()> on_change;        // text boxes, sliders, combo boxes

  private:
    friend class Panel;

    Panel& panel_;
    ControlKind kind_;
    std::string name_;
    int index_;
    bool marked_ = false;
    bool in_handler_ = false;

    friend class UserInput;
};

template <typename T>
Property<T>& Property<T>::operator=(const T& value) {
    if (value_ != value) {
        value_ = value;
        owner_.mark();
    }
    return *this;
}

class Label : public Control {
  public:
    Label(Panel& panel, std::string name, std::string_view text_shown = {}, int index = -1)
        : Control(panel, ControlKind::label, std::move(name), {}, index) {
        text = text_shown;
    }
};

enum class Access { read_only, editable };

// A field of one line. `caption` is its label on the panel.
class TextBox : public Control {
  public:
    TextBox(Panel& panel, std::string name, std::string_view label, Access access = Access::read_only, int index = -1)
        : Control(panel, ControlKind::text_box, std::move(name), label, index), access_(access) {}
    Access access() const { return access_; }

  private:
    Access access_;
};

class CheckBox : public Control {
  public:
    CheckBox(Panel& panel, std::string name, std::string_view label, int index = -1)
        : Control(panel, ControlKind::check_box, std::move(name), label, index) {}
};

// Options of one group exclude each other: choosing one sets its value to 1 and that of the others to 0.
class OptionButton : public Control {
  public:
    OptionButton(Panel& panel, std::string name, std::string_view label, std::string group, int index = -1)
        : Control(panel, ControlKind::option_button, std::move(name), label, index), group_(std::move(group)) {}
    const std::string& group() const { return group_; }

  private:
    std::string group_;
};

class ComboBox : public Control {
  public:
    ComboBox(Panel& panel, std::string name, std::string_view label, int index = -1)
        : Control(panel, ControlKind::combo_box, std::move(name), label, index) {
        value = -1;
    }
};

class ListBox : public Control {
  public:
    ListBox(Panel& panel, std::string name, std::string_view label, int index = -1)
        : Control(panel, ControlKind::list_box, std::move(name), label, index) {
        value = -1;
    }
};

class Slider : public Control {
  public:
    Slider(Panel& panel, std::string name, std::string_view label, int minimum_value, int maximum_value, int index = -1)
        : Control(panel, ControlKind::slider, std::move(name), label, index),
          minimum(*this, minimum_value),
          maximum(*this, maximum_value) {}
    Property<int> minimum;
    Property<int> maximum;
};

class ProgressBar : public Control {
  public:
    ProgressBar(Panel& panel, std::string name, std::string_view label, int maximum_value, int index = -1)
        : Control(panel, ControlKind::progress_bar, std::move(name), label, index), maximum(*this, maximum_value) {}
    Property<int> maximum;
};

class CommandButton : public Control {
  public:
    CommandButton(Panel& panel, std::string name, std::string_view writing, int index = -1)
        : Control(panel, ControlKind::command_button, std::move(name), writing, index) {}
};

// A lamp or a coloured state field: shows its text on its colour.
class Indicator : public Control {
  public:
    Indicator(Panel& panel, std::string name, std::string_view label, int index = -1)
        : Control(panel, ControlKind::indicator, std::move(name), label, index) {}
};

inline constexpr std::size_t kLongestPictureInput = 64;

// A drawing that the page knows by the name of its widget ("needle_scale"); `text` carries the data it draws.
class Picture : public Control {
  public:
    Picture(Panel& panel, std::string name, std::string widget, int index = -1)
        : Control(panel, ControlKind::picture, std::move(name), {}, index), widget_(std::move(widget)) {}
    const std::string& widget() const { return widget_; }

    // What a user did on the drawing, as its widget tells it; for on_change. At most kLongestPictureInput bytes.
    std::string input;

  private:
    std::string widget_;
};

}  // namespace panel
