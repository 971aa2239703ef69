#include "platform/file_store.h"

#include <algorithm>

#include "support/failure.h"
#include "support/windows_1252.h"

namespace platform {

void check_file_name(const std::string& name) {
    if (name.empty()) {
        throw support::Failure("File name missing");
    }
    if (name == "." || name == ".." || name.find_first_of(std::string("/\\\0", 3)) != std::string::npos) {
        throw support::Failure("Bad file name");
    }
}

std::optional<std::string> file_name_of(std::string_view utf8) {
    std::string name = support::from_utf8(utf8);
    return support::to_utf8(name) == utf8 ? std::optional(std::move(name)) : std::nullopt;
}

bool has_ending(std::string_view name, std::string_view ending) {
    const auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    return name.size() >= ending.size() && std::equal(ending.rbegin(), ending.rend(), name.rbegin(),
                                                      [&](char a, char b) { return lower(a) == lower(b); });
}

}  // namespace platform
