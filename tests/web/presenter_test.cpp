#include "web/presenter.h"

#include <array>

#include "panel/panel.h"
#include "platform/posix/posix_loop.h"
#include "test_page.h"

namespace {

using namespace web_test;
using namespace std::chrono_literals;

class SamplePanel : public panel::Panel {
  public:
    explicit SamplePanel(std::string name, panel::Modality modality = panel::Modality::free)
        : panel::Panel(std::move(name), "Sample \x80", modality) {
        set_layout(panel::column({panel::row({BoxSpeed, cmdRun}), panel::frame("Set-up", {BoxName, Slider, List}),
                                  Choice[0], Choice[1], BoxRun}));
        cmdRun.on_click = [this] { log.push_back("run"); };
        BoxName.on_change = [this] { log.push_back("name " + BoxName.text.get()); };
    }

    panel::TextBox BoxSpeed{*this, "BoxSpeed", "Speed"};
    panel::CommandButton cmdRun{*this, "cmdRun", "Run"};
    panel::TextBox BoxName{*this, "BoxName", "Name", panel::Access::editable};
    panel::Slider Slider{*this, "Slider", "Interval", 10, 200};
    panel::ListBox List{*this, "List", "Files"};
    std::array<panel::OptionButton, 2> Choice{
        {{*this, "Choice", "Left", "side", 0}, {*this, "Choice", "Right", "side", 1}}};
    panel::Indicator BoxRun{*this, "BoxRun", ""};
    std::vector<std::string> log;
};

class PresenterTest : public testing::Test {
  protected:
    PresenterTest() {
        host.add(sample);
        host.add(other);
        host.add(modal);
        host.show(sample);
    }

    void let_run(const std::function<bool()>& done) {
        loop.post_after(10s, [] { throw std::runtime_error("that took too long"); });
        loop.yield_until(done);
    }

    static std::string control(const std::string& panel, const std::string& rest) {
        return R"({"type":"control","panel":")" + panel + R"(",)" + rest + "}";
    }

    platform::posix::PosixLoop loop;
    asio::io_context& context = loop.io_context();
    panel::PanelHost host;
    platform::StackedBoxes boxes{loop, [](const std::string&) {}};
    SamplePanel sample{"frmSample"};
    SamplePanel other{"frmOther"};
    SamplePanel modal{"frmModal", panel::Modality::modal};
    web::HttpServer server{context, kTestPorts, {}};
    web::Presenter presenter{context, loop, host, boxes, server, "Control Program"};
};

const json::object& item(const json::object& panel, std::size_t at) {
    return panel.at("controls").as_array().at(at).as_object();
}

TEST_F(PresenterTest, a_new_page_gets_every_open_panel_whole_the_front_one_last) {
    sample.BoxSpeed.text = "\"104.3\"\t\\ \xB0";
    sample.List.items.assign({"a  b", ""});
    host.show(other);
    host.minimise(other);
    TestPage page(context);
    page.open(server);
    const json::object snapshot = page.receive("snapshot");
    EXPECT_EQ(snapshot.at("program"), "Control Program");
    ASSERT_EQ(snapshot.at("panels").as_array().size(), 2U);
    EXPECT_EQ(snapshot.at("panels").at(0).at("name"), "frmOther");
    EXPECT_EQ(snapshot.at("panels").at(0).at("state"), "minimised");
    const json::object& panel = snapshot.at("panels").at(1).as_object();
    EXPECT_EQ(panel.at("title"), "Sample €");
    EXPECT_EQ(item(panel, 0).at("kind"), "text_box");
    EXPECT_EQ(item(panel, 0).at("text"), "\"104.3\"\t\\ °");
    EXPECT_EQ(item(panel, 0).at("editable"), false);
    EXPECT_EQ(item(panel, 2).at("editable"), true);
    EXPECT_EQ(item(panel, 3).at("minimum"), 10);
    EXPECT_EQ(item(panel, 3).at("maximum"), 200);
    EXPECT_EQ(item(panel, 4).at("items"), json::array({"a  b", ""}));
    EXPECT_EQ(item(panel, 5).at("group"), "side");
    EXPECT_EQ(item(panel, 6).at("index"), 1);
    const json::value& layout = panel.at("layout");
    EXPECT_EQ(layout.at("children").at(0).at("children").at(1).at("control"), "cmdRun");
    EXPECT_EQ(layout.at("children").at(1).at("caption"), "Set-up");
    EXPECT_EQ(layout.at("children").at(3).at("index"), 1);
}

TEST_F(PresenterTest, changes_go_out_marked_controls_only_and_at_most_twenty_times_a_second) {
    TestPage page(context);
    page.open(server);
    page.receive("snapshot");
    page.receive("beat");
    const auto start = std::chrono::steady_clock::now();
    int number = 0;
    int messages = 0;
    page.on_message = [&](const json::object& message) {
        if (message.at("type") == "changes") {
            EXPECT_EQ(message.at("controls").as_array().size(), 1U);
            EXPECT_EQ(message.at("controls").at(0).at("control"), "BoxSpeed");
            ++messages;
        }
    };
    ASSERT_TRUE(run_until(context, [&] {
        sample.BoxSpeed.text = std::to_string(++number);
        sample.BoxRun.text = "";
        return messages == 6;
    }));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 250ms);
}

