#pragma once

#include <boost/asio/steady_timer.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "panel/panel_host.h"
#include "platform/boxes.h"
#include "platform/event_loop.h"
#include "web/http_server.h"
#include "web/page_messages.h"

namespace web {

// Shows the panels on the pages and hands the users' commands to the loop. It runs on Asio's timer, not on the loop's,
// so that the pages are served also while the program waits inside a send to the simulator.
class Presenter {
  public:
    Presenter(boost::asio::io_context& context, platform::EventLoop& loop, panel::PanelHost& host,
              platform::StackedBoxes& boxes, HttpServer& server, std::string program_name);
    ~Presenter();
    Presenter(const Presenter&) = delete;
    Presenter& operator=(const Presenter&) = delete;

    // Messages of pages that were not understood or did not fit, since the start.
    std::uint64_t refused_messages() const { return refused_messages_; }

  private:
    void await_turn();
    // Sends what has changed since the last turn.
    void turn();
    void send_panels_with_new_state();
    void send_snapshot(PageSession& page) const;
    void send_changes(panel::Panel& panel);
    void send_windows();
    void send_boxes();
    void send_beat();
    // Null when no such panel is open, or a modal panel stands before it.
    panel::Panel* workable(std::string_view name) const;
    // Queues a user's command for a panel that can be worked then.
    void command(std::string panel_name, std::function<void(panel::Panel&)> work);
    bool answer_box(const AnswerMessage& message);
    void take(std::string_view text);
    void carry_out(const ControlMessage& message);
    void carry_out(const WindowMessage& message);
    void carry_out(const AnswerMessage& message);
    void carry_out(const BadMessage& message);

    platform::EventLoop& loop_;
    panel::PanelHost& host_;
    platform::StackedBoxes& boxes_;
    HttpServer& server_;
    std::string program_name_;
    boost::asio::steady_timer timer_;
    std::shared_ptr<int> alive_ = std::make_shared<int>(0);
    // The open panels as the pages have got them in full.
    struct Presented {
        const panel::Panel* panel;
        panel::WindowState state;
    };
    std::vector<Presented> presented_;
    bool windows_changed_ = false;
    bool boxes_changed_ = false;
    unsigned turns_ = 0;
    std::uint64_t beats_ = 0;
    int answers_in_hand_ = 0;
    std::uint64_t refused_messages_ = 0;
};

}  // namespace web
