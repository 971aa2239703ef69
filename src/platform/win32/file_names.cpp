#include "platform/win32/file_names.h"

#include <algorithm>
#include <array>
#include <string>

namespace platform::win32 {

namespace {

char upper(char letter) {
    return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

bool is_device(std::string_view name) {
    std::string stem(name.substr(0, name.find('.')));
    std::transform(stem.begin(), stem.end(), stem.begin(), upper);
    while (!stem.empty() && stem.back() == ' ') {
        stem.pop_back();
    }
    constexpr std::array<std::string_view, 6> kDevices = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
    if (std::find(kDevices.begin(), kDevices.end(), stem) != kDevices.end()) {
        return true;
    }
    // The digits may be raised ones, too.
    const bool numbered = stem.rfind("COM", 0) == 0 || stem.rfind("LPT", 0) == 0;
    constexpr std::string_view kDigits = "0123456789\xB9\xB2\xB3";
    return numbered && stem.size() == 4 && kDigits.find(stem[3]) != std::string_view::npos;
}

}  // namespace

bool is_file_name(std::string_view name) {
    static constexpr std::string_view kReserved = "<>:\"/\\|?*";
    const bool plain = std::none_of(name.begin(), name.end(), [](char letter) {
        return static_cast<unsigned char>(letter) < 32 || kReserved.find(letter) != std::string_view::npos;
    });
    return plain && !name.empty() && name.back() != '.' && name.back() != ' ' && !is_device(name);
}

}  // namespace platform::win32
