#pragma once

#include <string>

namespace platform {

// Keeps a second program out of a working folder.
class InstanceLock {
  public:
    virtual ~InstanceLock() = default;
    // True when this program now holds the folder, until it ends. Throws a Failure when the folder cannot be written.
    virtual bool acquire() = 0;
    // Leaves the address of this program's page for a second one. Only after acquire().
    virtual void publish(const std::string& address) = 0;
    // The address that the holder has left; empty when it has left none yet.
    virtual std::string other_address() const = 0;
};

}  // namespace platform