TEST_F(PresenterTest, the_lamps_of_a_minimised_panel_go_on) {
    TestPage page(context);
    page.open(server);
    page.receive("snapshot");
    host.minimise(sample);
    page.receive("panel");
    sample.BoxSpeed.text = "12";
    sample.BoxRun.text = "Running";
    const json::object changes = page.receive("changes");
    ASSERT_EQ(changes.at("controls").as_array().size(), 1U);
    EXPECT_EQ(changes.at("controls").at(0).at("control"), "BoxRun");
    EXPECT_EQ(changes.at("controls").at(0).at("text"), "Running");
}

TEST_F(PresenterTest, a_panel_that_is_minimised_as_soon_as_it_is_shown_is_known_to_the_pages) {
    TestPage page(context);
    page.open(server);
    page.receive("snapshot");
    host.show(other);
    host.minimise(other);
    EXPECT_EQ(page.receive("panel").at("panel").at("name"), "frmOther");
}

TEST_F(PresenterTest, a_panel_out_of_sight_is_silent_and_comes_back_whole) {
    TestPage page(context);
    page.open(server);
    page.receive("snapshot");
    for (const bool hides : {false, true}) {
        if (hides) {
            host.hide(sample);
        } else {
            host.minimise(sample);
        }
        const json::object windows = page.receive("windows");
        EXPECT_EQ(windows.at("windows").as_array().size(), hides ? 0U : 1U);
        page.on_message = [](const json::object& message) { EXPECT_NE(message.at("type"), "changes") << message; };
        sample.BoxSpeed.text = hides ? "hidden" : "minimised";
        page.receive("beat");
        page.on_message = {};
        host.show(sample);
        const json::object shown = page.receive("panel");
        EXPECT_EQ(item(shown.at("panel").as_object(), 0).at("text"), hides ? "hidden" : "minimised");
        EXPECT_EQ(page.receive("windows").at("windows").at(0).at("state"), "shown");
    }
}

TEST_F(PresenterTest, two_pages_see_the_same) {
    TestPage first(context);
    TestPage second(context);
    first.open(server);
    second.open(server);
    first.receive("beat");
    second.receive("beat");
    first.send(control("frmSample", R"("control":"Slider","event":"change","value":80)"));
    let_run([&] { return sample.Slider.value == 80; });
    for (TestPage* page : {&first, &second}) {
        EXPECT_EQ(page->receive("changes").at("controls").at(0).at("value"), 80);
    }
}

TEST_F(PresenterTest, an_input_that_does_not_fit_changes_nothing_and_the_page_is_told_what_holds) {
    sample.cmdRun.enabled = false;
    TestPage page(context);
    page.open(server);
    page.receive("beat");
    struct Case {
        std::string message;
        bool is_told;
    };
    const std::vector<Case> cases = {
        {control("frmSample", R"("control":"cmdRun","event":"click")"), true},
        {control("frmSample", R"("control":"BoxSpeed","event":"change","text":"999")"), true},
        {control("frmSample", R"("control":"Slider","event":"change","value":9)"), true},
        {control("frmSample", R"("control":"List","event":"click","value":0)"), true},
        {control("frmSample", R"("control":"Choice","index":2,"event":"click")"), false},
        {control("frmSample", R"("control":"nothing","event":"click")"), false},
        {control("frmOther", R"("control":"cmdRun","event":"click")"), false},
        {control("frmNothing", R"("control":"cmdRun","event":"click")"), false},
        {R"({"type":"minimise","panel":"frmOther"})", false},
        {R"({"type":"activate","panel":"frmOther"})", false},
        {R"({"type":"answer","id":1,"answer":"yes"})", false},
        {"nonsense", false},
    };
    std::uint64_t refused = 0;
    for (const Case& each : cases) {
        page.send(each.message);
        ++refused;
        let_run([&] { return presenter.refused_messages() == refused; });
        if (each.is_told) {
            EXPECT_EQ(page.receive("changes").at("controls").as_array().size(), 1U) << each.message;
        }
    }
    EXPECT_TRUE(sample.log.empty());
    EXPECT_TRUE(sample.BoxSpeed.text == "");
    EXPECT_FALSE(other.visible());
}

