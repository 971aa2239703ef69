#pragma once

#include <chrono>
#include <filesystem>
#include <string>

namespace platform_tests {

// A folder of its own that goes away with everything in it. Its path has a blank and an umlaut.
class ScratchFolder {
  public:
    ScratchFolder() {
        static int count = 0;
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        const std::string name = "cockpit-test \xC3\xBC " + std::to_string(now) + "-" + std::to_string(++count);
        path_ = std::filesystem::temp_directory_path() / std::filesystem::path(as_u8(name));
        std::filesystem::create_directory(path_);
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // In UTF-8.
    std::string path() const {
        const std::u8string text = path_.u8string();
        return std::string(text.begin(), text.end());
    }
    std::filesystem::path file(const std::string& name) const { return path_ / name; }

  private:
    static std::u8string as_u8(const std::string& text) { return std::u8string(text.begin(), text.end()); }

    std::filesystem::path path_;
};

}  // namespace platform_tests
