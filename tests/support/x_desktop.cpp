// The X server and the window that the tests of the key delivery type into.

#include "tests/support/x_desktop.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <stdexcept>

#include "platform/posix/system_failure.h"

namespace test_support {

namespace {

using platform::posix::Descriptor;

constexpr int kPatience_ms = 10'000;
constexpr int kReportDescriptor = 3;
// Each process has a display number of its own, so that nobody else takes it while the server is down.
constexpr int kFirstDisplay = 20'000;
constexpr int kDisplays = 30'000;
// The device of Xvfb that stands for the keyboard on the desk; faked keys have another one. The actions count from the
// first event of the input extension.
constexpr std::uint8_t kUserKeyboard = 7;
constexpr int kDeviceKeyPress = 1;
constexpr int kDeviceKeyRelease = 2;
constexpr const char* kAltGrName = "AltGr";

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, Free>;

// Starts a program that says nothing; `report` is its descriptor 3.
pid_t spawn(std::vector<std::string> words, int report) {
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    ::posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    if (report >= 0) {
        ::posix_spawn_file_actions_adddup2(&actions, report, kReportDescriptor);
    }
    pid_t process = -1;
    const int error = ::posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::runtime_error(words[0] + " cannot be started; scripts/install_needed test installs it");
    }
    return process;
}

void end(pid_t process, int signal) {
    ::kill(process, SIGCONT);
    ::kill(process, signal);
    ::waitpid(process, nullptr, 0);
}

bool readable(int descriptor) {
    pollfd watched{descriptor, POLLIN, 0};
    return ::poll(&watched, 1, kPatience_ms) > 0;
}

std::string modifier_names(unsigned state) {
    std::string names;
    names += (state & XCB_MOD_MASK_CONTROL) != 0 ? "C" : "";
    names += (state & XCB_MOD_MASK_SHIFT) != 0 ? "S" : "";
    names += (state & XCB_MOD_MASK_5) != 0 ? "3" : "";
    return names;
}

}  // namespace

XServer::XServer(const std::vector<std::string>& arguments)
    : display_(":" + std::to_string(kFirstDisplay + ::getpid() % kDisplays)) {
    start(arguments);
}

XServer::~XServer() {
    if (process_ > 0) {
        end(process_, SIGTERM);
    }
}

void XServer::start(const std::vector<std::string>& arguments) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    Descriptor reader(ends[0]);
    Descriptor writer(::fcntl(ends[1], F_DUPFD_CLOEXEC, 10));  // away from the child's descriptor
    ::close(ends[1]);
    std::vector<std::string> words{"Xvfb",     display_,    "-displayfd", std::to_string(kReportDescriptor),
                                   "-noreset", "-nolisten", "tcp"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    process_ = spawn(words, writer.get());
    writer.reset();
    // It reports its number and a line break when it is ready.
    for (char byte = 0; byte != '\n';) {
        if (!readable(reader.get()) || ::read(reader.get(), &byte, 1) != 1) {
            throw std::runtime_error("Xvfb has not started; scripts/install_needed test installs what it needs");
        }
    }
}

void XServer::crash() {
    end(process_, SIGKILL);
    process_ = -1;
}

void XServer::start_again() {
    start({});
}

void XServer::freeze() {
    ::kill(process_, SIGSTOP);
    ::waitpid(process_, nullptr, WUNTRACED);
}

void XServer::thaw() {
    ::kill(process_, SIGCONT);
}

void XServer::set_keyboard(const std::vector<std::string>& arguments) {
    std::vector<std::string> words{"setxkbmap", "-display", display_};
    words.insert(words.end(), arguments.begin(), arguments.end());
    int status = 0;
    ::waitpid(spawn(words, -1), &status, 0);
    if (status != 0) {
        throw std::runtime_error("setxkbmap has failed");
    }
}

TypedWindow::TypedWindow(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
    if (xcb_connection_has_error(connection_) != 0) {
        throw std::runtime_error("no connection to " + display);
    }
    const xcb_screen_t& screen = *xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    root_ = screen.root;
    const xcb_window_t window = xcb_generate_id(connection_);
    const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, root_, 0, 0, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen.root_visual, XCB_CW_EVENT_MASK, &events);
    // There is no window manager: the window is there when the server has worked off the request.
    xcb_map_window(connection_, window);
    xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_NONE, window, XCB_CURRENT_TIME);
    const ReplyPointer<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    if (!focus || focus->focus != window) {
        throw std::runtime_error("the window has no keyboard");
    }
}

