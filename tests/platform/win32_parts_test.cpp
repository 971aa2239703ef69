#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "platform/win32/app_command.h"
#include "platform/win32/file_names.h"
#include "platform/win32/key_plan.h"
#include "platform/win32/line_events.h"
#include "platform/win32/page_window.h"
#include "support/failure.h"

namespace platform::win32 {
namespace {

TEST(LineErrors, a_break_is_a_break_and_not_a_framing_error_as_well) {
    struct Case {
        std::uint32_t errors;
        std::vector<SerialEvent> events;
    };
    // The bits of the system's header: receive overflow, overrun, parity, framing, break.
    for (const Case& line :
         {Case{0, {}}, Case{0x0001 | 0x0002 | 0x0004, {}}, Case{0x0008, {SerialEvent::framing_error}},
          Case{0x0010, {SerialEvent::break_received}}, Case{0x0008 | 0x0010 | 0x0001, {SerialEvent::break_received}}}) {
        std::vector<SerialEvent> events;
        raise_line_errors(line.errors, [&](SerialEvent event) { events.push_back(event); });
        EXPECT_EQ(events, line.events) << line.errors;
    }
}

TEST(FileNames, what_the_system_takes_for_something_else_is_no_file_name) {
    for (const char* name : {"Default MS-FS.cfg", "K\xF6ln.cfg", ".cfg", "com.cfg", "COM10.cfg", "console.cfg",
                             "My cockpit (new) #2.cfg", "nullify"}) {
        EXPECT_TRUE(is_file_name(name)) << name;
    }
    for (const char* name : {"",    "a:b.cfg", "a/b",      "a\\b", "a*.cfg",     "a?",          "a<b",      "a>b",
                             "a|b", "a\"b",    "a\tb",     "a.",   "a ",         "CON",         "con.cfg",  "Nul.txt",
                             "aux", "PRN.cfg", "COM1.cfg", "com9", "lpt1.x.cfg", "COM\xB9.cfg", "CON .cfg", "conin$"}) {
        EXPECT_FALSE(is_file_name(name)) << name;
    }
}

TEST(PageWindow, only_pages_of_this_machine_are_opened) {
    EXPECT_TRUE(is_page_address("http://127.0.0.1:8790/"));
    for (const char* address :
         {"", "http://127.0.0.1:", "http://127.0.0.1.example:1/", "https://127.0.0.1:8790/", "file:///c:/x.exe",
          "http://127.0.0.1:8790/ --other", "http://127.0.0.1:8790/\"", "http://127.0.0.1:8790/&calc"}) {
        EXPECT_FALSE(is_page_address(address)) << address;
        EXPECT_THROW(open_page(address), support::Failure) << address;
    }
    EXPECT_EQ(app_command(L"C:\\Program Files\\Browser\\b.exe", L"http://127.0.0.1:8790/"),
              L"\"C:\\Program Files\\Browser\\b.exe\" --app=http://127.0.0.1:8790/");
}

// A layout with '/' on Shift and 7, '{' on AltGr and 7, and nothing else.
std::optional<LayoutKey> find_on_layout(char character) {
    switch (character) {
        case '7':
            return LayoutKey{'7'};
        case '/':
            return LayoutKey{.virtual_key = '7', .shift = true};
        case '{':
            return LayoutKey{.virtual_key = '7', .control = true, .alt = true};
        default:
            return std::nullopt;
    }
}

TEST(KeyPlan, a_letter_is_its_key_and_another_character_the_key_that_bears_it) {
    constexpr auto kControl = kKeyLeftControl;
    constexpr auto kShift = kKeyLeftShift;
    constexpr auto kAlt = kKeyRightAlt;
    struct Case {
        KeyChord chord;
        HeldKeys held;
        std::vector<std::uint8_t> keys;
    };
    const std::vector<Case> cases = {
        {{false, false, 'g'}, {}, {'G'}},
        {{false, false, 'G'}, {}, {'G'}},
        {{true, true, 'g'}, {}, {kControl, kShift, 'G'}},
        {{false, false, '7'}, {}, {'7'}},
        {{false, false, '/'}, {}, {kShift, '7'}},
        {{true, true, '/'}, {}, {kControl, kShift, '7'}},
        {{false, false, '/'}, {.shift = true}, {'7'}},
        {{false, false, '{'}, {}, {kControl, kAlt, '7'}},
        {{false, false, '{'}, {.control = true, .alt = true}, {'7'}},
        {{true, false, '\r'}, {}, {kControl, 13}},
        {{false, false, '\x1B'}, {}, {27}},
        {{false, false, '.'}, {}, {}},
        {{false, false, '\x01'}, {}, {}},
    };
    for (const Case& line : cases) {
        SCOPED_TRACE(line.chord.character);
        if (line.keys.empty()) {
            EXPECT_THROW(keys_to_press(line.chord, find_on_layout, line.held), support::Failure);
        } else {
            EXPECT_EQ(keys_to_press(line.chord, find_on_layout, line.held), line.keys);
        }
    }
}

}  // namespace
}  // namespace platform::win32
