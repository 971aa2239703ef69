// Keys that go to a real window of a real X server.

#include "platform/posix/x_keys.h"

#include <gtest/gtest.h>
#include <poll.h>

#include <chrono>

#include "support/failure.h"
#include "tests/support/x_desktop.h"

namespace platform_tests {
namespace {

using platform::posix::XKeys;
using std::chrono::steady_clock;
using test_support::TypedWindow;
using test_support::XServer;

// The words of the failure; empty when the key has gone.
std::string failure_of(XKeys& keys, const std::string& text) {
    try {
        keys.send(text);
    } catch (const support::Failure& failure) {
        return failure.description();
    }
    return {};
}

constexpr const char* kNoDesktop = "There is no desktop that the key could go to";
constexpr const char* kNoAnswer = "The desktop does not answer";

struct Case {
    const char* keys;
    const char* typed;
};

void expect_typed(XKeys& keys, TypedWindow& window, const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        keys.send(c.keys);
        EXPECT_EQ(window.typed(), c.typed) << c.keys;
        EXPECT_EQ(window.held(), "") << c.keys;
    }
}

TEST(XKeysTest, keys_reach_the_window_with_their_modifiers_around_them) {
    const XServer server;
    TypedWindow window(server.display());
    XKeys keys(server.display());
    expect_typed(keys, window,
                 {{"g", "+g -g"},
                  {"G", "+g -g"},
                  {"^G", "+Control +g:C -g:C -Control:C"},
                  {"+G", "+Shift +G:S -G:S -Shift:S"},
                  {"^+G", "+Control +Shift:C +G:CS -G:CS -Shift:CS -Control:C"},
                  {"0", "+0 -0"},
                  {"9", "+9 -9"},
                  {"^1", "+Control +1:C -1:C -Control:C"},
                  {"+1", "+Shift +!:S -!:S -Shift:S"},
                  {"{+}", "+Shift ++:S -+:S -Shift:S"},
                  {"^{+}", "+Control +Shift:C ++:CS -+:CS -Shift:CS -Control:C"},
                  {"{{}", "+Shift +{:S -{:S -Shift:S"},
                  {"{}}", "+Shift +}:S -}:S -Shift:S"},
                  {"{[}", "+[ -["},
                  {"-", "+- --"},
                  {" ", "+  - "},
                  {"\r", "+Return -Return"}});
    keys.send("a");
    keys.send("B");
    EXPECT_EQ(window.typed(), "+a -a");
    EXPECT_EQ(window.typed(), "+b -b");
    EXPECT_EQ(failure_of(keys, "\xFC"), "The keyboard layout has no key for the character \"\xFC\"");
    EXPECT_NE(failure_of(keys, "gh"), "");
    expect_typed(keys, window, {{"c", "+c -c"}});
}

TEST(XKeysTest, keys_that_the_user_holds_are_left_as_they_are) {
    constexpr std::uint8_t kShiftKey = 50;
    const XServer server;
    TypedWindow window(server.display());
    XKeys keys(server.display());
    window.user_presses(kShiftKey);
    ASSERT_EQ(window.held(), "S");
    keys.send("^G");
    EXPECT_EQ(window.typed(), "+Control:S +G:CS -G:CS -Control:CS");
    keys.send("+G");
    EXPECT_EQ(window.typed(), "+G:S -G:S") << "the window knows that Shift is down";
    EXPECT_EQ(window.held(), "S");
    window.user_releases(kShiftKey);
    expect_typed(keys, window, {{"g", "+g -g"}});
}

TEST(XKeysTest, a_changed_keyboard_layout_is_followed) {
    XServer server;
    TypedWindow window(server.display());
    XKeys keys(server.display());
    expect_typed(keys, window, {{"Z", "+z -z"}, {"/", "+/ -/"}});
    server.set_keyboard({"-layout", "de"});
    expect_typed(keys, window,
                 {{"Z", "+z -z"},
                  {"/", "+Shift +/:S -/:S -Shift:S"},
                  {"{{}", "+AltGr +{:3 -{:3 -AltGr:3"},
                  {"\xFC", "+\xFC -\xFC"}});
    EXPECT_NE(failure_of(keys, "{^}"), "") << "it is composed of two keystrokes";

    // Two layouts, and a key that changes between them.
    server.set_keyboard({"-layout", "us,de", "-option", "grp:menu_toggle"});
    expect_typed(keys, window, {{"Z", "+z -z"}, {"/", "+/ -/"}});
    window.user_presses(135);
    window.user_releases(135);
    expect_typed(keys, window, {{"Z", "+z -z"}, {"/", "+Shift +/:S -/:S -Shift:S"}});
}

TEST(XKeysTest, a_server_that_is_gone_is_a_failure_until_a_new_one_is_there) {
    XServer server;
    XKeys keys(server.display());
    {
        TypedWindow window(server.display());
        expect_typed(keys, window, {{"g", "+g -g"}});
    }
    for (int round = 0; round < 2; ++round) {
        server.crash();
        EXPECT_EQ(failure_of(keys, "g"), kNoDesktop);
        EXPECT_EQ(failure_of(keys, "g"), kNoDesktop);
        server.start_again();
        TypedWindow window(server.display());
        expect_typed(keys, window, {{"h", "+h -h"}});
    }
    server.crash();
    server.start_again();
    TypedWindow window(server.display());
    expect_typed(keys, window, {{"^I", "+Control +i:C -i:C -Control:C"}});
}

TEST(XKeysTest, a_server_that_does_not_answer_is_not_waited_for) {
    XServer server;
    TypedWindow window(server.display());
    XKeys connected(server.display());
    XKeys fresh(server.display());
    expect_typed(connected, window, {{"g", "+g -g"}});

    server.freeze();
    const auto start = steady_clock::now();
    for (int key = 0; key < 50; ++key) {
        EXPECT_EQ(failure_of(connected, "x"), kNoAnswer);
        EXPECT_EQ(failure_of(fresh, "x"), kNoAnswer);
    }
    EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(3)) << "each has waited again";
    server.thaw();
    for (XKeys* keys : {&connected, &fresh}) {
        const auto deadline = steady_clock::now() + std::chrono::seconds(10);
        while (failure_of(*keys, "h") == kNoAnswer && steady_clock::now() < deadline) {
            ::poll(nullptr, 0, 1);
        }
        EXPECT_EQ(window.typed(), "+h -h") << "keys that have failed are not sent later";
    }
}

TEST(XKeysTest, without_a_desktop_that_takes_keys_each_key_is_a_failure) {
    XKeys nowhere(":9999");
    EXPECT_EQ(failure_of(nowhere, "g"), kNoDesktop);
    EXPECT_EQ(failure_of(nowhere, "g"), kNoDesktop);
    XKeys misspelt("no display");
    EXPECT_EQ(failure_of(misspelt, "g"), kNoDesktop);

    const XServer server({"-extension", "XTEST"});
    XKeys locked(server.display());
    EXPECT_NE(failure_of(locked, "g").find("XTEST"), std::string::npos);
    EXPECT_NE(failure_of(locked, "g").find("XTEST"), std::string::npos);
}

}  // namespace
}  // namespace platform_tests
