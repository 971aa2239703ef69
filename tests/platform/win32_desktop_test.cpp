// What goes to windows and to the notification area.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <chrono>
#include <string>

#include "platform/win32/tray_icon.h"
#include "platform/win32/win32_keys.h"
#include "support/failure.h"

namespace platform::win32 {
namespace {

using std::chrono::steady_clock;

// The active window of the desktop, which writes down what is typed into it.
class TypedWindow {
  public:
    TypedWindow() {
        WNDCLASSW description{};
        description.lpfnWndProc = procedure;
        description.hInstance = ::GetModuleHandleW(nullptr);
        description.lpszClassName = L"TypedWindow";
        ::RegisterClassW(&description);
        window_ = ::CreateWindowExW(0, L"TypedWindow", L"typed", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200, 100,
                                    nullptr, nullptr, description.hInstance, nullptr);
        ::SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ::SetForegroundWindow(window_);
        ::SetFocus(window_);
        take_messages();
    }
    ~TypedWindow() {
        ::DestroyWindow(window_);
        ::UnregisterClassW(L"TypedWindow", ::GetModuleHandleW(nullptr));
    }
    TypedWindow(const TypedWindow&) = delete;
    TypedWindow& operator=(const TypedWindow&) = delete;

    // "+10 +47 -47 -10" for Shift and G; the numbers of the keys are hexadecimal.
    std::string keys;
    std::string characters;

    // Waits until so many keys have come up again.
    void wait_for_releases(int count) {
        const auto limit = steady_clock::now() + std::chrono::seconds(5);
        while (releases_ < count && steady_clock::now() < limit) {
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
            take_messages();
        }
        releases_ = 0;
    }

  private:
    static void take_messages() {
        MSG message{};
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
            ::TranslateMessage(&message);
            ::DispatchMessageW(&message);
        }
    }
    void take(UINT message, WPARAM key) {
        constexpr const char* kDigits = "0123456789ABCDEF";
        if (message == WM_CHAR) {
            characters.push_back(static_cast<char>(key));
            return;
        }
        const bool down = message == WM_KEYDOWN || message == WM_SYSKEYDOWN;
        releases_ += down ? 0 : 1;
        keys += keys.empty() ? "" : " ";
        keys += {down ? '+' : '-', kDigits[(key >> 4U) & 15U], kDigits[key & 15U]};
    }
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
        auto* self = reinterpret_cast<TypedWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
        switch (message) {
            case WM_KEYDOWN:
            case WM_KEYUP:
            case WM_SYSKEYDOWN:
            case WM_SYSKEYUP:
            case WM_CHAR:
                if (self != nullptr) {
                    self->take(message, first);
                }
                return 0;
            default:
                return ::DefWindowProcW(window, message, first, second);
        }
    }

    HWND window_ = nullptr;
    int releases_ = 0;
};

TEST(Win32Keys, keys_reach_the_active_window_and_come_up_again) {
    Win32Keys delivery;
    TypedWindow window;
    delivery.send("g");
    window.wait_for_releases(1);
    EXPECT_EQ(window.keys, "+47 -47");
    EXPECT_EQ(window.characters, "g");
    window.keys.clear();
    delivery.send("^+g");
    window.wait_for_releases(3);
    EXPECT_EQ(window.keys, "+11 +10 +47 -47 -10 -11");
    window.keys.clear();
    window.characters.clear();
    delivery.send("{+}");
    delivery.send("7");
    window.wait_for_releases(3);
    EXPECT_EQ(window.characters, "+7");
    EXPECT_THROW(delivery.send("\x81"), support::Failure) << "on no key of any layout";
}

TEST(TrayIcon, it_lives_without_a_taskbar_and_asks_the_program_to_end_with_the_system) {
    std::atomic<int> exits = 0;
    {
        const TrayIcon icon({.open_panels = [] {}, .exit = [&] { ++exits; }}, "Cockpit");
        HWND window = ::FindWindowExW(nullptr, nullptr, L"CockpitTrayIcon", nullptr);
        ASSERT_NE(window, nullptr);
        EXPECT_NE(::SendMessageW(window, WM_QUERYENDSESSION, 0, 0), 0) << "it does not stand in the way";
        ::SendMessageW(window, WM_ENDSESSION, FALSE, 0);
        EXPECT_EQ(exits, 0) << "the user has thought better of it";
        ::SendMessageW(window, ::RegisterWindowMessageW(L"TaskbarCreated"), 0, 0);
        ::SendMessageW(window, WM_CLOSE, 0, 0);
        EXPECT_EQ(exits, 1);
        // The program takes its time to end; the system waits for it.
        ::SendNotifyMessageW(window, WM_ENDSESSION, TRUE, 0);
        const auto limit = steady_clock::now() + std::chrono::seconds(5);
        while (exits < 2 && steady_clock::now() < limit) {
            ::Sleep(5);
        }
        EXPECT_EQ(exits, 2);
        EXPECT_NE(::IsWindow(window), FALSE);
    }
    EXPECT_EQ(::FindWindowExW(nullptr, nullptr, L"CockpitTrayIcon", nullptr), nullptr);
}

}  // namespace
}  // namespace platform::win32
