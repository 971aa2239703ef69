#include "web/presenter.h"

#include <algorithm>
#include <chrono>

#include "web/panel_json.h"

namespace web {

namespace {

constexpr std::chrono::milliseconds kTurn{50};
constexpr unsigned kTurnsPerBeat = 10;

std::shared_ptr<std::string> new_text() {
    auto text = std::make_shared<std::string>();
    text->reserve(1024);
    return text;
}

}  // namespace

Presenter::Presenter(boost::asio::io_context& context, platform::EventLoop& loop, panel::PanelHost& host,
                     platform::StackedBoxes& boxes, HttpServer& server, std::string program_name)
    : loop_(loop),
      host_(host),
      boxes_(boxes),
      server_(server),
      program_name_(std::move(program_name)),
      timer_(context) {
    host_.on_change = [this] { windows_changed_ = true; };
    boxes_.on_change = [this] { boxes_changed_ = true; };
    server_.on_open = [this](PageSession& page) { send_snapshot(page); };
    server_.on_message = [this](PageSession&, std::string_view text) { take(text); };
    await_turn();
}

Presenter::~Presenter() {
    host_.on_change = {};
    boxes_.on_change = {};
    server_.on_open = {};
    server_.on_message = {};
}

void Presenter::await_turn() {
    timer_.expires_after(kTurn);
    timer_.async_wait([this, alive = std::weak_ptr<int>(alive_)](const boost::system::error_code& error) {
        if (!error && !alive.expired()) {
            turn();
            await_turn();
        }
    });
}

void Presenter::turn() {
    send_newly_shown_panels();
    for (panel::Panel* panel : host_.open_panels()) {
        if (panel->visible() && (!panel->marked().empty() || panel->title_marked())) {
            const auto text = new_text();
            append_changes(*text, *panel);
            panel->clear_marks();
            server_.broadcast(text);
        }
    }
    if (windows_changed_) {
        windows_changed_ = false;
        const auto text = new_text();
        append_windows(*text, host_.open_panels());
        server_.broadcast(text);
    }
    if (boxes_changed_) {
        boxes_changed_ = false;
        const auto text = new_text();
        *text += "{\"type\":\"boxes\",\"boxes\":";
        append_boxes(*text, boxes_.open_boxes());
        *text += '}';
        server_.broadcast(text);
    }
    if (++turns_ >= kTurnsPerBeat) {
        turns_ = 0;
        server_.broadcast(
            std::make_shared<std::string>("{\"type\":\"beat\",\"count\":" + std::to_string(++beats_) + "}"));
    }
}

void Presenter::send_newly_shown_panels() {
    // A panel that is hidden or minimised leaves the list: its fields are not kept up, so it is sent in full when it
    // shows.
    std::erase_if(presented_, [](const panel::Panel* panel) { return !panel->visible(); });
    for (panel::Panel* panel : host_.open_panels()) {
        if (panel->visible() && std::find(presented_.begin(), presented_.end(), panel) == presented_.end()) {
            presented_.push_back(panel);
            const auto text = new_text();
            *text += "{\"type\":\"panel\",\"panel\":";
            append_panel(*text, *panel);
            *text += '}';
            panel->clear_marks();
            server_.broadcast(text);
        }
    }
}

void Presenter::send_snapshot(PageSession& page) const {
    const auto text = new_text();
    *text += "{\"type\":\"snapshot\",\"program\":";
    append_text(*text, program_name_);
    *text += ",\"panels\":[";
    for (const panel::Panel* panel : host_.open_panels()) {
        if (text->back() != '[') {
            *text += ',';
        }
        append_panel(*text, *panel);
    }
    *text += "],\"boxes\":";
    append_boxes(*text, boxes_.open_boxes());
    *text += '}';
    page.send(text);
}

void Presenter::take(std::string_view text) {
    std::visit([this](const auto& message) { carry_out(message); }, decode_page_message(text));
}

void Presenter::carry_out(const ControlMessage& message) {
    loop_.post_user_command([this, alive = std::weak_ptr<int>(alive_), message] {
        panel::Panel* panel = alive.expired() ? nullptr : host_.find(message.panel);
        panel::Control* control = panel == nullptr ? nullptr : panel->find(message.control, message.index);
        if (control == nullptr) {
            return;
        }
        const panel::InputResult result = panel::UserInput::apply(*control, message.action);
        if (result != panel::InputResult::done) {
            // The page has shown the user's input already; this sends it what holds.
            ++refused_messages_;
            control->mark();
        }
    });
}

void Presenter::carry_out(const WindowMessage& message) {
    loop_.post_user_command([this, alive = std::weak_ptr<int>(alive_), message] {
        panel::Panel* panel = alive.expired() ? nullptr : host_.find(message.panel);
        if (panel == nullptr) {
            return;
        }
        if (message.wish == WindowMessage::Wish::activate) {
            host_.activate(*panel);
        } else {
            host_.minimise(*panel);
        }
    });
}

void Presenter::carry_out(const AnswerMessage& message) {
    // Not held back by an open box: it is the way to close one.
    loop_.post([this, alive = std::weak_ptr<int>(alive_), message] {
        if (alive.expired()) {
            return;
        }
        bool taken = false;
        const auto& open = boxes_.open_boxes();
        const bool is_input = !open.empty() && open.back().kind == platform::BoxKind::input;
        switch (message.given) {
            case AnswerMessage::Given::ok:
                taken = is_input ? boxes_.answer_input(message.id, message.text) : boxes_.answer_message(message.id);
                break;
            case AnswerMessage::Given::cancel:
                taken = boxes_.answer_input(message.id, std::nullopt);
                break;
            case AnswerMessage::Given::yes:
                taken = boxes_.answer_question(message.id, platform::Answer::yes);
                break;
            case AnswerMessage::Given::no:
                taken = boxes_.answer_question(message.id, platform::Answer::no);
                break;
        }
        if (!taken) {
            ++refused_messages_;
            boxes_changed_ = true;
        }
    });
}

void Presenter::carry_out(const BadMessage&) {
    ++refused_messages_;
}

}  // namespace web
