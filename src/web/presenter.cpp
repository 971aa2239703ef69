#include "web/presenter.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "panel/user_input.h"
#include "web/panel_json.h"

namespace web {

namespace {

constexpr std::chrono::milliseconds kTurn{50};
constexpr unsigned kTurnsPerBeat = 10;
constexpr int kMostAnswersInHand = 32;

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
    send_panels_with_new_state();
    for (panel::Panel* panel : host_.open_panels()) {
        if ((!panel->marked().empty() || panel->title_marked())) {
            send_changes(*panel);
        }
    }
    if (std::exchange(windows_changed_, false)) {
        send_windows();
    }
    if (std::exchange(boxes_changed_, false)) {
        send_boxes();
    }
    if (++turns_ >= kTurnsPerBeat) {
        turns_ = 0;
        send_beat();
    }
}

void Presenter::send_changes(panel::Panel& panel) {
    // With no page open there is nobody to tell; a page that comes gets everything.
    if (server_.page_count() > 0) {
        const auto text = new_text();
        if (append_changes(*text, panel) > 0 || panel.title_marked()) {
            server_.broadcast(text);
        }
    }
    panel.clear_marks();
}

void Presenter::send_windows() {
    const auto text = new_text();
    append_windows(*text, host_.open_panels());
    server_.broadcast(text);
}

void Presenter::send_boxes() {
    const auto text = new_text();
    *text += "{\"type\":\"boxes\",\"boxes\":";
    append_boxes(*text, boxes_.open_boxes());
    *text += '}';
    server_.broadcast(text);
}

void Presenter::send_beat() {
    ++beats_;
    if (server_.page_count() > 0) {
        server_.broadcast(
            std::make_shared<std::string>("{\"type\":\"beat\",\"count\":" + std::to_string(beats_) + "}"));
    }
}

void Presenter::send_panels_with_new_state() {
    // Of a minimised panel only the indicators are kept up, of a hidden one nothing: what comes back is sent in full.
    std::erase_if(presented_, [](const Presented& known) { return known.state != known.panel->window_state(); });
    for (panel::Panel* panel : host_.open_panels()) {
        const bool known = std::any_of(presented_.begin(), presented_.end(),
                                       [panel](const Presented& presented) { return presented.panel == panel; });
        if (known) {
            continue;
        }
        presented_.push_back({panel, panel->window_state()});
        const auto text = new_text();
        *text += "{\"type\":\"panel\",\"panel\":";
        append_panel(*text, *panel);
        *text += '}';
        panel->clear_marks();
        server_.broadcast(text);
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

panel::Panel* Presenter::workable(std::string_view name) const {
    const auto& open = host_.open_panels();
    const auto modal = std::find_if(open.rbegin(), open.rend(), [](const panel::Panel* panel) {
        return panel->visible() && panel->modality() == panel::Modality::modal;
    });
    if (modal != open.rend()) {
        return (*modal)->name() == name ? *modal : nullptr;
    }
    const auto found =
        std::find_if(open.begin(), open.end(), [name](const panel::Panel* panel) { return panel->name() == name; });
    return found == open.end() ? nullptr : *found;
}

void Presenter::command(std::string panel_name, std::function<void(panel::Panel&)> work) {
    loop_.post_user_command(
        [this, alive = std::weak_ptr<int>(alive_), name = std::move(panel_name), carry_out_on = std::move(work)] {
            if (alive.expired()) {
                return;
            }
            panel::Panel* panel = workable(name);
            if (panel == nullptr) {
                ++refused_messages_;
            } else {
                carry_out_on(*panel);
            }
        });
}

void Presenter::carry_out(const ControlMessage& message) {
    command(message.panel, [this, message](panel::Panel& panel) {
        panel::Control* control = panel.find(message.control, message.index);
        if (control == nullptr) {
            ++refused_messages_;
            return;
        }
        if (panel::UserInput::apply(*control, message.action) != panel::InputResult::done) {
            // The page has shown the user's input already; this sends it what holds.
            ++refused_messages_;
            control->mark();
        }
    });
}

void Presenter::carry_out(const WindowMessage& message) {
    const bool activates = message.wish == WindowMessage::Wish::activate;
    command(message.panel, [this, activates](panel::Panel& panel) {
        if (activates) {
            host_.activate(panel);
        } else {
            host_.minimise(panel);
        }
    });
}

void Presenter::carry_out(const AnswerMessage& message) {
    // While the program waits for a simulator no task runs; answers must not heap up meanwhile.
    if (answers_in_hand_ >= kMostAnswersInHand) {
        ++refused_messages_;
        return;
    }
    ++answers_in_hand_;
    // Not held back by an open box: it is the way to close one.
    loop_.post([this, alive = std::weak_ptr<int>(alive_), message] {
        if (alive.expired()) {
            return;
        }
        --answers_in_hand_;
        if (!answer_box(message)) {
            ++refused_messages_;
            boxes_changed_ = true;
        }
    });
}

bool Presenter::answer_box(const AnswerMessage& message) {
    const auto& open = boxes_.open_boxes();
    const bool is_input = !open.empty() && open.back().kind == platform::BoxKind::input;
    switch (message.given) {
        case AnswerMessage::Given::ok:
            return is_input ? boxes_.answer_input(message.id, message.text) : boxes_.answer_message(message.id);
        case AnswerMessage::Given::cancel:
            return boxes_.answer_input(message.id, std::nullopt);
        case AnswerMessage::Given::yes:
            return boxes_.answer_question(message.id, platform::Answer::yes);
        case AnswerMessage::Given::no:
            return boxes_.answer_question(message.id, platform::Answer::no);
    }
    return false;
}

void Presenter::carry_out(const BadMessage&) {
    ++refused_messages_;
}

}  // namespace web
