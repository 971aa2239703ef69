#pragma once

#include <sys/types.h>

#include <optional>
#include <string>

#include "platform/file_store.h"
#include "platform/posix/system_failure.h"

namespace platform::posix {

// The files of a folder of the system. Files beyond 64 MiB are not read.
class PosixFiles : public FileStore {
  public:
    // Throws a Failure when the folder cannot be opened.
    explicit PosixFiles(const std::string& folder);

    std::string read(const std::string& name) const override;
    void replace(const std::string& name, std::string_view bytes) override;
    void remove(const std::string& name) override;
    bool exists(const std::string& name) const override;
    std::vector<std::string> list(std::string_view ending) const override;

  private:
    // Names of the system from here on.
    std::string read_system_file(const std::string& name) const;
    // Without `mode` the new file gets the permissions that new files have.
    void write_temporary(const std::string& name, std::string_view bytes, std::optional<mode_t> mode);
    void keep_backup(const std::string& name, mode_t mode);

    Descriptor folder_;
};

}  // namespace platform::posix
