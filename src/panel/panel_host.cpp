#include "panel/panel_host.h"

#include <algorithm>

namespace panel {

void PanelHost::add(Panel& panel) {
    panels_.push_back(&panel);
}

void PanelHost::load(Panel& panel) {
    if (!panel.loaded_) {
        panel.loaded_ = true;
        panel.Form_Load();
    }
}

void PanelHost::show(Panel& panel) {
    load(panel);
    set_state(panel, WindowState::shown);
    panel.Form_Activate();
}

bool PanelHost::show(std::string_view name) {
    Panel* panel = find(name);
    if (panel != nullptr) {
        show(*panel);
    }
    return panel != nullptr;
}

void PanelHost::hide(Panel& panel) {
    if (panel.window_state_ != WindowState::hidden) {
        set_state(panel, WindowState::hidden);
    }
}

bool PanelHost::hide(std::string_view name) {
    Panel* panel = find(name);
    if (panel != nullptr) {
        hide(*panel);
    }
    return panel != nullptr;
}

void PanelHost::minimise(Panel& panel) {
    if (panel.window_state_ == WindowState::shown) {
        set_state(panel, WindowState::minimised);
    }
}

void PanelHost::activate(Panel& panel) {
    if (panel.window_state_ != WindowState::hidden) {
        show(panel);
    }
}

void PanelHost::hide_all() {
    while (!open_.empty()) {
        hide(*open_.back());
    }
}

Panel* PanelHost::find(std::string_view name) const {
    const auto found =
        std::find_if(panels_.begin(), panels_.end(), [name](const Panel* panel) { return panel->name() == name; });
    return found == panels_.end() ? nullptr : *found;
}

void PanelHost::set_state(Panel& panel, WindowState state) {
    open_.erase(std::remove(open_.begin(), open_.end(), &panel), open_.end());
    if (state == WindowState::shown) {
        open_.push_back(&panel);
    } else if (state == WindowState::minimised) {
        open_.insert(open_.begin(), &panel);
    }
    panel.window_state_ = state;
    if (on_change) {
        on_change();
    }
}

}  // namespace panel
