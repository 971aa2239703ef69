#pragma once

#include <string>

#include "platform/file_store.h"
#include "platform/win32/win32_failure.h"

namespace platform::win32 {

// The files of a folder of the system. Files beyond 64 MiB are not read.
class Win32Files : public FileStore {
  public:
    // `folder` in UTF-8. Throws a Failure when it is no folder.
    explicit Win32Files(const std::string& folder);

    std::string read(const std::string& name) const override;
    void replace(const std::string& name, std::string_view bytes) override;
    void remove(const std::string& name) override;
    bool exists(const std::string& name) const override;
    std::vector<std::string> list(std::string_view ending) const override;

  private:
    // Throws a Failure for a name that is not one of a file.
    std::wstring path(const std::string& name) const;

    std::wstring folder_;  // with a backslash at its end
};

}  // namespace platform::win32
