#include "platform/posix/x_connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>
#include <xcb/xtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace platform::posix {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds kTimeLimit{250};
constexpr const char* kNoDesktop = "There is no desktop that the key could go to";
constexpr const char* kNoAnswer = "The desktop does not answer";
constexpr const char* kNoTestExtension =
    "The desktop does not let programs press keys (its X server lacks the extension XTEST)";

// The state of pointer and keyboard holds the modifiers in its low byte, the layout in use in two further bits.
constexpr unsigned kLayoutShift = 13;
constexpr unsigned kLayoutMask = 3;
constexpr unsigned kModifierMask = 0xFF;
constexpr unsigned kEventTypeMask = 0x7F;  // without the mark of events that other clients have sent

// Rows of the modifier mapping.
constexpr std::size_t kShiftRow = 0;
constexpr std::size_t kControlRow = 2;
constexpr std::size_t kFirstFreeRow = 3;
constexpr std::size_t kModifierRows = 8;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, Free>;

// True when there is something to read on the descriptor (or it is closed) before the deadline.
bool readable_before(int descriptor, steady_clock::time_point deadline) {
    pollfd watched{descriptor, POLLIN, 0};
    for (;;) {
        const auto left = std::chrono::ceil<milliseconds>(deadline - steady_clock::now());
        const int count = ::poll(&watched, 1, static_cast<int>(std::max(left, milliseconds(0)).count()));
        if (count > 0) {
            return true;
        }
        if (count == 0 || errno != EINTR) {
            return false;
        }
    }
}

// A key of a row of the modifier mapping; with a symbol only one that bears it.
XKeyboard::Modifier modifier_of(const XKeyboard& keyboard, const xcb_get_modifier_mapping_reply_t& reply,
                                std::size_t row, std::uint32_t symbol = 0) {
    const xcb_keycode_t* const keys = xcb_get_modifier_mapping_keycodes(&reply);
    const std::size_t width = reply.keycodes_per_modifier;
    for (std::size_t at = row * width; at < (row + 1) * width; ++at) {
        if (keys[at] != 0 && (symbol == 0 || keyboard.symbol(keys[at], 0) == symbol)) {
            return {keys[at], 1U << row};
        }
    }
    return {};
}

const char* name_or_session(const std::string& display) {
    return display.empty() ? nullptr : display.c_str();
}

// A socket that connects to the server's, without waiting; errno tells why when it does not. Servers listen on a file
// and on the same name among the abstract sockets, which begin with a zero byte.
Descriptor local_connection(int display_number, bool abstract) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string name =
        (abstract ? std::string(1, '\0') : "") + "/tmp/.X11-unix/X" + std::to_string(display_number);
    std::memcpy(address.sun_path, name.data(), name.size());
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + name.size() + (abstract ? 0 : 1));
    Descriptor connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    if (::connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), size) != 0) {
        const int error = errno;
        connection.reset();
        errno = error;
    }
    return connection;
}

}  // namespace

XConnection::XConnection(const std::string& display) : connection_(xcb_connect(name_or_session(display), nullptr)) {
    try {
        if (broken()) {
            throw support::Failure(kNoDesktop);
        }
        xcb_prefetch_extension_data(connection_, &xcb_test_id);
        read_keyboard();
        // The answer has come before that of the keyboard.
        const xcb_query_extension_reply_t* const extension =
            broken() ? nullptr : xcb_get_extension_data(connection_, &xcb_test_id);
        if (broken()) {
            throw support::Failure(kNoDesktop);
        }
        if (extension == nullptr || extension->present == 0) {
            throw support::Failure(kNoTestExtension);
        }
    } catch (const support::Failure&) {
        xcb_disconnect(connection_);
        throw;
    }
}

XConnection::~XConnection() {
    xcb_disconnect(connection_);
}