TEST_F(PresenterTest, while_a_modal_panel_is_open_the_others_cannot_be_worked) {
    host.show(modal);
    TestPage page(context);
    page.open(server);
    page.send(control("frmSample", R"("control":"cmdRun","event":"click")"));
    page.send(R"({"type":"activate","panel":"frmSample"})");
    page.send(control("frmModal", R"("control":"cmdRun","event":"click")"));
    let_run([&] { return !modal.log.empty(); });
    EXPECT_TRUE(sample.log.empty());
    EXPECT_EQ(host.open_panels().back(), &modal);
    EXPECT_EQ(presenter.refused_messages(), 2U);
}

TEST_F(PresenterTest, panels_are_minimised_and_brought_back_from_the_page) {
    TestPage page(context);
    page.open(server);
    page.send(R"({"type":"minimise","panel":"frmSample"})");
    let_run([&] { return sample.minimised(); });
    page.send(R"({"type":"activate","panel":"frmSample"})");
    let_run([&] { return sample.visible(); });
}

TEST_F(PresenterTest, an_open_box_holds_commands_back_until_it_is_answered) {
    TestPage page(context);
    page.open(server);
    page.receive("snapshot");
    page.on_message = [&](const json::object& message) {
        if (message.at("type") != "boxes" || message.at("boxes").as_array().empty()) {
            return;
        }
        const json::object& box = message.at("boxes").at(0).as_object();
        EXPECT_EQ(box.at("kind"), "question");
        EXPECT_EQ(box.at("text"), "Error 9\nContinue?");
        page.post(control("frmSample", R"("control":"cmdRun","event":"click")"));
        page.post(R"({"type":"answer","id":)" + json::serialize(box.at("id")) + R"(,"answer":"no"})");
    };
    loop.post([this] {
        const platform::Answer answer = boxes.question("Error 9\nContinue?");
        sample.log.push_back(answer == platform::Answer::no ? "no" : "yes");
    });
    let_run([&] { return sample.log.size() == 2; });
    EXPECT_EQ(sample.log, (std::vector<std::string>{"no", "run"}));
    EXPECT_EQ(presenter.refused_messages(), 0U);
}

TEST_F(PresenterTest, only_the_top_box_can_be_answered_and_only_fittingly) {
    TestPage page(context);
    page.open(server);
    page.receive("snapshot");
    page.on_message = [&](const json::object& message) {
        if (message.at("type") != "boxes" || message.at("boxes").as_array().size() != 2) {
            return;
        }
        page.on_message = {};
        page.post(R"({"type":"answer","id":1,"answer":"ok"})");   // below
        page.post(R"({"type":"answer","id":2,"answer":"yes"})");  // an input box
        page.post(R"({"type":"answer","id":2,"answer":"ok","text":"four Ω"})");
        page.post(R"({"type":"answer","id":2,"answer":"ok"})");  // gone
        page.post(R"({"type":"answer","id":1,"answer":"ok"})");
    };
    loop.post([this] {
        loop.post([this] { sample.log.push_back(boxes.input("Name?", "preset").value_or("cancelled")); });
        boxes.message("below");
        sample.log.push_back("done");
    });
    let_run([&] { return sample.log.size() == 2; });
    EXPECT_EQ(sample.log, (std::vector<std::string>{"four ?", "done"}));
    EXPECT_EQ(presenter.refused_messages(), 3U);
}

TEST_F(PresenterTest, the_page_is_served_while_a_task_waits_for_the_simulator) {
    TestPage page(context);
    page.open(server);
    page.receive("snapshot");
    int beats = 0;
    page.on_message = [&](const json::object& message) { beats += message.at("type") == "beat" ? 1 : 0; };
    loop.post([this] { loop.serve_page_until(loop.now() + 1200ms); });
    bool served = false;
    loop.post([&] { served = true; });
    page.post(control("frmSample", R"("control":"cmdRun","event":"click")"));
    let_run([&] {
        EXPECT_TRUE(served || sample.log.empty());
        return !sample.log.empty();
    });
    EXPECT_GE(beats, 2);
}

}  // namespace
