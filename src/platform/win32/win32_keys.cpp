#include "platform/win32/win32_keys.h"

#include <windows.h>

#include <algorithm>

#include "platform/win32/key_plan.h"
#include "platform/win32/win32_failure.h"
#include "support/windows_1252.h"

namespace platform::win32 {

namespace {

bool is_down(int virtual_key) {
    return (::GetAsyncKeyState(virtual_key) & 0x8000) != 0;
}

// What the layout says of a character: the low byte is the key, the next one the modifiers it needs.
std::optional<LayoutKey> find_key(char character, HKL layout) {
    const std::wstring text = wide(support::to_utf8(std::string(1, character)));
    const auto said = static_cast<std::uint16_t>(::VkKeyScanExW(text.front(), layout));
    if (said == 0xFFFF) {
        return std::nullopt;
    }
    const unsigned modifiers = said >> 8U;
    return LayoutKey{.virtual_key = static_cast<std::uint8_t>(said & 0xFFU),
                     .shift = (modifiers & 1U) != 0,
                     .control = (modifiers & 2U) != 0,
                     .alt = (modifiers & 4U) != 0};
}

INPUT key_input(std::uint8_t virtual_key, DWORD flags, HKL layout) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = virtual_key;
    // Simulators and games look at the keyboard's own code of the key.
    input.ki.wScan = static_cast<WORD>(::MapVirtualKeyExW(virtual_key, MAPVK_VK_TO_VSC, layout));
    input.ki.dwFlags = flags | (virtual_key == kKeyRightAlt ? KEYEVENTF_EXTENDEDKEY : 0U);
    return input;
}

}  // namespace

void Win32Keys::send(const std::string& keys) {
    const KeyChord chord = parse_send_keys(keys);
    HWND active = ::GetForegroundWindow();
    if (active == nullptr) {
        throw support::Failure("No window of the desktop is active");
    }
    HKL layout = ::GetKeyboardLayout(::GetWindowThreadProcessId(active, nullptr));
    const HeldKeys held{.shift = is_down(VK_SHIFT), .control = is_down(VK_CONTROL), .alt = is_down(VK_MENU)};
    const std::vector<std::uint8_t> pressed = keys_to_press(
        chord, [layout](char character) { return find_key(character, layout); }, held);
    std::vector<INPUT> inputs;
    inputs.reserve(2 * pressed.size());
    for (const std::uint8_t key : pressed) {
        inputs.push_back(key_input(key, 0, layout));
    }
    for (auto key = pressed.rbegin(); key != pressed.rend(); ++key) {
        inputs.push_back(key_input(*key, KEYEVENTF_KEYUP, layout));
    }
    const auto count = static_cast<UINT>(inputs.size());
    const UINT sent = ::SendInput(count, inputs.data(), sizeof(INPUT));
    if (sent != count) {
        // What has gone down comes up again: a Shift key that stays down would be felt everywhere.
        const auto releases = static_cast<UINT>(pressed.size());
        ::SendInput(releases, inputs.data() + releases, sizeof(INPUT));
        throw support::Failure("The system has not let the key through; the active window may run as administrator");
    }
}

}  // namespace platform::win32
