#pragma once

#include <string>

#include "panel/panel.h"

namespace panel {

enum class UserEvent { click, double_click, change };

// What a user did to one control, as it comes from outside: nothing in it is trusted.
struct UserAction {
    UserEvent event = UserEvent::click;
    int value = 0;     // new position, state or selected line
    std::string text;  // new text of a text box, at most kLongestUserText bytes
};

inline constexpr std::size_t kLongestUserText = 4096;

enum class InputResult { done, not_available, bad_value };

// Carries out a user's action: checks that the panel is shown, the control visible, enabled and fit for the event, and
// the value in range; writes the new state; calls the panel's handler. A handler that is still waiting in its own
// earlier call is not entered again (not_available). Call it from a user command of the event loop.
class UserInput {
  public:
    static InputResult apply(Control& control, const UserAction& action);
};

}  // namespace panel
