#pragma once

#include <stdexcept>
#include <string>

namespace support {

// A failure with a description that the user can read. Bad input, files, hardware and the simulator end in one of
// these; the place that knows the circumstances shows it.
class Failure : public std::runtime_error {
  public:
    explicit Failure(const std::string& description) : std::runtime_error(description) {}

    // The description as it is shown to the user.
    std::string description() const { return what(); }
};

}  // namespace support
