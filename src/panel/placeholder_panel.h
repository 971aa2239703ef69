#pragma once

#include <string>

#include "panel/panel.h"
#include "panel/panel_host.h"

namespace panel {

// Stands for a panel that a command opens and that this program does not have yet; says so and can be closed.
class PlaceholderPanel : public Panel {
  public:
    PlaceholderPanel(PanelHost& host, std::string name, std::string_view title)
        : Panel(std::move(name), title),
          LabelNotYet(*this, "LabelNotYet", "This panel is not part of this program yet."),
          CmdClose(*this, "CmdClose", "Close"),
          host_(host) {
        CmdClose.on_click = [this] { host_.hide(*this); };
        set_layout(column({LabelNotYet, CmdClose}));
    }

    Label LabelNotYet;
    CommandButton CmdClose;

  private:
    PanelHost& host_;
};

}  // namespace panel
