#pragma once

#include <string>
#include <vector>

#include "panel/panel.h"
#include "platform/boxes.h"

namespace web {

// The texts of the page protocol; docs/panels.md tells them. Each function appends to `out`.

// A panel's full description.
void append_panel(std::string& out, const panel::Panel& panel);
// The marked controls of a panel (of a minimised one only its indicators), and its title when that has changed; a whole
// message. Returns the number of controls in it.
int append_changes(std::string& out, const panel::Panel& panel);
// The open panels, the front one last; a whole message.
void append_windows(std::string& out, const std::vector<panel::Panel*>& open_panels);
// A list of boxes, the top one last.
void append_boxes(std::string& out, const std::vector<platform::OpenBox>& boxes);
// A text of the page in quotes.
void append_text(std::string& out, std::string_view windows_1252);

}  // namespace web
