#include "platform/win32/win32_sim_server.h"

#include <windows.h>

#include <array>
#include <future>
#include <utility>

namespace platform::win32 {

namespace {

constexpr std::size_t kBlockSize = 32768;
constexpr const char* kMessageText = "FSASMLIB:IPC";

// A client's mapping, found by the atom that names it. It is opened for each send: a client that has closed its link
// and opened it again has another mapping of the same name.
class ClientBlock {
  public:
    explicit ClientBlock(std::uint16_t atom) {
        std::array<char, 64> name{};
        const UINT length = ::GlobalGetAtomNameA(atom, name.data(), static_cast<int>(name.size()));
        if (length == 0 || std::string(name.data()).rfind(kMessageText, 0) != 0) {
            return;
        }
        mapping_ = Handle(::OpenFileMappingA(FILE_MAP_WRITE, FALSE, name.data()));
        view_ = mapping_.valid() ? ::MapViewOfFile(mapping_.get(), FILE_MAP_WRITE, 0, 0, 0) : nullptr;
    }
    ~ClientBlock() {
        if (view_ != nullptr) {
            ::UnmapViewOfFile(view_);
        }
    }
    ClientBlock(const ClientBlock&) = delete;
    ClientBlock& operator=(const ClientBlock&) = delete;

    // Null when there is none, or one that is too small for a block.
    std::uint8_t* bytes() const {
        MEMORY_BASIC_INFORMATION region{};
        const bool known = view_ != nullptr && ::VirtualQuery(view_, &region, sizeof(region)) != 0;
        return known && region.RegionSize >= kBlockSize ? static_cast<std::uint8_t*>(view_) : nullptr;
    }

  private:
    Handle mapping_;
    void* view_ = nullptr;
};

}  // namespace

// What the window's thread and the loop's thread share. The window's thread waits in the window procedure until the
// loop has set the reply.
struct Win32SimServer::Window {
    std::string window_class;
    UINT message = ::RegisterWindowMessageA(kMessageText);
    std::function<void()> on_send;  // called on the window's thread
    HWND window = nullptr;
    Handle replied = make_event();
    Handle dropped = make_event();
    std::atomic<std::uint16_t> atom = 0;
    std::atomic<std::uint32_t> reply = 0;
    std::atomic<bool> dropping = false;  // sends are answered with 0 at once: nobody waits for them any more
    std::atomic<bool> closing = false;

    // The thread. `made` learns whether there is a window.
    void run(std::promise<SystemError> made);
    LRESULT take(WPARAM first_parameter);
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second);
};

LRESULT CALLBACK Win32SimServer::Window::procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_NCCREATE) {
        const auto* created = reinterpret_cast<const CREATESTRUCTA*>(second);  // NOLINT(performance-no-int-to-ptr)
        ::SetWindowLongPtrA(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created->lpCreateParams));
    }
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    auto* self = reinterpret_cast<Window*>(::GetWindowLongPtrA(window, GWLP_USERDATA));
    if (self != nullptr && message == self->message) {
        return self->take(first);
    }
    if (message == WM_CLOSE) {
        ::DestroyWindow(window);
        return 0;
    }
    if (message == WM_DESTROY) {
        ::PostQuitMessage(0);
        return 0;
    }
    return ::DefWindowProcA(window, message, first, second);
}

LRESULT Win32SimServer::Window::take(WPARAM first_parameter) {
    if (dropping || closing) {
        return 0;
    }
    atom = static_cast<std::uint16_t>(first_parameter);
    on_send();
    ::WaitForSingleObject(replied.get(), INFINITE);
    const auto value = static_cast<LRESULT>(reply.load());
    if (dropping) {
        // What has come in meanwhile is called from within here.
        MSG ignored{};
        ::PeekMessageA(&ignored, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
        dropping = false;
        ::SetEvent(dropped.get());
    }
    return value;
}

void Win32SimServer::Window::run(std::promise<SystemError> made) {
    WNDCLASSA description{};
    description.lpfnWndProc = procedure;
    description.hInstance = ::GetModuleHandleA(nullptr);
    description.lpszClassName = window_class.c_str();
    if (::RegisterClassA(&description) != 0) {
        // A window of the desktop, never shown: clients look for one without a parent.
        window = ::CreateWindowExA(0, window_class.c_str(), "", WS_OVERLAPPED, 0, 0, 0, 0, nullptr, nullptr,
                                   description.hInstance, this);
    }
    const HWND own = window;
    made.set_value(own == nullptr ? ::GetLastError() : 0);
    MSG next{};
    while (own != nullptr && ::GetMessageA(&next, nullptr, 0, 0) > 0) {
        ::DispatchMessageA(&next);
    }
    ::UnregisterClassA(window_class.c_str(), description.hInstance);
}

Win32SimServer::Win32SimServer(Win32Loop& loop, const std::string& window_class, Server server)
    : loop_(loop), server_(std::move(server)), window_(std::make_shared<Window>()) {
    if (::FindWindowExA(nullptr, nullptr, window_class.c_str(), nullptr) != nullptr) {
        throw support::Failure("Another simulator answers as " + window_class);
    }
    window_->window_class = window_class;
    window_->on_send = [this, alive = std::weak_ptr<int>(alive_)] {
        loop_.post_from_any_thread([this, alive] {
            if (!alive.expired()) {
                take_send();
            }
        });
    };
    std::promise<SystemError> made;
    std::future<SystemError> error = made.get_future();
    thread_ = std::thread([window = window_, promise = std::move(made)]() mutable { window->run(std::move(promise)); });
    if (const SystemError code = error.get(); code != 0) {
        thread_.join();
        throw_system_failure("No window of the class " + window_class, code);
    }
}

Win32SimServer::~Win32SimServer() {
    window_->closing = true;
    window_->reply = 0;
    ::SetEvent(window_->replied.get());
    ::PostMessageA(window_->window, WM_CLOSE, 0, 0);
    thread_.join();
}

void Win32SimServer::set_fault(ServerFault fault) {
    const ServerFault before = std::exchange(fault_, fault);
    if (before == ServerFault::silent && fault == ServerFault::none && send_waits_) {
        window_->dropping = true;
        reply(0);
        ::WaitForSingleObject(window_->dropped.get(), INFINITE);
    }
}

void Win32SimServer::take_send() {
    send_waits_ = true;
    loop_.post_after(answer_delay_, [this, alive = std::weak_ptr<int>(alive_)] {
        if (!alive.expired() && send_waits_ && fault_ == ServerFault::none) {
            answer();
        }
    });
}

void Win32SimServer::answer() {
    const ClientBlock block(window_->atom);
    const std::uint32_t value = block.bytes() == nullptr ? 0 : server_(block.bytes(), kBlockSize);
    if (fault_ == ServerFault::silent) {
        return;  // the block itself has silenced us
    }
    ++answered_;
    reply(value);
}

void Win32SimServer::reply(std::uint32_t value) {
    send_waits_ = false;
    window_->reply = value;
    ::SetEvent(window_->replied.get());
}

}  // namespace platform::win32
