#include "platform/file_store.h"

#include "support/failure.h"

namespace platform {

void check_file_name(const std::string& name) {
    if (name.empty()) {
        throw support::Failure("File name missing");
    }
    if (name == "." || name == ".." || name.find_first_of(std::string("/\\\0", 3)) != std::string::npos) {
        throw support::Failure("Bad file name");
    }
}

}  // namespace platform
