#include "platform/win32/app_command.h"

#include <algorithm>

namespace platform::win32 {

bool is_page_address(std::string_view address) {
    constexpr std::string_view kBegin = "http://127.0.0.1:";
    const auto is_plain = [](char letter) {
        return (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'z') || letter == '/' || letter == ':' ||
               letter == '.';
    };
    return address.substr(0, kBegin.size()) == kBegin && address.size() > kBegin.size() &&
           std::all_of(address.begin(), address.end(), is_plain);
}

std::wstring app_command(const std::wstring& browser, const std::wstring& address) {
    return L"\"" + browser + L"\" --app=" + address;
}

}  // namespace platform::win32
