#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "support/failure.h"

namespace platform::posix {

// Throws a Failure of the text and the system's words for `error`, by default the present errno.
[[noreturn]] inline void throw_system_failure(const std::string& what, int error = errno) {
    throw support::Failure(what + ": " + std::strerror(error));
}

// Owns a file descriptor.
class Descriptor {
  public:
    Descriptor() = default;
    explicit Descriptor(int value) : value_(value) {}
    Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            reset(std::exchange(other.value_, -1));
        }
        return *this;
    }
    ~Descriptor() { reset(); }

    int get() const { return value_; }
    bool valid() const { return value_ >= 0; }
    int release() { return std::exchange(value_, -1); }
    void reset(int value = -1) {
        if (value_ >= 0) {
            ::close(value_);
        }
        value_ = value;
    }

  private:
    int value_ = -1;
};

}  // namespace platform::posix