Delivery XConnection::press(const KeyChord& chord) {
    // 1. Reading before anything is written notices a server that has gone.
    take_events();
    if (broken()) {
        return Delivery::connection_broken;
    }
    check_owed_reply();
    // 2. The layout in use and what the user holds; with it the server shows that it is alive.
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    const ReplyPointer<xcb_query_pointer_reply_t> state(
        static_cast<xcb_query_pointer_reply_t*>(wait_for(xcb_query_pointer(connection_, root).sequence)));
    // 3. A change of the keyboard that came before that answer.
    take_events();
    if (keyboard_is_stale_ && !broken()) {
        read_keyboard();
    }
    if (broken() || !state) {
        return Delivery::connection_broken;
    }
    // 4. The keys.
    const unsigned mask = state->mask;
    const auto keys = keys_to_press(chord, keyboard_, {(mask >> kLayoutShift) & kLayoutMask, mask & kModifierMask});
    for (auto key = keys.begin(); key != keys.end(); ++key) {
        xcb_test_fake_input(connection_, XCB_KEY_PRESS, *key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        xcb_test_fake_input(connection_, XCB_KEY_RELEASE, *key, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }
    xcb_flush(connection_);
    return broken() ? Delivery::connection_broken : Delivery::done;
}

bool XConnection::broken() const {
    return xcb_connection_has_error(connection_) != 0;
}

void XConnection::take_events() {
    while (const ReplyPointer<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
        if ((event->response_type & kEventTypeMask) == XCB_MAPPING_NOTIFY) {
            keyboard_is_stale_ = true;
        }
    }
}

void XConnection::read_keyboard() {
    const xcb_setup_t& setup = *xcb_get_setup(connection_);
    const auto key_count = static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1);
    const ReplyPointer<xcb_get_keyboard_mapping_reply_t> mapping(static_cast<xcb_get_keyboard_mapping_reply_t*>(
        wait_for(xcb_get_keyboard_mapping(connection_, setup.min_keycode, key_count).sequence)));
    const ReplyPointer<xcb_get_modifier_mapping_reply_t> modifiers(
        static_cast<xcb_get_modifier_mapping_reply_t*>(wait_for(xcb_get_modifier_mapping(connection_).sequence)));
    if (!mapping || !modifiers) {
        return;
    }
    XKeyboard keyboard;
    keyboard.first_keycode = setup.min_keycode;
    keyboard.columns = mapping->keysyms_per_keycode;
    const xcb_keysym_t* const symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    keyboard.symbols.assign(symbols, symbols + xcb_get_keyboard_mapping_keysyms_length(mapping.get()));
    keyboard.shift = modifier_of(keyboard, *modifiers, kShiftRow);
    keyboard.control = modifier_of(keyboard, *modifiers, kControlRow);
    for (std::size_t row = kFirstFreeRow; row < kModifierRows && keyboard.third_level.keycode == 0; ++row) {
        keyboard.third_level = modifier_of(keyboard, *modifiers, row, kSymbolThirdLevel);
    }
    keyboard_ = std::move(keyboard);
    keyboard_is_stale_ = false;
}

void* XConnection::wait_for(unsigned sequence) {
    xcb_flush(connection_);
    const auto deadline = steady_clock::now() + kTimeLimit;
    const int descriptor = xcb_get_file_descriptor(connection_);
    for (;;) {
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (xcb_poll_for_reply(connection_, sequence, &reply, &error) != 0) {
            std::free(error);
            return reply;
        }
        if (!readable_before(descriptor, deadline)) {
            owed_reply_ = sequence;
            throw support::Failure(kNoAnswer);
        }
    }
}

void XConnection::check_owed_reply() {
    if (!owed_reply_) {
        return;
    }
    void* reply = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (xcb_poll_for_reply(connection_, *owed_reply_, &reply, &error) == 0) {
        throw support::Failure(kNoAnswer);
    }
    std::free(reply);
    std::free(error);
    owed_reply_.reset();
}

void XServerProbe::check(const std::string& display) {
    const bool asked_before = waiting_.valid();
    if (!asked_before) {
        char* host = nullptr;
        int number = 0;
        const int parsed = xcb_parse_display(name_or_session(display), &host, &number, nullptr);
        const ReplyPointer<char> owned_host(host);
        if (parsed == 0 || (*host != '\0' && std::strcmp(host, "unix") != 0)) {
            return;
        }
        waiting_ = local_connection(number, true);
        if (!waiting_.valid()) {
            waiting_ = local_connection(number, false);
        }
        if (!waiting_.valid() && errno == EAGAIN) {
            throw support::Failure(kNoAnswer);  // so many wait for it already
        }
        if (!waiting_.valid()) {
            return;
        }
        // The beginning of any client: the order of its bytes, version 11.0 of the protocol and no credentials. A
        // refusal is an answer too.
        std::array<std::uint8_t, 12> greeting{};
        greeting[0] = std::endian::native == std::endian::little ? 'l' : 'B';
        const std::uint16_t version = 11;
        std::memcpy(&greeting[2], &version, sizeof version);
        static_cast<void>(::send(waiting_.get(), greeting.data(), greeting.size(), MSG_NOSIGNAL));
    }
    if (!readable_before(waiting_.get(), steady_clock::now() + (asked_before ? milliseconds(0) : kTimeLimit))) {
        throw support::Failure(kNoAnswer);
    }
    waiting_.reset();
}

}  // namespace platform::posix
