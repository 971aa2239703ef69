#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

// The files of the working folder. A name is a plain file name of that folder: empty names, names with a slash, a
// backslash or a NUL, "." and ".." are refused with a Failure. Names are in Windows-1252, as they stand in the start
// file; files whose names have other characters are not listed.
class FileStore {
  public:
    virtual ~FileStore() = default;

    // All bytes of a file. Throws a Failure that says why it cannot be read.
    virtual std::string read(const std::string& name) const = 0;

    // Replaces the file as a whole: writes a temporary file beside it, flushes it to disk, keeps the version before as
    // `<name>.bak` and renames. After a crash or a full disk either the old or the new file is whole. A write-protected
    // target is refused. Throws a Failure; the old file is then untouched.
    virtual void replace(const std::string& name, std::string_view bytes) = 0;

    // Throws a Failure when the file is not there or cannot be removed.
    virtual void remove(const std::string& name) = 0;

    virtual bool exists(const std::string& name) const = 0;

    // The names of regular files that end with `ending` (".cfg", letter case ignored), sorted.
    virtual std::vector<std::string> list(std::string_view ending) const = 0;
};

// Throws a Failure when `name` is not a plain file name.
void check_file_name(const std::string& name);

// The name of a file that the system knows by `utf8`; nothing when it has characters that no name here can hold.
std::optional<std::string> file_name_of(std::string_view utf8);

// Whether a name ends with `ending`, letter case ignored.
bool has_ending(std::string_view name, std::string_view ending);

}  // namespace platform
