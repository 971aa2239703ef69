#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

#include "simhost/simulator.h"

namespace simhost {

// The commands by which a user or a test steers the simulator while it runs, one line of text each.
class Control {
  public:
    explicit Control(Simulator& simulator) : simulator_(simulator) {}

    // Carries a command out and gives the answer, one or more lines without a line end at the last. A command that
    // can't be carried out answers "error: " and the reason; nothing is changed then.
    std::string execute(std::string_view line);

    // The program is to end.
    std::function<void()> on_quit;
    // The server is to go away for a while: its clients lose it and find it again afterwards.
    std::function<void(std::chrono::milliseconds away)> on_restart;
    // The server is to answer as a window of another class from now on.
    std::function<void(const std::string& window_class)> on_window;

  private:
    Simulator& simulator_;
};

}  // namespace simhost
