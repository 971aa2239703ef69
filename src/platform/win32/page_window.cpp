#include "platform/win32/page_window.h"

#include <windows.h>
// These need the one above.
#include <objbase.h>
#include <shellapi.h>
#include <winreg.h>

#include <array>

#include "platform/win32/app_command.h"
#include "platform/win32/win32_failure.h"

namespace platform::win32 {

namespace {

// The path of an installed program, as the registry has it; empty when it is not installed.
std::wstring installed(HKEY root, const std::wstring& program) {
    const std::wstring key = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\" + program;
    std::array<wchar_t, 1024> path{};
    auto size = static_cast<DWORD>(path.size() * sizeof(wchar_t));
    const LSTATUS status = ::RegGetValueW(root, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, path.data(), &size);
    std::wstring found = status == ERROR_SUCCESS ? path.data() : L"";
    // Some installers put it into quotes.
    if (found.size() >= 2 && found.front() == L'"' && found.back() == L'"') {
        found = found.substr(1, found.size() - 2);
    }
    return found;
}

bool start(const std::wstring& browser, const std::wstring& address) {
    std::wstring command = app_command(browser, address);
    STARTUPINFOW how{};
    how.cb = sizeof(how);
    PROCESS_INFORMATION made{};
    if (::CreateProcessW(browser.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &how, &made) ==
        FALSE) {
        return false;
    }
    const Handle process(made.hProcess);
    const Handle thread(made.hThread);
    return true;
}

}  // namespace

void open_page(const std::string& address) {
    if (!is_page_address(address)) {
        throw support::Failure("Not the address of a page of this program");
    }
    const std::wstring target = wide(address);
    for (const wchar_t* program : {L"msedge.exe", L"chrome.exe"}) {
        for (HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
            const std::wstring browser = installed(root, program);
            if (!browser.empty() && start(browser, target)) {
                return;
            }
        }
    }
    // The shell may hand the address to a browser that stands on its objects.
    const HRESULT objects = ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    // The call gives a number above 32 when it has succeeded; what the others mean is of no use to a reader.
    const auto result =
        reinterpret_cast<INT_PTR>(::ShellExecuteW(nullptr, L"open", target.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    if (SUCCEEDED(objects)) {
        ::CoUninitialize();
    }
    if (result <= 32) {
        throw support::Failure("No browser can be started (" + std::to_string(result) + ")");
    }
}

}  // namespace platform::win32