TypedWindow::~TypedWindow() {
    xcb_disconnect(connection_);
}

std::string TypedWindow::typed() {
    std::string events;
    std::set<std::uint8_t> down;
    bool alt_gr = false;
    do {
        const ReplyPointer<xcb_generic_event_t> event(xcb_poll_for_event(connection_));
        if (!event) {
            if (xcb_connection_has_error(connection_) != 0 || !readable(xcb_get_file_descriptor(connection_))) {
                throw std::runtime_error("no more keys after: " + events);
            }
            continue;
        }
        const int type = event->response_type & 0x7F;
        if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE) {
            continue;
        }
        xcb_key_press_event_t key{};
        std::memcpy(&key, event.get(), sizeof key);
        if (type == XCB_KEY_PRESS) {
            down.insert(key.detail);
        } else {
            down.erase(key.detail);
        }
        // The server tells programs that know but one layout of the second one as if AltGr was held.
        const bool second_layout = (key.state & XCB_MOD_MASK_5) != 0 && !alt_gr;
        const unsigned state = second_layout ? key.state & ~unsigned{XCB_MOD_MASK_5} : key.state;
        const std::string name = symbol_name(key.detail, state, second_layout ? 2 : 0);
        alt_gr = name == kAltGrName ? type == XCB_KEY_PRESS : alt_gr;
        const std::string modifiers = modifier_names(state);
        events += (events.empty() ? "" : " ") + std::string(type == XCB_KEY_PRESS ? "+" : "-") + name +
                  (modifiers.empty() ? "" : ":") + modifiers;
    } while (events.empty() || !down.empty());
    return events;
}

std::string TypedWindow::held() {
    const ReplyPointer<xcb_query_pointer_reply_t> state(
        xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, root_), nullptr));
    return state ? modifier_names(state->mask) : "unknown";
}

void TypedWindow::user_presses(std::uint8_t keycode) {
    fake_user_key(kDeviceKeyPress, keycode);
}

void TypedWindow::user_releases(std::uint8_t keycode) {
    fake_user_key(kDeviceKeyRelease, keycode);
}

void TypedWindow::fake_user_key(int action, std::uint8_t keycode) {
    const std::string name = "XInputExtension";
    const ReplyPointer<xcb_query_extension_reply_t> input(xcb_query_extension_reply(
        connection_, xcb_query_extension(connection_, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    if (!input || input->present == 0) {
        throw std::runtime_error("the server has no devices");
    }
    xcb_test_fake_input(connection_, static_cast<std::uint8_t>(input->first_event + action), keycode, XCB_CURRENT_TIME,
                        XCB_NONE, 0, 0, kUserKeyboard);
    xcb_flush(connection_);
    for (;;) {
        const ReplyPointer<xcb_generic_event_t> event(xcb_poll_for_event(connection_));
        if (event && event->response_type == 0) {
            throw std::runtime_error("the server refuses the user's key");
        }
        if (event && (event->response_type & 0x7F) == (action == kDeviceKeyPress ? XCB_KEY_PRESS : XCB_KEY_RELEASE)) {
            return;
        }
        if (!event && !readable(xcb_get_file_descriptor(connection_))) {
            throw std::runtime_error("the user's key has not come");
        }
    }
}

std::string TypedWindow::symbol_name(std::uint8_t keycode, unsigned state, unsigned first_column) {
    const ReplyPointer<xcb_get_keyboard_mapping_reply_t> mapping(
        xcb_get_keyboard_mapping_reply(connection_, xcb_get_keyboard_mapping(connection_, keycode, 1), nullptr));
    if (!mapping) {
        return "unknown";
    }
    const xcb_keysym_t* const symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
    const unsigned column =
        first_column + ((state & XCB_MOD_MASK_5) != 0 ? 4U : 0U) + ((state & XCB_MOD_MASK_SHIFT) != 0 ? 1U : 0U);
    const bool there = column < mapping->keysyms_per_keycode && symbols[column] != 0;
    const xcb_keysym_t symbol = symbols[there ? column : 0];
    switch (symbol) {
        case 0xFFE1:
            return "Shift";
        case 0xFFE3:
            return "Control";
        case 0xFE03:
            return kAltGrName;
        case 0xFF0D:
            return "Return";
        default:
            return symbol < 256 ? std::string(1, static_cast<char>(symbol)) : std::to_string(symbol);
    }
}

}  // namespace test_support
