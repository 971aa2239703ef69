#pragma once

#include <string>

#include "platform/instance_lock.h"
#include "platform/win32/win32_failure.h"

namespace platform::win32 {

// Holds the file cockpit.lock of the working folder open so that nobody else can write it. The system lets it go when
// the program ends, however it ends.
class Win32InstanceLock : public InstanceLock {
  public:
    // `folder` in UTF-8.
    explicit Win32InstanceLock(const std::string& folder);

    bool acquire() override;
    void publish(const std::string& address) override;
    std::string other_address() const override;

  private:
    std::wstring path_;
    Handle file_;
};

}  // namespace platform::win32
