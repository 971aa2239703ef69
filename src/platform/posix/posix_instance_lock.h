#pragma once

#include <string>

#include "platform/instance_lock.h"
#include "platform/posix/system_failure.h"

namespace platform::posix {

// A lock on the file cockpit.lock of the working folder. The system frees it when the program ends, however it ends.
class PosixInstanceLock : public InstanceLock {
  public:
    explicit PosixInstanceLock(std::string folder) : path_(std::move(folder) + "/cockpit.lock") {}

    bool acquire() override;
    void publish(const std::string& address) override;
    std::string other_address() const override;

  private:
    std::string path_;
    Descriptor file_;
};

}  // namespace platform::posix
