#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "panel/panel.h"

namespace panel {

// Knows all panels of the program and which of them are open; the last one activated is in front.
class PanelHost {
  public:
    // Makes a panel known. It must outlive the host's use.
    void add(Panel& panel);

    // Loads the panel at its first time (Form_Load), shows it in front and activates it (Form_Activate).
    void show(Panel& panel);
    // By name; false when no panel bears it. This is how a lower folder opens a panel of a higher one.
    bool show(std::string_view name);
    // Loads the panel without showing it.
    void load(Panel& panel);
    // Closing and hiding are the same to the logic: the panel keeps its state and its timers.
    void hide(Panel& panel);
    bool hide(std::string_view name);
    void minimise(Panel& panel);
    // Brings a shown or minimised panel to the front again (with Form_Activate); nothing for a hidden one.
    void activate(Panel& panel);
    void hide_all();

    Panel* find(std::string_view name) const;
    const std::vector<Panel*>& panels() const { return panels_; }
    // The open panels (shown or minimised), the front one last.
    const std::vector<Panel*>& open_panels() const { return open_; }

    // Called after a panel has been shown, hidden, minimised or brought to the front.
    std::function<void()> on_change;

  private:
    void set_state(Panel& panel, WindowState state);

    std::vector<Panel*> panels_;
    std::vector<Panel*> open_;
};

}  // namespace panel
