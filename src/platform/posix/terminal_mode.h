#pragma once

#include "platform/line_settings.h"

namespace platform::posix {

// Puts an open terminal into raw mode with these settings; received breaks and framing errors are marked in the data
// (ParmrkDecoder). Throws a Failure when it is no terminal or refuses them.
void apply_line_settings(int descriptor, const LineSettings& settings);

}  // namespace platform::posix
