#include "platform/win32/tray_icon.h"

#include <windows.h>
// The shell's header needs the one above.
#include <shellapi.h>

#include <algorithm>
#include <future>
#include <utility>

#include "platform/win32/win32_failure.h"

namespace platform::win32 {

namespace {

constexpr const wchar_t* kClass = L"CockpitTrayIcon";
constexpr UINT kIconMessage = WM_APP + 1;
constexpr UINT kEndMessage = WM_APP + 2;
constexpr UINT_PTR kOpenPanels = 1;
constexpr UINT_PTR kExit = 2;
constexpr WORD kIconResource = 1;  // packaging/windows/cockpit.rc

// A taskbar that is still busy with the sign-in takes no icon; there may be none at all.
constexpr UINT_PTR kRetryTimer = 1;
constexpr UINT kRetryIntervalMs = 2000;

// How long the system's end waits for the program's.
constexpr DWORD kEndPatienceMs = 4000;

}  // namespace

// Everything but `actions` and `ended` belongs to the icon's thread.
struct TrayIcon::Window {
    Actions actions;
    std::wstring tool_tip;
    Handle ended = make_event();  // the program has come to its end
    HWND window = nullptr;
    HICON icon = nullptr;
    UINT taskbar_created = ::RegisterWindowMessageW(L"TaskbarCreated");

    void run(std::promise<void> made);
    NOTIFYICONDATAW description() const;
    void show() const;
    void take_icon_event(UINT event, POINT place);
    void show_menu(POINT place);
    void end_with_the_system() const;
    LRESULT take(UINT message, WPARAM first, LPARAM second);
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second);
};

NOTIFYICONDATAW TrayIcon::Window::description() const {
    NOTIFYICONDATAW data{};
    data.cbSize = sizeof(data);
    data.hWnd = window;
    data.uID = 1;
    data.uFlags = NIF_ICON | NIF_MESSAGE | NIF_TIP | NIF_SHOWTIP;
    data.uCallbackMessage = kIconMessage;
    data.hIcon = icon;
    data.uVersion = NOTIFYICON_VERSION_4;
    const std::size_t length = std::min(tool_tip.size(), std::size(data.szTip) - 1);
    std::copy_n(tool_tip.begin(), length, std::begin(data.szTip));
    return data;
}

void TrayIcon::Window::show() const {
    NOTIFYICONDATAW data = description();
    if (::Shell_NotifyIconW(NIM_ADD, &data) == FALSE) {
        ::SetTimer(window, kRetryTimer, kRetryIntervalMs, nullptr);
        return;
    }
    ::KillTimer(window, kRetryTimer);
    ::Shell_NotifyIconW(NIM_SETVERSION, &data);
}

void TrayIcon::Window::take_icon_event(UINT event, POINT place) {
    switch (event) {
        case WM_CONTEXTMENU:
            show_menu(place);
            break;
        case WM_LBUTTONDBLCLK:
        case NIN_KEYSELECT:
            actions.open_panels();
            break;
        default:
            break;
    }
}

void TrayIcon::Window::show_menu(POINT place) {
    HMENU menu = ::CreatePopupMenu();
    ::AppendMenuW(menu, MF_STRING | MF_DEFAULT, kOpenPanels, L"&Open panels");
    ::AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    ::AppendMenuW(menu, MF_STRING, kExit, L"E&xit");
    ::SetMenuDefaultItem(menu, kOpenPanels, FALSE);
    // Without these two the menu would not go away at a click elsewhere.
    ::SetForegroundWindow(window);
    const BOOL chosen =
        ::TrackPopupMenu(menu, TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON, place.x, place.y, 0, window, nullptr);
    ::PostMessageW(window, WM_NULL, 0, 0);
    ::DestroyMenu(menu);
    if (chosen == kOpenPanels) {
        actions.open_panels();
    } else if (chosen == kExit) {
        actions.exit();
    }
}

// The system ends the process when this has come back.
void TrayIcon::Window::end_with_the_system() const {
    actions.exit();
    ::WaitForSingleObject(ended.get(), kEndPatienceMs);
}

LRESULT TrayIcon::Window::take(UINT message, WPARAM first, LPARAM second) {
    if (message == taskbar_created) {
        show();
        return 0;
    }
    switch (message) {
        case kIconMessage:
            take_icon_event(LOWORD(second), {static_cast<SHORT>(LOWORD(first)), static_cast<SHORT>(HIWORD(first))});
            return 0;
        case WM_TIMER:
            show();
            return 0;
        case kEndMessage:
            ::EndMenu();
            ::DestroyWindow(window);
            return 0;
        case WM_ENDSESSION:
            if (first != FALSE) {
                end_with_the_system();
            }
            return 0;
        case WM_CLOSE:
            actions.exit();
            return 0;
        case WM_DESTROY: {
            NOTIFYICONDATAW data = description();
            ::Shell_NotifyIconW(NIM_DELETE, &data);
            ::PostQuitMessage(0);
            return 0;
        }
        default:
            return ::DefWindowProcW(window, message, first, second);
    }
}

LRESULT CALLBACK TrayIcon::Window::procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_NCCREATE) {
        const auto* created = reinterpret_cast<const CREATESTRUCTW*>(second);  // NOLINT(performance-no-int-to-ptr)
        auto* self = static_cast<Window*>(created->lpCreateParams);
        self->window = window;
        ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
    }
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    auto* self = reinterpret_cast<Window*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
    return self == nullptr ? ::DefWindowProcW(window, message, first, second) : self->take(message, first, second);
}

void TrayIcon::Window::run(std::promise<void> made) {
    HINSTANCE program = ::GetModuleHandleW(nullptr);
    icon = static_cast<HICON>(::LoadImageW(program, MAKEINTRESOURCEW(kIconResource), IMAGE_ICON,
                                           ::GetSystemMetrics(SM_CXSMICON), ::GetSystemMetrics(SM_CYSMICON), 0));
    WNDCLASSW description_of_class{};
    description_of_class.lpfnWndProc = procedure;
    description_of_class.hInstance = program;
    description_of_class.lpszClassName = kClass;
    ::RegisterClassW(&description_of_class);
    // A window of the desktop, never shown: only such a window hears of a new taskbar and of the system's end.
    ::CreateWindowExW(0, kClass, tool_tip.c_str(), WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr, program, this);
    made.set_value();
    if (window == nullptr) {
        return;
    }
    // A program that runs as administrator hears of a new taskbar only so.
    ::ChangeWindowMessageFilterEx(window, taskbar_created, MSGFLT_ALLOW, nullptr);
    show();
    MSG message{};
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        ::DispatchMessageW(&message);
    }
    ::DestroyIcon(icon);
}

TrayIcon::TrayIcon(Actions actions, const std::string& tool_tip) : window_(std::make_unique<Window>()) {
    window_->actions = std::move(actions);
    window_->tool_tip = wide(tool_tip);
    std::promise<void> made;
    std::future<void> ready = made.get_future();
    thread_ =
        std::thread([window = window_.get(), promise = std::move(made)]() mutable { window->run(std::move(promise)); });
    ready.wait();
}

TrayIcon::~TrayIcon() {
    ::SetEvent(window_->ended.get());
    if (window_->window != nullptr) {
        ::PostMessageW(window_->window, kEndMessage, 0, 0);
    }
    thread_.join();
}

}  // namespace platform::win32
