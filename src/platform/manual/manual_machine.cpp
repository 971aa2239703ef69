#include "platform/manual/manual_machine.h"

#include <algorithm>
#include <cctype>

#include "support/failure.h"

namespace platform::manual {

std::string ManualFiles::read(const std::string& name) const {
    check_file_name(name);
    const auto found = contents.find(name);
    if (found == contents.end()) {
        throw support::Failure("File not found");
    }
    return found->second;
}

void ManualFiles::replace(const std::string& name, std::string_view bytes) {
    check_file_name(name);
    if (write_protected.count(name) != 0) {
        throw support::Failure("The file is write-protected");
    }
    if (disk_full) {
        throw support::Failure("No space left on device");
    }
    const auto found = contents.find(name);
    if (found != contents.end()) {
        contents[name + ".bak"] = found->second;
    }
    contents[name] = std::string(bytes);
}

void ManualFiles::remove(const std::string& name) {
    check_file_name(name);
    if (contents.erase(name) == 0) {
        throw support::Failure("File not found");
    }
}

std::vector<std::string> ManualFiles::list(std::string_view ending) const {
    const auto same = [](char a, char b) {
        return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
    };
    std::vector<std::string> names;
    for (const auto& [name, bytes] : contents) {
        if (name.size() >= ending.size() && std::equal(ending.rbegin(), ending.rend(), name.rbegin(), same)) {
            names.push_back(name);
        }
    }
    return names;
}

void ManualKeys::send(const std::string& keys) {
    if (!failure.empty()) {
        throw support::Failure(failure);
    }
    sent.push_back(keys);
}

}  // namespace platform::manual
