#include "web/page_messages.h"

#include <gtest/gtest.h>

#include "support/windows_1252.h"

namespace {

using web::AnswerMessage;
using web::BadMessage;
using web::ControlMessage;
using web::decode_page_message;
using web::WindowMessage;

std::string why(const std::string& text) {
    const web::PageMessage decoded = decode_page_message(text);
    const auto* bad = std::get_if<BadMessage>(&decoded);
    return bad == nullptr ? "understood" : bad->why;
}

TEST(PageMessages, what_a_user_does_to_a_control_is_understood) {
    const auto typed = std::get<ControlMessage>(decode_page_message(
        R"({"type":"control","panel":"ConfigGaugeSN","control":"BoxName","index":3,"event":"change","text":"Öl \"°C\" €"})"));
    EXPECT_EQ(typed.panel, "ConfigGaugeSN");
    EXPECT_EQ(typed.control, "BoxName");
    EXPECT_EQ(typed.index, 3);
    EXPECT_EQ(typed.action.event, panel::UserEvent::change);
    EXPECT_EQ(typed.action.text, "\xD6l \"\xB0\x43\" \x80");
    const auto clicked = std::get<ControlMessage>(decode_page_message(
        R"({"type":"control","panel":"frmMain","control":"FileBox","event":"double_click","value":-7})"));
    EXPECT_EQ(clicked.index, -1);
    EXPECT_EQ(clicked.action.event, panel::UserEvent::double_click);
    EXPECT_EQ(clicked.action.value, -7);
}

TEST(PageMessages, panels_and_boxes_are_understood) {
    const auto window = std::get<WindowMessage>(decode_page_message(R"({"type":"minimise","panel":"frmStatus"})"));
    EXPECT_EQ(window.wish, WindowMessage::Wish::minimise);
    EXPECT_EQ(window.panel, "frmStatus");
    const auto input =
        std::get<AnswerMessage>(decode_page_message(R"({"type":"answer","id":7,"answer":"ok","text":"x"})"));
    EXPECT_EQ(input.id, 7U);
    EXPECT_EQ(input.given, AnswerMessage::Given::ok);
    EXPECT_EQ(input.text, "x");
}

TEST(PageMessages, what_does_not_fit_is_refused_with_its_reason) {
    const std::string start = R"({"type":"control","panel":"p","control":"c",)";
    struct Case {
        std::string text;
        std::string why;
    };
    const std::vector<Case> cases = {
        {"", "not a JSON object"},
        {"7", "not a JSON object"},
        {"[]", "not a JSON object"},
        {"{\"type\":\"activate\",\"panel\":\"p\"} x", "not a JSON object"},
        {"{\"type\":\"activate\",\"panel\":\"\xFF\"}", "not a JSON object"},
        {std::string(10000, '['), "not a JSON object"},
        {"{}", "type is missing"},
        {R"({"type":7})", "type is not a text"},
        {R"({"type":"shut down"})", "type is unknown"},
        {R"({"type":"activate"})", "panel is missing"},
        {R"({"type":"activate","panel":null})", "panel is not a text"},
        {R"({"type":"activate","panel":")" + std::string(65, 'p') + "\"}", "panel is too long"},
        {R"({"type":"activate","panel":"a\nb"})", "panel holds a control character"},
        {start + R"("event":"hover"})", "event is unknown"},
        {start + R"("event":"click","value":1.5})", "value is no whole number in range"},
        {start + R"("event":"click","value":2147483648})", "value is no whole number in range"},
        {start + R"("event":"click","value":99999999999999999999})", "value is no whole number in range"},
        {start + R"("event":"click","index":-1})", "index is no whole number in range"},
        {start + R"("event":"change","text":"a\u0000b"})", "text holds a control character"},
        {start + R"("event":"change","text":")" + std::string(4097, 'x') + "\"}", "text is too long"},
        {start + R"("event":"change","text":")" + std::string(4096, 'x') + "\"}", "understood"},
        {R"({"type":"answer","answer":"ok"})", "id is missing"},
        {R"({"type":"answer","id":0,"answer":"ok"})", "id is no whole number in range"},
        {R"({"type":"answer","id":1,"answer":"maybe"})", "answer is unknown"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(why(each.text), each.why) << each.text.substr(0, 80);
    }
}

TEST(PageMessages, a_message_cut_off_anywhere_is_refused) {
    const std::string whole = R"({"type":"control","panel":"p","control":"c","event":"change","text":"aé€"})";
    EXPECT_EQ(why(whole), "understood");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_NE(why(whole.substr(0, length)), "understood") << length;
    }
}

TEST(Windows1252, every_byte_comes_back_as_it_went) {
    std::string all;
    for (int byte = 0; byte < 256; ++byte) {
        all.push_back(static_cast<char>(byte));
    }
    EXPECT_EQ(support::from_utf8(support::to_utf8(all)), all);
    EXPECT_EQ(support::to_utf8("\x80 \x99 \xB0 \xFC"), "€ ™ ° ü");
}

TEST(Windows1252, what_it_does_not_have_becomes_a_question_mark) {
    struct Case {
        std::string utf8;
        std::string bytes;
    };
    const std::vector<Case> cases = {
        {"aΩb", "a?b"},        {"😀", "?"},
        {"\xC3", "?"},         {"\xC3x", "?x"},
        {"\xC0\xAF", "??"},    {"\xE0\x80\xAF", "???"},
        {"\xED\xA0\x80", "?"}, {"\xF5\x80\x80\x80", "????"},
        {"\xE2\x82", "??"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(support::from_utf8(each.utf8), each.bytes) << each.utf8;
    }
}

}  // namespace
