#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/win32/win32_loop.h"

namespace platform::win32 {

// Text lines from a console, a pipe or a file (standard input, as a rule) as tasks of the loop. They are read in a
// thread of its own, which none of these can be interrupted in: it ends with its input or with the program. The longest
// line is 1000 bytes; what is longer comes in pieces.
class LineInput {
  public:
    // `on_line` gets each line without its line break. A null handle gives no lines.
    LineInput(Win32Loop& loop, void* handle, std::function<void(std::string_view line)> on_line);
    ~LineInput();
    LineInput(const LineInput&) = delete;
    LineInput& operator=(const LineInput&) = delete;

  private:
    struct Side;

    std::shared_ptr<Side> side_;
};

// The handle of the program's standard input; null when it has none.
void* standard_input();

}  // namespace platform::win32
