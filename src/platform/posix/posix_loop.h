#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <functional>

#include "platform/event_loop.h"

namespace platform::posix {

// The event loop on Asio. Asio's handlers only queue tasks or serve the page; the tasks run outside of them.
class PosixLoop : public EventLoop {
  public:
    PosixLoop();

    TimePoint now() const override { return std::chrono::steady_clock::now(); }

    boost::asio::io_context& io_context() { return io_context_; }

    // Called as a task when the program is asked to end (SIGINT, SIGTERM). The default stops the loop.
    std::function<void()> on_terminate;

    // Waits until the descriptor can be read, serving the page meanwhile (Asio's handlers, no tasks). False when the
    // deadline has passed.
    bool wait_readable_serving_page(int descriptor, TimePoint deadline);
    // The same until it can be written.
    bool wait_writable_serving_page(int descriptor, TimePoint deadline);
    // Serves the page until the deadline.
    void serve_page_until(TimePoint deadline);

  protected:
    void wait(std::optional<TimePoint> until) override;
    void collect_events() override;

  private:
    bool wait_for_descriptor(int descriptor, short events, TimePoint deadline);
    void await_signal();

    boost::asio::io_context io_context_{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_;
    // A timer of the system's own resolution: the context's timed waits count in whole milliseconds.
    boost::asio::steady_timer wake_up_;
    boost::asio::signal_set signals_;
};

}  // namespace platform::posix
