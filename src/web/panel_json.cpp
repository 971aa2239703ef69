#include "web/panel_json.h"

#include <array>
#include <charconv>

#include "support/bytes.h"
#include "support/windows_1252.h"

namespace web {

namespace {

using panel::Control;
using panel::ControlKind;
using panel::LayoutKind;
using panel::LayoutNode;

constexpr std::array<const char*, 11> kKindNames = {"label",          "text_box",  "check_box", "option_button",
                                                    "combo_box",      "list_box",  "slider",    "progress_bar",
                                                    "command_button", "indicator", "picture"};
constexpr std::array<const char*, 6> kLayoutNames = {"control", "column", "row", "frame", "tabs", "board"};
constexpr std::array<const char*, 3> kStateNames = {"hidden", "shown", "minimised"};
constexpr std::array<const char*, 3> kBoxNames = {"message", "question", "input"};

template <typename Names, typename Kind>
const char* name_of(const Names& names, Kind kind) {
    return names[static_cast<std::size_t>(kind)];
}

void append_number(std::string& out, long long number) {
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number);
    out.append(digits.data(), end.ptr);
}

void append_key(std::string& out, const char* key) {
    if (out.back() != '{') {
        out += ',';
    }
    out += '"';
    out += key;
    out += "\":";
}

void append_text_item(std::string& out, const char* key, std::string_view text) {
    append_key(out, key);
    append_text(out, text);
}

void append_number_item(std::string& out, const char* key, long long number) {
    append_key(out, key);
    append_number(out, number);
}

void append_flag_item(std::string& out, const char* key, bool flag) {
    append_key(out, key);
    out += flag ? "true" : "false";
}

void append_place(std::string& out, const Control& control) {
    append_text_item(out, "control", control.name());
    if (control.index() >= 0) {
        append_number_item(out, "index", control.index());
    }
}

void append_range(std::string& out, int minimum, int maximum) {
    append_number_item(out, "minimum", minimum);
    append_number_item(out, "maximum", maximum);
}

// The items of a control that can change, without braces.
void append_state_items(std::string& out, const Control& control) {
    append_place(out, control);
    append_text_item(out, "caption", control.caption.get());
    append_text_item(out, "text", control.text.get());
    append_text_item(out, "toolTip", control.tool_tip.get());
    append_number_item(out, "value", control.value);
    append_flag_item(out, "visible", control.visible);
    append_flag_item(out, "enabled", control.enabled);
    append_number_item(out, "colour", control.colour);
    if (control.kind() == ControlKind::list_box || control.kind() == ControlKind::combo_box) {
        append_key(out, "items");
        out += '[';
        for (const std::string& line : control.items.lines()) {
            if (out.back() != '[') {
                out += ',';
            }
            append_text(out, line);
        }
        out += ']';
    } else if (control.kind() == ControlKind::slider) {
        const auto& slider = static_cast<const panel::Slider&>(control);
        append_range(out, slider.minimum, slider.maximum);
    } else if (control.kind() == ControlKind::progress_bar) {
        append_range(out, 0, static_cast<const panel::ProgressBar&>(control).maximum);
    }
}

void append_control(std::string& out, const Control& control) {
    out += '{';
    append_text_item(out, "kind", name_of(kKindNames, control.kind()));
    append_state_items(out, control);
    if (control.kind() == ControlKind::text_box) {
        append_flag_item(out, "editable",
                         static_cast<const panel::TextBox&>(control).access() == panel::Access::editable);
    } else if (control.kind() == ControlKind::option_button) {
        append_text_item(out, "group", static_cast<const panel::OptionButton&>(control).group());
    } else if (control.kind() == ControlKind::picture) {
        append_text_item(out, "widget", static_cast<const panel::Picture&>(control).widget());
    }
    out += '}';
}

void append_layout(std::string& out, const LayoutNode& node) {
    out += '{';
    append_text_item(out, "kind", name_of(kLayoutNames, node.kind));
    if (node.kind == LayoutKind::control) {
        append_place(out, *node.control);
    } else {
        append_text_item(out, "caption", node.caption);
        if (node.kind == LayoutKind::board) {
            append_number_item(out, "columns", node.columns);
        }
        append_key(out, "children");
        out += '[';
        for (const LayoutNode& child : node.children) {
            if (out.back() != '[') {
                out += ',';
            }
            append_layout(out, child);
        }
        out += ']';
    }
    out += '}';
}

void append_window_items(std::string& out, const panel::Panel& panel) {
    append_text_item(out, "name", panel.name());
    append_text_item(out, "title", panel.title());
    append_text_item(out, "state", name_of(kStateNames, panel.window_state()));
    append_flag_item(out, "modal", panel.modality() == panel::Modality::modal);
}

}  // namespace

void append_text(std::string& out, std::string_view windows_1252) {
    static constexpr std::string_view kHex = "0123456789abcdef";
    out += '"';
    for (std::size_t at = 0; at < windows_1252.size(); ++at) {
        const unsigned byte = support::byte_at(windows_1252, at);
        if (byte == '"' || byte == '\\') {
            out += '\\';
            out += windows_1252[at];
        } else if (byte < 32) {
            out += "\\u00";
            out += kHex[byte >> 4];
            out += kHex[byte & 15U];
        } else {
            support::append_utf8(out, windows_1252.substr(at, 1));
        }
    }
    out += '"';
}

void append_panel(std::string& out, const panel::Panel& panel) {
    out += '{';
    append_window_items(out, panel);
    append_key(out, "layout");
    append_layout(out, panel.layout());
    append_key(out, "controls");
    out += '[';
    for (const Control* control : panel.controls()) {
        if (out.back() != '[') {
            out += ',';
        }
        append_control(out, *control);
    }
    out += "]}";
}

int append_changes(std::string& out, const panel::Panel& panel) {
    out += '{';
    append_text_item(out, "type", "changes");
    append_text_item(out, "panel", panel.name());
    if (panel.title_marked()) {
        append_text_item(out, "title", panel.title());
    }
    append_key(out, "controls");
    out += '[';
    int count = 0;
    for (const Control* control : panel.marked()) {
        if (panel.minimised() && control->kind() != ControlKind::indicator) {
            continue;
        }
        out += count++ == 0 ? "{" : ",{";
        append_state_items(out, *control);
        out += '}';
    }
    out += "]}";
    return count;
}

void append_windows(std::string& out, const std::vector<panel::Panel*>& open_panels) {
    out += "{\"type\":\"windows\",\"windows\":[";
    for (const panel::Panel* panel : open_panels) {
        out += out.back() == '[' ? "{" : ",{";
        append_window_items(out, *panel);
        out += '}';
    }
    out += "]}";
}

void append_boxes(std::string& out, const std::vector<platform::OpenBox>& boxes) {
    out += '[';
    for (const platform::OpenBox& box : boxes) {
        out += out.back() == '[' ? "{" : ",{";
        append_number_item(out, "id", box.id);
        append_text_item(out, "kind", name_of(kBoxNames, box.kind));
        append_text_item(out, "text", box.text);
        append_text_item(out, "preset", box.preset);
        out += '}';
    }
    out += ']';
}

}  // namespace web
