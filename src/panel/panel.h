#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "panel/control.h"
#include "panel/layout.h"

namespace panel {

enum class WindowState { hidden, shown, minimised };
enum class Modality { free, modal };

// A unit of logic with named fields and commands. It knows nothing of how it is drawn: the presentation reads its
// controls and layout, takes its marks, and hands in what the user does.
class Panel {
  public:
    Panel(std::string name, std::string_view title, Modality modality = Modality::free);
    virtual ~Panel() = default;
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;

    const std::string& name() const { return name_; }
    const std::string& title() const { return title_; }
    void set_title(std::string_view title);
    Modality modality() const { return modality_; }

    // Hidden, shown or minimised; changed through the PanelHost.
    WindowState window_state() const { return window_state_; }
    bool visible() const { return window_state_ == WindowState::shown; }
    bool minimised() const { return window_state_ == WindowState::minimised; }

    const std::vector<Control*>& controls() const { return controls_; }
    // Null when the panel has no such control. `index` -1 for a single control.
    Control* find(std::string_view name, int index = -1) const;
    const LayoutNode& layout() const { return layout_; }

    // The marked controls since the last clear_marks().
    const std::vector<Control*>& marked() const { return marked_; }
    bool title_marked() const { return title_marked_; }
    void clear_marks();

  protected:
    // Called once, before the panel shows for the first time.
    virtual void Form_Load() {}
    // Called at every activation.
    virtual void Form_Activate() {}

    // Called by the constructor of a panel when its controls stand.
    void set_layout(LayoutNode layout) { layout_ = std::move(layout); }

  private:
    friend class Control;
    friend class PanelHost;

    std::string name_;
    std::string title_;
    Modality modality_;
    WindowState window_state_ = WindowState::hidden;
    bool loaded_ = false;
    bool title_marked_ = false;
    std::vector<Control*> controls_;
    std::vector<Control*> marked_;
    LayoutNode layout_;
};

}  // namespace panel
